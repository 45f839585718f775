// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <algorithm>

#include "drafthost/drawing/Drawing.h"
#include "tests/automation/FakeHost.h"

namespace drafthost::automation {
namespace {

/// Tags as "code value" between bars or line ends.
std::string tags(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("|\n"), text.size());
        const std::string_view tag = text.substr(0, end);
        const std::size_t blank = std::min(tag.find(' '), tag.size());
        if (!tag.empty()) {
            out += std::string(tag.substr(0, blank)) + "\n" +
                   std::string(tag.substr(std::min(blank + 1, tag.size()))) + "\n";
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return out;
}

constexpr std::string_view DrawingText = R"(0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|9 $HANDSEED|5 100|0 ENDSEC
0 SECTION|2 TABLES
0 TABLE|2 LTYPE|5 5|70 1
0 LTYPE|5 6|330 5|100 AcDbSymbolTableRecord|100 AcDbLinetypeTableRecord|2 Continuous|70 0|3 Solid line|72 65|73 0|40 0.0
0 ENDTAB
0 TABLE|2 LAYER|5 2|70 3
0 LAYER|5 10|330 2|100 AcDbSymbolTableRecord|100 AcDbLayerTableRecord|2 0|70 0|62 7|6 Continuous|370 -3
0 LAYER|5 11|330 2|100 AcDbSymbolTableRecord|100 AcDbLayerTableRecord|2 Walls|70 0|62 3|6 Continuous
0 LAYER|5 12|330 2|100 AcDbSymbolTableRecord|100 AcDbLayerTableRecord|2 Fixed|70 4|62 1|6 Continuous
0 ENDTAB
0 TABLE|2 APPID|5 9|70 1
0 APPID|5 13|330 9|100 AcDbSymbolTableRecord|100 AcDbRegAppTableRecord|2 ACAD|70 0
0 ENDTAB
0 TABLE|2 BLOCK_RECORD|5 1|70 2
0 BLOCK_RECORD|5 1F|330 1|100 AcDbSymbolTableRecord|100 AcDbBlockTableRecord|2 *Model_Space
0 BLOCK_RECORD|5 1E|330 1|100 AcDbSymbolTableRecord|100 AcDbBlockTableRecord|2 Door
0 ENDTAB|0 ENDSEC
0 SECTION|2 BLOCKS
0 BLOCK|5 20|330 1F|100 AcDbEntity|8 0|100 AcDbBlockBegin|2 *Model_Space|70 0|10 0.0|20 0.0|30 0.0|3 *Model_Space|1 
0 ENDBLK|5 21|330 1F|100 AcDbEntity|8 0|100 AcDbBlockEnd
0 BLOCK|5 22|330 1E|100 AcDbEntity|8 0|100 AcDbBlockBegin|2 Door|70 0|10 1.0|20 2.0|30 0.0|3 Door|1 
0 LINE|5 23|330 1E|100 AcDbEntity|8 0|100 AcDbLine|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0
0 ENDBLK|5 24|330 1E|100 AcDbEntity|8 0|100 AcDbBlockEnd
0 ENDSEC
0 SECTION|2 ENTITIES
0 LINE|5 30|330 1F|100 AcDbEntity|8 Walls|62 1|100 AcDbLine|10 0.0|20 0.0|30 0.0|11 10.0|21 5.0|31 0.0
1001 ACAD|1000 note|1070 7
0 CIRCLE|5 31|330 1F|100 AcDbEntity|8 0|100 AcDbCircle|10 4.0|20 4.0|30 0.0|40 2.5
0 LWPOLYLINE|5 32|330 1F|100 AcDbEntity|8 Fixed|100 AcDbPolyline|90 2|70 0|10 0.0|20 0.0|10 100.0|20 50.0
0 TEXT|5 33|330 1F|100 AcDbEntity|8 WALLS|100 AcDbText|10 1.00|20 1.0|30 0.0|40 0.2|1 Hello, world|100 AcDbText
0 ENDSEC
0 SECTION|2 OBJECTS
0 DICTIONARY|5 C|330 0|100 AcDbDictionary|3 OFFICE|350 D
0 DICTIONARY|5 D|330 C|100 AcDbDictionary
0 ENDSEC
0 EOF)";

class LispDrawing : public testing::Test {
  protected:
    LispDrawing() {
        std::string error;
        drawing = Drawing::parse(tags(DrawingText), "test.dxf", error);
        EXPECT_TRUE(drawing) << error;
        host.currentDrawing = drawing.get();
        run(world, R"((defun ent (h) (handent h))
            (defun handles (ss / i r)
              (setq i (if ss (sslength ss) 0))
              (while (> i 0)
                (setq i (1- i) r (cons (cdr (assoc 5 (entget (ssname ss i)))) r))))
            (defun dxf (code h) (cdr (assoc code (entget (handent h)))))
            (defun all (code l) (vl-remove-if-not '(lambda (p) (= (car p) code)) l)))");
    }
    struct Case {
        const char* text;
        const char* shown;
    };
    void check(std::initializer_list<Case> cases) {
        for (const Case& c : cases) {
            EXPECT_EQ(run(world, c.text), c.shown) << c.text;
        }
    }
    std::unique_ptr<Drawing> drawing;
    FakeHost host;
    Session session{host};
    lisp::World& world = session.world();
};

TEST_F(LispDrawing, ShowsRecordsAsLists) {
    check({
        {R"((vl-remove-if '(lambda (p) (member (car p) '(-1 330))) (entget (ent "30") '("*"))))",
         R"(((0 . "LINE") (5 . "30") (100 . "AcDbEntity") (67 . 0) (410 . "Model") (8 . "Walls") (62 . 1) )"
         R"((100 . "AcDbLine") (10 0.0 0.0 0.0) (11 10.0 5.0 0.0) (210 0.0 0.0 1.0) (-3 ("ACAD" (1000 . "note") (1070 . 7)))))"},
        {R"((assoc -3 (entget (ent "30"))))", "nil"},
        {R"((all 10 (entget (ent "32"))))", "((10 0.0 0.0) (10 100.0 50.0))"},
        {R"((equal (dxf 330 "30") (ent "1F")))", "T"},
        {R"((eq (cdr (assoc -1 (entget (entnext)))) (ent "30")))", "T"},
        {R"((eq (entlast) (ent "33")))", "T"},
        {R"((ent "999"))", "nil"},
        {"(entget nil)", "; error: bad argument type: lentityp nil"},
        {"(entnext (entlast))", "nil"},
        {"(cdr (assoc 5 (entget (entnext (entnext)))))", "\"31\""},
    });
    EXPECT_TRUE(run(world, "(entlast)").starts_with("<Entity name: 7ff"));
    EXPECT_FALSE(drawing->modified());
}

TEST_F(LispDrawing, WalksTables) {
    check({
        {R"((tblsearch "layer" "WALLS"))",
         R"(((0 . "LAYER") (2 . "Walls") (70 . 0) (62 . 3) (6 . "Continuous")))"},
        {R"((tblsearch "LAYER" "none"))", "nil"},
        {R"((setq names nil) (while (setq l (tblnext "LAYER" (null names)))
              (setq names (cons (cdr (assoc 2 l)) names))))",
         R"(("Fixed" "Walls" "0"))"},
        {R"((tblsearch "LAYER" "0" t) (cdr (assoc 2 (tblnext "LAYER"))))", "\"Walls\""},
        {R"((vl-remove-if '(lambda (p) (= (car p) -2)) (tblnext "BLOCK" t)))",
         R"(((0 . "BLOCK") (2 . "Door") (70 . 0) (10 1.0 2.0 0.0)))"},
        {R"((tblnext "BLOCK"))", "nil"},
        {R"((setq first (cdr (assoc -2 (tblsearch "BLOCK" "door")))) (cdr (assoc 0 (entget first))))",
         "\"LINE\""},
        {"(entnext first)", "nil"},
        {R"((cdr (assoc 62 (entget (tblobjname "LAYER" "walls")))))", "3"},
        {R"((list (snvalid "a*b") (snvalid "a|b" 1) (snvalid "")))", "(nil T nil)"},
        {R"((list (regapp "MINE") (regapp "mine")))", R"(("MINE" nil))"},
    });
}

TEST_F(LispDrawing, KeepsDictionaries) {
    check({
        {R"((cdr (assoc 5 (dictsearch (namedobjdict) "office"))))", "\"D\""},
        {R"((setq d (ent "D") x (entmakex '((0 . "XRECORD") (100 . "AcDbXrecord") (1 . "kept") (70 . 4))))
            (eq x (dictadd d "MINE" x)))",
         "T"},
        {R"((cdr (assoc 1 (dictsearch d "MINE"))))", "\"kept\""},
        {R"((eq d (cdr (assoc 330 (dictnext d t)))))", "T"},
        {"(dictnext d)", "nil"},
        {R"((eq x (dictremove d "mine")))", "T"},
        {R"((dictsearch d "MINE"))", "nil"},
        {R"((vl-catch-all-error-p (vl-catch-all-apply 'dictsearch (list (ent "30") "MINE"))))", "T"},
    });
}

TEST_F(LispDrawing, ModifiesOnlyWhatDiffers) {
    const std::string before = drawing->serialise();
    run(world, R"((entmod (entget (ent "30") '("*"))))");
    EXPECT_FALSE(drawing->modified());
    check({
        {R"((setq e (entget (ent "30"))) (cdr (assoc 8 (entmod (subst '(8 . "Neu") (assoc 8 e) e)))))",
         "\"Neu\""},
        {R"((cdr (assoc 62 (tblsearch "LAYER" "NEU"))))", "7"},
        {R"((entmod (list (cons -1 (ent "31")) '(62 . 5) '(10 1.5 2.5 0.0))) (list (dxf 62 "31") (dxf 10 "31")))",
         "(5 (1.5 2.5 0.0))"},
        {R"((entmod (subst '(5 . "99") '(5 . "30") e)))", "nil"},
        {R"((entmod (subst '(0 . "ARC") '(0 . "LINE") e)))", "nil"},
        {R"((entmod (list (cons -1 (ent "32")) '(62 . 5))))", "nil"},
        {R"((entmod (list (cons -1 (ent "30")) '(6 . "NOLINE"))))", "nil"},
        {R"((entmod (list (cons -1 (ent "30")) '(62 . "A"))))", R"(; error: bad DXF group: (62 . "A"))"},
        {"(entmod '(1 2))", "; error: bad association list: (1 2)"},
        {R"((entmod (list (cons -1 (tblobjname "LAYER" "Fixed")) '(70 . 0))) (tblsearch "LAYER" "Fixed"))",
         R"(((0 . "LAYER") (2 . "Fixed") (70 . 0) (62 . 1) (6 . "Continuous")))"},
        {R"((entmod (append (subst '(90 . 3) '(90 . 2) (entget (ent "32"))) '((10 7.0 8.0))))
            (list (dxf 90 "32") (dxf 8 "32") (mapcar 'cdr (all 10 (entget (ent "32"))))))",
         R"((3 "Fixed" ((0.0 0.0) (100.0 50.0) (7.0 8.0))))"},
        {R"((entmod (list (cons -1 (ent "31")) '(-3 ("ACAD" (1000 . "x")))))
            (cdr (assoc -3 (entget (ent "31") '("ACAD")))))",
         R"((("ACAD" (1000 . "x"))))"},
    });
    // The text entity was never touched: its bytes are still there as they were.
    const std::string after = drawing->serialise();
    const std::size_t text = before.find("0\nTEXT\n");
    EXPECT_NE(after.find(before.substr(text, before.find("0\nENDSEC", text) - text)), std::string::npos);
    EXPECT_NE(after.find("8\nNeu\n62\n1\n100\nAcDbLine"), std::string::npos);
}

TEST_F(LispDrawing, MakesAndDeletes) {
    check({
        {R"((cdr (assoc 8 (entmake '((0 . "LINE") (8 . "Fresh") (62 . 2) (10 0.0 0.0 0.0) (11 1.0 1.0 0.0))))))",
         "\"Fresh\""},
        {"(mapcar 'car (entget (entlast)))", "(-1 0 330 5 100 67 410 8 62 100 10 11 210)"},
        {R"((entmake '((0 . "CIRCLE") (10 0.0 0.0))))", "nil"},
        {R"((entmake '((0 . "INSERT") (2 . "None") (10 0.0 0.0))))", "nil"},
        {R"((entmake '((0 . "LAYER") (100 . "AcDbSymbolTableRecord") (100 . "AcDbLayerTableRecord")
              (2 . "L9") (70 . 0) (62 . 30) (6 . "Continuous"))) (tblsearch "LAYER" "L9"))",
         R"(((0 . "LAYER") (2 . "L9") (70 . 0) (62 . 30) (6 . "Continuous")))"},
        {R"((setq c (ent "31")) (entdel c) (list (entget c) (handles (ssget "X" '((0 . "CIRCLE"))))))",
         "(nil nil)"},
        {R"((entdel c) (handles (ssget "X" '((0 . "CIRCLE")))))", R"(("31"))"},
        {R"((entdel (ent "32")))", "nil"},
        {R"((entmake '((0 . "POLYLINE") (66 . 1))) (entmake '((0 . "VERTEX") (10 1.0 1.0 0.0)))
            (entmake '((0 . "SEQEND"))) (entmake '((0 . "VERTEX") (10 1.0 1.0 0.0))))",
         "nil"},
        {R"((setq p (entlast)) (list (cdr (assoc 0 (entget p))) (cdr (assoc 0 (entget (entnext p))))
              (eq p (cdr (assoc 330 (entget (entnext p)))))))",
         R"(("POLYLINE" "VERTEX" T))"},
        {"(entdel p) (eq p (entlast))", "nil"},
    });
    EXPECT_GT(host.changes, 0);
}

