// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/Entities.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace {

struct EntityRow {
    std::string_view Name;
    std::uint16_t Code;
};

// The 252 character entities of HTML 4 and "apos", in small letters and sorted; of a pair that differs in
// case alone the capital form stands first.
// clang-format off
constexpr std::array<EntityRow, 253> EntityRows = {{
    {"aacute", 193}, {"aacute", 225}, {"acirc", 194}, {"acirc", 226}, {"acute", 180}, {"aelig", 198},
    {"aelig", 230}, {"agrave", 192}, {"agrave", 224}, {"alefsym", 8501}, {"alpha", 913}, {"alpha", 945},
    {"amp", 38}, {"and", 8743}, {"ang", 8736}, {"apos", 39}, {"aring", 197}, {"aring", 229},
    {"asymp", 8776}, {"atilde", 195}, {"atilde", 227}, {"auml", 196}, {"auml", 228}, {"bdquo", 8222},
    {"beta", 914}, {"beta", 946}, {"brvbar", 166}, {"bull", 8226}, {"cap", 8745}, {"ccedil", 199},
    {"ccedil", 231}, {"cedil", 184}, {"cent", 162}, {"chi", 935}, {"chi", 967}, {"circ", 710},
    {"clubs", 9827}, {"cong", 8773}, {"copy", 169}, {"crarr", 8629}, {"cup", 8746}, {"curren", 164},
    {"dagger", 8225}, {"dagger", 8224}, {"darr", 8659}, {"darr", 8595}, {"deg", 176}, {"delta", 916},
    {"delta", 948}, {"diams", 9830}, {"divide", 247}, {"eacute", 201}, {"eacute", 233}, {"ecirc", 202},
    {"ecirc", 234}, {"egrave", 200}, {"egrave", 232}, {"empty", 8709}, {"emsp", 8195}, {"ensp", 8194},
    {"epsilon", 917}, {"epsilon", 949}, {"equiv", 8801}, {"eta", 919}, {"eta", 951}, {"eth", 208},
    {"eth", 240}, {"euml", 203}, {"euml", 235}, {"euro", 8364}, {"exist", 8707}, {"fnof", 402},
    {"forall", 8704}, {"frac12", 189}, {"frac14", 188}, {"frac34", 190}, {"frasl", 8260}, {"gamma", 915},
    {"gamma", 947}, {"ge", 8805}, {"gt", 62}, {"harr", 8660}, {"harr", 8596}, {"hearts", 9829},
    {"hellip", 8230}, {"iacute", 205}, {"iacute", 237}, {"icirc", 206}, {"icirc", 238}, {"iexcl", 161},
    {"igrave", 204}, {"igrave", 236}, {"image", 8465}, {"infin", 8734}, {"int", 8747}, {"iota", 921},
    {"iota", 953}, {"iquest", 191}, {"isin", 8712}, {"iuml", 207}, {"iuml", 239}, {"kappa", 922},
    {"kappa", 954}, {"lambda", 923}, {"lambda", 955}, {"lang", 9001}, {"laquo", 171}, {"larr", 8656},
    {"larr", 8592}, {"lceil", 8968}, {"ldquo", 8220}, {"le", 8804}, {"lfloor", 8970}, {"lowast", 8727},
    {"loz", 9674}, {"lrm", 8206}, {"lsaquo", 8249}, {"lsquo", 8216}, {"lt", 60}, {"macr", 175},
    {"mdash", 8212}, {"micro", 181}, {"middot", 183}, {"minus", 8722}, {"mu", 924}, {"mu", 956},
    {"nabla", 8711}, {"nbsp", 160}, {"ndash", 8211}, {"ne", 8800}, {"ni", 8715}, {"not", 172},
    {"notin", 8713}, {"nsub", 8836}, {"ntilde", 209}, {"ntilde", 241}, {"nu", 925}, {"nu", 957},
    {"oacute", 211}, {"oacute", 243}, {"ocirc", 212}, {"ocirc", 244}, {"oelig", 338}, {"oelig", 339},
    {"ograve", 210}, {"ograve", 242}, {"oline", 8254}, {"omega", 937}, {"omega", 969}, {"omicron", 927},
    {"omicron", 959}, {"oplus", 8853}, {"or", 8744}, {"ordf", 170}, {"ordm", 186}, {"oslash", 216},
    {"oslash", 248}, {"otilde", 213}, {"otilde", 245}, {"otimes", 8855}, {"ouml", 214}, {"ouml", 246},
    {"para", 182}, {"part", 8706}, {"permil", 8240}, {"perp", 8869}, {"phi", 934}, {"phi", 966},
    {"pi", 928}, {"pi", 960}, {"piv", 982}, {"plusmn", 177}, {"pound", 163}, {"prime", 8243},
    {"prime", 8242}, {"prod", 8719}, {"prop", 8733}, {"psi", 936}, {"psi", 968}, {"quot", 34},
    {"radic", 8730}, {"rang", 9002}, {"raquo", 187}, {"rarr", 8658}, {"rarr", 8594}, {"rceil", 8969},
    {"rdquo", 8221}, {"real", 8476}, {"reg", 174}, {"rfloor", 8971}, {"rho", 929}, {"rho", 961},
    {"rlm", 8207}, {"rsaquo", 8250}, {"rsquo", 8217}, {"sbquo", 8218}, {"scaron", 352}, {"scaron", 353},
    {"sdot", 8901}, {"sect", 167}, {"shy", 173}, {"sigma", 931}, {"sigma", 963}, {"sigmaf", 962},
    {"sim", 8764}, {"spades", 9824}, {"sub", 8834}, {"sube", 8838}, {"sum", 8721}, {"sup", 8835},
    {"sup1", 185}, {"sup2", 178}, {"sup3", 179}, {"supe", 8839}, {"szlig", 223}, {"tau", 932}, {"tau", 964},
    {"there4", 8756}, {"theta", 920}, {"theta", 952}, {"thetasym", 977}, {"thinsp", 8201}, {"thorn", 222},
    {"thorn", 254}, {"tilde", 732}, {"times", 215}, {"trade", 8482}, {"uacute", 218}, {"uacute", 250},
    {"uarr", 8657}, {"uarr", 8593}, {"ucirc", 219}, {"ucirc", 251}, {"ugrave", 217}, {"ugrave", 249},
    {"uml", 168}, {"upsih", 978}, {"upsilon", 933}, {"upsilon", 965}, {"uuml", 220}, {"uuml", 252},
    {"weierp", 8472}, {"xi", 926}, {"xi", 958}, {"yacute", 221}, {"yacute", 253}, {"yen", 165},
    {"yuml", 376}, {"yuml", 255}, {"zeta", 918}, {"zeta", 950}, {"zwj", 8205}, {"zwnj", 8204},
}};
// clang-format on

