// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Code pages by number and by the names that documents use for them. The numbers are those of the system that
// the first files came from, because names in files, and lists made there, mean exactly those pages.
#include <QByteArray>
#include <QString>
#include <QStringView>

constexpr int LocalePage = 0;
constexpr int Utf16Page = 1200;
constexpr int Utf8Page = 65001;
/// Marks the path for UTF-32 by hand; no page of any system.
constexpr int Utf32Page = 65005;

/// Code page of an encoding's name: 0 (the locale's encoding) for an empty name, 65005 for one that begins
/// with the capitals "UTF-32", -1 for an unknown one.
int EncodingToCodePage(QStringView name);

/// Name of the encoding of the user's locale, as LC_ALL, LC_CTYPE or LANG give it. A locale without one ("C",
/// or nothing set at all) means UTF-8.
const QByteArray& LocaleEncoding();
/// True when the page is UTF-8 or stands for the locale's encoding and that is UTF-8.
bool IsUtf8Page(int page);
/// True for the pages on which a conversion never tells of a loss.
bool CodePageNeedsNoDefault(int page);

/// True when text can be converted from and to the page. There are a few, of old systems of East Asia, for
/// which nobody has tables.
bool HasCodePage(int page);

/// Narrow text as UTF-16. 0 and -1 are the locale's encoding. Bytes that mean nothing become the character
/// unknown; of a page that cannot be had those are all outside ASCII.
QString DecodeText(QByteArrayView bytes, int page, char16_t unknown = QChar::ReplacementCharacter);
/// UTF-16 as narrow text. What the page lacks becomes the substitute, and sets lossy when given.
QByteArray EncodeText(QStringView text, int page, char substitute = '?', bool* lossy = nullptr);
