// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/text/TestText.h"
#include "text/MarkupDocument.h"

#include <random>

namespace {

/// Compares what an index says of an element, and of all below it, with a fresh parse of the same text.
void expectSameTree(const PositionIndex& a, std::uint32_t i, const PositionIndex& b, std::uint32_t j) {
    if (i != 0) {
        ASSERT_EQ(a[i].Start, b[j].Start);
        ASSERT_EQ(a[i].TagLengths, b[j].TagLengths);
        ASSERT_EQ(a[i].Level, b[j].Level);
    }
    ASSERT_EQ(a[i].Length, b[j].Length);
    std::uint32_t x = a[i].FirstChild;
    std::uint32_t y = b[j].FirstChild;
    std::uint32_t last = 0;
    for (; x != 0 && y != 0; x = a[x].NextSibling, y = b[y].NextSibling) {
        ASSERT_EQ(a[x].Parent, i);
        if (last != 0) {
            ASSERT_EQ(a[x].PreviousSibling, last);
        }
        last = x;
        ASSERT_NO_FATAL_FAILURE(expectSameTree(a, x, b, y));
    }
    ASSERT_EQ(x, 0U);
    ASSERT_EQ(y, 0U);
    if (last != 0) {
        ASSERT_EQ(a[a[i].FirstChild].PreviousSibling, last);
    }
}

TEST(MarkupEdit, PutsEachElementOnALineOfItsOwn) {
    MarkupDocument document;
    document.AddElement(u"r");
    EXPECT_EQ(Plain(document.GetDocumentText()), "<r/>\r\n");
    document.AddChildElement(u"a", u"1<2&3>'\"");
    document.AddChildElement(u"b");
    document.SetChildAttribute(u"s", -7);
    document.SetChildAttribute(u"t", u"<'\">&");
    EXPECT_EQ(Plain(document.GetDocumentText()),
              "<r>\r\n<a>1&lt;2&amp;3&gt;'\"</a>\r\n"
              "<b s=\"-7\" t=\"&lt;&apos;&quot;&gt;&amp;\"/>\r\n</r>\r\n");
    EXPECT_EQ(Plain(document.GetChildAttribute(u"t")), "<'\">&");
    MarkupDocument line;
    line.AddElement(u"a", {}, true);
    line.AddElement(u"b", u"x", true);
    EXPECT_EQ(Plain(line.GetDocumentText()), "<a/><b>x</b>");
}

TEST(MarkupEdit, LeavesTheRestOfATextAlone) {
    MarkupDocument document;
    ASSERT_TRUE(document.SetDocumentText(QStringLiteral(
        "<!-- head -->\n<r  x = '1' y=2 >\n  <a/>\t<!-- c -->\n  <b>text</b>\n</r>\n<!-- end -->")));
    ASSERT_TRUE(document.FindElement(u"r"));
    EXPECT_TRUE(document.SetAttribute(u"x", u"n"));
    EXPECT_TRUE(document.SetAttribute(u"y", u"m"));
    EXPECT_TRUE(document.SetAttribute(u"z", u""));
    ASSERT_TRUE(document.FindChildElement(u"a"));
    EXPECT_TRUE(document.AddChildElement(u"new"));
    ASSERT_TRUE(document.FindChildElement(u"b"));
    EXPECT_TRUE(document.RemoveChildElement());
    EXPECT_EQ(
        Plain(document.GetDocumentText()),
        "<!-- head -->\n<r  x = \"n\" y=\"m\" z=\"\" >\n  <a/>\t<new/>\r\n<!-- c -->\n  </r>\n<!-- end -->");
    EXPECT_EQ(document.GetChildName(), u"new");
}

TEST(MarkupEdit, SlashesThatAreNoEndStayHarmless) {
    MarkupDocument document;
    ASSERT_TRUE(document.SetDocumentText(QStringLiteral("<r><a b/></a><a b=c/></a><a x==\">\"></a></r>")));
    while (document.FindChildElement(u"a")) {
        document.SetChildAttribute(u"n", 1);
    }
    MarkupDocument again;
    EXPECT_TRUE(again.SetDocumentText(document.GetDocumentText())) << Plain(document.GetDocumentText());
    expectSameTree(document.Positions(), 0, again.Positions(), 0);
}

TEST(MarkupEdit, RandomEditsKeepTheIndexOfAFreshParse) {
    constexpr int Rounds = 60;
    constexpr int EditsPerRound = 80;
    const std::array<QString, 5> names = {QStringLiteral("a"), QStringLiteral("bb"), QStringLiteral("File"),
                                          QStringLiteral("x1"), QStringLiteral("Options")};
    const std::array<QString, 5> values = {QString(), QStringLiteral("1"), QStringLiteral("a<b>&'\""),
                                           QStringLiteral(" two words "), QString::fromUtf8("ä€😀")};
    for (unsigned seed = 0; seed < Rounds; ++seed) {
        std::mt19937 random(seed);
        const auto pick = [&](const auto& from) { return from[random() % from.size()]; };
        MarkupDocument document;
        if (seed % 2 == 0) {
            document.AddElement(u"root");
        } else {
            document.SetDocumentText(QStringLiteral(
                "<?xml version='1.0'?>\n<root a=1>t<x1/> <bb></bb>\n<!--c--><a b=c>u</a></root>"));
        }
        document.FindElement();
        for (int edit = 0; edit < EditsPerRound; ++edit) {
            const QString before = document.GetDocumentText();
            const unsigned action = random() % 12;
            if (action < 4) {
                document.AddChildElement(pick(names), pick(values));
            } else if (action < 6) {
                document.SetChildAttribute(pick(names), pick(values));
            } else if (action == 6) {
                document.SetAttribute(pick(names), pick(values));
            } else if (action == 7) {
                document.RemoveChildElement();
            } else if (action == 8) {
                document.FindChildElement(pick(names));
            } else if (action == 9 && document.ChildPosition() != 0) {
                document.IntoElement();
            } else if (document.OutOfElement() && action == 11) {
                document.FindChildElement();
            }
            MarkupDocument fresh;
            ASSERT_TRUE(fresh.SetDocumentText(document.GetDocumentText()))
                << "seed " << seed << "\n"
                << Plain(before) << "\n->\n"
                << Plain(document.GetDocumentText());
            ASSERT_NO_FATAL_FAILURE(expectSameTree(document.Positions(), 0, fresh.Positions(), 0))
                << "seed " << seed << " action " << action << "\n"
                << Plain(before) << "\n->\n"
                << Plain(document.GetDocumentText());
        }
    }
}

TEST(MarkupEdit, GrowsPastOneSegmentOfPositions) {
    constexpr int Count = 70000;
    MarkupDocument document;
    document.AddElement(u"r");
    for (int i = 0; i < Count; ++i) {
        document.AddChildElement(u"e");
        document.SetChildAttribute(u"n", i);
    }
    MarkupDocument fresh;
    ASSERT_TRUE(fresh.SetDocumentText(document.GetDocumentText()));
    EXPECT_EQ(fresh.Positions().Used(), unsigned{Count} + 2);
    int found = 0;
    while (fresh.FindChildElement(u"e")) {
        ASSERT_EQ(fresh.GetChildAttribute(u"n").toInt(), found++);
    }
    EXPECT_EQ(found, Count);
}

}  // namespace
