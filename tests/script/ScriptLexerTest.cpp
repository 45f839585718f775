// SPDX-License-Identifier: GPL-3.0-or-later
// What the bytes of scripts are told to be, and that it does not matter where the telling begins.
#include "script/ScriptKeywords.h"
#include "script/ScriptLexer.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

std::vector<ScriptStyle> lex(std::string_view text) {
    std::vector<ScriptStyle> styles(text.size(), ScriptStyle(99));
    LexScript(text, 0, text.size(), ScriptStyle::Default, styles);
    return styles;
}

/// A letter for each byte: . default, c comment, 2 number, k keyword, v variable, s string, e its unclosed
/// end, i identifier, o operator.
std::string letters(std::string_view text) {
    std::string all;
    for (const ScriptStyle style : lex(text)) {
        switch (style) {
            case ScriptStyle::Default:
                all += '.';
                break;
            case ScriptStyle::Comment:
                all += 'c';
                break;
            case ScriptStyle::Number:
                all += '2';
                break;
            case ScriptStyle::Keyword:
                all += 'k';
                break;
            case ScriptStyle::Variable:
                all += 'v';
                break;
            case ScriptStyle::String:
                all += 's';
                break;
            case ScriptStyle::StringEol:
                all += 'e';
                break;
            case ScriptStyle::Identifier:
                all += 'i';
                break;
            case ScriptStyle::Operator:
                all += 'o';
                break;
            default:
                all += '?';
        }
    }
    return all;
}

TEST(ScriptLexer, EveryKindOfText) {
    const std::string longKeyword = "setq" + std::string(200, 'x');
    const std::string digits(99, '7');
    const struct {
        std::string Text;
        std::string Expected;
    } cases[] = {
        {"SETQ setq Setq", "kkkk.kkkk.kkkk"},
        {"currentfile currentfile2", "vvvvvvvvvvv.iiiiiiiiiiii"},
        {"1.5 1..2 -1 1e5", "222.2222.ii.iii"},
        {"c:ddvpoint vl-directory- vl-directory-files", "kkkkkkkkkk.kkkkkkkkkkkkk.iiiiiiiiiiiiiiiiii"},
        {"(setq a '(1 b))!x",
         "okkkk.i.oo2.iooo"
         "i"},
        {"abc;def \"x\"", "iii.iii.sss"},
        {"abc ;def \"x\r(y)", "iii.ccccccc.oio"},
        {"abc\"d e\"f", "iii.i.i.i"},
        {";a\n;b\r\nx", "cc.ccc.i"},
        {R"("a\"b\\")"
         "c",
         "ssssssssi"},
        {R"("a\'b")", "ssssss"},
        {"\"open\rnext", "sssse.iiii"},
        {"\"open\r\nnext",
         "sssse"
         "e.iiii"},
        {"\"ab\\c\rd\"e", "ssssssssi"},
        {"a\xC3\xA4"
         "b \xE4",
         "i..i.."},
        {"a\x01\tb", "ii.i"},
        {longKeyword, std::string(longKeyword.size(), 'i')},
        {digits + "x", std::string(100, '2')},
        {"", ""},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(letters(one.Text), one.Expected) << one.Text;
    }
}

TEST(ScriptLexer, TheWordsAreTheVocabularyAsItIs) {
    const std::string_view list = ScriptKeywords(0);
    EXPECT_EQ(list.size(), 4096U);
    EXPECT_EQ(std::count(list.begin(), list.end(), ' ') + 1, 392);
    EXPECT_EQ(list.find("  "), std::string_view::npos);
    EXPECT_TRUE(list.starts_with("files or vl-list* c:revcloud "));
    EXPECT_TRUE(list.ends_with(" vl-directory-"));
    EXPECT_EQ(std::count_if(list.begin(), list.end(), [](char c) { return c >= 'A' && c <= 'Z'; }), 0);
    EXPECT_EQ(ScriptKeywords(1), "currentfileandpath currentpath currentfile currentext");
    EXPECT_EQ(ScriptKeywords(2), "");
}

TEST(ScriptLexer, FromAnyLineOnTheStylesAreTheSame) {
    std::mt19937 random(7);
    const std::string alphabet = "\"\"\"\\\\'()!;; \t\r\n\r\nab1.\xC3\xA4setq";
    for (int round = 0; round < 3000; ++round) {
        std::string text;
        for (std::size_t left = random() % 60; left > 0; --left) {
            text += round % 3 == 0 ? static_cast<char>(random()) : alphabet[random() % alphabet.size()];
        }
        const std::vector<ScriptStyle> whole = lex(text);
        ASSERT_EQ(std::count(whole.begin(), whole.end(), ScriptStyle(99)), 0) << "each byte has a style";
        std::vector<std::size_t> starts = {0};
        for (std::size_t at = 0; at < text.size(); ++at) {
            if (EndsLine(text, at)) {
                starts.push_back(at + 1);
            }
        }
        for (std::size_t first = 0; first < starts.size(); ++first) {
            const std::size_t last = first + random() % (starts.size() - first);
            const std::size_t start = starts[first];
            const std::size_t end = last + 1 < starts.size() ? starts[last + 1] : text.size();
            std::vector<ScriptStyle> piece(end - start, ScriptStyle(99));
            LexScript(text, start, end, start == 0 ? ScriptStyle::Default : whole[start - 1], piece);
            ASSERT_TRUE(
                std::equal(piece.begin(), piece.end(), whole.begin() + static_cast<std::ptrdiff_t>(start)))
                << text << "\nfrom " << start << " to " << end;
        }
    }
}

}  // namespace
