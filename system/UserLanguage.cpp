// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/UserLanguage.h"

#include <langinfo.h>
#include <algorithm>
#include <array>
#include <clocale>
#include <cstdlib>
#include <string_view>

namespace files {
namespace {

struct Row {
    std::string_view Language;
    int Page;
};

// clang-format off
constexpr std::array<Row, 43> Rows = {{
    {"ar", 1256}, {"az", 1254}, {"be", 1251}, {"bg", 1251}, {"bs", 1250}, {"cs", 1250}, {"el", 1253},
    {"et", 1257}, {"fa", 1256}, {"he", 1255}, {"hr", 1250}, {"hu", 1250}, {"iw", 1255}, {"ja", 932},
    {"kk", 1251}, {"ko", 949},  {"ky", 1251}, {"lt", 1257}, {"lv", 1257}, {"mk", 1251}, {"mn", 1251},
    {"pl", 1250}, {"ps", 1256}, {"ro", 1250}, {"ru", 1251}, {"sh", 1250}, {"sk", 1250}, {"sl", 1250},
    {"sq", 1250}, {"sr", 1251}, {"tg", 1251}, {"th", 874},  {"tk", 1250}, {"tr", 1254}, {"tt", 1251},
    {"ug", 1256}, {"uk", 1251}, {"ur", 1256}, {"uz", 1254}, {"vi", 1258}, {"yi", 1255}, {"ckb", 1256},
    {"hsb", 1250},
}};
// clang-format on

bool namesNoLanguage(const std::string& name) {
    return name.empty() || name == "POSIX" || name == "C" || name.starts_with("C.");
}

}  // namespace

std::string LocaleName() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        if (const char* value = std::getenv(variable); value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

std::string LocaleCodeset() {
    const std::string name = LocaleName();
    std::string codeset;
    if (const locale_t locale = ::newlocale(LC_CTYPE_MASK, name.c_str(), nullptr)) {
        codeset = ::nl_langinfo_l(CODESET, locale);
        ::freelocale(locale);
    } else if (const std::size_t dot = name.find('.'); dot != std::string::npos) {
        codeset = name.substr(dot + 1, name.find('@') - dot - 1);
    }
    std::string compact;
    for (const char c : codeset) {
        if (c != '-') {
            compact += static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
        }
    }
    return compact.empty() || compact == "UTF8" || compact.starts_with("ANSI_X3.4") ? "UTF-8" : codeset;
}

int LanguagePage() {
    std::string name = LocaleName();
    const char* languages = std::getenv("LANGUAGE");
    if (languages != nullptr && namesNoLanguage(name)) {
        name = languages;
        name.erase(std::min(name.find(':'), name.size()));
    }
    const std::string language = name.substr(0, name.find_first_of("_.@"));
    // Some languages are written in two scripts, and the page goes by the script.
    const bool isLatin = name.find("@latin") != std::string::npos;
    const bool isCyrillic = name.find("@cyrillic") != std::string::npos;
    if (language == "zh") {
        const bool isTraditional = name.find("_TW") != std::string::npos ||
                                   name.find("_HK") != std::string::npos ||
                                   name.find("_MO") != std::string::npos;
        return isTraditional ? 950 : 936;
    }
    const auto* row =
        std::find_if(Rows.begin(), Rows.end(), [&](const Row& r) { return r.Language == language; });
    const int page = row != Rows.end() ? row->Page : 1252;
    return isLatin && page == 1251 ? 1250 : isCyrillic ? 1251 : page;
}

}  // namespace files
