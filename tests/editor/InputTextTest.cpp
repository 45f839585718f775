// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/InputText.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "drafthost/lisp/FileText.h"

namespace drafthost {
namespace {

using Kind = InputText::Item::Kind;

std::vector<std::string> words(std::string_view text, InputKind kind) {
    InputText input(text);
    std::vector<std::string> all;
    while (auto item = input.next(kind)) {
        static constexpr const char* Marks[] = {"", "expr:", "var:", "cancel"};
        all.push_back(Marks[int(item->kind)] + item->text);
    }
    all.push_back("rest:" + std::string(input.rest()));
    return all;
}

using Words = std::vector<std::string>;

TEST(InputText, EveryBlankAndLineEndIsAnEnter) {
    EXPECT_EQ(words("zoom e\n\nregen  x\ty\n", InputKind::Command),
              (Words{"zoom", "e", "", "regen", "", "x", "y", "rest:"}));
    EXPECT_EQ(words("a\r\nb\rc\n", InputKind::Word), (Words{"a", "b", "c", "rest:"}));
}

TEST(InputText, AnUnfinishedLastInputStaysOpen) {
    EXPECT_EQ(words("regen\nqsave", InputKind::Command), (Words{"regen", "rest:qsave"}));
    InputText input("qs");
    EXPECT_FALSE(input.next(InputKind::Command));
    input.append("ave\n");
    EXPECT_EQ(input.next(InputKind::Command)->text, "qsave");
}

TEST(InputText, LinesThatBeginWithASemicolonAreNotThere) {
    EXPECT_EQ(words(";one\na;b\n;two\n;three\nc\n;open", InputKind::Command),
              (Words{"a;b", "c", "rest:;open"}));
    EXPECT_EQ(words("first\n;gone\nsecond ; stays\n", InputKind::Line),
              (Words{"first", "second ; stays", "rest:"}));
}

TEST(InputText, QuotesCountAtFilePromptsOnly) {
    EXPECT_EQ(words("\"my plan.dxf\" next\n", InputKind::FileName), (Words{"my plan.dxf", "next", "rest:"}));
    EXPECT_EQ(words("\"my plan.dxf\nx\n", InputKind::FileName), (Words{"my plan.dxf", "x", "rest:"}));
    EXPECT_EQ(words("say \"a b\"\n", InputKind::Line), (Words{"say \"a b\"", "rest:"}));
    EXPECT_EQ(words("\"a b\"\n", InputKind::Word), (Words{"\"a", "b\"", "rest:"}));
}

TEST(InputText, ExpressionsRunOverLinesAndSwallowOneEnd) {
    EXPECT_EQ(words("(setq a \"x)\n\"\n ; )\n b 2)\nzoom\n", InputKind::Command),
              (Words{"expr:(setq a \"x)\n\"\n ; )\n b 2)", "zoom", "rest:"}));
    EXPECT_EQ(words("(a)  (b)(c)\n\n", InputKind::Word),
              (Words{"expr:(a)", "", "expr:(b)", "expr:(c)", "", "rest:"}));
    EXPECT_EQ(words("(not here)\n", InputKind::Line), (Words{"(not here)", "rest:"}));
    EXPECT_EQ(words("!pt !\n", InputKind::Word), (Words{"var:pt", "!", "rest:"}));
    EXPECT_EQ(words("(last)", InputKind::Command), (Words{"expr:(last)", "rest:"}));
}

TEST(InputText, WhereTextIsCutOnItsWayMakesNoDifference) {
    InputText input;
    for (char c : std::string("(a)\r\n\"b c\" ;d\n;no\nzoom\n")) {
        input.append({&c, 1});
        // Looked at too early at every place.
        if (input.rest().starts_with("\"") || input.rest().starts_with(";")) {
            continue;
        }
        if (auto item = input.next(InputKind::Command)) {
            EXPECT_EQ(item->text, "(a)");
        }
    }
    EXPECT_EQ(input.next(InputKind::FileName)->text, "b c");
    EXPECT_EQ(input.next(InputKind::Command)->text, ";d");
    EXPECT_EQ(input.next(InputKind::Command)->text, "zoom");
    EXPECT_TRUE(input.empty());
}

TEST(InputText, ALongExpressionIsScannedOnce) {
    InputText input("(list");
    for (int i = 0; i < 20000; ++i) {
        ASSERT_FALSE(input.next(InputKind::Command));
        input.append(" 123456789\n");
    }
    input.append(")\n");
    EXPECT_EQ(input.next(InputKind::Command)->text.size(), 5u + 20000u * 11u + 1u);
    EXPECT_TRUE(input.empty());
}

TEST(InputText, CancelsInTextEndTheWordBeforeThem) {
    EXPECT_EQ(words("\x03zoom\x03regen\n\x1b", InputKind::Command),
              (Words{"cancel", "cancel", "regen", "cancel", "rest:"}));
    EXPECT_EQ(words("(princ \"x\n\x1bregen\n", InputKind::Command), (Words{"cancel", "regen", "rest:"}))
        << "an expression without an end";
}

TEST(FileText, FilesOfEveryEditorBecomeUtf8) {
    using lisp::decodeFile;
    EXPECT_EQ(decodeFile("\xEF\xBB\xBFz\xC3\xA4"), "z\xC3\xA4");
    EXPECT_EQ(decodeFile(std::string("\xFF\xFEz\0\xE4\0", 6)), "z\xC3\xA4");
    EXPECT_EQ(decodeFile(std::string("\xFE\xFF\0z\0\xE4", 6)), "z\xC3\xA4");
    EXPECT_EQ(decodeFile("z\xC3\xA4"), "z\xC3\xA4");
    EXPECT_EQ(decodeFile("z\xE4 \x80\r\nz\xC3\xA4\n"), "z\xC3\xA4 \xE2\x82\xAC\r\nz\xC3\xA4\n")
        << "each line for itself";
    const char* before = std::getenv("LC_ALL");
    const std::string kept = before != nullptr ? before : "";
    ::setenv("LC_ALL", "ru_RU.UTF-8", 1);
    EXPECT_EQ(decodeFile("\xE4\xE0"), "да");
    // A locale that is not installed names its encoding all the same.
    ::setenv("LC_ALL", "ru_RU.KOI8-R", 1);
    EXPECT_EQ(decodeFile("\xC4\xC1"), "да");
    ::setenv("LC_ALL", "ja_JP.UTF-8", 1);
    std::string cause;
    EXPECT_EQ(lisp::decodeProgram("zoom\n; \xFC\xFC\n", cause).value_or(cause).substr(0, 5), "zoom\n")
        << "a comment";
    EXPECT_EQ(lisp::decodeProgram("zoom\n_.text \xFC\xFC\n\xFC\xFC\n", cause), std::nullopt);
    EXPECT_EQ(cause, "line 2 is text neither in UTF-8 nor in windows-932");
    EXPECT_EQ(lisp::decodeProgram(std::string("\xFF\xFEz\0\n\0\x01\xD8x\0", 10), cause), std::nullopt);
    EXPECT_TRUE(cause.starts_with("line 2 ")) << cause;
    before != nullptr ? ::setenv("LC_ALL", kept.c_str(), 1) : ::unsetenv("LC_ALL");
}

}  // namespace
}  // namespace drafthost
