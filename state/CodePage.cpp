// Conversion by code page. UTF-8 goes by hand, since every state file passes here several times per drawing;
// the other pages go through ICU, and a few that ICU does not carry through the C library.
#include "state/CodePage.h"

#include <iconv.h>
#include <langinfo.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <algorithm>
#include <array>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

struct Converter {
    int Page;
    const char* Name;
};

// Names under which ICU knows the pages that it does not know as "windows-N" or "ibm-N". The Mac pages of
// East Asia are the national encoding in all that documents use.
constexpr std::array icuNames = {
    Converter{708, "ASMO-708"},
    Converter{936, "windows-936-2000"},
    Converter{1200, "UTF-16LE"},
    Converter{1201, "UTF-16BE"},
    Converter{10000, "macintosh"},
    Converter{10001, "Shift_JIS"},
    Converter{10002, "Big5"},
    Converter{10003, "EUC-KR"},
    Converter{10006, "x-mac-greek"},
    Converter{10007, "x-mac-cyrillic"},
    Converter{10008, "EUC-CN"},
    Converter{10017, "x-mac-cyrillic"},
    Converter{10021, "TIS-620"},
    Converter{10029, "x-mac-ce"},
    Converter{10081, "x-mac-turkish"},
    Converter{12000, "UTF-32LE"},
    Converter{12001, "UTF-32BE"},
    Converter{20000, "EUC-TW"},
    Converter{20002, "Big5"},
    Converter{20105, "US-ASCII"},
    Converter{20127, "US-ASCII"},
    Converter{20866, "KOI8-R"},
    Converter{20932, "EUC-JP"},
    Converter{20936, "EUC-CN"},
    Converter{20949, "EUC-KR"},
    Converter{21866, "KOI8-U"},
    Converter{28591, "ISO-8859-1"},
    Converter{28592, "ISO-8859-2"},
    Converter{28593, "ISO-8859-3"},
    Converter{28594, "ISO-8859-4"},
    Converter{28595, "ISO-8859-5"},
    Converter{28596, "ISO-8859-6"},
    Converter{28597, "ISO-8859-7"},
    Converter{28598, "ISO-8859-8"},
    Converter{28599, "ISO-8859-9"},
    Converter{28603, "ISO-8859-13"},
    Converter{28605, "ISO-8859-15"},
    Converter{38598, "ISO-8859-8"},
    Converter{50220, "ISO_2022,locale=ja,version=0"},
    Converter{50221, "ISO_2022,locale=ja,version=3"},
    Converter{50222, "ISO_2022,locale=ja,version=3"},
    Converter{50225, "ISO-2022-KR"},
    Converter{50227, "ISO-2022-CN"},
    Converter{51932, "EUC-JP"},
    Converter{51936, "EUC-CN"},
    Converter{51949, "EUC-KR"},
    Converter{52936, "HZ"},
    Converter{54936, "gb18030"},
    Converter{57002, "ISCII,version=0"},
    Converter{57003, "ISCII,version=1"},
    Converter{57004, "ISCII,version=5"},
    Converter{57005, "ISCII,version=6"},
    Converter{57006, "ISCII,version=1"},
    Converter{57007, "ISCII,version=4"},
    Converter{57008, "ISCII,version=7"},
    Converter{57009, "ISCII,version=8"},
    Converter{57010, "ISCII,version=3"},
    Converter{57011, "ISCII,version=2"},
    Converter{65000, "UTF-7"},
};

constexpr std::array libraryNames = {
    Converter{154, "PT154"},       Converter{1361, "JOHAB"},         Converter{10079, "MAC-IS"},
    Converter{20106, "DIN_66003"}, Converter{20107, "SEN_850200_B"}, Converter{20108, "NS_4551-1"},
    Converter{20261, "T.61-8BIT"}, Converter{20269, "ISO_6937"},
};

template <std::size_t N>
const char* nameIn(const std::array<Converter, N>& table, int page) {
    for (const Converter& row : table)
        if (row.Page == page)
            return row.Name;
    return nullptr;
}

