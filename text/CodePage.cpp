// SPDX-License-Identifier: GPL-3.0-or-later
// Conversion by code page. UTF-8 goes by hand, since every state file passes here several times per drawing;
// pages of single bytes go by tables, and the others through ICU or the C library.
#include "text/CodePage.h"

#include "system/UserLanguage.h"
#include "text/IcuConverter.h"
#include "text/JapaneseMail.h"
#include "text/LibraryConverter.h"
#include "text/SingleBytePage.h"

#include <algorithm>

namespace {

constexpr int HzPage = 52936;

QByteArray encodeUtf8(QStringView text) {
    QByteArray out(text.size() * 3, Qt::Uninitialized);
    auto* to = reinterpret_cast<unsigned char*>(out.data());
    const char16_t* from = text.utf16();
    const char16_t* end = from + text.size();
    while (from != end) {
        constexpr std::ptrdiff_t Block = 16;
        while (end - from >= Block) {
            char16_t all = 0;
            for (std::ptrdiff_t i = 0; i < Block; ++i) {
                all |= from[i];
            }
            if (all >= 0x80) {
                break;
            }
            for (std::ptrdiff_t i = 0; i < Block; ++i) {
                to[i] = static_cast<unsigned char>(from[i]);
            }
            from += Block;
            to += Block;
        }
        for (std::ptrdiff_t left = std::min(Block, end - from); left > 0 && from != end; --left) {
            char32_t c = *from++;
            if (c < 0x80) {
                *to++ = static_cast<unsigned char>(c);
                continue;
            }
            if (QChar::isHighSurrogate(c) && from != end && QChar::isLowSurrogate(*from)) {
                c = QChar::surrogateToUcs4(static_cast<char16_t>(c), *from++);
            } else if (QChar::isSurrogate(c)) {
                c = QChar::ReplacementCharacter;
            }
            if (c < 0x800) {
                *to++ = static_cast<unsigned char>(0xc0 | c >> 6);
            } else {
                if (c < 0x10000) {
                    *to++ = static_cast<unsigned char>(0xe0 | c >> 12);
                } else {
                    *to++ = static_cast<unsigned char>(0xf0 | c >> 18);
                    *to++ = static_cast<unsigned char>(0x80 | (c >> 12 & 0x3f));
                }
                *to++ = static_cast<unsigned char>(0x80 | (c >> 6 & 0x3f));
            }
            *to++ = static_cast<unsigned char>(0x80 | (c & 0x3f));
        }
    }
    out.resize(reinterpret_cast<char*>(to) - out.data());
    return out;
}

QString decodeUtf8(QByteArrayView bytes) {
    // A mark at the start would be taken away; here it is a character like any other.
    constexpr QByteArrayView Mark = "\xEF\xBB\xBF";
    if (bytes.startsWith(Mark)) {
        return QChar(QChar::ByteOrderMark) + QString::fromUtf8(bytes.sliced(Mark.size()));
    }
    return QString::fromUtf8(bytes);
}

/// The same with another character for bytes that mean nothing; U+FFFD that the text holds itself stays.
QString decodeUtf8(QByteArrayView bytes, char16_t unknown) {
    constexpr QByteArrayView Genuine = "\xEF\xBF\xBD";
    QString text;
    for (;;) {
        const qsizetype at = bytes.indexOf(Genuine);
        text +=
            decodeUtf8(bytes.first(at < 0 ? bytes.size() : at)).replace(QChar::ReplacementCharacter, unknown);
        if (at < 0) {
            return text;
        }
        text += QChar(QChar::ReplacementCharacter);
        bytes = bytes.sliced(at + Genuine.size());
    }
}

QByteArray findLocaleEncoding() {
    const QByteArray encoding = QByteArray::fromStdString(files::LocaleCodeset());
    return IcuConverter::Knows(encoding) ? encoding : QByteArray("UTF-8");
}

}  // namespace

const QByteArray& LocaleEncoding() {
    static const QByteArray encoding = findLocaleEncoding();
    return encoding;
}

bool IsUtf8Page(int page) {
    return page == Utf8Page || (page <= 0 && LocaleEncoding() == "UTF-8");
}

bool HasCodePage(int page) {
    return IsUtf8Page(page) || IsJapaneseMailPage(page) || SingleBytePage::Of(page) != nullptr ||
           IcuConverter(page).IsOpen() || HasLibraryPage(page);
}

QString DecodeText(QByteArrayView bytes, int page, char16_t unknown) {
    if (IsUtf8Page(page)) {
        return unknown == QChar::ReplacementCharacter ? decodeUtf8(bytes) : decodeUtf8(bytes, unknown);
    }
    if (IsJapaneseMailPage(page)) {
        return DecodeJapaneseMail(bytes, unknown);
    }
    if (const SingleBytePage* single = SingleBytePage::Of(page)) {
        return single->Decode(bytes, unknown);
    }
    if (IcuConverter icu(page); icu.IsOpen()) {
        return icu.Decode(bytes, unknown);
    }
    if (HasLibraryPage(page)) {
        return DecodeByLibrary(bytes, page, unknown);
    }
    QString ascii = QString::fromLatin1(bytes);
    for (QChar& c : ascii) {
        c = c.unicode() < 0x80 ? c : QChar(unknown);
    }
    return ascii;
}

QByteArray EncodeText(QStringView text, int page, char substitute, bool* lossy) {
    if (IsUtf8Page(page)) {
        return encodeUtf8(text);
    }
    bool lost = false;
    QByteArray out;
    if (IsJapaneseMailPage(page)) {
        out = EncodeJapaneseMail(text, page, substitute, lost);
    } else if (const SingleBytePage* single = SingleBytePage::Of(page)) {
        out = single->Encode(text, substitute, lost);
    } else if (IcuConverter icu(page); icu.IsOpen()) {
        out = icu.Encode(text, substitute, lost);
        // ICU begins with the mark for ASCII, in which such a text begins anyway: a declaration stands first.
        if (constexpr QByteArrayView Ascii = "~}"; page == HzPage && out.startsWith(Ascii)) {
            out.remove(0, Ascii.size());
        }
    } else if (HasLibraryPage(page)) {
        out = EncodeByLibrary(text, page, substitute, lost);
    } else {
        for (const QChar c : text) {
            lost = lost || c.unicode() >= 0x80;
            out += c.unicode() < 0x80 ? static_cast<char>(c.unicode()) : substitute;
        }
    }
    if (lossy != nullptr && lost && !CodePageNeedsNoDefault(page)) {
        *lossy = true;
    }
    return out;
}
