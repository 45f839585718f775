// SPDX-License-Identifier: GPL-3.0-or-later
// Text for the command line and patterns.

#include <cstdarg>
#include <cstdio>

#include "acutads.h"
#include "drafthost/api/ApiHost.h"
#include "drafthost/lisp/WildcardMatch.h"

using namespace drafthost;

namespace {

/// One conversion as C writes it, with the value that its letters ask for.
template <class T>
std::string converted(const std::string& conversion, T value) {
    char small[256];
    const int length = std::snprintf(small, sizeof small, conversion.c_str(), value);
    if (length < int(sizeof small)) {
        return std::string(small, std::size_t(std::max(length, 0)));
    }
    std::string large(std::size_t(length) + 1, '\0');
    std::snprintf(large.data(), large.size(), conversion.c_str(), value);
    large.pop_back();
    return large;
}

std::string formatted(const std::string& format, va_list& arguments) {
    std::string text;
    std::size_t at = 0;
    while (at < format.size()) {
        const std::size_t mark = format.find('%', at);
        text.append(format, at, mark == std::string::npos ? mark : mark - at);
        if (mark == std::string::npos) {
            break;
        }
        std::string conversion = "%";
        std::size_t end = mark + 1;
        int longs = 0;
        while (end < format.size() &&
               std::string("-+ #0123456789.*").find(format[end]) != std::string::npos) {
            conversion +=
                format[end] == '*' ? std::to_string(va_arg(arguments, int)) : std::string(1, format[end]);
            ++end;
        }
        while (end < format.size() && (format[end] == 'l' || format[end] == 'h' || format[end] == 'z')) {
            longs += format[end] != 'h';
            ++end;
        }
        if (end >= format.size()) {
            text += conversion;
            break;
        }
        const char letter = format[end];
        at = end + 1;
        switch (letter) {
            case 'd':
            case 'i':
                text += longs ? converted(conversion + "ld", va_arg(arguments, long))
                              : converted(conversion + "d", va_arg(arguments, int));
                break;
            case 'u':
            case 'x':
            case 'X':
            case 'o':
                text += longs ? converted(conversion + "l" + letter, va_arg(arguments, unsigned long))
                              : converted(conversion + letter, va_arg(arguments, unsigned));
                break;
            case 'e':
            case 'E':
            case 'f':
            case 'g':
            case 'G':
                text += converted(conversion + letter, va_arg(arguments, double));
                break;
            case 'c': {
                const char16_t unit[2] = {char16_t(va_arg(arguments, int)), 0};
                text += converted(conversion + "s", toUtf8(unit).c_str());
                break;
            }
            case 's':
                text += converted(conversion + "s", toUtf8(va_arg(arguments, const ACHAR*)).c_str());
                break;
            case 'p':
                text += converted(conversion + "p", va_arg(arguments, void*));
                break;
            case '%':
                text += '%';
                break;
            default:
                text += conversion + letter;
                break;
        }
    }
    return text;
}

}  // namespace

int acutPrintf(const ACHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string text = formatted(toUtf8(format), arguments);
    va_end(arguments);
    apiHost().print(text);
    return RTNORM;
}

int acutWcMatch(const ACHAR* text, const ACHAR* pattern) {
    return lisp::wildcardMatch(toUtf8(text), toUtf8(pattern)) ? RTNORM : RTERROR;
}

bool acutWcMatchEx(const ACHAR* text, const ACHAR* pattern, bool ignoreCase) {
    return lisp::wildcardMatch(toUtf8(text), toUtf8(pattern), ignoreCase);
}
