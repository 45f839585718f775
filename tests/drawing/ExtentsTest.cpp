// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"
#include "tests/drawing/Samples.h"

#include <array>
#include <cmath>

namespace drafthost {
namespace {

Extents extentsOf(const std::string& entities, const std::string& blocks = "",
                  const std::string& tables = "") {
    const auto drawing = parsed(drawn("0 SECTION 2 TABLES 0 TABLE 2 LAYER " + tables +
                                      " 0 ENDTAB 0 ENDSEC 0 SECTION 2 BLOCKS " + blocks +
                                      " 0 ENDSEC 0 SECTION 2 ENTITIES " + entities + " 0 ENDSEC 0 EOF"));
    return computeExtents(*drawing);
}

void expectBox(const Extents& extents, double left, double bottom, double right, double top,
               const std::string& what) {
    constexpr double Tolerance = 1e-9;
    EXPECT_NEAR(extents.min.x, left, Tolerance) << what;
    EXPECT_NEAR(extents.min.y, bottom, Tolerance) << what;
    EXPECT_NEAR(extents.max.x, right, Tolerance) << what;
    EXPECT_NEAR(extents.max.y, top, Tolerance) << what;
}

TEST(Extents, measuresEveryKindOfEntity) {
    struct Case {
        const char* entities;
        double box[4];
    };
    const double half = std::sqrt(0.5);
    const Case cases[] = {
        {"0 LINE 10 1 20 2 11 -3 21 4", {-3, 2, 1, 4}},
        {"0 POINT 10 1 20 2", {1, 2, 1, 2}},
        {"0 CIRCLE 10 1 20 2 40 3", {-2, -1, 4, 5}},
        {"0 ARC 10 0 20 0 40 1 50 45 51 135", {-half, half, half, 1}},
        {"0 ARC 10 0 20 0 40 1 50 315 51 45", {half, -half, 1, half}},
        // Mirrored by its extrusion.
        {"0 ARC 10 5 20 0 40 1 50 270 51 90 210 0 220 0 230 -1", {-6, -1, -5, 1}},
        {"0 ELLIPSE 10 0 20 0 11 0 21 4 40 0.5 41 0 42 6.283185307179586", {-2, -4, 2, 4}},
        {"0 ELLIPSE 10 0 20 0 11 4 21 0 40 0.5 41 0 42 3.141592653589793", {-4, 0, 4, 2}},
        {"0 LWPOLYLINE 70 0 10 0 20 0 42 1 10 2 20 0", {0, -1, 2, 0}},
        {"0 LWPOLYLINE 70 1 10 0 20 0 10 2 20 0 42 -1", {0, -1, 2, 0}},
        {"0 LWPOLYLINE 70 0 43 1 10 0 20 0 10 4 20 0", {0, -0.5, 4, 0.5}},
        {"0 POLYLINE 66 1 70 1 0 VERTEX 10 0 20 0 42 1 0 VERTEX 10 2 20 0 42 1 0 SEQEND", {0, -1, 2, 1}},
        {"0 POLYLINE 70 4 0 VERTEX 70 16 10 99 20 9 0 VERTEX 70 8 10 1 20 1 0 VERTEX 70 8 10 2 20 2 0 SEQEND",
         {1, 1, 2, 2}},
        {"0 POLYLINE 70 64 0 VERTEX 70 192 10 1 20 2 30 3 0 VERTEX 70 128 10 0 20 0 71 1 0 SEQEND",
         {1, 2, 1, 2}},
        {"0 POLYLINE 70 64 0 VERTEX 70 0 10 1 20 2 0 VERTEX 70 64 10 5 20 6 0 SEQEND", {1, 2, 5, 6}},
        {"0 POLYLINE 70 0 0 VERTEX 70 128 10 1 20 2 0 VERTEX 70 0 10 5 20 6 0 SEQEND", {1, 2, 5, 6}},
        {"0 SOLID 10 0 20 0 11 1 21 0 12 0 22 1 13 5 23 1", {0, 0, 5, 1}},
        {"0 3DFACE 10 0 20 0 11 1 21 0 12 0 22 -1 13 5 23 1", {0, -1, 5, 1}},
        {"0 SPLINE 40 7 10 0 20 9 10 1 20 2", {0, 2, 1, 9}},
        {"0 SPLINE 10 0 20 9 10 1 20 2 11 0 21 3 11 1 21 2", {0, 2, 1, 3}},
        {"0 IMAGE 10 1 20 1 11 0.5 21 0 12 0 22 0.5 13 10 23 20", {1, 1, 6, 11}},
        {"0 HATCH 10 0 20 0 91 2 92 3 72 1 73 1 93 2 10 0 20 0 42 1 10 2 20 0 42 0 97 0 92 1 93 2 72 2 10 9 "
         "20 0 40 1 50 0 "
         "51 90 73 1 72 1 10 5 20 5 11 6 21 6 97 0 75 0 98 1 10 70 20 70",
         {0, -1, 10, 6}},
        {"0 HATCH 91 1 92 1 93 1 72 2 10 0 20 0 40 1 50 0 51 90 73 0 97 0 75 0", {0, -1, 1, 0}},
        {"0 TEXT 10 1 20 1 40 2 1 abcde 72 2 11 5 21 7 73 3", {-3, 5, 5, 7}},
        {"0 TEXT 10 0 20 0 40 1 1 abcde 50 90", {-1, 0, 0, 4}},
        {"0 TEXT 10 0 20 0 40 1 1 a 72 5 11 6 21 0", {0, 0, 6, 1}},
        {"0 MTEXT 10 0 20 0 40 1 41 0 71 1 1 ab\\Pcd", {0, -1 - 5.0 / 3, 1.6, 0}},
        {"0 MTEXT 10 0 20 0 40 1 41 0.5 71 1 1 unbroken", {0, -1, 6.4, 0}},
        {"0 MTEXT 10 0 20 0 40 1 71 5 42 4 43 2 1 x", {-2, -1, 2, 1}},
        {"0 LEADER 10 0 20 0 10 3 20 4", {0, 0, 3, 4}},
        {"0 LINE 10 0 20 0 11 1 21 1 0 RAY 10 50 20 50 11 1 21 0 0 XLINE 10 70 20 50 11 1 21 0",
         {0, 0, 1, 1}},
        {"0 LINE 10 0 20 0 11 1 21 1 0 LINE 60 1 10 9 20 9 11 9 21 9 0 LINE 67 1 10 9 20 9 11 9 21 9",
         {0, 0, 1, 1}},
        {"0 LINE 10 0 20 0 11 1 21 1 0 POINT 10 1e300 20 0 0 POINT 10 nan 20 0", {0, 0, 1, 1}},
    };
    for (const Case& one : cases) {
        const auto& box = one.box;
        expectBox(extentsOf(one.entities), box[0], box[1], box[2], box[3], one.entities);
    }
    EXPECT_TRUE(extentsOf("").empty());
}

TEST(Extents, followsBlocksHoweverTheyAreInserted) {
    const std::string blocks =
        "0 BLOCK 2 UNIT 10 1 20 0 0 LINE 10 1 20 0 11 3 21 1 0 ATTDEF 10 50 20 50 40 9 1 hidden 0 ENDBLK "
        "0 BLOCK 2 OUTER 10 0 20 0 0 INSERT 2 unit 10 10 20 0 50 90 0 ENDBLK "
        "0 BLOCK 2 ROUND 10 0 20 0 0 CIRCLE 10 0 20 0 40 1 0 ENDBLK "
        "0 BLOCK 2 LOOP 10 0 20 0 0 POINT 10 1 20 1 0 INSERT 2 LOOP 10 5 20 5 0 ENDBLK "
        "0 BLOCK 2 *D1 10 0 20 0 0 LINE 10 7 20 7 11 8 21 9 0 ENDBLK";
    const std::pair<const char*, std::array<double, 4>> cases[] = {
        {"0 INSERT 2 UNIT 10 5 20 5", {5, 5, 7, 6}},
        {"0 INSERT 2 Unit 10 0 20 0 41 2 42 -3", {0, -3, 4, 0}},
        {"0 INSERT 2 UNIT 10 0 20 0 50 90", {-1, 0, 0, 2}},
        {"0 INSERT 2 UNIT 10 5 20 0 210 0 220 0 230 -1", {-7, 0, -5, 1}},
        {"0 INSERT 2 UNIT 10 0 20 0 70 3 71 2 44 10 45 20", {0, 0, 22, 21}},
        {"0 INSERT 2 UNIT 10 0 20 0 50 90 70 3 44 10", {-1, 0, 0, 22}},
        {"0 INSERT 2 OUTER 10 100 20 0", {109, 0, 110, 2}},
        {"0 INSERT 2 ROUND 10 0 20 0 41 3 50 45",
         {-std::sqrt(5.0), -std::sqrt(5.0), std::sqrt(5.0), std::sqrt(5.0)}},
        {"0 INSERT 2 LOOP 10 0 20 0", {1, 1, 1, 1}},
        {"0 DIMENSION 2 *D1 10 0 20 0 13 50 23 50", {7, 7, 8, 9}},
        {"0 DIMENSION 2 *D9 10 0 20 0 13 5 23 6", {0, 0, 5, 6}},
        {"0 INSERT 2 NONE 10 4 20 4 0 POINT 10 2 20 2", {2, 2, 2, 2}},
        {"0 INSERT 2 ROUND 66 1 10 0 20 0 0 ATTRIB 10 0 20 5 40 1 1 a 70 0 0 ATTRIB 10 0 20 50 40 1 1 a 70 1 "
         "0 SEQEND",
         {-1, -1, 1, 6}},
    };
    for (const auto& [entities, box] : cases) {
        expectBox(extentsOf(entities, blocks), box[0], box[1], box[2], box[3], entities);
    }
}

TEST(Extents, takesTheLastEntityWhereEndsAreMissing) {
    for (const char* end : {" 0 ENDSEC 0 EOF", " 0 EOF"}) {
        for (const char* endBlock : {" 0 ENDBLK 0 ENDSEC", " 0 ENDSEC", ""}) {
            const auto drawing =
                parsed(drawn("0 SECTION 2 BLOCKS 0 BLOCK 2 B 10 0 20 0 0 POINT 10 1 20 1 0 POINT 10 2 20 2" +
                             std::string(endBlock) + " 0 SECTION 2 ENTITIES 0 INSERT 2 B 10 3 20 3 " +
                             "0 POINT 10 9 20 9" + end));
            expectBox(computeExtents(*drawing), 4, 4, 9, 9, std::string(endBlock) + end);
        }
    }
}

TEST(Extents, countsOffLayersAndNotFrozenOnes) {
    const std::string layers = "0 LAYER 2 OFF 70 0 62 -7 0 LAYER 2 FROZEN 70 1 62 7";
    expectBox(
        extentsOf("0 POINT 8 0 10 0 20 0 0 POINT 8 off 10 2 20 2 0 POINT 8 frozen 10 9 20 9", "", layers), 0,
        0, 2, 2, "layers");
    const std::string block =
        "0 BLOCK 2 B 10 0 20 0 0 POINT 8 0 10 1 20 1 0 POINT 8 FROZEN 10 9 20 9 0 ENDBLK";
    expectBox(extentsOf("0 INSERT 8 0 2 B 10 0 20 0 0 INSERT 8 FROZEN 2 B 10 50 20 50", block, layers), 1, 1,
              1, 1, "block");
}

TEST(Zoom, writesExtentsIntoHeaderLayoutAndView) {
    const auto drawing = Drawing::createNew(true);
    const RecordId line = addEntity(*drawing, "LINE", "0", false);
    drawing->putPoint(line, 10, {0, 0, 0}, true);
    drawing->putPoint(line, 11, {300, 100, 0}, true);
    zoomExtents(*drawing);
    EXPECT_EQ(headerPoint(*drawing, "$EXTMAX", {}), (Point{300, 100, 0}));
    EXPECT_EQ(drawing->record(layouts(*drawing)[0].object).pointOr(15, {}), (Point{300, 100, 0}));
    EXPECT_EQ(drawing->record(layouts(*drawing)[1].object).pointOr(15, {}).x, -1e20);
    const View view = currentView(*drawing);
    EXPECT_EQ(view.center, (Point{150, 50, 0}));
    EXPECT_NEAR(view.height, 204, 1e-9);
    EXPECT_NEAR(view.aspect, 1.5, 1e-9);
    deleteEntity(*drawing, line);
    EXPECT_TRUE(zoomExtents(*drawing).empty());
    EXPECT_EQ(headerPoint(*drawing, "$EXTMIN", {}).x, 1e20);
    EXPECT_EQ(currentView(*drawing).center, (Point{210, 148.5, 0}));
}

// On paper the window shows a viewport of its own: what it looks at is what it covers.
TEST(Zoom, setsTheSheetsViewportOnPaper) {
    const auto drawing = Drawing::createNew(true);
    setHeader(*drawing, "$TILEMODE", 70, 0);
    const RecordId sheet = addEntity(*drawing, "VIEWPORT", "0", true);
    for (const auto& [code, value] : {std::pair{40, 8}, {41, 4}, {68, 1}, {69, 1}, {45, 4}}) {
        drawing->put(sheet, code, value);
    }
    EXPECT_EQ(currentView(*drawing).aspect, 2);
    setView(*drawing, {{30, 40, 0}, 10, 2});
    std::string told;
    const Record record = drawing->record(sheet);
    for (const int code : {10, 20, 12, 22, 40, 41, 45}) {
        told += formatReal(record.realOr(code, -1), 6) + " ";
    }
    EXPECT_EQ(told, "30.0 40.0 30.0 40.0 20.0 10.0 10.0 ");
}

TEST(Zoom, makesTheViewportWhereTheVersionHasOne) {
    const std::string entities = " 0 ENDSEC 0 SECTION 2 ENTITIES 0 LINE 10 0 20 0 11 4 21 8 0 ENDSEC 0 EOF";
    const auto newer = parsed(drawn("0 SECTION 2 HEADER 9 $ACADVER 1 AC1015" + entities));
    zoomExtents(*newer);
    const auto saved = parsed(newer->serialise());
    EXPECT_NEAR(currentView(*saved).height, 8.16, 1e-9);
    EXPECT_EQ(currentView(*saved).center, (Point{2, 4, 0}));
    const auto old = parsed(drawn("0 SECTION 2 HEADER 9 $ACADVER 1 AC1009 9 $VIEWSIZE 40 1" + entities));
    zoomExtents(*old);
    EXPECT_EQ(findEntry(*old, Table::Vport, "*ACTIVE"), NoRecord);
    EXPECT_NEAR(headerReal(*old, "$VIEWSIZE", 0), 8.16, 1e-9);
    const std::string bare = drawn("0 SECTION 2 ENTITIES 0 POINT 10 1 20 1 0 ENDSEC 0 EOF");
    const auto headless = parsed(bare);
    zoomExtents(*headless);
    EXPECT_EQ(headless->serialise(), bare);
}

TEST(Zoom, looksAlongTheViewDirection) {
    const auto drawing =
        parsed(drawn("0 SECTION 2 HEADER 9 $ACADVER 1 AC1015 0 ENDSEC 0 SECTION 2 TABLES 0 TABLE 2 VPORT 0 "
                     "VPORT 2 *Active 12 0 22 0 16 "
                     "0 26 -1 36 0 17 0 27 0 37 10 40 1 41 1 0 ENDTAB 0 ENDSEC 0 SECTION 2 ENTITIES 0 LINE "
                     "10 0 20 0 30 0 11 2 21 50 "
                     "31 30 0 ENDSEC 0 EOF"));
    zoomExtents(*drawing);
    // From the front: x to the right, z up, seen from the target at z = 10.
    EXPECT_NEAR(currentView(*drawing).center.x, 1, 1e-9);
    EXPECT_NEAR(currentView(*drawing).center.y, 5, 1e-9);
    EXPECT_NEAR(currentView(*drawing).height, 30 * 1.02, 1e-9);
}

}  // namespace
}  // namespace drafthost
