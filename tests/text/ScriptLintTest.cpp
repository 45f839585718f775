// SPDX-License-Identifier: GPL-3.0-or-later
// What is told of scripts before they run, and what must not be.
#include "text/ScriptLint.h"

#include <gtest/gtest.h>
#include <set>

namespace {

const std::set<QString> Known = {QStringLiteral("ZOOM"),    QStringLiteral("-LAYER"), QStringLiteral("LAYER"),
                                 QStringLiteral("-PLOT"),   QStringLiteral("PLOT"),   QStringLiteral("QSAVE"),
                                 QStringLiteral("OPTIONS"), QStringLiteral("TEXT")};

std::string check(const QByteArray& script) {
    std::string all;
    for (const ScriptRemark& remark :
         CheckScript(script, [](const QString& name) { return Known.contains(name); })) {
        all += std::to_string(remark.Line) + ' ' + remark.Text.toStdString() + '\n';
    }
    return all;
}

TEST(ScriptLint, WhatIsWrongIsToldWithItsLine) {
    EXPECT_EQ(check("zom e\r\n._qsave\r\n"), "1 unknown command ZOM\n");
    EXPECT_EQ(check("; one\n\n(command \"_.zom\" \"e\")\n'_.zim\n_.qsave"),
              "3 unknown command ZOM\n4 unknown command ZIM\n");
    EXPECT_EQ(check("zoom\ne\n"), "1 no QSAVE or SAVEAS: changes to the drawings are not saved\n");
    EXPECT_EQ(check("(vla-Save (vla-get-ActiveDocument (vlax-get-acad-object)))\n"), "");
    EXPECT_EQ(check("_.qsave\nlayer\n_.-plot\n(command \"PLOT\")\noptions\n"),
              "2 LAYER shows a dialog, which stops the script; -LAYER does not\n"
              "4 PLOT shows a dialog, which stops the script; -PLOT does not\n"
              "5 OPTIONS shows a dialog, which stops the script\n");
    EXPECT_EQ(check("qsave\n(if (= 1 2)\n  (princ \"a\"\n"),
              "2 the parenthesis that opens here is never closed\n");
    EXPECT_EQ(check("qsave\n(princ\n \"a)\n(princ)\n"), "3 the string that begins here is never closed\n");
    EXPECT_EQ(check("qsave\n(princ))\n)\n"),
              "2 a closing parenthesis that nothing opens\n3 a closing parenthesis that nothing opens\n");
}

TEST(ScriptLint, WhatMayBeMeantIsLeftAlone) {
    const char* scripts[] = {
        // Answers that are no commands, blank lines, options and numbers.
        "-layer m Walls c 3\nWalls\n\n_.zoom\n_extents\n.5\n.\n-5,3\n_.qsave\n",
        "-layer\nplot\nn\nWalls\n\n_.qsave\n",
        // Text with brackets, and brackets over lines in the middle of one.
        "text 0,0 5 0 Room (3\n:) done\nqsave\n",
        "zoom (list 0\n 0) 5\nqsave\n",
        // Quotes and brackets where they are none.
        "(princ \"a \\\" ) ; b\") ; \"(\n(princ ; (\n 1)\nqsave\n",
        "; (((\n;\"\n_.qsave\n",
        // What the script itself brings along, or programs that it loads.
        "(defun C:ZAP () (princ))\n_.zap\n_.qsave\n",
        "(load \"office.lsp\")\n_.officetool\nqsave\n",
        "(command \"_.qsave\")\n(setvar \"CLAYER\" \"0\")\n_.zoom e\n(command pause \"x\")\n",
        // The module's own words may stand anywhere.
        "_.qsave\r\n\r\n\t \r\n",
    };
    for (const char* script : scripts) {
        EXPECT_EQ(check(script), "") << script;
    }
    EXPECT_NE(check(""), "");
    // Long ones are looked through once.
    QByteArray longOne = "qsave\n";
    for (int i = 0; i < 100000; ++i) {
        longOne += "text (open\n._zoom e\n";
    }
    EXPECT_EQ(check(longOne), "");
}

}  // namespace
