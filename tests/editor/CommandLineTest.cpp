// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>
#include <QTimer>

#include "tests/editor/EditorFixture.h"

namespace drafthost::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class CommandLineTest : public EditorTest {};

TEST_F(CommandLineTest, AnswersFollowTheirCommandAndDefaultsAreTaken) {
    type("pair a b\n_.PAIR x\n\nP 1 2 note  free text, (not evaluated)  \nfile \"a b.dxf\" FILE\n\n");
    EXPECT_THAT(notes(), ElementsAre("a+b", "x+two", "1+2", " free text, (not evaluated)  ", "a b.dxf",
                                     "default.dxf"));
    EXPECT_EQ(names(), "");
}

TEST_F(CommandLineTest, EnterRepeatsTheLastCommand) {
    type("pair a b\n\nc d\n");
    EXPECT_THAT(notes(), ElementsAre("a+b", "c+d"));
}

TEST_F(CommandLineTest, AnswersThatDoNotFitAreAskedAgain) {
    type("num q\n12\n\nal\nnum 2.5\nnum x");
    type("\n");
    EXPECT_THAT(notes(), ElementsAre("-3.0", "2.5", "-4.0"));
    EXPECT_THAT(output, HasSubstr("not \"q\""));
    EXPECT_THAT(output, HasSubstr("between 1.0 and 9.0"));
    EXPECT_THAT(output, HasSubstr("Number or [All/eXit/3P]: "));
}

TEST_F(CommandLineTest, HalfFedCommandsStayActiveAndShow) {
    type("pair a\n");
    EXPECT_EQ(names(), "PAIR");
    EXPECT_EQ(host.input().activeBits(), 1u);
    type("'watch\n");
    EXPECT_EQ(names(), "PAIR'WATCH");
    EXPECT_EQ(host.input().activeBits(), 3u);
    type("'note\n'pair\n");
    EXPECT_THAT(output, HasSubstr("WATCH"));
    type("w\nb\n");
    EXPECT_EQ(names(), "");
    EXPECT_THAT(notes(), testing::Contains("a+b"));
    EXPECT_THAT(recorder.events, ElementsAre("start PAIR", "start WATCH", "end WATCH", "end PAIR"));
}

TEST_F(CommandLineTest, EachCancelTakesOneLevel) {
    type("pair a\n'watch\n");
    host.input().queue("\x03", false);
    EXPECT_EQ(names(), "PAIR");
    host.input().queue("\x03\x03pair 1 2\n", false);
    run();
    EXPECT_EQ(names(), "");
    EXPECT_THAT(notes(), ElementsAre("1+2"));
    EXPECT_THAT(recorder.events, ElementsAre("start PAIR", "start WATCH", "cancel WATCH", "cancel PAIR",
                                             "start PAIR", "end PAIR"));
}

TEST_F(CommandLineTest, UnknownWordsAndVariables) {
    type("frobnicate\n.nothing\nsdi 1\nsdi 7\n'sdi 0\n");
    EXPECT_THAT(output, HasSubstr("Unknown command \"FROBNICATE\"."));
    EXPECT_THAT(output, HasSubstr("Unknown command \"NOTHING\"."));
    EXPECT_THAT(output, HasSubstr("SDI must be between 0 and 1."));
    type("p 1 2\n");
    EXPECT_THAT(notes(), ElementsAre("1+2"));
}

TEST_F(CommandLineTest, LispAnswersPromptsAndOverLines) {
    type("(setq w\n  \"from lisp\"\n)\npair !w (strcat \"a\" \"b\")\npoint (list 1 2.5)\n!w\n");
    EXPECT_THAT(notes(), ElementsAre("from lisp+ab", "1.0", "2.5", "0.0"));
    EXPECT_THAT(output, HasSubstr("\n\"from lisp\"\n"));
    type("num nil\n(car nil)\n(/ 1 0)\n5\n");
    EXPECT_THAT(output, HasSubstr("nil is no answer."));
    EXPECT_THAT(output, HasSubstr("; error: divide by zero"));
    EXPECT_EQ(notes().back(), "5.0");
}

TEST_F(CommandLineTest, LispRunsCommandsAndFunctionsAreCommands) {
    type("(defun c:twice () (command \"PAIR\" \"l\" 2) (command \"_.NUM\" 3.5) (princ))\ntwice\n");
    EXPECT_THAT(notes(), ElementsAre("l+2", "3.5"));
    EXPECT_THAT(
        recorder.events,
        ElementsAre("lisp (defun c:twice () (command \"PAIR\" \"l\" 2) (command \"_.NUM\" 3.5) (princ))",
                    "lisp end", "lisp (C:TWICE)", "start PAIR", "end PAIR", "start NUM", "end NUM",
                    "lisp end"));
    type("(command \"PAIR\" \"left open\")\n");
    EXPECT_EQ(names(), "PAIR");
    type("(command)\n");
    EXPECT_EQ(names(), "");
}

