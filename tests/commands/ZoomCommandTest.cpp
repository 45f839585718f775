// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"
#include "tests/commands/TestDrawings.h"
#include "tests/commands/TestHost.h"

namespace drafthost::test {

namespace {

/// The drawing's view begins at centre 5,4 with height 10, twice as wide as high.
class Zoom : public TestHost {
  protected:
    Zoom() { open(write("plan.dxf", drawing2000())); }
    void expectView(double x, double y, double height) {
        Point center = std::get<Point>(variable("VIEWCTR"));
        EXPECT_NEAR(center[0], x, 1e-9) << output;
        EXPECT_NEAR(center[1], y, 1e-9) << output;
        EXPECT_NEAR(std::get<double>(variable("VIEWSIZE")), height, 1e-9) << output;
        EXPECT_TRUE(idle()) << output;
    }
};

TEST_F(Zoom, ScalesAndWindows) {
    type("zoom 2x\n");
    expectView(5, 4, 5);
    type("z s .5x\n");
    expectView(5, 4, 10);
    type("zoom 2\n");  // limits are 40 by 30: all of them are 30 high
    expectView(5, 4, 15);
    type("zoom w 0,0 10,8\n");
    expectView(5, 4, 8);
    type("zoom 0,0 40,10\n");  // width counts: 40 wide is 20 high
    expectView(20, 5, 20);
    type("zoom c 1,2 6\n");
    expectView(1, 2, 6);
    type("zoom c 3,4 2x\n");
    expectView(3, 4, 3);
    type("zoom p\n");
    expectView(1, 2, 6);
    type("zoom p\nzoom p\n");
    expectView(5, 4, 8);
}

TEST_F(Zoom, APointMeansTheSameToACommandAndToLisp) {
    const std::string rules =
        "(mapcar 'setvar '(\"LUNITS\" \"AUNITS\" \"ANGBASE\" \"ANGDIR\" \"LASTPOINT\") '(4 2 0.5 1 (1.0 1.0 "
        "0.0)))\n";
    for (const std::string answer : {"1'2,6", "@3,4", "@2<50", "1'<50d", "*1-1/2,2", "#3,4", "@"}) {
        type(rules + "zoom c " + answer + " 10\n");
        const Point ofCommand = std::get<Point>(variable("VIEWCTR"));
        type(rules + "(setq p (getpoint))\n" + answer + "\n(setvar \"VIEWCTR\" p)\n");
        output.clear();
        type("(< (distance p '(" + std::to_string(ofCommand[0]) + " " + std::to_string(ofCommand[1]) +
             ")) 1e-5)\n");
        EXPECT_NE(output.find("\nT\n"), std::string::npos) << answer << output;
        EXPECT_TRUE(idle());
    }
    type("(setvar \"LASTPOINT\" '(0.0 0.0 0.0))\nzoom c 1',0 1'\n");
    expectView(12, 0, 12);
}

// Points are typed in the user's coordinates; the drawing keeps the centre as the display sees it.
TEST_F(Zoom, PointsAreTheUsersAndTheViewIsTheDisplays) {
    Drawing& drawing = document().drawing();
    const auto expectKept = [&](double x, double y) {
        type("zoom c 3,4 6\n");
        EXPECT_NEAR(currentView(document().drawing()).center.x, x, 1e-9) << output;
        EXPECT_NEAR(currentView(document().drawing()).center.y, y, 1e-9) << output;
        expectView(3, 4, 6);
    };
    const auto setUcs = [&](const Point& origin, const Point& x, const Point& y) {
        setHeaderPoint(drawing, "$UCSORG", origin, 3);
        setHeaderPoint(drawing, "$UCSXDIR", x, 3);
        setHeaderPoint(drawing, "$UCSYDIR", y, 3);
    };
    setUcs({10, 20, 0}, {0, 1, 0}, {-1, 0, 0});
    expectKept(6, 23);
    EXPECT_EQ(integer("WORLDUCS"), 0);
    // Axes that span nothing are none.
    setUcs({10, 20, 0}, {1, 0, 0}, {1, 0, 0});
    expectKept(13, 24);
    setUcs({0, 0, 0}, {1, 0, 0}, {0, 1, 0});
    expectKept(3, 4);
    EXPECT_EQ(integer("WORLDUCS"), 1);
    // From the front, onto a target at z = 10, and then turned by a quarter.
    const RecordId view = findEntry(drawing, Table::Vport, "*ACTIVE");
    drawing.putPoint(view, 16, {0, -1, 0}, true);
    drawing.putPoint(view, 17, {0, 0, 10}, true);
    type("zoom c 3,4 6\n");
    EXPECT_EQ(currentView(drawing).center, (Point{3, -10, 0}));
    drawing.put(view, 51, 90.0);
    type("zoom c 3,4 6\n");
    EXPECT_NEAR(currentView(drawing).center.x, 10, 1e-9);
    EXPECT_NEAR(currentView(drawing).center.y, 3, 1e-9);
    // A drawing that says nothing of all this.
    open(write("bare.dxf",
               "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n"
               "0\nENDSEC\n0\nEOF\n"));
    expectKept(3, 4);
    EXPECT_EQ(integer("WORLDUCS"), 1);
}

TEST_F(Zoom, ExtentsAllAndObjectsComeFromTheEntities) {
    EXPECT_EQ(std::get<Point>(variable("EXTMAX")), (Point{2, 2, 0})) << "as the file says";
    type("zoom e\n");
    EXPECT_EQ(std::get<Point>(variable("EXTMIN")), (Point{0, 0, 0}));
    EXPECT_EQ(std::get<Point>(variable("EXTMAX")), (Point{30, 20, 0}));
    expectView(15, 10, 20);
    type("zoom all\n");
    expectView(20, 15, 30);
    type("zoom o l\n\n");  // the last entity of model space: paper space has its own
    type("zoom o 41\n\n");
    expectView(10, 10, 4);
    type("(command \"_.zoom\" \"_o\" (ssget \"X\" '((0 . \"LINE\"))) \"\")\n");
    expectView(15, 10, 20);
    type("(command \"_.zoom\" \"_o\" (handent \"41\") \"\")\n");
    expectView(10, 10, 4);
    type("zoom o all\n\n");
    expectView(15, 10, 20);
    EXPECT_EQ(integer("DBMOD"), 16) << "extents that are worked out again are no change of their own";
    type("qsave\n");
    std::string saved = read(path("plan.dxf"));
    EXPECT_NE(saved.find("$EXTMAX\n 10\n30.0\n 20\n20.0\n"), std::string::npos);
    EXPECT_NE(saved.find(" 12\n15.0\n 22\n10.0\n"), std::string::npos);
}

TEST_F(Zoom, AllMeansTheSameToACommandAndToLisp) {
    const std::string show =
        "(progn (setq i -1 h nil) (repeat (sslength s) (setq h (cons (cdr (assoc 5 (entget (ssname s (setq i "
        "(1+ i)))))) h))) (print h))\n";
    const auto expectBoth = [&](const std::string& handles) {
        output.clear();
        type("(setq s (ssget \"A\"))\n" + show);
        EXPECT_NE(output.find(handles), std::string::npos) << output;
        output.clear();
        type("zoom o all\n\n(setq s (ssget \"P\"))\n" + show);
        EXPECT_NE(output.find(handles), std::string::npos) << output;
    };
    expectBoth("(\"41\" \"40\")");
    type("-layer lock Walls\n\n");
    expectBoth("(\"41\")");
    type("-layer unlock Walls freeze Walls\n\n");
    expectBoth("(\"41\")");
    type("-layer thaw Walls off Walls\n\n\n");
    expectBoth("(\"41\" \"40\")");
    type("(setvar \"TILEMODE\" 0)\n");
    expectBoth("(\"65\")");
}

TEST_F(Zoom, WhatCannotBeShownIsRefusedAndTheViewStays) {
    for (const char* line : {"zoom d\n", "zoom p\n", "zoom 2xp\n", "zoom\n\n", "zoom 1,1 1,1\n"}) {
        type(line);
        expectView(5, 4, 10);
        EXPECT_GT(output.size(), 20u) << line;
    }
    type("zoom -2 0 e12z 1,2,3,4 2x\n");
    expectView(5, 4, 5);
    type("zoom o w 1F\n");
    EXPECT_FALSE(idle());
    type("\x1b");
}

TEST_F(Zoom, ALayoutAndAnOldDrawingHaveTheirViewsToo) {
    open(write("old.dxf", drawingR12()));
    type("zoom e\n");
    EXPECT_EQ(std::get<Point>(variable("EXTMIN")), (Point{1, 2, 0}));
    type("qsave\n");
    EXPECT_NE(read(path("old.dxf")).find("$EXTMAX\n 10\n5.0\n 20\n4.0\n"), std::string::npos);
    host.newDocument();
    type("zoom e\n");
    EXPECT_EQ(std::get<Point>(variable("EXTMIN"))[0], 1e20) << "an empty drawing has no extents";
    EXPECT_LT(std::get<double>(variable("VIEWSIZE")), 1e6);
}

}  // namespace

}  // namespace drafthost::test
