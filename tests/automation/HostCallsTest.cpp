// SPDX-License-Identifier: GPL-3.0-or-later
// Commands, prompts and variables from LISP.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/automation/FakeHost.h"

namespace drafthost::automation {
namespace {

using lisp::EvalResult;
using testing::ElementsAre;

std::string withoutAddress(const std::string& text) {
    const std::size_t at = text.find('@');
    return at == std::string::npos ? text : text.substr(0, at + 1);
}

class LispHostCalls : public testing::Test {
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
    Session session{host};
    lisp::World& world = session.world();
};

TEST_F(LispHostCalls, CommandSendsItsArgumentsOneByOne) {
    EXPECT_EQ(run(world, "(command \"LINE\" '(1 2) (car '(5)) \"\")"), "nil");
    EXPECT_EQ(run(world, "(command)"), "nil");
    EXPECT_EQ(run(world, "(command \"CIRCLE\" (/ 1 0))"), "; error: divide by zero");
    EXPECT_EQ(run(world, "(vl-cmdf \"ERASE\" (/ 1 0))"), "; error: divide by zero");
    EXPECT_EQ(run(world, "(vl-cmdf \"ERASE\" \"ALL\" \"\")"), "T");
    EXPECT_EQ(withoutAddress(run(world, "(command-s \"QSAVE\" car)")),
              "; error: invalid AutoCAD command: #<SUBR @");
    EXPECT_EQ(run(world, "(command-s nil)"), "; error: invalid AutoCAD command: nil");
    EXPECT_EQ(run(world, "(command \"LINE\" (getpoint))"), "; error: AutoCAD rejected function");
    EXPECT_THAT(host.commands, ElementsAre("\"LINE\"", "(1 2)", "5", "\"\"", "ESC", "\"CIRCLE\"",
                                           "\"ERASE\" \"ALL\" \"\"", "\"LINE\""));
    host.commandStatus = CommandStatus::Rejected;
    EXPECT_EQ(run(world, "(vl-cmdf \"FOO\")"), "nil");
    host.commandStatus = CommandStatus::Cancelled;
    EXPECT_EQ(world.evaluate("(command \"FOO\")").status, EvalResult::Status::Cancelled);
}

TEST_F(LispHostCalls, UnwindsSilentlyWhenTheDrawingIsLeft) {
    host.onCommand = [&] { host.gone = true; };
    run(world, "(defun *error* (m) (setq told m))");
    EXPECT_EQ(run(world, "(vl-catch-all-apply '(lambda () (command \"OPEN\" \"b\"))) (setq after t)"),
              "; gone");
    EXPECT_FALSE(world.get("AFTER"));
    EXPECT_FALSE(world.get("TOLD"));
}

TEST_F(LispHostCalls, CanBeEnteredAgainFromAHostCall) {
    host.onCommand = [&] { EXPECT_EQ(run(world, "(getpoint)"), "; error: Function cancelled"); };
    EXPECT_EQ(run(world, "(vl-catch-all-apply 'vl-cmdf '(\"X\"))"), "T");
}

TEST_F(LispHostCalls, NothingIsAskedWhileACommandWaitsForItsArgument) {
    host.answers = {PromptAnswer::fromText("kept")};
    EXPECT_EQ(run(world, "(command \"LINE\" (vl-catch-all-error-message (vl-catch-all-apply 'getpoint)))"),
              "nil");
    EXPECT_THAT(host.commands, ElementsAre("\"LINE\"", "\"AutoCAD rejected function\""));
    EXPECT_TRUE(host.asked.empty());
    // The handler of an error is no longer part of the argument.
    run(world, "(defun *error* (m) (setq told (getstring))) (command \"LINE\" (getpoint))");
    EXPECT_EQ(run(world, "told"), "\"kept\"");
}

TEST_F(LispHostCalls, VariablesAreReadAndRefused) {
    host.variables["CLAYER"] = Value::string("0");
    host.variables["CMDECHO"] = Value::integer(1);
    check({
        {"(getvar 'clayer)", "\"0\""},
        {"(getvar \"nothing\")", "nil"},
        {"(setvar \"CmdEcho\" 0)", "0"},
        {"(getvar \"CMDECHO\")", "0"},
        {"(setvar \"CLAYER\" 5)", "; error: AutoCAD variable setting rejected: \"CLAYER\" 5"},
    });
}

TEST_F(LispHostCalls, PromptsTakeWhatInitgetAllows) {
    const auto answer = [&](std::initializer_list<const char*> texts) {
        host.answers.clear();
        host.refusals.clear();
        for (const char* text : texts) {
            host.answers.push_back(PromptAnswer::fromText(text));
        }
    };
    host.retry = true;
    answer({"0", "-1", "", "40000", "7"});
    EXPECT_EQ(run(world, "(initget 7) (getint \"n: \")"), "7");
    EXPECT_EQ(host.refusals.size(), 4U);
    EXPECT_EQ(host.asked.back().message, "n: ");

    host.variables["LASTPOINT"] = Value::point({0, 0, 0});
    answer({"1,2", "@1,1", "@2<90", "3,4"});
    EXPECT_EQ(run(world, "(list (getpoint) (getpoint) (equal (getpoint) '(2 5 0) 1e-9) (getdist '(0 0)))"),
              "((1.0 2.0 0.0) (2.0 3.0 0.0) T 5.0)");

    answer({"l", "LT", "x", ""});
    EXPECT_EQ(run(world, "(initget \"LType eXit\") (getkword)"), "\"LType\"");
    EXPECT_EQ(host.refusals.size(), 1U);
    EXPECT_EQ(run(world, "(initget \"LType eXit\") (getreal)"), "\"eXit\"");
    EXPECT_EQ(run(world, "(getkword)"), "nil");

    answer({"_Y", "J"});
    EXPECT_EQ(run(world, R"((list (progn (initget "Ja Nein _Yes No") (getkword))
                                  (progn (initget "Ja Nein _Yes No") (getkword))))"),
              R"(("Yes" "Yes"))");

    host.retry = false;
    answer({"abc"});
    EXPECT_EQ(world.evaluate("(getreal)").status, EvalResult::Status::Cancelled);
    EXPECT_EQ(run(world, "(vl-catch-all-error-message (vl-catch-all-apply 'getpoint))"),
              "\"Function cancelled\"");
}

TEST_F(LispHostCalls, ModulesThatCannotBeLoadedGiveTheFallback) {
    check({
        {R"((arxload "one.arx" nil))", "nil"},
        {R"((arxload "one.arx"))", R"(; error: "one.arx" application already loaded)"},
    });
}

}  // namespace
}  // namespace drafthost::automation