struct CloseIcu {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using IcuConverter = std::unique_ptr<UConverter, CloseIcu>;

IcuConverter openIcuByName(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    IcuConverter converter(ucnv_open(name, &status));
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

IcuConverter openIcu(int page) {
    if (page <= 0)
        return openIcuByName(LocaleEncoding().constData());
    if (const char* name = nameIn(icuNames, page))
        return openIcuByName(name);
    const std::string number = std::to_string(page);
    if (page == 874 || page == 932 || page == 949 || page == 950 || (page >= 1250 && page <= 1258))
        return openIcuByName(("windows-" + number).c_str());
    return page < 1200 ? openIcuByName(("ibm-" + number).c_str()) : nullptr;
}

struct Substitution {
    char Character;
    bool Lossy = false;
};

/// Called by ICU for each character that the page lacks.
void U_CALLCONV substitute(const void* context, UConverterFromUnicodeArgs* args, const UChar*, int32_t,
                           UChar32, UConverterCallbackReason reason, UErrorCode* status) {
    if (reason > UCNV_IRREGULAR)
        return;
    auto* substitution = static_cast<Substitution*>(const_cast<void*>(context));
    substitution->Lossy = true;
    *status = U_ZERO_ERROR;
    const auto unit = static_cast<UChar>(substitution->Character);
    const UChar* source = &unit;
    ucnv_cbFromUWriteUChars(args, &source, source + 1, 0, status);
}

/// Called by ICU for bytes that mean nothing. Its own way gives U+001A for some of them.
void U_CALLCONV replaceBytes(const void*, UConverterToUnicodeArgs* args, const char*, int32_t,
                             UConverterCallbackReason reason, UErrorCode* status) {
    if (reason > UCNV_IRREGULAR)
        return;
    *status = U_ZERO_ERROR;
    const UChar unknown = QChar::ReplacementCharacter;
    ucnv_cbToUWriteUChars(args, &unknown, 1, 0, status);
}

QString decodeIcu(UConverter* converter, QByteArrayView bytes) {
    UErrorCode set = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter, replaceBytes, nullptr, nullptr, nullptr, &set);
    QString out(bytes.size() + 16, Qt::Uninitialized);
    const char* source = bytes.data();
    const char* sourceEnd = source + bytes.size();
    qsizetype used = 0;
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        auto* start = reinterpret_cast<UChar*>(out.data());
        UChar* target = start + used;
        ucnv_toUnicode(converter, &target, start + out.size(), &source, sourceEnd, nullptr, true, &status);
        used = target - start;
        if (status != U_BUFFER_OVERFLOW_ERROR)
            break;
        out.resize(out.size() * 2);
    }
    out.resize(used);
    return out;
}

QByteArray encodeIcu(UConverter* converter, QStringView text, Substitution& substitution) {
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter, substitute, &substitution, nullptr, nullptr, &status);
    QByteArray out(text.size() * 2 + 16, Qt::Uninitialized);
    const auto* source = reinterpret_cast<const UChar*>(text.utf16());
    const UChar* sourceEnd = source + text.size();
    qsizetype used = 0;
    for (;;) {
        status = U_ZERO_ERROR;
        char* target = out.data() + used;
        ucnv_fromUnicode(converter, &target, out.data() + out.size(), &source, sourceEnd, nullptr, true,
                         &status);
        used = target - out.data();
        if (status != U_BUFFER_OVERFLOW_ERROR)
            break;
        out.resize(out.size() * 2);
    }
    out.resize(used);
    return out;
}

class LibraryConverter {
  public:
    LibraryConverter(const char* to, const char* from) : handle(iconv_open(to, from)) {}
    LibraryConverter(const LibraryConverter&) = delete;
    LibraryConverter& operator=(const LibraryConverter&) = delete;
    ~LibraryConverter() {
        if (IsOpen())
            iconv_close(handle);
    }
    // The error value is the interface's own: a number for a pointer.
    bool IsOpen() const {
        return handle != reinterpret_cast<iconv_t>(-1);  // NOLINT(performance-no-int-to-ptr)
    }

    /// Converts all; fallback is called for what cannot be, and tells how many bytes of it to pass over.
    template <class Fallback>
    QByteArray Run(QByteArrayView bytes, Fallback fallback) {
        QByteArray out(bytes.size() * 4 + 64, Qt::Uninitialized);
        char* source = const_cast<char*>(bytes.data());
        std::size_t left = std::size_t(bytes.size());
        char* target = out.data();
        std::size_t room = std::size_t(out.size());
        while (iconv(handle, &source, &left, &target, &room) == std::size_t(-1)) {
            if (errno == E2BIG) {
                const qsizetype used = target - out.data();
                out.resize(out.size() * 2);
                target = out.data() + used;
                room = std::size_t(out.size() - used);
                continue;
            }
            const std::size_t passed = std::min(left, fallback(source, target, room));
            source += passed;
            left -= passed;
            if (left == 0)
                break;
        }
        iconv(handle, nullptr, nullptr, &target, &room);
        out.resize(target - out.data());
        return out;
    }

  private:
    iconv_t handle;
};

