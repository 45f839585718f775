// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The three pages of Japanese mail (50220, 50221, 50222): seven bits, with escapes between ASCII, kanji and
// narrow katakana. Their characters are those of page 932, signs of the makers of PCs among them, which the
// converters of the libraries for that standard do not have.
#include <QByteArray>
#include <QString>
#include <QStringView>

bool IsJapaneseMailPage(int page);
/// All three are read alike. What means nothing becomes the character unknown.
QString DecodeJapaneseMail(QByteArrayView bytes, char16_t unknown);
/// 50220 writes narrow katakana as wide ones, 50221 after an escape, 50222 between shifts. What the page
/// lacks becomes the substitute and sets lossy.
QByteArray EncodeJapaneseMail(QStringView text, int page, char substitute, bool& lossy);
