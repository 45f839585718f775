// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QDeadlineTimer>

#include "drafthost/editor/ScriptReader.h"
#include "tests/commands/TestDrawings.h"
#include "tests/commands/TestHost.h"

namespace drafthost::test {

namespace {

class ScriptCommands : public TestHost {
  protected:
    bool waitUntil(const std::function<bool()>& done) {
        QDeadlineTimer limit(10000);
        while (!done() && !limit.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        }
        return done();
    }
};

TEST_F(ScriptCommands, AWrongAnswerSuspendsTheScriptAndResumeGoesOn) {
    script("useri1 1\nsetvar clayer nowhere\n0\nuseri2 2\n");
    EXPECT_EQ(host.script().state(), ScriptReader::State::Suspended);
    EXPECT_EQ(integer("USERI2"), 0);
    type("0\nresume\n");
    // The rest of the script begins with the answer that was given by hand meanwhile.
    EXPECT_EQ(host.script().state(), ScriptReader::State::Suspended) << output;
    type("resume\n");
    EXPECT_EQ(integer("USERI2"), 2);
    type("resume\n");
    EXPECT_NE(output.find("no suspended script"), std::string::npos);
}

TEST_F(ScriptCommands, AScriptGoesOnInTheDrawingThatItOpens) {
    std::string reason;
    host.variables().set("SDI", 1, reason);
    std::string file = write("my plan.dxf", drawing2000());
    script("open \"" + file + "\"\nuseri3 7\nzoom e qsave\n");
    EXPECT_EQ(text("DWGNAME"), "my plan.dxf");
    EXPECT_EQ(integer("USERI3"), 7);
    EXPECT_EQ(integer("DBMOD"), 0);
    EXPECT_EQ(host.script().state(), ScriptReader::State::Idle);
}

TEST_F(ScriptCommands, DelayHoldsTheScriptWithoutHoldingTheHost) {
    script("delay 30\nuseri1 1\n");
    EXPECT_EQ(integer("USERI1"), 0);
    EXPECT_EQ(text("CMDNAMES"), "DELAY");
    EXPECT_TRUE(waitUntil([&] { return integer("USERI1") == 1; }));
    script("delay 30000\nuseri1 2\n");
    type("\x03");
    EXPECT_TRUE(idle());
    EXPECT_EQ(host.script().state(), ScriptReader::State::Suspended);
    type("delay 40000\n");
    EXPECT_NE(output.find("32767"), std::string::npos) << output;
    type("\x1b");
}

TEST_F(ScriptCommands, AMissingScriptIsNamedAndRscriptRepeatsTheLast) {
    EXPECT_EQ(module({"._script", path("none.scr")}), Outcome::Failed);
    EXPECT_NE(output.find("none.scr"), std::string::npos) << output;
    script("userr1 2\n");
    type("userr1 5\nrscript\n");
    EXPECT_EQ(std::get<double>(variable("USERR1")), 2.0);
}

TEST_F(ScriptCommands, TheLogTakesWhatIsPrintedWhileItIsOn) {
    std::string reason;
    std::filesystem::path logs = folder_ / "logs";
    std::filesystem::create_directory(logs);
    ASSERT_EQ(host.variables().set("LOGFILEPATH", logs.string(), reason), VariableStatus::Ok) << reason;
    module({"._logfileon"});
    EXPECT_EQ(integer("LOGFILEMODE"), 1);
    type("setvar ? dwgname\n");
    module({"._logfileoff"});
    type("setvar ? ltscale\n");
    std::string log = read(text("LOGFILENAME"));
    EXPECT_NE(log.find("DWGNAME"), std::string::npos);
    EXPECT_EQ(log.find("LTSCALE   "), std::string::npos);
}

}  // namespace

}  // namespace drafthost::test
