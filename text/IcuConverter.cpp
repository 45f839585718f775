// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/IcuConverter.h"

#include "text/CodePage.h"
#include "text/PageTables.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <algorithm>
#include <array>
#include <string>

namespace {

struct Converter {
    int Page;
    const char* Name;
};

// Names under which ICU knows the pages that it does not know as "windows-N" or "ibm-N". The Mac pages of
// East Asia are the national encoding in all that documents use.
constexpr std::array IcuNames = {
    Converter{708, "ASMO-708"},
    Converter{936, "windows-936-2000"},
    Converter{1200, "UTF-16LE"},
    Converter{1201, "UTF-16BE"},
    Converter{10000, "macintosh"},
    Converter{10001, "windows-932"},
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

UConverter* openByName(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(name, &status);
    return U_SUCCESS(status) ? converter : nullptr;
}

UConverter* open(int page) {
    if (page <= 0) {
        return openByName(LocaleEncoding().constData());
    }
    const auto* row = std::find_if(IcuNames.begin(), IcuNames.end(),
                                   [page](const Converter& converter) { return converter.Page == page; });
    if (row != IcuNames.end()) {
        return openByName(row->Name);
    }
    const std::string number = std::to_string(page);
    if (page == 874 || page == 932 || page == 949 || page == 950 || (page >= 1250 && page <= 1258)) {
        return openByName(("windows-" + number).c_str());
    }
    return page < 1200 ? openByName(("ibm-" + number).c_str()) : nullptr;
}

struct Decoding {
    int Page;
    char16_t Unknown;
};

struct Substitution {
    int Page;
    char Character;
    bool Lossy = false;
};

/// Called by ICU for bytes that mean nothing. Its own way gives U+001A for some of them.
void U_CALLCONV replaceBytes(const void* context, UConverterToUnicodeArgs* args, const char* units,
                             int32_t length, UConverterCallbackReason reason, UErrorCode* status) {
    if (reason > UCNV_IRREGULAR) {
        return;
    }
    *status = U_ZERO_ERROR;
    const auto* decoding = static_cast<const Decoding*>(context);
    UChar character = decoding->Unknown;
    for (const PagePlace& place : DifferingPlaces(decoding->Page)) {
        if (length == 1 && place.Bytes == static_cast<unsigned char>(units[0])) {
            character = place.Character;
        }
    }
    ucnv_cbToUWriteUChars(args, &character, 1, 0, status);
}

/// Called by ICU for each character that the page lacks.
void U_CALLCONV substitute(const void* context, UConverterFromUnicodeArgs* args, const UChar*, int32_t,
                           UChar32 character, UConverterCallbackReason reason, UErrorCode* status) {
    if (reason > UCNV_IRREGULAR) {
        return;
    }
    auto* substitution = static_cast<Substitution*>(const_cast<void*>(context));
    *status = U_ZERO_ERROR;
    for (const PagePlace& place : DifferingPlaces(substitution->Page)) {
        if (place.Character == static_cast<char16_t>(character) && character < 0x10000) {
            const char byte = static_cast<char>(place.Bytes);
            ucnv_cbFromUWriteBytes(args, &byte, 1, 0, status);
            return;
        }
    }
    substitution->Lossy = true;
    const auto unit = static_cast<UChar>(substitution->Character);
    const UChar* source = &unit;
    ucnv_cbFromUWriteUChars(args, &source, source + 1, 0, status);
}

/// Each of the three in the place of the next.
QChar rotated(QChar c, const std::array<char16_t, 3>& cycle) {
    for (std::size_t i = 0; i < cycle.size(); ++i) {
        if (c == cycle[i]) {
            return cycle[(i + 1) % cycle.size()];
        }
    }
    return c;
}

}  // namespace

IcuConverter::IcuConverter(int page) : page(page), converter(open(page)) {
    if (IsOpen()) {
        rotatesControls = ucnv_getMinCharSize(converter) == 1 && Decode("\x1a", 0) == u"\x1c";
    }
}

IcuConverter::~IcuConverter() {
    if (IsOpen()) {
        ucnv_close(converter);
    }
}

bool IcuConverter::Knows(const QByteArray& name) {
    UConverter* converter = openByName(name.constData());
    if (converter != nullptr) {
        ucnv_close(converter);
    }
    return converter != nullptr;
}

bool IcuConverter::IsSingleByte() const {
    return ucnv_getType(converter) == UCNV_SBCS;
}

QString IcuConverter::Decode(QByteArrayView bytes, char16_t unknown) {
    const Decoding decoding = {page, unknown};
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter, replaceBytes, &decoding, nullptr, nullptr, &status);
    QString out(bytes.size() + 16, Qt::Uninitialized);
    const char* source = bytes.data();
    const char* sourceEnd = source + bytes.size();
    qsizetype used = 0;
    for (;;) {
        status = U_ZERO_ERROR;
        auto* start = reinterpret_cast<UChar*>(out.data());
        UChar* target = start + used;
        ucnv_toUnicode(converter, &target, start + out.size(), &source, sourceEnd, nullptr, true, &status);
        used = target - start;
        if (status != U_BUFFER_OVERFLOW_ERROR) {
            break;
        }
        out.resize(out.size() * 2);
    }
    out.resize(used);
    if (rotatesControls) {
        for (QChar& c : out) {
            c = rotated(c, {0x1c, 0x1a, 0x7f});
        }
    }
    return out;
}

QByteArray IcuConverter::Encode(QStringView given, char substituteWith, bool& lossy) {
    Substitution substitution{page, substituteWith};
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter, substitute, &substitution, nullptr, nullptr, &status);
    QString text;
    if (rotatesControls) {
        text = given.toString();
        for (QChar& c : text) {
            c = rotated(c, {0x7f, 0x1a, 0x1c});
        }
        given = text;
    }
    QByteArray out(given.size() * 2 + 16, Qt::Uninitialized);
    const auto* source = reinterpret_cast<const UChar*>(given.utf16());
    const UChar* sourceEnd = source + given.size();
    qsizetype used = 0;
    for (;;) {
        status = U_ZERO_ERROR;
        char* target = out.data() + used;
        ucnv_fromUnicode(converter, &target, out.data() + out.size(), &source, sourceEnd, nullptr, true,
                         &status);
        used = target - out.data();
        if (status != U_BUFFER_OVERFLOW_ERROR) {
            break;
        }
        out.resize(out.size() * 2);
    }
    out.resize(used);
    lossy = lossy || substitution.Lossy;
    return out;
}