/// Code of an entity's name in small letters, 0 when there is none.
char32_t entityCode(std::string_view name) {
    const auto row =
        std::lower_bound(EntityRows.begin(), EntityRows.end(), name,
                         [](const EntityRow& left, std::string_view right) { return left.Name < right; });
    return row != EntityRows.end() && row->Name == name ? row->Code : 0;
}

/// Code of the number behind "#", 0 when it is none.
char32_t numberCode(std::string_view digits) {
    unsigned base = 10;
    if (!digits.empty() && digits[0] == 'x') {
        base = 16;
        digits.remove_prefix(1);
    }
    char32_t code = 0;
    for (const char c : digits) {
        unsigned digit = 99;
        if (c >= '0' && c <= '9') {
            digit = unsigned(c - '0');
        } else if (c >= 'a' && c <= 'f') {
            digit = unsigned(c - 'a') + 10;
        }
        if (digit >= base) {
            return 0;
        }
        code = code * base + digit;
        if (code > 0x10ffff) {
            return 0;
        }
    }
    return code;
}

constexpr std::uint64_t bit(char16_t c) {
    return std::uint64_t{1} << c;
}
// All characters to escape lie below 64.
constexpr std::uint64_t TextSpecials = bit(u'<') | bit(u'&') | bit(u'>');
constexpr std::uint64_t AttributeSpecials = TextSpecials | bit(u'\'') | bit(u'"');

QStringView escapeOf(char16_t c) {
    switch (c) {
        case u'<':
            return u"&lt;";
        case u'&':
            return u"&amp;";
        case u'>':
            return u"&gt;";
        case u'\'':
            return u"&apos;";
        default:
            return u"&quot;";
    }
}

void appendEscaped(MarkupBuffer& out, QStringView text, std::uint64_t specials) {
    const char16_t* units = text.utf16();
    qsizetype done = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (units[i] >= 64 || !(specials >> units[i] & 1)) {
            continue;
        }
        out.Append(text.sliced(done, i - done));
        out.Append(escapeOf(units[i]));
        done = i + 1;
    }
    out.Append(text.sliced(done));
}

}  // namespace

void MarkupBuffer::grow(qsizetype wanted) {
    capacity = wanted + wanted / 2;
    auto larger = std::make_unique<char16_t[]>(std::size_t(capacity));
    std::memcpy(larger.get(), units, std::size_t(size) * sizeof(char16_t));
    heap = std::move(larger);
    units = heap.get();
}

void AppendEscapedText(MarkupBuffer& out, QStringView text) {
    appendEscaped(out, text, TextSpecials);
}

void AppendEscapedAttribute(MarkupBuffer& out, QStringView value) {
    appendEscaped(out, value, AttributeSpecials);
}

QString UnescapeMarkup(QStringView text) {
    qsizetype at = text.indexOf(u'&');
    if (at < 0) {
        return text.toString();
    }
    QString out;
    out.reserve(text.size());
    qsizetype done = 0;
    for (; at >= 0; at = text.indexOf(u'&', at)) {
        constexpr qsizetype LongestName = 9;
        std::array<char, LongestName> name{};
        std::size_t length = 0;
        qsizetype end = at + 1;
        for (; end < text.size() && end <= at + LongestName; ++end) {
            const char16_t c = text[end].unicode();
            if (c == u';' || c >= 128) {
                break;
            }
            name[length++] = static_cast<char>(c >= u'A' && c <= u'Z' ? c + 32 : c);
        }
        char32_t code = 0;
        if (end < text.size() && text[end] == u';') {
            const std::string_view found(name.data(), length);
            code = found.starts_with('#') ? numberCode(found.substr(1)) : entityCode(found);
        }
        if (code == 0) {
            ++at;
            continue;
        }
        out.append(text.sliced(done, at - done));
        if (code > 0xffff) {
            out.append(QChar::highSurrogate(code)).append(QChar::lowSurrogate(code));
        } else {
            out.append(QChar(static_cast<char16_t>(code)));
        }
        at = done = end + 1;
    }
    out.append(text.sliced(done));
    return out;
}
