// SPDX-License-Identifier: GPL-3.0-or-later
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "drafthost/base/MemoryLimit.h"
#include "tests/lisp/FakeHost.h"

namespace drafthost::lisp {
namespace {

using testing::ElementsAre;

struct Case {
    const char* text;
    const char* shown;
};

std::string withoutAddress(const std::string& text) {
    const std::size_t at = text.find('@');
    return at == std::string::npos ? text : text.substr(0, at + 1);
}

#if defined(__SANITIZE_ADDRESS__)
// Its frames are several times as large, on a third of the stack, and what is freed stays with it for long.
constexpr bool Sanitized = true;
constexpr const char* Depth = "4000";
#else
constexpr bool Sanitized = false;
constexpr const char* Depth = "20000";
#endif

class Lisp : public testing::Test {
  protected:
    void check(std::initializer_list<Case> cases) {
        for (const Case& c : cases) {
            EXPECT_EQ(withoutAddress(run(world, c.text)), c.shown) << c.text;
        }
    }
    FakeHost host;
    World world{host};
};

TEST_F(Lisp, ReadsAndShowsValues) {
    check({
        {"'(a . b)", "(A . B)"},
        {"'(a b . c)", "(A B . C)"},
        {"'(1 . (2 3))", "(1 2 3)"},
        {"''x", "(QUOTE X)"},
        {"()", "nil"},
        {"2147483647", "2147483647"},
        {"2147483648", "2.14748e+09"},
        {"-12", "-12"},
        {"+5", "5"},
        {"1e3", "1000.0"},
        {"5.", "5.0"},
        {"1+", "#<SUBR @"},
        {R"("a\\b\"c\n\101\U+00e9\q")", R"("a\\b\"c\nAéq")"},
        {"; a comment\n 1 ;| a block\n ; |; 2", "2"},
        {"(1 2", "; error: malformed list on input"},
        {"\"abc", "; error: malformed string on input"},
        {")", "; error: extra right paren on input"},
        {"'( . a)", "; error: misplaced dot on input"},
        {"'(a . )", "; error: misplaced dot on input"},
        {"'(a . b c)", "; error: misplaced dot on input"},
        {"\"\\8\"", "; error: bad character in octal"},
    });
}

TEST_F(Lisp, ComputesWithIntegersAndReals) {
    check({
        {"(+ 1 2 3)", "6"},
        {"(+)", "0"},
        {"(+ 2147483647 1)", "-2147483648"},
        {"(* 65536 65536)", "0"},
        {"(- 5)", "-5"},
        {"(- -2147483648)", "-2147483648"},
        {"(/ 7 2)", "3"},
        {"(/ -7 2)", "-3"},
        {"(/ -2147483648 -1)", "-2147483648"},
        {"(/ 7 2.0)", "3.5"},
        {"(/ 7 2 2.0)", "1.5"},
        {"(/ 1 0)", "; error: divide by zero"},
        {"(rem -7 3)", "-1"},
        {"(rem -2147483648 -1)", "0"},
        {"(max 1 2.5 2)", "2.5"},
        {"(max 3 2.5)", "3.0"},
        {"(fix -2.9)", "-2"},
        {"(fix 3e9)", "3.0e+09"},
        {"(expt 2 10)", "1024"},
        {"(expt 2 -1)", "0"},
        {"(expt 2 0.5)", "1.41421"},
        {"(sqrt 2)", "1.41421"},
        {"(atan 1 -1)", "2.35619"},
        {"(gcd 54 -24)", "6"},
        {"(logand 7 15 3)", "3"},
        {"(~ 3)", "-4"},
        {"(lsh 1 31)", "-2147483648"},
        {"(lsh -1 -1)", "2147483647"},
        {"(boole 6 12 5)", "9"},
        {"(1+ 1.5)", "2.5"},
        {"(< 1 2 2)", "nil"},
        {"(<= 1 2 2.0)", "T"},
        {"(> \"b\" \"a\")", "T"},
        {"(= 1 1.0)", "T"},
        {"(= \"a\" \"a\")", "T"},
        {"(/= 1 2)", "T"},
        {"(equal '(1 2.0) '(1 2.00001) 0.001)", "T"},
        {"(equal '(1 2.0) '(1 2.00001))", "nil"},
        {"(eq '(1) '(1))", "nil"},
        {"(+ 1 \"2\")", "; error: bad argument type: numberp: \"2\""},
        {"(logand 1.5)", "; error: bad argument type: fixnump: 1.5"},
    });
}

TEST_F(Lisp, ScopesAreDynamicAndRestored) {
    check({
        {"(setq x 1) (defun show () x) (defun f (x / y) (setq y 5) (show)) (f 2)", "2"},
        {"x", "1"},
        {"y", "nil"},
        {"(defun g (x) (setq z x) (/ x 0)) (g 9)", "; error: divide by zero"},
        {"(list x z)", "(1 9)"},
        {"(foreach x '(1 2 3) (setq last x)) (list x last)", "(1 3)"},
        {"(defun h (a / b) a) (h)", "; error: too few arguments"},
        {"(h 1 2)", "; error: too many arguments"},
        {"(defun d (a a) a)", "; error: duplicate argument name: A"},
        {"(foo 1)", "; error: no function definition: FOO"},
        {"(setq n 1) (n)", "; error: bad function: 1"},
        {"(1 2)", "; error: bad function: 1"},
        {"(setq nil 1)", "; error: bad argument type: symbolp nil"},
        {"((lambda (a b) (+ a b)) 1 2)", "3"},
        {"(mapcar '(lambda (a b) (list a b)) '(1 2 3) '(x y))", "((1 X) (2 Y))"},
        {"(apply 'and '(1 2 nil))", "nil"},
        {"(defun-q old (a) (* a 2)) (list (old 4) old)", "(8 ((A) (* A 2)))"},
        {"(cond ((= 1 2) 3) ((member 2 '(1 2 3))))", "(2 3)"},
        {"(if nil 1)", "nil"},
        {"(if 1 2 3 4)", "; error: too many arguments"},
        {"(setq i 0) (while (< i 5) (setq i (1+ i)))", "5"},
        {"(repeat 3 (setq i (1+ i)))", "8"},
        {"(repeat 1.5 1)", "; error: bad argument type: fixnump: 1.5"},
        {"(list (type 1) (type \"\") (type 'a) (type car) (type h) (type nil))",
         "(INT STR SYM SUBR USUBR nil)"},
        {"(or nil 5)", "T"},
        {"(princ)", ""},
    });
}

TEST_F(Lisp, EvaluatesAllArgumentsBeforeItChecksThem) {
    EXPECT_EQ(run(world, "(strcat 1 (setq seen 2))"), "; error: bad argument type: stringp 1");
    EXPECT_EQ(run(world, "seen"), "2");
}

TEST_F(Lisp, ErrorHandlerSeesTheLocalsOfTheFailedFunction) {
    world.set("OUTER", Value::integer(7));
    EXPECT_EQ(run(world, R"((defun f (outer / *error*)
        (defun *error* (text) (setq caught (list text outer)) (princ))
        (inner))
      (defun inner (/ deep) (car 5))
      (f 3))"),
              "; error: bad argument type: listp 5");
    EXPECT_EQ(run(world, "(list caught outer *error*)"), "((\"bad argument type: listp 5\" 3) 7 nil)");