QByteArray encodeUtf8(QStringView text) {
    QByteArray out(text.size() * 3, Qt::Uninitialized);
    auto* to = reinterpret_cast<unsigned char*>(out.data());
    const char16_t* from = text.utf16();
    const char16_t* end = from + text.size();
    while (from != end) {
        constexpr std::ptrdiff_t block = 16;
        while (end - from >= block) {
            char16_t all = 0;
            for (std::ptrdiff_t i = 0; i < block; ++i)
                all |= from[i];
            if (all >= 0x80)
                break;
            for (std::ptrdiff_t i = 0; i < block; ++i)
                to[i] = static_cast<unsigned char>(from[i]);
            from += block;
            to += block;
        }
        for (std::ptrdiff_t left = std::min(block, end - from); left > 0 && from != end; --left) {
            char32_t c = *from++;
            if (c < 0x80) {
                *to++ = static_cast<unsigned char>(c);
                continue;
            }
            if (QChar::isHighSurrogate(c) && from != end && QChar::isLowSurrogate(*from))
                c = QChar::surrogateToUcs4(static_cast<char16_t>(c), *from++);
            else if (QChar::isSurrogate(c))
                c = QChar::ReplacementCharacter;
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
    constexpr QByteArrayView mark = "\xEF\xBB\xBF";
    if (bytes.startsWith(mark))
        return QChar(QChar::ByteOrderMark) + QString::fromUtf8(bytes.sliced(mark.size()));
    return QString::fromUtf8(bytes);
}

QByteArray findLocaleEncoding() {
    QByteArray named;
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        named = qgetenv(variable);
        if (!named.isEmpty())
            break;
    }
    QByteArray encoding;
    if (const locale_t locale = newlocale(LC_CTYPE_MASK, named.constData(), nullptr)) {
        encoding = nl_langinfo_l(CODESET, locale);
        freelocale(locale);
    } else if (const qsizetype dot = named.indexOf('.'); dot >= 0) {
        const qsizetype at = named.indexOf('@');
        encoding = named.sliced(dot + 1, (at < 0 ? named.size() : at) - dot - 1);
    }
    const QByteArray compact = encoding.toUpper().replace("-", "");
    if (compact.isEmpty() || compact == "UTF8" || compact.startsWith("ANSI_X3.4") || !openIcuByName(encoding))
        return "UTF-8";
    return encoding;
}

}  // namespace

const QByteArray& LocaleEncoding() {
    static const QByteArray encoding = findLocaleEncoding();
    return encoding;
}

bool IsUtf8Page(int page) {
    return page == Utf8Page || (page <= 0 && LocaleEncoding() == "UTF-8");
}

QString DecodeText(QByteArrayView bytes, int page) {
    if (IsUtf8Page(page))
        return decodeUtf8(bytes);
    if (const IcuConverter converter = openIcu(page))
        return decodeIcu(converter.get(), bytes);
    if (const char* name = nameIn(libraryNames, page)) {
        LibraryConverter converter("UTF-16LE", name);
        if (converter.IsOpen()) {
            const QByteArray units = converter.Run(bytes, [](const char*, char*& target, std::size_t& room) {
                constexpr std::array<char, 2> unknown = {char(0xfd), char(0xff)};
                if (room >= unknown.size()) {
                    std::memcpy(target, unknown.data(), unknown.size());
                    target += unknown.size();
                    room -= unknown.size();
                }
                return std::size_t{1};
            });
            return QString(reinterpret_cast<const QChar*>(units.constData()), units.size() / 2);
        }
    }
    return DecodeText(bytes, LocalePage);
}

QByteArray EncodeText(QStringView text, int page, char substituteWith, bool* lossy) {
    if (IsUtf8Page(page))
        return encodeUtf8(text);
    Substitution substitution{substituteWith};
    QByteArray out;
    if (const IcuConverter converter = openIcu(page)) {
        out = encodeIcu(converter.get(), text, substitution);
    } else {
        const char* name = nameIn(libraryNames, page);
        LibraryConverter library(name != nullptr ? name : "", "UTF-16LE");
        if (name == nullptr || !library.IsOpen())
            return EncodeText(text, LocalePage, substituteWith, lossy);
        const QByteArrayView units(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
        out = library.Run(units, [&](const char* source, char*& target, std::size_t& room) {
            substitution.Lossy = true;
            if (room > 0) {
                *target++ = substitution.Character;
                --room;
            }
            char16_t unit = 0;
            std::memcpy(&unit, source, sizeof unit);
            return std::size_t{QChar::isHighSurrogate(unit) ? 4u : 2u};
        });
    }
    if (lossy != nullptr && substitution.Lossy && !CodePageNeedsNoDefault(page))
        *lossy = true;
    return out;
}
