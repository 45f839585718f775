// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/drawing/Samples.h"

#include <algorithm>
#include <fstream>

namespace drafthost {
namespace {

using namespace std::string_literals;

const std::string body =
    "999 made_here 0 SECTION 2 HEADER 9 $ACADVER 1 AC1009 0 ENDSEC 0 ENDSEC 0 SECTION 2 ENTITIES "
    "0 TEXT 8 WALLS 10 1.5 20 2 40 2.5 1 _ 0 LINE 8 0 10 0 20 0 11 1 21 1 0 ENDSEC 0 EOF";

// Everything that a verbatim store must keep comes back byte for byte.
TEST(TagStore, writesUntouchedDrawingsAsTheyWere) {
    const std::vector<std::string> forms = {
        drawn(body, "\r\n"),
        drawn(body, "\n"),
        drawn(body, "\r"),
        drawn(body, "\n").substr(0, drawn(body).size() - 1),
        "\xEF\xBB\xBF" + drawn(body),
        drawn(body) + "rubbish\0behind\n"s + "5",
        lines({"  0  ", "SECTION \r", "\t2", "ENTITIES", "+0", " LINE", "  8\r", "  two blanks  ", "0",
               "ENDSEC", "0", "EOF"}),
        lines({"0", "SECTION", "2", "X", "5000", "odd", "-3", "own", "0", "ENDSEC", "0", "EOF  "}),
    };
    for (const std::string& form : forms) {
        const auto drawing = parsed(form);
        ASSERT_NE(drawing, nullptr) << form;
        EXPECT_EQ(drawing->serialise(), form);
        EXPECT_FALSE(drawing->modified());
    }
}

TEST(TagStore, readsCodesAndValuesHoweverTheyAreSpelled) {
    const auto drawing =
        parsed(lines({"  0 ", " SECTION ", " 2", "ENTITIES", "000", "LINE", "  8", " a layer ", "\t10",
                      "  1.5E+01", "20", "+2", "1071", " -7", "0", "EOF"}));
    const Record line = drawing->record(drawing->next(drawing->first()));
    EXPECT_EQ(line.type(), "LINE");
    EXPECT_EQ(line.text(1), " a layer ");
    EXPECT_EQ(line.point(2), (Point{15, 2, 0}));
    EXPECT_EQ(line.code(4), 1071);
    EXPECT_EQ(line.integer(4), -7);
}

// Line ends at every place of the blocks that are looked at together.
TEST(TagStore, findsLinesAtEveryAlignment) {
    for (std::size_t length = 0; length < 200; ++length) {
        const std::string value(length, 'x');
        const std::string text = lines({"0", "SECTION", "2", value, "0", "EOF"});
        const auto drawing = parsed(text);
        ASSERT_NE(drawing, nullptr) << length;
        EXPECT_EQ(drawing->record(0).raw(1), value);
        EXPECT_EQ(drawing->serialise(), text);
    }
}

TEST(TagStore, refusesWhatCannotBeReadWithPlaceAndCause) {
    const std::string good = drawn(body);
    const std::string start = drawn("0 SECTION 2 ENTITIES");
    std::string bad = good;
    bad.replace(bad.find("40\n"), 2, "x7");
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", "test.dxf: the file is empty"},
        {"hello\nthis is text\n", "test.dxf, line 1: \"hello\" is not a group code"},
        {bad, "test.dxf, line 27: \"x7\" is not a group code"},
        {start + "0\nLINE\n1 0\nx\n", "test.dxf, line 7: \"1 0\" is not a group code"},
        {start + "\nLINE\n", "test.dxf, line 5: \"\" is not a group code"},
        {start + "99999\nx\n", "test.dxf, line 5: \"99999\" is not a group code"},
        {start + "0\nENDSEC\n", "test.dxf, line 6: the file ends without EOF"},
        {start + "  0", "test.dxf, line 5: the file ends behind a group code"},
        {start + "1\na\0b\n0\nEOF\n"s, "test.dxf, line 6: a NUL byte in the text"},
        {"8\nx\n0\nEOF\n", "test.dxf, line 1: group code 8 in front of the first section"},
        {"0\nLINE\n0\nEOF\n", "test.dxf, line 2: no SECTION at the beginning"},
        {"AC1015\0\0\0"s, "test.dxf: a DWG file (AC1015); this host reads DXF, ASCII and binary"},
    };
    for (const auto& [bytes, message] : cases) {
        EXPECT_EQ(refusal(bytes), message);
    }
    std::string error;
    EXPECT_EQ(Drawing::open("/no/such.dxf", error), nullptr);
    EXPECT_EQ(error, "/no/such.dxf: No such file or directory");
    EXPECT_EQ(Drawing::open("/tmp", error), nullptr);
    EXPECT_EQ(error, "/tmp: Is a directory");
}

TEST(TagStore, opensDrawingsWhoseStructureAloneIsBroken) {
    const std::vector<std::string> broken = {
        "0 SECTION 2 ENTITIES 0 LINE 5 1F 0 LINE 5 1F 0 EOF",
        "0 SECTION 2 BLOCKS 0 BLOCK 2 A 0 BLOCK 0 ENDSEC 0 EOF",
        "0 SECTION 2 TABLES 0 TABLE 2 LAYER 0 LAYER 0 SECTION 2 ENTITIES 0 LINE 8 0 0 ENDSEC 0 EOF",
        "0 ENDSEC_IS_NO_START",
        "0 EOF",
    };
    for (const std::string& text : broken) {
        std::string error;
        const auto drawing = Drawing::parse(drawn(text), "x", error);
        EXPECT_EQ(drawing != nullptr, text.find("IS_NO") == std::string::npos) << text << error;
    }
}

std::string binary(bool oneByte) {
    std::string error;
    std::string bytes;
    const auto ascii =
        parsed(drawn("0 SECTION 2 HEADER 9 $ACADVER 1 " + std::string(oneByte ? "AC1009" : "AC1015") +
                     " 0 ENDSEC 0 SECTION 2 ENTITIES 0 LINE 5 1F 8 0 62 -3 10 0.1 20 1e300 370 25 "
                     "290 1 160 123456789012 310 00FFA0 1071 70000 1004 0102 1070 40000 0 ENDSEC 0 EOF"));
    EXPECT_TRUE(ascii->convert({true, 16}, bytes, error)) << error;
    return bytes;
}

TEST(TagStore, readsBothBinaryForms) {
    for (const bool oneByte : {true, false}) {
        const std::string bytes = binary(oneByte);
        const auto drawing = parsed(bytes);
        ASSERT_NE(drawing, nullptr);
        EXPECT_TRUE(drawing->isBinary());
        EXPECT_EQ(drawing->serialise(), bytes);
        RecordId id = drawing->first();
        while (drawing->type(id) != "LINE") {
            id = drawing->next(id);
        }
        const Record line = drawing->record(id);
        const std::vector<std::string> texts = {"LINE",     "1F",   "0",     "-3",           "0.1",
                                                "1.0E+300", "25",   "1",     "123456789012", "00FFA0",
                                                "70000",    "0102", "-25536"};
        ASSERT_EQ(line.size(), texts.size());
        for (std::size_t i = 0; i < texts.size(); ++i) {
            EXPECT_EQ(line.text(i), texts[i]) << i;
        }
    }
}

TEST(TagStore, refusesLongCodesThatOneByteCouldSay) {
    std::string bytes = binary(true);
    // The end mark with its code 0 as 255, 0, 0.
    bytes.insert(bytes.rfind("EOF") - 1, "\xFF\0"s);
    std::string error;
    EXPECT_EQ(Drawing::parse(bytes, "test.dxf", error), nullptr);
    EXPECT_EQ(error,
              "test.dxf, offset " + std::to_string(bytes.rfind("EOF") - 3) + ": group code 0 in three bytes");
}

TEST(TagStore, refusesBrokenBinaryAtEveryCut) {
    const std::string bytes = binary(false);
    for (std::size_t cut = 22; cut < bytes.size(); ++cut) {
        EXPECT_TRUE(refusal(bytes.substr(0, cut)).starts_with("test.dxf, offset ")) << cut;
    }
    std::string wrong = bytes;
    wrong[22] = '\xFF';
    EXPECT_EQ(refusal(wrong), "test.dxf, offset 22: the first group code is not 0");
}

TEST(TagStore, keepsRealDrawingsByteForByte) {
    const auto samples = drawingsUnder(SAMPLE_FOLDER);
    ASSERT_GE(samples.size(), 12U);
    for (const auto& files : {samples, drawingsOfOthers("dxf"), drawingsOfOthers("generated")}) {
        for (const auto& path : files) {
            std::string error;
            const auto drawing = Drawing::open(path.string(), error);
            ASSERT_NE(drawing, nullptr) << error;
            ASSERT_EQ(drawing->serialise(), contentOf(path)) << path;
        }
    }
}

// Wherever a drawing is cut off, its end is missing, and that is told with the name and the place.
TEST(TagStore, refusesRealDrawingsThatWereCutOff) {
    const TemporaryFolder folder;
    for (const auto& path : drawingsUnder(SAMPLE_FOLDER)) {
        const std::string whole = contentOf(path);
        for (const std::size_t length :
             {std::size_t{0}, whole.size() / 3, whole.size() / 2, whole.size() - 8}) {
            const std::string cut = folder / path.filename().string();
            std::ofstream(cut, std::ios::binary) << whole.substr(0, length);
            std::string error;
            EXPECT_EQ(Drawing::open(cut, error), nullptr) << cut << " " << length;
            EXPECT_TRUE(error.starts_with(cut)) << error;
        }
    }
}

TEST(TagStore, refusesUnreadableDrawingsOfOthersAndOpensTheRest) {
    const std::vector<std::string> refused = {"ezdxf__integration_tests__data__recover01.dxf",
                                              "gen_bad_code.dxf",
                                              "gen_binary_badlen.dxf",
                                              "gen_binary_cut.dxf",
                                              "gen_cut_mid_entity.dxf",
                                              "gen_cut_odd_line.dxf",
                                              "gen_no_eof.dxf",
                                              "gen_not_a_dxf.dxf",
                                              "gen_nul_byte.dxf",
                                              "gen_zero_bytes.dxf"};
    for (const auto& path : drawingsOfOthers("damaged")) {
        std::string error;
        const bool opened = Drawing::open(path.string(), error) != nullptr;
        const bool listed =
            std::find(refused.begin(), refused.end(), path.filename().string()) != refused.end();
        EXPECT_EQ(opened, !listed) << error;
        EXPECT_EQ(error.empty(), opened);
        EXPECT_TRUE(opened || error.starts_with(path.string())) << error;
    }
}

}  // namespace
}  // namespace drafthost
