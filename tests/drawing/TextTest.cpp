// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/SymbolTables.h"
#include "tests/drawing/Samples.h"

namespace drafthost {
namespace {

struct PageCase {
    const char* page;
    int version;
    std::string bytes;
    std::string utf8;
};

TEST(Text, readsAndWritesTheDrawingsCodePage) {
    const std::vector<PageCase> cases = {
        {"", 1009, "\xE4\x80", "ä€"},          {"ANSI_1251", 1015, "\xCF\xEB\xE0\xED", "План"},
        {"ansi_1251", 1015, "\xCF", "П"},      {"dos850", 1009, "\x84\x94", "äö"},
        {"DOS437", 1009, "\xE1", "ß"},         {"MAC-ROMAN", 1018, "\x8A", "ä"},
        {"ASCII", 1015, "\xE4", "ä"},          {"UNDEFINED", 1012, "\xE4", "ä"},
        {"nonsense", 1012, "\xE4", "ä"},       {"ISO8859-7", 1012, "\xE1", "α"},
        {"ANSI_932", 1009, "\x95\x5C", "表"},  {"dos932", 1012, "\x83\x5C", "ソ"},
        {"ANSI_936", 1014, "\xD6\xD0", "中"},  {"gb2312", 1014, "\xD6\xD0", "中"},
        {"ANSI_949", 1014, "\xC7\xD1", "한"},  {"ANSI_950", 1014, "\xA5\x5C", "功"},
        {"ANSI_1361", 1014, "\xD0\x65", "한"}, {"ANSI_1252", 1021, "ä\xF0\x9F\x98\x80", "ä😀"},
    };
    for (const PageCase& one : cases) {
        const TextCodec codec(one.version, one.page);
        EXPECT_EQ(codec.decode("a" + one.bytes + "z"), "a" + one.utf8 + "z") << one.page;
        EXPECT_EQ(codec.encode("a" + one.utf8 + "z"), "a" + one.bytes + "z") << one.page;
    }
}

TEST(Text, knowsTheEscapes) {
    const TextCodec latin(1015, "ANSI_1252");
    EXPECT_EQ(latin.decode("\\U+4E2D\\u+00e4 \\U+12 \\U+GGGG"), "中ä \\U+12 \\U+GGGG");
    EXPECT_EQ(latin.decode("\\U+D83D\\U+DE00 \\U+D83D"), "😀 \xEF\xBF\xBD");
    EXPECT_EQ(latin.decode("\\M+1955C\\M+2A55C\\M+3C7D1\\M+4D065\\M+5D6D0\\M+60000"), "表功한한中\\M+60000");
    EXPECT_EQ(latin.encode("ä中😀"), "\xE4\\U+4E2D\\U+D83D\\U+DE00");
    EXPECT_EQ(latin.decode(latin.encode("ä中😀")), "ä中😀");
    // The backslash in a double-byte character begins no escape.
    EXPECT_EQ(TextCodec(1009, "ANSI_932").decode("\x95\x5CU+4E2D"), "表U+4E2D");
    EXPECT_EQ(latin.encode("two\nlines\r"), "two^Jlines^M");
    EXPECT_EQ(latin.decode("caret ^J stays"), "caret ^J stays");
    // Latin bytes in a drawing that should be UTF-8.
    EXPECT_EQ(TextCodec(1024, "ANSI_1252").decode("gr\xFC\xDF"), "grüß");
    EXPECT_EQ(TextCodec(1024, "ASCII").decode("grüß"), "grüß");
    EXPECT_EQ(TextCodec(1014, "ANSI_949").decode("\xC7"), "\xEF\xBF\xBD");
}

TEST(Text, findsNamesWhateverTheirCaseAndPage) {
    const auto drawing = parsed(lines({"0",  "SECTION",
                                       "2",  "HEADER",
                                       "9",  "$DWGCODEPAGE",
                                       "3",  "ansi_1251",
                                       "0",  "ENDSEC",
                                       "0",  "SECTION",
                                       "2",  "TABLES",
                                       "0",  "TABLE",
                                       "2",  "LAYER",
                                       "0",  "LAYER",
                                       "2",  "\xD1\xF2\xE5\xED\xFB",
                                       "62", "1",
                                       "0",  "ENDTAB",
                                       "0",  "ENDSEC",
                                       "0",  "EOF"}));
    const RecordId layer = findEntry(*drawing, Table::Layer, "СТЕНЫ");
    ASSERT_NE(layer, NoRecord);
    EXPECT_EQ(entryName(*drawing, layer), "Стены");
    EXPECT_EQ(drawing->codePage(), "ansi_1251");
}

TEST(Text, writesRealsThatReadBackTheSame) {
    for (const double value :
         {0.0, 1.0, -1.5, 0.1, 1e20, -1e-16, 1.0 / 3, 123456789.123456789, 5e-324, 1.7e308}) {
        const std::string text = formatReal(value);
        EXPECT_EQ(parseReal(text), value) << text;
        EXPECT_NE(text.find('.'), std::string::npos) << text;
    }
    EXPECT_EQ(formatReal(1e20), "1.0E+20");
    EXPECT_EQ(formatReal(2.0 / 3, 4), "0.6667");
    EXPECT_EQ(formatReal(-0.00001, 2), "0.0");
    EXPECT_EQ(formatReal(12.5, 6), "12.5");
    EXPECT_EQ(formatReal(1.4, 0), "1.0");
    EXPECT_EQ(parseReal("  +2.5abc"), 2.5);
    EXPECT_EQ(parseReal("1.#QNAN"), 1);
    EXPECT_EQ(parseReal("x"), 0);
    EXPECT_EQ(parseInteger(" 70.0"), 70);
    EXPECT_EQ(parseInteger("99999999999999999999"), 0);
    EXPECT_EQ(parseInteger("99999999999999999999.5"), 0);
    EXPECT_EQ(parseInteger("1e3"), 1000);
    EXPECT_EQ(parseInteger("9007199254740993"), 9007199254740993) << "no way through a real";
    EXPECT_EQ(parseInteger("9007199254740993x"), 9007199254740993);
    EXPECT_EQ(kindOf(-5), ValueKind::Text) << "codes of LISP's lists";
    EXPECT_EQ(kindOf(-6), ValueKind::Unknown);
    EXPECT_EQ(parseHandle("1fZ"), 0x1FU);
}

}  // namespace
}  // namespace drafthost
