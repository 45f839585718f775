// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/files/Language.h"
#include "tests/text/TestText.h"
#include "text/CodePage.h"
#include "text/ScriptText.h"
#include "text/UserText.h"

#include <cstdlib>
#include <vector>

namespace {

TEST(UserText, PageGoesByLanguageAndScript) {
    const std::vector<std::pair<const char*, int>> cases = {
        {"C.UTF-8", 1252},     {"de_DE.UTF-8", 1252}, {"cs_CZ.UTF-8", 1250}, {"sr_RS.UTF-8@latin", 1250},
        {"sr_RS.UTF-8", 1251}, {"ru_RU", 1251},       {"el_GR.UTF-8", 1253}, {"zh_TW.UTF-8", 950},
        {"zh_CN.UTF-8", 936},  {"ja_JP.UTF-8", 932},  {"th_TH.UTF-8", 874},
    };
    for (const auto& [name, page] : cases) {
        const Language language(name);
        EXPECT_EQ(WindowsPage(), page) << name;
    }
}

TEST(UserText, OddLinesAreReadAloneAndTold) {
    const Language language("de_DE.UTF-8");
    const UserText text = DecodeUserText(
        "pl\xC3\xA4ne\r\ngr\xFCn\n\xE2\x82\xAC\nGr\xF6\xDF"
        "e");
    EXPECT_EQ(Plain(text.Text), "pläne\r\ngrün\n€\nGröße");
    EXPECT_EQ(Plain(text.Note()),
              "line 2 is not in UTF-8; it and others like it are read as Windows code page 1252");
    EXPECT_EQ(text.BadLine, 0);
    EXPECT_EQ(Plain(DecodeUserText("a\xEF\xBF\xBD").Note()), "") << "a character like any other in UTF-8";
    const Language japanese("ja_JP.UTF-8");
    EXPECT_EQ(Plain(DecodeUserText("\x90\x7D\x96\xCA").Text), "図面");
    EXPECT_EQ(DecodeUserText("a\nb\x85\n").BadLine, 2);
}

TEST(UserText, MarksAndWideTextAreRead) {
    const std::vector<QByteArray> cases = {
        QByteArray("\xEF\xBB\xBF") + "a\xC3\xA9\n",
        QByteArray("\xFF\xFE"
                   "a\0\xE9\0\n\0",
                   8),
        QByteArray("\xFE\xFF\0a\0\xE9\0\n", 8),
        QByteArray("a\0\xE9\0\n\0", 6),
        QByteArray("\0a\0\xE9\0\n", 6),
    };
    for (const QByteArray& bytes : cases) {
        const UserText text = DecodeUserText(bytes);
        EXPECT_EQ(Plain(text.Text), "aé\n") << bytes.toHex().constData();
        EXPECT_EQ(text.BadLine + text.ForeignLine, 0);
    }
    // Cut in the middle of a unit, and half a pair of surrogates.
    EXPECT_EQ(DecodeUserText(QByteArray("\xFF\xFE"
                                        "a\0\n\0b",
                                        7))
                  .BadLine,
              2);
    EXPECT_EQ(DecodeUserText(QByteArray("\xFF\xFE\x3D\xD8\n\0", 6)).BadLine, 1);
}

TEST(ScriptText, WhatIsNoTextIsRefused) {
    EXPECT_EQ(DecodeScript("zoom\r\ne\n").Script, "zoom\r\ne\n");
    EXPECT_EQ(DecodeScript("layer\nn\nW\xE4nde\n").Script, "layer\nn\nWände\n");
    EXPECT_NE(Plain(DecodeScript("layer\nn\nW\xE4nde\n").Note), "");
    const ScriptText binary = DecodeScript(QByteArray("PK\x03\x04\n\0\x08", 7));
    EXPECT_EQ(binary.Script, "");
    EXPECT_EQ(Plain(binary.Fault), "line 2 holds a NUL, so this is no script");
    QByteArray script =
        DecodeScript(QByteArray("\xFF\xFE;\0D\0E\0S\0C\0R\0I\0P\0T\0I\0O\0N\0:\0\xE9\0\n\0x\0", 34)).Script;
    EXPECT_EQ(Plain(TakeDescription(script)), "é");
    EXPECT_EQ(script, "x");
}

}  // namespace
