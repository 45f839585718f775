// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "drafthost/lisp/FormScanner.h"
#include "drafthost/lisp/Units.h"
#include "drafthost/lisp/WildcardMatch.h"
#include "tests/lisp/FakeHost.h"

namespace drafthost::lisp {
namespace {

class LispLibrary : public testing::Test {
  protected:
    struct Case {
        const char* text;
        const char* shown;
    };
    void check(std::initializer_list<Case> cases) {
        for (const Case& c : cases) {
            EXPECT_EQ(run(world, c.text), c.shown) << c.text;
        }
    }
    FakeHost host;
    World world{host};
};

TEST_F(LispLibrary, HandlesLists) {
    check({
        {"(nth 5 '(1 2))", "nil"},
        {"(last '(1 2 3))", "3"},
        {"(length '(1 . 2))", "; error: bad list: (1 . 2)"},
        {"(append '(1) nil '(2 3))", "(1 2 3)"},
        {"(assoc 2 '((1 . a) (2 . b)))", "(2 . B)"},
        {"(assoc 2 '(1 2))", "; error: bad association list: (1 2)"},
        {"(member '(1) '(0 (1) 2))", "((1) 2)"},
        {"(subst 9 1 '(1 2 1))", "(9 2 9)"},
        {"(cadr '(1 2))", "2"},
        {"(cdar '((1 . 2)))", "2"},
        {"(caddr '(1))", "nil"},
        {"(car 1)", "; error: bad argument type: listp 1"},
        {"(vl-sort '(3 1 2 1) '<)", "(1 1 2 3)"},
        {"(vl-sort '(1 2 3) '(lambda (a b) t))", "(3 2 1)"},
        {"(vl-sort-i '(\"c\" \"a\" \"b\") '<)", "(1 2 0)"},
        {"(acad_strlsort '(\"b\" \"C\" \"a\"))", "(\"a\" \"b\" \"C\")"},
        {"(vl-position 'c '(a b c))", "2"},
        {"(vl-remove-if 'minusp '(1 -2 3))", "(1 3)"},
        {"(vl-some '(lambda (x) (if (> x 1) (* 10 x))) '(1 2 3))", "20"},
        {"(vl-every '< '(1 2) '(2 3 0))", "T"},
        {"(vl-list* 1 2 '(3))", "(1 2 3)"},
        {"(vl-list-length '(1 . 2))", "nil"},
    });
}

TEST_F(LispLibrary, HandlesStrings) {
    check({
        {R"((substr "abcdef" 3 2))", R"("cd")"},
        {R"((substr "abc" 9))", R"("")"},
        {R"((substr "aäöb" 2 2))", R"("äö")"},
        {R"((strlen "äö" "x"))", "3"},
        {R"((list (strcase "Äß" t) (strcase "äb")))", R"(("äß" "ÄB"))"},
        {R"((list (ascii "A") (chr 65) (ascii "")))", R"((65 "A" 0))"},
        {R"((list (atoi "12abc") (atoi "x") (atof "1.5e1x") (itoa -3)))", R"((12 0 15.0 "-3"))"},
        {R"((vl-string-search "c" "äcxc" 2))", "3"},
        {R"((vl-string-subst "X" "b" "abcb"))", R"("aXcb")"},
        {R"((vl-string-translate "abc" "123" "cabbage"))", R"("31221ge")"},
        {R"((vl-string-trim " \t" "\t a b "))", R"("a b")"},
        {R"((vl-string-position 98 "abcb" 0 t))", "3"},
        {R"((vl-list->string (vl-string->list "äx")))", R"("äx")"},
        {R"((read "(a . \"b\") c"))", R"((A . "b"))"},
        {R"((vl-prin1-to-string "a\"b"))", R"("\"a\\\"b\"")"},
        {R"((strcat "a" nil))", "; error: bad argument type: stringp nil"},
    });
}

TEST_F(LispLibrary, WritesAndReadsUnits) {
    check({
        {"(rtos 17.5 1 4)", R"("1.7500E+01")"},
        {"(rtos 17.5 2 2)", R"("17.50")"},
        {"(rtos 17.5 3 2)", R"("1'-5.50\"")"},
        {"(rtos 17.5 4 2)", R"("1'-5 1/2\"")"},
        {"(rtos 17.5 5 2)", R"("17 1/2")"},
        {"(rtos 11.99 4 2)", R"("1'")"},
        {"(rtos -0.5 4 4)", R"("-1/2\"")"},
        {"(rtos -0.001 2 2)", R"("0.00")"},
        {"(angtos 0.785398163 0 4)", R"("45.0000")"},
        {"(angtos 0.785398163 1 4)", R"("45d0'0\"")"},
        {"(angtos 0.785398163 2 4)", R"("50.0000g")"},
        {"(angtos -0.785398163 3 4)", R"("5.4978r")"},
        {"(angtos 0.785398163 4 1)", R"("N 45d0' E")"},
        {R"((distof "1'-5 1/2\"" 4))", "17.5"},
        {R"((distof "17 1/2" 5))", "17.5"},
        {R"((distof "1'" 2))", "nil"},
        {R"((distof "-1.5e1" 1))", "-15.0"},
        {R"((equal (angtof "S 45d30'0\" W") (* pi (/ 224.5 180)) 1e-9))", "T"},
        {R"((equal (angtof "50g") (/ pi 4) 1e-9))", "T"},
        {R"((angtof "45x"))", "nil"},
        {R"((cvunit 1 "minute" "second"))", "60.0"},
        {R"((cvunit 1 "gallon" "furlong"))", "nil"},
        {R"((cvunit 1.0 "sq ft" "inch^2"))", "144.0"},
        {R"((cvunit '(1.0 2.5) "ft" "in"))", "(12.0 30.0)"},
        {R"((cvunit 100 "celsius" "fahrenheit"))", "212.0"},
    });
    host.variables["DIMZIN"] = Value::integer(8);
    EXPECT_EQ(run(world, "(rtos 17.50 2 4)"), "\"17.5\"");
    for (const double value : {0.0, 1.0, 11.96875, 12.0, 1234.5625, -37.25}) {
        for (int mode = 1; mode <= 5; ++mode) {
            const std::string text = formatDistance(value, {.mode = mode, .precision = 8});
            EXPECT_NEAR(parseDistance(text, mode).value_or(-999), value, 1e-4) << text;
        }
    }
}

TEST_F(LispLibrary, ComputesWithPoints) {
    check({
        {"(distance '(0 0) '(3 4))", "5.0"},
        {"(distance '(0 0 0) '(0 0 2))", "2.0"},
        {"(angle '(0 0) '(0 -1))", "4.71239"},
        {"(polar '(1 1) 0 2)", "(3.0 1.0)"},
        {"(inters '(0 0) '(2 2) '(0 2) '(2 0))", "(1.0 1.0)"},
        {"(inters '(0 0) '(1 1) '(0 9) '(9 0))", "nil"},
        {"(inters '(0 0) '(1 1) '(0 9) '(9 0) nil)", "(4.5 4.5)"},
        {"(inters '(0 0) '(1 1) '(0 1) '(1 2))", "nil"},
        {"(trans '(1 2 3) '(0 0 -1) 0)", "(-1.0 2.0 -3.0)"},
        {"(distance nil '(1 2))", "; error: bad argument type: 2D/3D point: nil"},
    });
}

TEST_F(LispLibrary, ReadsAndWritesFiles) {
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("lisp_files_" + std::to_string(::getpid()));
    std::filesystem::create_directory(folder);
    world.set("DIR", Value::string(folder.string() + "/"));
    std::ofstream(folder / "old.txt", std::ios::binary) << "one\r\ntw\xF6\r\n\r\nlast";
    std::ofstream(folder / "prog.lsp", std::ios::binary) << "(setq loaded 5) (+ loaded 1)";
    host.files["prog.lsp"] = (folder / "prog.lsp").string();
    check({
        {R"((setq f (open (strcat dir "old.txt") "r")) (list (read-line f) (read-char f) (read-line f)
              (read-line f) (read-line f) (read-line f)))",
         R"(("one" 116 "wö" "" "last" nil))"},
        {"(close f) (vl-catch-all-error-p (vl-catch-all-apply 'read-line (list f)))", "T"},
        {R"((setq f (open (strcat dir "new.txt") "w")) (write-line "a" f) (princ "b\n" f) (prin1 "c" f) (close f))",
         "nil"},
        {R"((setq f (open (strcat dir "new.txt") "a")) (write-char 100 f) (close f)
            (vl-file-size (strcat dir "new.txt")))",
         "8"},
        {R"((open (strcat dir "none") "r"))", "nil"},
        {R"((open (strcat dir "none") "R"))", R"(; error: bad argument value: open mode "R")"},
        {R"((vl-directory-files dir "*.txt" 1))", R"(("new.txt" "old.txt"))"},
        {"(vl-directory-files dir nil -1)", R"(("." ".."))"},
        {R"((vl-file-copy (strcat dir "new.txt") (strcat dir "old.txt")))", "nil"},
        {R"((vl-file-copy (strcat dir "new.txt") (strcat dir "third.txt")))", "8"},
        {R"((vl-file-rename (strcat dir "new.txt") (strcat dir "third.txt")))", "nil"},
        {R"((vl-file-delete (strcat dir "third.txt")))", "T"},
        {R"((list (vl-filename-base "C:\\a\\b.c.dwg") (vl-filename-extension "/x.y/b")
              (vl-filename-directory "/a/b.dwg")))",
         R"(("b.c" nil "/a"))"},
        {R"((load "prog"))", "6"},
        {R"((load "nothing"))", R"(; error: LOAD failed: "nothing")"},
        {R"((load "nothing" "sorry"))", R"("sorry")"},
    });
    host.lines = {"typed line", "xy"};
    check({{R"((list (read-line) (read-char)))", R"(("typed line" 120))"}});
    std::filesystem::remove_all(folder);
}

TEST(WildcardMatch, KnowsTheHostsPatterns) {
    const struct {
        const char* text;
        const char* pattern;
        bool fits;
    } cases[] = {
        {"Name", "N*", true},
        {"Name", "n*", false},
        {"abc", "a?c", true},
        {"a1", "@#", true},
        {"a1", "#@", false},
        {"-", ".", true},
        {"ä", "@", true},
        {"abc", "~*m*", true},
        {"xm", "~*m*", false},
        {"Name", "???,~*m*,N*", true},
        {"b", "[a-c]", true},
        {"b", "[~a-c]", false},
        {"-", "[-a]", true},
        {"a*b", "a`*b", true},
        {"axb", "a`*b", false},
        {"a,b", "a`,b", true},
        {"", "*", true},
        {"", "", true},
        {"abcabd", "*abd", true},
        {"a[b", "a[b", true},
        {"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", "*a*a*a*a*a*a*a*a*a*a*b", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(wildcardMatch(c.text, c.pattern), c.fits) << c.text << " " << c.pattern;
    }
    EXPECT_TRUE(wildcardMatch("WÄNDE", "wä*", true));
    EXPECT_TRUE(wildcardMatch("Q", "[a-z]", true));
}

TEST(FormScanner, FindsWhereAnExpressionEnds) {
    EXPECT_TRUE(readComplete("(a \")\" ; )\n b)"));
    EXPECT_FALSE(readComplete("(a \")\" ; )"));
    EXPECT_FALSE(readComplete("(a ;| ) |"));
    EXPECT_FALSE(readComplete("(a \"x\\\")"));
    EXPECT_EQ(FormScanner().feed("(a) rest"), 3U);
    EXPECT_EQ(FormScanner().feed("foo bar"), 3U);
    FormScanner inPieces;
    EXPECT_FALSE(inPieces.feed("(setq a \"x"));
    EXPECT_TRUE(inPieces.inString());
    EXPECT_FALSE(inPieces.feed("y\" b '("));
    EXPECT_EQ(inPieces.depth(), 2);
    EXPECT_EQ(inPieces.feed(")) z"), 2U);
}

}  // namespace
}  // namespace drafthost::lisp