    const EvalResult handled = world.evaluate("(f 4)");
    EXPECT_TRUE(handled.handled);
    const EvalResult plain = world.evaluate("(car 5)");
    EXPECT_FALSE(plain.handled);

    // A handler that fails itself is not called again.
    EXPECT_EQ(run(world, "(defun *error* (m) (setq calls (1+ calls)) (/ 1 0)) (setq calls 0) (exit)"),
              "; error: divide by zero");
    EXPECT_EQ(run(world, "calls"), "1");
}

TEST_F(Lisp, CatchesWhatCanBeCaught) {
    check({
        {"(setq e (vl-catch-all-apply '/ '(1 0))) (vl-catch-all-error-p e)", "T"},
        {"(vl-catch-all-error-message e)", "\"divide by zero\""},
        {"(vl-catch-all-apply '+ '(1 2))", "3"},
        {"(setq *error* '((m) (setq called m))) (vl-catch-all-apply 'exit) called", "nil"},
        {"(defun f (a / b) (setq b a) (car a)) (vl-catch-all-apply 'f '(5)) (list 'a a b)", "(A nil nil)"},
        {"(setq *error* nil) (exit)", "; error: quit / exit abort"},
    });
}

TEST_F(Lisp, EndlessProgramsEndAtACancel) {
    for (const char* text : {"(while t)", "(while t (vl-catch-all-apply '(lambda () (while t))))",
                             "(defun f () (f2)) (defun f2 () nil) (while t (f))", "(repeat 2147483647)"}) {
        host.cancelPending = true;
        const EvalResult result = world.evaluate(text);
        EXPECT_EQ(result.status, EvalResult::Status::Cancelled) << text;
        EXPECT_EQ(result.text, "Function cancelled") << text;
    }
    EXPECT_FALSE(world.evaluating());
}

TEST_F(Lisp, WhatGrowsWithoutEndIsStoppedAtTheHostsMemory) {
    // Whatever the process holds already counts.
    std::size_t limit = std::size_t{256} << 20;
    for (setMemoryLimit(limit); !programHasMemoryFor(limit / 2); setMemoryLimit(limit)) {
        limit *= 2;
    }
    check({
        {"(while t (setq l (cons 1 l)))", "; error: insufficient memory"},
        {"(while t (setq l (cons 1 l)))", "; error: insufficient memory"},
        {"(progn (repeat 100000 (list 1)) (length (list 1 2 3)))", "3"},
        {"(setq l nil s \"x\") (while t (setq s (strcat s s)))", "; error: insufficient memory"},
        {"(setq s nil) (vl-catch-all-apply '(lambda () (while t (setq l (list l l)))))",
         "; error: insufficient memory"},
    });
    if (!Sanitized) {
        check({{"(setq l nil) (repeat 100000 (setq l (cons 1 l))) (length l)", "100000"}});
    }
    setMemoryLimit(DefaultMemoryLimit);
    EXPECT_TRUE(programHasMemoryFor(0));
}

TEST_F(Lisp, WhatIsNoFileHasAnEndAllTheSame) {
    check({
        {"(vl-catch-all-error-message (vl-catch-all-apply 'open '(\"/dev/zero\" \"r\")))",
         "\"no end of the file within 64 MB: \\\"/dev/zero\\\"\""},
        {"(setq f (open \"/dev/null\" \"r\")) (read-line f)", "nil"},
    });
    const std::string path = testing::TempDir() + "/lisp-pipe-" + std::to_string(::getpid());
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(run(world, "(open \"" + path + "\" \"w\")"), "nil");
    const int writer = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    host.cancelPending = true;
    EXPECT_EQ(world.evaluate("(open \"" + path + "\" \"r\")").status, EvalResult::Status::Cancelled);
    ::close(writer);
    ::unlink(path.c_str());
}

TEST_F(Lisp, DepthIsLimitedAndFreeingIsNot) {
    world.set("DEPTH", Value::integer(std::stoi(Depth)));
    constexpr const char* Limit = "; error: hard error occurred *** internal stack limit reached (simulated)";
    check({
        {"(defun f (n / a b c) (1+ (f (1+ n)))) (f 0)", Limit},
        {"(defun g (l) (mapcar 'g (list l))) (g 1)", Limit},
        {"(defun *error* (m) (g 1)) (f 0)", Limit},
        {"(setq *error* nil) (repeat 300000 (setq deep (list deep))) (strlen (vl-prin1-to-string deep))",
         "600003"},
        {"(setq other nil) (repeat 300000 (setq other (list other))) (equal deep other)", "T"},
        {"(setq deep nil other nil)", "nil"},
        {"(defun up (n) (if (> n 0) (1+ (up (1- n))) 0)) (up depth)", Depth},
        {"(defun down (n / r) (cond ((> n 0) (progn (foreach x '(1) (repeat 1 (setq r (apply 'down "
         "(list (1- n)))))) r)) (t 'bottom))) (down depth)",
         "BOTTOM"},
        {"(setq l nil) (repeat 1000000 (setq l (cons 1 l))) (length (append (reverse l) l))", "2000000"},
        {"(equal l (mapcar '+ l)) ", "T"},
        {"(strlen (vl-prin1-to-string l))", "2000001"},
    });
    const std::string nested(400000, '(');
    EXPECT_EQ(run(world, nested), "; error: malformed list on input");
    EXPECT_EQ(run(world, std::string(200000, '\'') + "a"), run(world, std::string(200000, '\'') + "A"));
}

TEST_F(Lisp, CallsFunctionsOfModules) {
    host.onModule = [](const Exsubr& f, std::span<const Value> args, Value& result) {
        result = Value::integer(f.code * 100 + static_cast<int>(args.size()));
        return f.code != 9;
    };
    world.defineModuleFunction("tnl_go", 3, 4);
    world.defineModuleFunction("bad", 3, 9);
    check({
        {"(TNL_GO 1 \"x\")", "402"},
        {"(mapcar 'tnl_go '(1 2))", "(401 401)"},
        {"(type tnl_go)", "EXSUBR"},
        {"(bad)", "; error: AutoCAD rejected function"},
    });
    EXPECT_TRUE(world.isExposed("TNL_GO"));
    world.undefineModule(3);
    EXPECT_EQ(run(world, "(tnl_go)"), "; error: no function definition: TNL_GO");
    run(world, "(defun c:job () 1) (defun plain () 1) (vl-acad-defun 'plain2) (defun plain2 () 2)");
    EXPECT_TRUE(world.isExposed("C:JOB"));
    EXPECT_FALSE(world.isExposed("PLAIN"));
    EXPECT_TRUE(world.isExposed("PLAIN2"));
    const Value two[] = {Value::integer(1), Value::integer(2)};
    EXPECT_EQ(prin1(world.call("+", two).value), "3");
}

TEST(LispWorlds, ShareTheBlackboardOnly) {
    FakeHost host;
    World first(host);
    auto second = std::make_unique<World>(host);
    EXPECT_EQ(run(first, "(setq a 1) (vl-bb-set 'shared '(x \"y\"))"), "(X \"y\")");
    EXPECT_EQ(run(*second, "(list a (vl-bb-ref 'shared))"), "(nil (X \"y\"))");
    run(first, "(vl-propagate 'a)");
    EXPECT_EQ(run(*second, "a"), "1");
    second.reset();
    EXPECT_EQ(run(first, "(vl-propagate 'a)"), "1");
}

}  // namespace
}  // namespace drafthost::lisp
