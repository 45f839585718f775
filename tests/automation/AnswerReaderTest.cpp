// SPDX-License-Identifier: GPL-3.0-or-later
// What people type at prompts, by the drawing's units.
#include <gtest/gtest.h>
#include <cmath>
#include <numbers>

#include "drafthost/automation/AnswerReader.h"

namespace drafthost::automation {
namespace {

constexpr double Right = std::numbers::pi / 2;

TEST(AnswerReader, ReadsNumbersAndLengthsInTheDrawingsUnits) {
    const ReadingRules decimal;
    const ReadingRules feet{.lengthUnits = 4};
    EXPECT_EQ(readNumber("3/4", decimal), 0.75);
    EXPECT_EQ(readNumber("1-3/4", decimal), 1.75);
    EXPECT_EQ(readNumber(" 1e3 ", decimal), 1000);
    EXPECT_EQ(readNumber("5'6-1/2\"", feet), 66.5);
    EXPECT_EQ(readNumber("-1'", feet), -12);
    EXPECT_FALSE(readNumber("1'", decimal));
    for (const char* bad : {"", "x", "1/0", "1-", "5'x", "+-1", "nan", "inf", "1,2", "1e999"}) {
        EXPECT_FALSE(readNumber(bad, feet)) << bad;
    }
    EXPECT_EQ(readInteger("+7"), 7);
    EXPECT_EQ(readInteger("-2147483648"), -2147483648LL);
    for (const char* bad : {"", "2147483648", "1.0", "1 2", "0x1"}) {
        EXPECT_FALSE(readInteger(bad)) << bad;
    }
}

TEST(AnswerReader, ReadsAnglesFromTheDrawingsBaseAndItsWay) {
    const ReadingRules plain;
    const ReadingRules grads{.angleUnits = 2};
    const ReadingRules north{.angleBase = Right, .clockwise = true};
    EXPECT_NEAR(*readAngle("45d30'", plain), 45.5 * Right / 90, 1e-12);
    EXPECT_NEAR(*readAngle("-100g", plain), -Right, 1e-12);
    EXPECT_NEAR(*readAngle("100", grads), Right, 1e-12);
    EXPECT_NEAR(*readAngle("1.5r", grads), 1.5, 1e-12);
    EXPECT_NEAR(*readAngle("N 90d E", plain), 0, 1e-12);
    EXPECT_FALSE(readAngle("45x", plain));
    EXPECT_NEAR(angleOf(90, plain), Right, 1e-12);
    EXPECT_NEAR(angleOf(100, grads), Right, 1e-12);
    EXPECT_NEAR(directionOf(Right, north), 0, 1e-12);
    EXPECT_NEAR(typedAngle(directionOf(0.25, north), north), 0.25, 1e-12);
}

TEST(AnswerReader, ReadsPoints) {
    const ReadingRules rules{.lastPoint = {10, 10, 5}};
    const ReadingRules north{.lengthUnits = 4, .angleBase = Right, .clockwise = true};
    EXPECT_EQ(*readPoint("1,2", rules), (Point{1, 2, 0}));
    EXPECT_EQ(*readPoint("*1, 2,3", rules), (Point{1, 2, 3}));
    EXPECT_EQ(*readPoint("#1,2", rules), (Point{1, 2, 0}));
    EXPECT_EQ(*readPoint("@1,2", rules), (Point{11, 12, 5}));
    EXPECT_EQ(*readPoint("@", rules), rules.lastPoint);
    EXPECT_NEAR((*readPoint("@2<90", rules))[1], 12, 1e-12);
    EXPECT_NEAR((*readPoint("2'<90", north))[0], 24, 1e-12);
    for (const char* bad : {"", "1", "1,", "1,2,3,4", "1<", "<5", "1<2<3", "a,b"}) {
        EXPECT_FALSE(readPoint(bad, rules)) << bad;
    }
}

TEST(AnswerReader, KeywordsNeedTheirCapitals) {
    constexpr std::string_view List = "All eXit LType LTScale 3P ?";
    EXPECT_EQ(matchKeyword("_a", List), "All");
    EXPECT_EQ(matchKeyword("x", List), "eXit");
    EXPECT_EQ(matchKeyword("exi", List), "eXit");
    EXPECT_EQ(matchKeyword("lt", List), "LType");
    EXPECT_EQ(matchKeyword("LTS", List), "LTScale");
    EXPECT_EQ(matchKeyword("3p", List), "3P");
    EXPECT_EQ(matchKeyword("?", List), "?");
    EXPECT_EQ(matchKeyword("_y", "Ja Nein _Yes No"), "Yes");
    EXPECT_EQ(matchKeyword("j", "Ja Nein _Yes No"), "Yes");
    EXPECT_EQ(matchKeyword("lin", "LTYPE,LT LINE,LI"), "LINE");
    for (const char* bad : {"", "_", "e", "l", "allx", "3"}) {
        EXPECT_FALSE(matchKeyword(bad, List)) << bad;
    }
}

}  // namespace
}  // namespace drafthost::automation