TEST_F(CommandLineTest, LispAsksTheUserWithTheLoopRunning) {
    type("(setq s (getstring T \"Say: \"))\nhello  there\n(setq n (getint))\nx\n7\n(list s n)\n");
    EXPECT_THAT(output, HasSubstr("Say: hello  there"));
    EXPECT_THAT(output, HasSubstr("(\"hello  there\" 7)"));
    // Nobody answers: a timer of a module has to get through, and its cancel too.
    QTimer::singleShot(5, [this] { host.input().queue("\x03\x03pair after cancel\n", false); });
    type("(progn (getstring \"Wait: \") (princ (strcat \"wr\" \"ong\")))\n");
    run([] { return !notes().empty(); });
    EXPECT_THAT(notes(), ElementsAre("after+cancel"));
    EXPECT_THAT(output, HasSubstr("Function cancelled"));
    EXPECT_THAT(output, Not(HasSubstr("wrong")));
}

TEST_F(CommandLineTest, ACancelBreaksAnEndlessLoop) {
    QTimer::singleShot(5, [this] { host.input().queue("\x03\x03(setq done T)\n", false); });
    type("(while t)\n");
    run([this] { return output.find("\nT\n") != std::string::npos; });
    EXPECT_THAT(output, HasSubstr("Function cancelled"));
    EXPECT_THAT(output, HasSubstr("\nT\n"));
    EXPECT_THAT(recorder.events,
                ElementsAre("lisp (while t)", "lisp cancel", "lisp (setq done T)", "lisp end"));
}

TEST_F(CommandLineTest, QueuedStringsRunInOrderWhenWhatRunsHasEnded) {
    // Queued from within LISP by way of a notice, so while the expression is on the stack.
    struct Sender : HostObserver {
        Host* host = nullptr;
        void commandWillStart(std::string_view name) override {
            if (name == "NOTE") {
                host->input().queue("pair queued 1 ", false);
                host->input().queue("pair que", false);
                host->input().queue("ued 2\n", false);
            }
        }
    } sender;
    sender.host = &host;
    host.addObserver(&sender);
    type("(progn (command \"NOTE\" \"first\") (command \"PAIR\" \"in\" \"lisp\"))\npair typed 3\n");
    host.removeObserver(&sender);
    EXPECT_THAT(notes(), ElementsAre("first", "in+lisp", "queued+1", "queued+2", "typed+3"));
}

TEST_F(CommandLineTest, SpokenListsReportWhatBecameOfThem) {
    InputStream& input = host.input();
    auto say = [&](std::vector<std::string> words) {
        std::vector<Input> inputs;
        for (std::string& word : words) {
            inputs.push_back(Input::fromText(word));
        }
        return input.speak(inputs, InputSource::Module);
    };
    EXPECT_EQ(say({"_pair", "a", "b"}), Outcome::Ok);
    EXPECT_EQ(say({"nonsense"}), Outcome::Rejected);
    EXPECT_EQ(say({"break"}), Outcome::Failed);
    EXPECT_EQ(say({"num", "99", "5"}), Outcome::Rejected);
    EXPECT_EQ(say({"load", folder + "/missing.dxf"}), Outcome::Failed);
    EXPECT_EQ(say({"file", "\"a b.dxf\""}), Outcome::Ok);
    // One Enter too many is nothing, and does not repeat a command.
    EXPECT_EQ(say({"pair", "c", "", ""}), Outcome::Ok);
    EXPECT_EQ(say({"wait", "5"}), Outcome::Ok);
    QTimer::singleShot(5, [&] { input.queue("\x03", false); });
    EXPECT_EQ(say({"pair", "d", "\\"}), Outcome::Cancelled);
    QTimer::singleShot(5, [&] { input.queue("\x03", false); });
    EXPECT_EQ(say({"wait", "30000"}), Outcome::Cancelled);
    EXPECT_EQ(names(), "");
    EXPECT_THAT(notes(), ElementsAre("a+b", "5.0", "a b.dxf", "c+two", "waited"));
    host.variables().set("CMDECHO", 0, output);
    output.clear();
    EXPECT_EQ(say({"pair", "quiet", "x"}), Outcome::Ok);
    EXPECT_THAT(output, IsEmpty());
}

}  // namespace
}  // namespace drafthost::test
