#include "app/LispText.h"

std::string LispString(std::string_view text) {
    std::string literal = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            literal += '\\';
            literal += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            literal += '\\';
            literal += static_cast<char>('0' + (byte >> 6));
            literal += static_cast<char>('0' + ((byte >> 3) & 7));
            literal += static_cast<char>('0' + (byte & 7));
        } else {
            literal += c;
        }
    }
    literal += '"';
    return literal;
}

std::string LispRunList(const std::vector<std::string>& paths) {
    std::string call = "(C:Tarnel (list";
    for (const std::string& path : paths) {
        call += '\n';
        call += LispString(path);
    }
    call += "))\n";
    return call;
}
