// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>
#include <QTimer>

#include "tests/editor/EditorFixture.h"

namespace drafthost::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class ScriptTest : public EditorTest {
  protected:
    ScriptReader::State state() { return host.script().state(); }
};

TEST_F(ScriptTest, RunsToItsEndAndLeavesTheRestOnTheLine) {
    script("; a comment\nPAIR a b\n(setq x 1)\nNOTE some text\npair c");
    EXPECT_EQ(state(), ScriptReader::State::Idle);
    EXPECT_THAT(notes(), ElementsAre("a+b", "some text"));
    EXPECT_EQ(names(), "PAIR");
    type(" d\n");
    EXPECT_THAT(notes(), ElementsAre("a+b", "some text", "c+d"));
}

TEST_F(ScriptTest, AScriptInsideAScriptTakesItsPlace) {
    write("inner file.scr", "pair inner 1\n");
    script("pair outer 1\nscript \"" + folder + "/inner file\"\npair outer 2\n");
    EXPECT_THAT(notes(), ElementsAre("outer+1", "inner+1"));
    // The same from LISP that the script has called, in the middle of its line.
    notes().clear();
    script("(progn (command \"SCRIPT\" \"" + folder +
           "/inner file.scr\") (command \"PAIR\" \"still\" \"here\"))\n"
           "pair outer 2\n");
    EXPECT_THAT(notes(), ElementsAre("still+here", "inner+1"));
    EXPECT_EQ(state(), ScriptReader::State::Idle);
}

TEST_F(ScriptTest, ErrorsInItsInputSuspendIt) {
    for (const char* wrong :
         {"nonsense\n", "num q\n", "(car 1)\n", "script missing\n", "break\n", "sdi 9\n"}) {
        SCOPED_TRACE(wrong);
        notes().clear();
        host.current()->commandLine().cancelAll();
        script(std::string("pair a b\n") + wrong + "pair c d\n");
        EXPECT_EQ(state(), ScriptReader::State::Suspended);
        EXPECT_THAT(notes(), ElementsAre("a+b"));
        host.input().queue("\x03", false);
        type("resume\n");
        EXPECT_EQ(state(), ScriptReader::State::Idle);
        EXPECT_EQ(notes().back(), "c+d");
    }
}

TEST_F(ScriptTest, ErrorsInWhatCodeSaysDoNot) {
    script("(command \"nonsense\")\n(command \"NUM\" \"q\" 4)\n(vl-catch-all-apply 'car '(1))\npair c d\n");
    EXPECT_EQ(state(), ScriptReader::State::Idle);
    EXPECT_EQ(notes().back(), "c+d");
}

TEST_F(ScriptTest, ACancelSuspendsIt) {
    QTimer::singleShot(5, [this] { host.input().queue("\x03\x03pair from timer\n", false); });
    script("pair a b\n(while t)\npair c d\n");
    run([] { return notes().size() > 1; });
    EXPECT_THAT(notes(), ElementsAre("a+b", "from+timer"));
    EXPECT_EQ(state(), ScriptReader::State::Suspended);
    EXPECT_EQ(host.input().activeBits(), 0u);
    // A command that waits for input the script does not have is cancelled the same way.
    notes().clear();
    QTimer::singleShot(5, [this] { host.input().queue("\x03\x03pair from timer\n", false); });
    script("pair a b\npair only-one\n");
    run([] { return notes().size() > 1; });
    EXPECT_THAT(notes(), ElementsAre("a+b", "from+timer"));
}

TEST_F(ScriptTest, AnExpressionThatIsOpenAtTheEndIsDropped) {
    for (const std::string open : {"(princ \"x\npair lost 1\n", "(progn\n(setq a 1)\npair lost 2\n"}) {
        script("pair a b\n" + open);
        EXPECT_EQ(state(), ScriptReader::State::Idle);
        EXPECT_THAT(output, HasSubstr("The script ends inside the expression that begins with " +
                                      open.substr(0, open.find('\n') + 1)));
        type("pair c d\n");
        EXPECT_EQ(notes().back(), "c+d");
    }
}

TEST_F(ScriptTest, ACancelDropsAnOpenExpression) {
    for (const char* open : {"(princ \"x\n", "(list 1\n(car\n", "(princ \"half"}) {
        SCOPED_TRACE(open);
        notes().clear();
        type(open);
        type("pair taken in\n");
        EXPECT_THAT(notes(), testing::IsEmpty());
        type("\x03pair a b\n");
        EXPECT_THAT(notes(), ElementsAre("a+b"));
        // In one piece nothing has asked for the expression when the cancel comes.
        type(std::string(open) + "\npair taken in\n\x03pair c d\n");
        EXPECT_EQ(notes().back(), "c+d");
    }
    type("(list 1 (car\n");
    EXPECT_TRUE(output.ends_with("((_> ")) << output;
    type("\"a\n");
    EXPECT_TRUE(output.ends_with("((\"_> ")) << output;
    type("\x03");
    EXPECT_TRUE(output.ends_with("Command: ")) << output;
}

TEST_F(ScriptTest, InputWaitsWhileACommandPauses) {
    script("wait 30\npair a b\n");
    EXPECT_THAT(notes(), testing::IsEmpty());
    EXPECT_EQ(names(), "WAIT");
    EXPECT_EQ(host.input().activeBits(), 5u);
    run([] { return notes().size() == 2; });
    EXPECT_THAT(notes(), ElementsAre("waited", "a+b"));
}

TEST_F(ScriptTest, GoesOnInTheNextDrawing) {
    host.variables().set("SDI", 1, output);
    script("load \"" + drawing("one.dxf") + "\"\npair in one\nload \"" + drawing("two.dxf") +
           "\"\npair in two\n");
    EXPECT_THAT(notes(), ElementsAre("in+one", "in+two"));
    EXPECT_EQ(host.documents().size(), 1u);
    EXPECT_EQ(host.current()->title(), "two.dxf");
    EXPECT_THAT(recorder.events, ElementsAre("start LOAD", "close Drawing1.dxf", "open one.dxf", "end LOAD",
                                             "start PAIR", "end PAIR", "start LOAD", "close one.dxf",
                                             "open two.dxf", "end LOAD", "start PAIR", "end PAIR"));
}

TEST_F(ScriptTest, LispEndsSilentlyWithItsDrawing) {
    host.variables().set("SDI", 1, output);
    script("(setq kept 1)\n(progn (command \"LOAD\" \"" + drawing("one.dxf") +
           "\") (setq kept 2) (command \"PAIR\" \"not\" \"run\"))\n!kept\npair after it\n");
    EXPECT_THAT(notes(), ElementsAre("after+it"));
    EXPECT_THAT(output, HasSubstr("nil"));
    EXPECT_THAT(output, testing::Not(HasSubstr("; error")));
    EXPECT_EQ(state(), ScriptReader::State::Idle);
}

}  // namespace
}  // namespace drafthost::test
