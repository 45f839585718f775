// SPDX-License-Identifier: GPL-3.0-or-later
#include "script/ScriptLexer.h"

#include "script/ScriptKeywords.h"

#include <algorithm>
#include <string>
#include <unordered_set>

namespace {

constexpr std::size_t LongestWord = 99;

bool isLineEnd(char c) {
    return c == '\r' || c == '\n';
}

bool isOperator(char c) {
    return c == '\'' || c == '(' || c == ')' || c == '!';
}

bool isWordCharacter(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 128 && c != ';' && c != ' ' && (byte < 9 || byte > 13) && c != '"' && !isOperator(c);
}

std::unordered_set<std::string_view> wordsOf(std::string_view list) {
    std::unordered_set<std::string_view> words;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(' '), list.size());
        words.insert(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return words;
}

ScriptStyle classify(std::string_view word) {
    static const std::unordered_set<std::string_view> vocabulary = wordsOf(ScriptKeywords(0));
    static const std::unordered_set<std::string_view> variables = wordsOf(ScriptKeywords(1));
    word = word.substr(0, LongestWord);
    if (word.find_first_not_of("0123456789.") == std::string_view::npos) {
        return ScriptStyle::Number;
    }
    std::string lower(word);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    if (vocabulary.contains(lower)) {
        return ScriptStyle::Keyword;
    }
    return variables.contains(lower) ? ScriptStyle::Variable : ScriptStyle::Identifier;
}

class Lexer {
  public:
    Lexer(std::string_view text, std::size_t start, std::span<ScriptStyle> styles)
        : text(text), start(start), styles(styles) {}

    void Run(std::size_t end, ScriptStyle before) {
        // A string may go on over the end of a line; nothing else does.
        ScriptStyle state = before == ScriptStyle::String ? ScriptStyle::String : ScriptStyle::Default;
        for (std::size_t at = start; at < end;) {
            switch (state) {
                case ScriptStyle::Comment:
                case ScriptStyle::StringEol:
                    state = toLineEnd(at, state);
                    break;
                case ScriptStyle::String:
                    state = inString(at, end);
                    break;
                default:
                    state = inDefault(at, end);
            }
        }
    }

  private:
    char byteAt(std::size_t at) const { return at < text.size() ? text[at] : ' '; }
    void put(std::size_t at, ScriptStyle style) { styles[at - start] = style; }

    ScriptStyle toLineEnd(std::size_t& at, ScriptStyle state) {
        const bool ends = EndsLine(text, at);
        put(at++, ends ? ScriptStyle::Default : state);
        return ends ? ScriptStyle::Default : state;
    }

    ScriptStyle inString(std::size_t& at, std::size_t end) {
        const char c = text[at];
        const char next = byteAt(at + 1);
        if (c == '\\' && (next == '"' || next == '\'' || next == '\\')) {
            put(at++, ScriptStyle::String);
            if (at < end) {
                put(at++, ScriptStyle::String);
            }
            return ScriptStyle::String;
        }
        if (c != '"' && at + 1 < text.size() && isLineEnd(next) && (at == 0 || text[at - 1] != '\\')) {
            // The byte itself may be the line's last.
            return toLineEnd(at, ScriptStyle::StringEol);
        }
        put(at++, ScriptStyle::String);
        return c == '"' ? ScriptStyle::Default : ScriptStyle::String;
    }

    ScriptStyle inDefault(std::size_t& at, std::size_t end) {
        const char c = text[at];
        if (isWordCharacter(c)) {
            word(at, end);
            return ScriptStyle::Default;
        }
        const ScriptStyle style = c == ';'        ? ScriptStyle::Comment
                                  : c == '"'      ? ScriptStyle::String
                                  : isOperator(c) ? ScriptStyle::Operator
                                                  : ScriptStyle::Default;
        put(at++, style);
        return style == ScriptStyle::Operator ? ScriptStyle::Default : style;
    }

    // With the byte behind it, which is nothing but an operator or what ended the word.
    void word(std::size_t& at, std::size_t end) {
        std::size_t behind = at;
        while (behind < end && isWordCharacter(text[behind])) {
            ++behind;
        }
        const ScriptStyle style = classify(text.substr(at, behind - at));
        while (at < behind) {
            put(at++, style);
        }
        if (at < end) {
            put(at, isOperator(text[at]) ? ScriptStyle::Operator : ScriptStyle::Default);
            ++at;
        }
    }

    std::string_view text;
    std::size_t start;
    std::span<ScriptStyle> styles;
};

}  // namespace

bool EndsLine(std::string_view text, std::size_t at) {
    return text[at] == '\n' || (text[at] == '\r' && (at + 1 >= text.size() || text[at + 1] != '\n'));
}

void LexScript(std::string_view text, std::size_t start, std::size_t end, ScriptStyle before,
               std::span<ScriptStyle> styles) {
    Lexer(text, start, styles).Run(end, before);
}