TEST_F(LispDrawing, SelectsByFilters) {
    const struct {
        const char* filter;
        const char* handles;
    } cases[] = {
        {"nil", R"(("30" "31" "32" "33"))"},
        {R"('((0 . "line,C*")))", R"(("30" "31"))"},
        {R"('((8 . "walls")))", R"(("30" "33"))"},
        {R"('((8 . "~W*")))", R"(("31" "32"))"},
        {"'((62 . 256))", R"(("31" "32" "33"))"},
        {R"('((0 . "CIRCLE") (-4 . ">=") (40 . 2.5)))", R"(("31"))"},
        {R"('((-4 . ">") (40 . 2.5)))", "nil"},
        {R"('((-4 . "<or") (0 . "TEXT") (-4 . "<AND") (0 . "LINE") (62 . 1) (-4 . "AND>") (-4 . "OR>")))",
         R"(("30" "33"))"},
        {R"('((-4 . "<NOT") (0 . "LINE") (-4 . "NOT>")))", R"(("31" "32" "33"))"},
        {R"('((-4 . "<XOR") (0 . "LINE") (8 . "Walls") (-4 . "XOR>")))", R"(("33"))"},
        {R"('((-4 . "&") (70 . 1)))", "nil"},
        {R"('((-4 . ">,>,*") (10 50.0 20.0 0.0)))", R"(("32"))"},
        {R"('((-3 ("ACAD"))))", R"(("30"))"},
        {R"('((67 . 0) (410 . "Model") (0 . "TEXT")))", R"(("33"))"},
        {R"('((410 . "Layout1")))", "nil"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(run(world, std::string("(handles (ssget \"_X\" ") + c.filter + "))"), c.handles)
            << c.filter;
    }
    check({
        {R"((ssget "X" '((-4 . "<OR") (0 . "LINE"))))",
         R"(; error: bad SSGET list: ((-4 . "<OR") (0 . "LINE")))"},
        {R"((ssget "X" '((62 . "A"))))", R"(; error: bad SSGET list value: (62 . "A"))"},
        {R"((setq f '((0 . "LINE"))) (repeat 1000000 (setq f (cons '(-4 . "<NOT") f))) (ssget "X" f))",
         "; error: hard error occurred *** internal stack limit reached (simulated)"},
        {R"((setq f nil))", "nil"},
        {R"((ssget "Q"))", R"(; error: bad SSGET mode string: "Q")"},
        {R"((handles (ssget "A")))", R"(("30" "31" "33"))"},
        {R"((handles (ssget "L")))", R"(("33"))"},
        {R"((handles (ssget "P")))", R"(("33"))"},
        {R"((handles (ssget "W" '(1.2 1.2) '(7 7))))", R"(("31"))"},
        {R"((ssget "I"))", "nil"},
        {R"((setq ss (ssadd)) (ssadd (ent "30") ss) (ssadd (ent "30") ss) (sslength ss))", "1"},
        {R"((ssmemb (ent "31") ss))", "nil"},
        {R"((ssdel (ent "30") ss) (list (sslength ss) (ssname ss 0)))", "(0 nil)"},
        {"(sslength nil)", "; error: bad argument type: lselsetp nil"},
    });
    host.answers = {PromptAnswer::fromText("all"), PromptAnswer::fromText("")};
    EXPECT_EQ(run(world, R"((handles (ssget '((0 . "TEXT")))))"), R"(("33"))");
}

TEST_F(LispDrawing, AnswersThatSelectNothingKnownAreRefused) {
    host.retry = true;
    const auto answer = [&](std::vector<std::string> texts, const char* call) {
        host.answers.clear();
        host.refusals.clear();
        for (std::string& text : texts) {
            host.answers.push_back(PromptAnswer::fromText(std::move(text)));
        }
        return run(world, call);
    };
    EXPECT_EQ(answer({"foo", "_wp", "_all", ""}, "(handles (ssget))"), R"(("30" "31" "33"))");
    EXPECT_THAT(host.refusals, testing::ElementsAre("\"foo\" names no object to select.",
                                                    testing::HasSubstr("cannot be picked by WPolygon")));
    EXPECT_EQ(answer({"31", "_l", "0,90", "_w", "1.2,1.2", "7,7", ""}, "(handles (ssget))"),
              R"(("31" "33"))");
    EXPECT_THAT(host.refusals, testing::IsEmpty());
    for (const char* call : {"(entsel)", "(nentsel)"}) {
        EXPECT_EQ(answer({"foo", "0,90"}, call), "nil");
        EXPECT_THAT(host.refusals, testing::ElementsAre("Invalid selection.")) << call;
    }
    host.retry = false;
    EXPECT_THAT(answer({"foo"}, "(ssget)"), testing::HasSubstr("cancelled"));
}

}  // namespace
}  // namespace drafthost::automation
