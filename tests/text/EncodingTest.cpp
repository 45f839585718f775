// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/text/TestText.h"
#include "text/CodePage.h"
#include "text/MarkupDocument.h"
#include "text/MarkupFile.h"
#include "text/TextConverter.h"

#include <array>
#include <vector>

namespace {

TEST(Encoding, NamesGivePages) {
    const std::vector<std::pair<QString, int>> cases = {
        {QString(), 0},
        {QStringLiteral("UTF-8"), 65001},
        {QStringLiteral("uTf8"), 65001},
        {QStringLiteral("UTF-32"), 65005},
        {QStringLiteral("UTF-32BE"), 65005},
        {QStringLiteral("utf-32"), 12000},
        {QStringLiteral("ISO-8859-1"), 28591},
        {QStringLiteral("Latin1"), 28591},
        {QStringLiteral("shifft_jis"), 932},
        {QStringLiteral("cp1256 "), 1256},
        {QStringLiteral("ebcdic-cp-ch"), 775},
        {QStringLiteral("x-iscii-pa"), 57011},
        {QStringLiteral("_iso-2022-jp$sio"), 50222},
        {QStringLiteral("nothing"), -1},
        {QString(100, u'x'), -1},
        {QString::fromUtf8("ütf-8"), -1},
    };
    for (const auto& [name, page] : cases) {
        EXPECT_EQ(EncodingToCodePage(name), page) << Plain(name);
    }
}

TEST(Encoding, PagesGoThereAndBack) {
    const std::vector<std::pair<int, QByteArray>> cases = {
        {437, "Gr\x81n"},
        {850, "Gr\x81n"},
        {1250, "\xB9\xE6\xEA"},
        {1251, "\xD7\xE5\xF0\xF2\xB8\xE6"},
        {1252, "\x80uro"},
        {1253, "\xF3\xF7\xDD\xE4\xE9\xEF"},
        {932, "\x90\x7D\x96\xCA"},
        {936, "\xCD\xBC\xD6\xBD"},
        {949, "\xB5\xB5\xB8\xE9"},
        {950, "\xB9\xCF\xAF\xC8"},
        {1361, "\xB4\xA1"},
        {10000, "na\x95ve"},
        {10079, "\x84\xDC"},
        {154, "\xD7"},
        {20106, "gr\x7Dn"},
        {20866, "\xFE\xC5\xD2"},
        {28605, "\xA4"},
        {51932, "\xBF\xDE\xCC\xCC"},
        {50220, "\x1B$B?^LL\x1B(B"},
        {50225,
         "\x1B$)C\x0E"
         "59\x0F"},
        {54936, "\x81\x30\x81\x30"},
        {57002, "\xEF\x42\xB3\xDA"},
        {65000, "A+IKw-"},
        {12001, QByteArray("\0\0 \xAC", 4)},
    };
    for (const auto& [page, bytes] : cases) {
        const QString text = DecodeText(bytes, page);
        EXPECT_FALSE(text.contains(QChar(QChar::ReplacementCharacter))) << page << " " << Plain(text);
        EXPECT_NE(text, QString::fromLatin1(bytes)) << page;
        bool lossy = false;
        EXPECT_EQ(EncodeText(text, page, '?', &lossy), bytes) << page << " " << Plain(text);
        EXPECT_FALSE(lossy) << page;
    }
    EXPECT_EQ(Plain(DecodeText("\x80uro", 1252)), "€uro");
    EXPECT_EQ(Plain(DecodeText("gr\x7Dn", 20106)), "grün");
}

TEST(Encoding, EveryNamedPageKeepsPlainText) {
    // One name of each page but the wide ones. A page that no library here knows goes by the locale's
    // encoding.
    const QByteArray names =
        "ptcp154 ibm437 asmo-708 dos-720 ibm737 ibm775 ibm850 ibm852 cp853 ibm855 ibm857 "
        "pc-multilingual-850+euro ibm860 ibm861 ibm862 ibm863 ibm864 ibm865 ibm866 ibm869 "
        "windows-874 x-sjis windows-936 uhc x-x-big5 cp1125 ibm-cp1133 x-cp1250 x-cp1251 x-ansi "
        "windows-1253 windows-1254 windows-1255 windows-1256 windows-1257 windows-1258 johab "
        "macintosh x-mac-japanese x-mac-chinesetrad x-mac-korean x-mac-arabic x-mac-hebrew "
        "x-mac-greek x-mac-cyrillic x-mac-chinesesimp x-mac-romanian x-mac-ukrainian x-mac-thai "
        "x-mac-ce x-mac-icelandic x-mac-turkish x-mac-croatian x-chinese_cns x-cp20001 "
        "x_chinese-eten x-cp20003 x-cp20004 x-cp20005 x-ia5 x-ia5-german x-ia5-swedish "
        "x-ia5-norwegian us-ascii x-cp20261 x-cp20269 koi8r "
        "extended_unix_code_packed_format_for_japanese x-cp20936 x-cp20949 koi8-u latin1 latin2 "
        "latin3 latin4 iso_8859-5:1988 iso_8859-6:1987 iso_8859-7:1987 visual latin5 iso8859-13 "
        "latin9 x-europa logical iso-2022-jp windows-50221 _iso-2022-jp$sio iso2022-kr x-cp50227 "
        "x-euc-jp x-euc-cn euc-kr hz-gb-2312 iso-4873:1986 x-iscii-de x-iscii-be x-iscii-ta "
        "x-iscii-te x-iscii-as x-iscii-or x-iscii-ka x-iscii-ma x-iscii-gu x-iscii-pa "
        "x-unicode-2-0-utf-7 x-unicode-2-0-utf-8";
    for (const QByteArray& name : names.split(' ')) {
        const int page = EncodingToCodePage(QString::fromLatin1(name));
        ASSERT_GT(page, 0) << name.constData();
        EXPECT_EQ(Plain(DecodeText(EncodeText(u"Layer 0", page), page)), "Layer 0") << name.constData();
    }
}

TEST(Encoding, Utf8ByHandMeetsTheLibrary) {
    const QString text =
        QString::fromUtf8("a long enough plain start, then ä€😀 and plain again, 16+16 units …");
    EXPECT_EQ(EncodeText(text, Utf8Page), text.toUtf8());
    const std::array<char16_t, 3> lone = {u'a', 0xd800, u'b'};
    EXPECT_EQ(EncodeText(QStringView(lone.data(), 3), Utf8Page), QByteArray("a\xEF\xBF\xBD"
                                                                            "b"));
    EXPECT_EQ(DecodeText("\xEF\xBB\xBFx", Utf8Page).size(), 2);
}

TEST(Encoding, ConvertsUtf32ByHand) {
    const std::array<char32_t, 3> wide = {U'a', 0x20ac, 0x1f600};
    TextConverter converter{QStringLiteral("UTF-8"), QStringLiteral("UTF-32"), wide.data(), 3, 16};
    std::array<char, 16> bytes{};
    EXPECT_EQ(Convert(converter, nullptr), 8);
    ASSERT_EQ(Convert(converter, bytes.data()), 8);
    EXPECT_STREQ(bytes.data(), "a€😀");
    const QString latin = QStringLiteral("ISO-8859-1");
    EXPECT_EQ(Convert(converter, nullptr, &latin), 0);

    std::array<char32_t, 4> back{};
    const std::array<char16_t, 4> lone = {u'x', 0xdc00, 0xd83d, 0xde00};
    TextConverter fromWide{QStringLiteral("UTF-32"), QStringLiteral("UTF-16"), lone.data(), 4, 4};
    ASSERT_EQ(Convert(fromWide, back.data()), 3);
    EXPECT_EQ(back[1], U'?');
    EXPECT_EQ(back[2], char32_t{0x1f600});
    TextConverter fromNarrow{QStringLiteral("UTF-32"), QStringLiteral("utf8"), "a\xFFz", 3, 2};
    ASSERT_EQ(Convert(fromNarrow, back.data()), 2) << "no more than the room there is";
    EXPECT_EQ(back[1], U'?');
}

struct FileCase {
    QByteArray Bytes;
    std::string Text;
    QByteArray Saved;
    std::string Report;
};

TEST(MarkupFile, FindsTheEncodingAndKeepsIt) {
    const QByteArray declared = "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>";
    const QByteArray html =
        "<HTML><head><META HTTP-EQUIV=\"content-type\" content=\"text/html; charset=windows-1251\"></head>"
        "<body>\xC4\xE0</body></HTML>";
    const QByteArray wide("\xFF\xFE<\0a\0>\0\0\0\xAC <\0/\0a\0>\0", 20);
    const QByteArray big("\xFE\xFF\0<\0a\0/\0>", 10);
    const std::vector<FileCase> cases = {
        {"<a>\xC3\xA9</a>", "<a>é</a>", "<a>\xC3\xA9</a>", "<read encoding=\"UTF-8\" length=\"9\"/>"},
        {"\xEF\xBB\xBF<a/>", "<a/>", "\xEF\xBB\xBF<a/>", "<bom/><read encoding=\"UTF-8\" length=\"4\"/>"},
        {wide, "<a>€</a>", QByteArray("\xFF\xFE<\0a\0>\0\xAC <\0/\0a\0>\0", 18),
         "<bom/><nulls_removed count=\"1\"/><read encoding=\"UTF-16LE\" length=\"8\"/>"},
        {big, "<a/>", big, "<bom/><read encoding=\"UTF-16BE\" length=\"4\"/><endian_swap/>"},
        {declared, "<?xml version='1.0' encoding='ISO-8859-1'?><a>é</a>", declared,
         "<read encoding=\"ISO-8859-1\" length=\"51\"/>"},
        {html,
         "<HTML><head><META HTTP-EQUIV=\"content-type\" content=\"text/html; charset=windows-1251\"></head>"
         "<body>Да</body></HTML>",
         html, "<read encoding=\"windows-1251\" length="},
        // A tag in front and no declaration is UTF-8 whatever the bytes.
        {"<a>\xE9</a>", "<a>\xEF\xBF\xBD</a>", "<a>\xEF\xBF\xBD</a>", "<read encoding=\"UTF-8\""},
        {"plain \xC3\xA9", "plain é", "plain \xC3\xA9",
         "<read encoding=\"UTF-8\" length=\"8\"/><utf8_detection/>"},
        {"", "", "", "<read encoding=\"\" length=\"0\"/>"},
    };
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("f.xml"));
    for (const FileCase& expected : cases) {
        WriteBytes(path, expected.Bytes);
        MarkupDocument document;
        document.LoadFile(path);
        EXPECT_EQ(Plain(document.GetDocumentText()), expected.Text);
        EXPECT_TRUE(Plain(document.Result()).starts_with(expected.Report)) << Plain(document.Result());
        EXPECT_TRUE(document.SaveFile(path));
        EXPECT_EQ(ReadBytes(path), expected.Saved) << expected.Text;
    }
}

TEST(MarkupFile, TellsOfLossAndFailure) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("f.xml"));
    MarkupDocument document;
    document.SetDocumentText(QString::fromUtf8("<?xml encoding='ISO-8859-1'?><a>€</a>"));
    EXPECT_TRUE(document.SaveFile(path));
    EXPECT_TRUE(document.Result().contains(u"<conversion_loss/>")) << Plain(document.Result());
    EXPECT_TRUE(ReadBytes(path).endsWith("<a>?</a>"));

    EXPECT_FALSE(document.SaveFile(QStringLiteral("/nowhere/f.xml")));
    EXPECT_TRUE(document.Result().contains(u"<file_error msg=\"No such file or directory\" n=\"2\"/>"));
    EXPECT_FALSE(document.LoadFile(QStringLiteral("/nowhere/f.xml")));
    EXPECT_TRUE(document.GetDocumentText().isEmpty());
}

}  // namespace
