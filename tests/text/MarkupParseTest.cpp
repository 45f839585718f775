// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/text/TestText.h"
#include "text/Base64.h"
#include "text/Entities.h"
#include "text/MarkupDocument.h"

#include <vector>

namespace {

/// The elements of a document with their nesting, as "a(b c(d))".
QString shape(const PositionIndex& positions, std::uint32_t parent, const QString& text) {
    QString out;
    for (std::uint32_t i = positions[parent].FirstChild; i != 0; i = positions[i].NextSibling) {
        if (!out.isEmpty()) {
            out += u' ';
        }
        qsizetype at = positions[i].Start + 1;
        while (text[at].isLetterOrNumber()) {
            out += text[at++];
        }
        const QString inside = shape(positions, i, text);
        if (!inside.isEmpty()) {
            out += QLatin1Char('(') + inside + QLatin1Char(')');
        }
    }
    return out;
}

struct Loose {
    const char* Text;
    bool WellFormed;
    const char* Shape;
    const char* Report;
};

TEST(MarkupParse, IndexesAnyText) {
    const std::vector<Loose> cases = {
        {"", false, "", ""},
        {"plain", false, "", "<no_root_element/>"},
        {"<a/>", true, "a", ""},
        {"<?xml version=\"1.0\"?>\n<!-- c > --><a>1</a>\n", true, "a", ""},
        {"<a x='1>2'><b y=\"'>\"/></a>", true, "a(b)", ""},
        {"<a><b></a>", false, "a(b)", "<unended_start_tag tagname=\"b\" offset=\"3\" offset2=\"6\"/>"},
        {"<a></b></a>", false, "a", "<lone_end_tag tagname=\"b\" offset=\"3\"/>"},
        {"<a>1</a><b>2</b>", false, "a b", "<root_has_sibling/>"},
        // The children of unended elements follow them, whatever the depth.
        {"<r><a>1<b/><c><d>2<e/></r>", false, "r(a b c d e)",
         "<unended_start_tag tagname=\"d\" offset=\"14\" offset2=\"22\"/>"
         "<unended_start_tag tagname=\"c\" offset=\"11\" offset2=\"22\"/>"
         "<unended_start_tag tagname=\"a\" offset=\"3\" offset2=\"22\"/>"},
        {"<html><p>x<br>y", false, "html p br",
         "<unended_start_tag tagname=\"br\" offset=\"10\" offset2=\"15\"/>"
         "<unended_start_tag tagname=\"p\" offset=\"6\" offset2=\"15\"/>"
         "<unended_start_tag tagname=\"html\" offset=\"0\" offset2=\"15\"/><root_has_sibling/>"},
        {"<a href=b/></a>", true, "a", ""},
        {"<a><br/><br /><i x=\"1\"/><i x='1'/></a>", true, "a(br br i i)", ""},
        {"<a>1 < 2</a>", false, "a", "<first_tag_syntax offset=\"5\"/>"},
        {"<a><!x></a>", false, "a", "<exclamation_tag_syntax offset=\"3\"/>"},
        {"<a><!-x></a>", false, "a", "<comment_tag_syntax offset=\"3\"/>"},
        {"<a><![x]></a>", false, "a", "<cdata_section_syntax offset=\"3\"/>"},
        {"<!DOCTYPE a [<!ELEMENT a (b)> <!ENTITY c \">\">]><a/>", true, "a", ""},
        {"<!DOCTYPE a [<!x>]><a/>", false, "a", "<doctype_tag_syntax offset=\"13\"/>"},
        {"<a x=\"1", false, "",
         "<unterminated_tag_syntax type=\"start_tag\" offset=\"0\"/><no_root_element/>"},
        {"<a></a", false, "a",
         "<unterminated_tag_syntax type=\"end_tag\" offset=\"3\"/>"
         "<unended_start_tag tagname=\"a\" offset=\"0\" offset2=\"6\"/>"},
        {"<a/><!-- x", false, "a", "<unterminated_tag_syntax type=\"comment\" offset=\"4\"/>"},
        {"<a/><![CDATA[ x", false, "a", "<unterminated_tag_syntax type=\"cdata_section\" offset=\"4\"/>"},
        {"<a/><?x '?>'", false, "a",
         "<unterminated_tag_syntax type=\"processing_instruction\" offset=\"4\"/>"},
        {"<!DOCTYPE a", false, "",
         "<unterminated_tag_syntax type=\"document_type\" offset=\"0\"/><no_root_element/>"},
    };
    for (const Loose& expected : cases) {
        MarkupDocument document;
        const QString text = QString::fromLatin1(expected.Text);
        EXPECT_EQ(document.SetDocumentText(text), expected.WellFormed) << expected.Text;
        EXPECT_EQ(Plain(shape(document.Positions(), 0, text)), expected.Shape) << expected.Text;
        EXPECT_EQ(Plain(document.Result()), expected.Report) << expected.Text;
    }
}

TEST(MarkupParse, ReportEndsWhileReadingGoesOn) {
    QString text = QStringLiteral("<r>");
    for (int i = 0; i < 5000; ++i) {
        text += QStringLiteral("</lone>");
    }
    MarkupDocument document;
    EXPECT_FALSE(document.SetDocumentText(text + QStringLiteral("<last/></r>")));
    EXPECT_GE(document.Result().size(), 1000);
    EXPECT_LT(document.Result().size(), 1200);
    EXPECT_TRUE(document.FindChildElement(u"last"));
}

TEST(MarkupParse, SearchOnlyGoesForward) {
    MarkupDocument document;
    ASSERT_TRUE(document.SetDocumentText(QStringLiteral("<r><a>1</a><b><c>2</c></b><a>3</a></r>")));
    EXPECT_TRUE(document.FindChildElement(u"a"));
    EXPECT_TRUE(document.FindChildElement(u"a"));
    EXPECT_EQ(Plain(document.GetChildText()), "3");
    EXPECT_FALSE(document.FindChildElement(u"b"));
    EXPECT_EQ(Plain(document.GetChildText()), "3") << "a failed search moves nothing";
    EXPECT_FALSE(document.FindElement(u"r"));

    MarkupDocument nested;
    ASSERT_TRUE(nested.SetDocumentText(document.GetDocumentText()));
    EXPECT_TRUE(nested.FindChildElement(u"b"));
    EXPECT_TRUE(nested.IntoElement());
    EXPECT_TRUE(nested.FindChildElement(u"c"));
    EXPECT_EQ(Plain(nested.GetChildText()), "2");
    EXPECT_TRUE(nested.OutOfElement());
    EXPECT_TRUE(nested.FindChildElement(u"a"));
    EXPECT_EQ(Plain(nested.GetChildText()), "3");
    EXPECT_FALSE(nested.OutOfElement());

    MarkupDocument empty;
    EXPECT_FALSE(empty.FindElement() || empty.FindChildElement() || empty.IntoElement() ||
                 empty.OutOfElement() || empty.RemoveChildElement() || empty.AddChildElement(u"x"));
    EXPECT_TRUE(empty.GetChildText().isEmpty() && empty.GetChildAttribute(u"x").isEmpty());
}

TEST(MarkupParse, ReadsTextAndAttributes) {
    MarkupDocument document;
    document.SetDocumentText(
        QStringLiteral("<r><t>a &lt; <!-- no -->b<![CDATA[<&amp;>]]> > c</t><p>one<br />two</p>"
                       "<q a='1&amp;2' b = \"x>y\" c=d/e f g=''/></r>"));
    ASSERT_TRUE(document.FindChildElement(u"t"));
    EXPECT_EQ(Plain(document.GetChildText()), "a < b<&amp;> > c");
    ASSERT_TRUE(document.FindChildElement(u"p"));
    EXPECT_EQ(Plain(document.GetChildText()), "");
    ASSERT_TRUE(document.FindChildElement(u"q"));
    EXPECT_EQ(Plain(document.GetChildAttribute(u"a")), "1&2");
    EXPECT_EQ(Plain(document.GetChildAttribute(u"b")), "x>y");
    EXPECT_EQ(Plain(document.GetChildAttribute(u"c")), "d/e");
    EXPECT_EQ(Plain(document.GetChildAttribute(u"f")), "f");
    EXPECT_EQ(Plain(document.GetChildAttribute(u"g")), "");
    EXPECT_EQ(Plain(document.GetChildAttribute(u"x")), "");
}

TEST(MarkupParse, UnescapesEntities) {
    const std::vector<std::pair<QString, QString>> cases = {
        {QStringLiteral("AT&T"), QStringLiteral("AT&T")},
        {QStringLiteral("&#65;&#x41;&AMP;&apos;"), QStringLiteral("AA&'")},
        {QStringLiteral("&#x1F600;"), QString::fromUtf8("\xF0\x9F\x98\x80")},
        {QStringLiteral("&oslash;&Oslash;"), QString(2, QChar(216))},
        {QStringLiteral("&darr;&euro;"), QString(QChar(8659)) + QChar(0x20ac)},
        {QStringLiteral("&thetasym;"), QString(QChar(977))},
        {QStringLiteral("&nothing;&#0;&#12x;&#;&;&#x110000;&lt"),
         QStringLiteral("&nothing;&#0;&#12x;&#;&;&#x110000;&lt")},
        {QStringLiteral("&amp;lt;&&lt;"), QStringLiteral("&lt;&<")},
    };
    for (const auto& [escaped, plain] : cases) {
        EXPECT_EQ(Plain(UnescapeMarkup(escaped)), Plain(plain)) << Plain(escaped);
    }
}

TEST(Base64, BreaksLinesAndChecksText) {
    const QByteArray bytes(58, 'x');
    const QString encoded = Base64Encode(bytes);
    EXPECT_EQ(encoded.indexOf(u"\r\n"), 76);
    EXPECT_FALSE(Base64Encode(QByteArray(57, 'x')).contains(u'\n'));
    EXPECT_EQ(Base64Decode(encoded), bytes);
    EXPECT_EQ(Base64Decode(u" Y W\r\nJ j "), QByteArray("abc"));
    EXPECT_EQ(Base64Decode(u"YQ==junk"), QByteArray("a"));
    EXPECT_EQ(Base64Decode(u"YWI"), QByteArray("ab"));
    EXPECT_EQ(Base64Decode(u""), QByteArray());
    EXPECT_FALSE(Base64Decode(u"YWJj*"));
    EXPECT_FALSE(Base64Decode(u"Y="));
}

}  // namespace
