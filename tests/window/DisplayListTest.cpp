// SPDX-License-Identifier: GPL-3.0-or-later
// What is painted of a drawing: shapes, blocks in blocks, layers that are off, damaged coordinates.
#include "drafthost/window/DisplayList.h"
#include "tests/drawing/Samples.h"

#include <gtest/gtest.h>
#include <cmath>

namespace drafthost {
namespace {

constexpr const char* Header = "0 SECTION 2 HEADER 9 $ACADVER 1 AC1009 0 ENDSEC ";

DisplayList listOf(const std::string& entities, const std::string& blocks = {},
                   const std::string& layers = {}) {
    const auto drawing = parsed(drawn(Header + ("0 SECTION 2 TABLES 0 TABLE 2 LAYER 70 9 " + layers) +
                                      "0 ENDTAB 0 ENDSEC " + "0 SECTION 2 BLOCKS " + blocks +
                                      "0 ENDSEC 0 SECTION 2 ENTITIES " + entities + "0 ENDSEC 0 EOF"));
    return drawing ? buildDisplayList(*drawing, false) : DisplayList();
}

void expectBox(const QRectF& box, double left, double bottom, double right, double top) {
    EXPECT_NEAR(box.left(), left, 1e-3);
    EXPECT_NEAR(box.top(), bottom, 1e-3);
    EXPECT_NEAR(box.right(), right, 1e-3);
    EXPECT_NEAR(box.bottom(), top, 1e-3);
}

QRectF boxOf(const DisplayList& list) {
    return list.items.size() == 1 ? list.items[0].path.boundingRect() : QRectF();
}

TEST(DisplayList, Shapes) {
    expectBox(boxOf(listOf("0 LINE 8 0 10 1 20 2 11 5 21 -3 ")), 1, -3, 5, 2);
    expectBox(boxOf(listOf("0 CIRCLE 8 0 10 1 20 2 40 3 ")), -2, -1, 4, 5);
    // From 90 to 0 degrees: three quarters, the quarter to the upper right is missing.
    const DisplayList arc = listOf("0 ARC 8 0 10 0 20 0 40 1 50 90 51 0 ");
    ASSERT_EQ(arc.items.size(), 1u);
    expectBox(boxOf(arc), -1, -1, 1, 1);
    EXPECT_NEAR(arc.items[0].path.length(), 1.5 * M_PI, 1e-2);
    // Bulge 1 is half a circle, to the right of the way for counter-clockwise.
    expectBox(boxOf(listOf("0 POLYLINE 8 0 66 1 0 VERTEX 8 0 10 0 20 0 42 1 0 VERTEX 8 0 10 2 20 0 "
                           "0 SEQEND 8 0 ")),
              0, -1, 2, 0);
    expectBox(boxOf(listOf("0 POLYLINE 8 0 66 1 70 1 0 VERTEX 8 0 10 0 20 0 0 VERTEX 8 0 10 2 20 0 42 -1 "
                           "0 SEQEND 8 0 ")),
              0, -1, 2, 0);
    // Seen from below, X runs the other way.
    expectBox(boxOf(listOf("0 CIRCLE 8 0 10 5 20 0 40 1 210 0 220 0 230 -1 ")), -6, -1, -4, 1);
}

TEST(DisplayList, BlocksInBlocks) {
    const std::string leaf = "0 BLOCK 8 0 2 LEAF 10 1 20 0 0 LINE 8 0 10 1 20 0 11 2 21 0 0 ENDBLK ";
    const std::string twig = "0 BLOCK 8 0 2 TWIG 10 0 20 0 0 INSERT 8 0 2 LEAF 10 10 20 0 50 90 0 ENDBLK ";
    expectBox(boxOf(listOf("0 INSERT 8 0 2 TWIG 10 100 20 0 41 2 42 3 ", leaf + twig)), 120, 0, 120, 3);
    EXPECT_EQ(listOf("0 INSERT 8 0 2 LEAF 10 0 20 0 70 3 71 2 44 5 45 5 ", leaf).items.size(), 6u);
    EXPECT_EQ(listOf("0 INSERT 8 0 2 NOWHERE 10 0 20 0 ", leaf).items.size(), 0u);
    // A block that holds itself is painted once.
    const std::string loop =
        "0 BLOCK 8 0 2 LOOP 10 0 20 0 0 LINE 8 0 10 0 20 0 11 1 21 0 0 INSERT 8 0 2 LOOP 10 1 20 0 0 ENDBLK ";
    EXPECT_EQ(listOf("0 INSERT 8 0 2 LOOP 10 0 20 0 ", loop).items.size(), 1u);
}

TEST(DisplayList, LayersAndColours) {
    const std::string layers =
        "0 LAYER 2 RED 70 0 62 1 6 CONTINUOUS 0 LAYER 2 OFF 70 0 62 -3 6 CONTINUOUS "
        "0 LAYER 2 FROZEN 70 1 62 3 6 CONTINUOUS ";
    const DisplayList list = listOf(
        "0 LINE 8 Red 10 0 20 0 11 1 21 0 0 LINE 8 OFF 10 0 20 0 11 1 21 0 0 LINE 8 FROZEN 10 0 20 0 11 1 21 "
        "0 "
        "0 LINE 8 RED 62 5 10 0 20 0 11 1 21 0 0 INSERT 8 RED 2 B 10 0 20 0 ",
        "0 BLOCK 8 0 2 B 10 0 20 0 0 LINE 8 0 10 0 20 0 11 1 21 0 0 ENDBLK ", layers);
    ASSERT_EQ(list.items.size(), 3u);
    EXPECT_EQ(list.items[0].color, indexedColor(1));
    EXPECT_EQ(list.items[1].color, indexedColor(5));
    EXPECT_EQ(list.items[2].color, indexedColor(1)) << "layer 0 in a block is the layer of the insert";
}

TEST(DisplayList, DamagedCoordinatesAreLeftOut) {
    const DisplayList list = listOf(
        "0 LINE 8 0 10 nan 20 0 11 1 21 0 0 LINE 8 0 10 1e300 20 0 11 1 21 0 0 CIRCLE 8 0 10 0 20 0 40 1 ");
    ASSERT_FALSE(list.items.empty());
    EXPECT_LT(std::abs(list.bounds.right()), 1e15);
    expectBox(list.items.back().path.boundingRect(), -1, -1, 1, 1);
}

}  // namespace
}  // namespace drafthost
