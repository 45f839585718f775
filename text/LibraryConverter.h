// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Conversion with the pages that ICU lacks and the C library has.
#include <QByteArray>
#include <QString>
#include <QStringView>

/// True for a page that the C library converts.
bool HasLibraryPage(int page);
/// What means nothing becomes the character unknown.
QString DecodeByLibrary(QByteArrayView bytes, int page, char16_t unknown);
/// What the page lacks becomes the substitute and sets lossy.
QByteArray EncodeByLibrary(QStringView text, int page, char substitute, bool& lossy);
