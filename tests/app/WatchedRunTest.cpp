// SPDX-License-Identifier: GPL-3.0-or-later
// The front with a host that misbehaves on demand: what the user is told, what stands on disk, and how it
// goes on.
#include "tests/app/Program.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>
#include <chrono>
#include <csignal>
#include <fstream>
#include <set>
#include <thread>

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

namespace {

class WatchedRun : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        Host = FAKE_HOST;
        Script = Write("save.scr", "qsave\n");
    }

    std::vector<std::string> Arguments(const std::vector<std::string>& names,
                                       std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"--script", Script});
        for (const std::string& name : names) {
            options.push_back(Write(name, "drawing"));
        }
        return options;
    }
    std::string Entry(int status, const std::string& name) const {
        return "<File Status=\"" + std::to_string(status) + "\">" + (Folder / name).string() + "</File>";
    }
    std::size_t HostStarts() const { return Read(Folder / "data/Ovrix/host-starts").size(); }

    std::string Script;
};

TEST_F(WatchedRun, TellsEachDrawingAndHowToTryAgain) {
    const ProgramResult first =
        Run(Arguments({"a.dxf", "bad one.dxf", "c\\\"d\3.dxf"}, {"--json", "r.json"}));
    EXPECT_EQ(first.Status, 1);
    EXPECT_EQ(first.Errors, "");
    EXPECT_THAT(first.Out, HasSubstr("3 drawings in "));
    EXPECT_THAT(first.Out, HasSubstr("2 Done, 1 FailOpen\n"));
    EXPECT_THAT(first.Out, HasSubstr("FailOpen " + (Folder / "bad one.dxf").string() + "\n"));
    EXPECT_THAT(first.Out, HasSubstr("line 12: not a group code."));
    EXPECT_THAT(first.Out, HasSubstr("tarnel run --retry failed --data-dir " + (Folder / "data").string()));
    const std::string json = Read(Folder / "r.json");
    EXPECT_THAT(json, HasSubstr("\"status\": \"FailOpen\""));
    EXPECT_THAT(json, HasSubstr("not a group code"));
    EXPECT_THAT(json, HasSubstr("c\\\\\\\"d\\u0003.dxf"));

    fs::rename(Folder / "bad one.dxf", Folder / "moved.dxf");
    const ProgramResult dry = Run({"--retry", "failed", "--dry-run"});
    EXPECT_EQ(dry.Out, (Folder / "bad one.dxf").string() + "\n");
    EXPECT_EQ(HostStarts(), 1U);
    EXPECT_EQ(Run({"--retry", "failed"}).Status, 1);
    EXPECT_EQ(Run({"--resume"}).Status, 1);
    EXPECT_EQ(HostStarts(), 2U) << "nothing waits, so no host is needed";
}

TEST_F(WatchedRun, WaitsForTheHostOfAKilledRun) {
    ASSERT_EQ(Run(Arguments({"a.dxf"})).Status, 0);
    // Takes the lock as a host that has it from its front, which is gone.
    const auto resumeBehind = [&](bool isFrontDead, int milliseconds) {
        const pid_t front = isFrontDead ? fork() : 0;
        if (isFrontDead && front == 0) {
            _exit(0);
        }
        // Left unreaped, as a killed child of a shell is for a while.
        const int lock = open((Folder / "data/Ovrix/tarnel.lock").c_str(), O_RDWR | O_CLOEXEC);
        EXPECT_EQ(flock(lock, LOCK_EX), 0);
        const std::string owner = std::to_string(isFrontDead ? front : getpid());
        EXPECT_EQ(ftruncate(lock, 0), 0);
        EXPECT_EQ(pwrite(lock, owner.data(), owner.size(), 0), ssize_t(owner.size()));
        const ProgramResult result = Run({"--resume"}, [&](pid_t) {
            std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
            close(lock);
        });
        if (isFrontDead) {
            waitpid(front, nullptr, 0);
        }
        return result;
    };
    EXPECT_EQ(resumeBehind(true, 400).Status, 0);
    const ProgramResult refused = resumeBehind(false, 1000);
    EXPECT_EQ(refused.Status, 3);
    EXPECT_THAT(refused.Errors,
                HasSubstr("another run is at work here (process " + std::to_string(getpid())));
}

TEST_F(WatchedRun, BringsADeadHostBackForTheRest) {
    const ProgramResult result = Run(Arguments({"a.dxf", "die.dxf", "b.dxf", "hang.dxf", "c.dxf"},
                                               {"--max-time", "1", "--grace", "0", "--json", "r.json"}));
    EXPECT_EQ(result.Status, 1);
    EXPECT_EQ(HostStarts(), 3U);
    EXPECT_THAT(result.Out, HasSubstr("3 Done, 2 Error"));
    EXPECT_THAT(result.Out, HasSubstr("the host died, signal 11"));
    EXPECT_THAT(result.Out, HasSubstr("the host stopped answering, killed"));
    EXPECT_THAT(Read(Folder / "r.json"), HasSubstr("\"host\": \"died, signal 11\""));

    const ProgramResult unwatched = Run(Arguments({"die.dxf", "b.dxf"}, {"--no-monitor"}));
    EXPECT_EQ(unwatched.Status, 3);
    EXPECT_THAT(unwatched.Errors, HasSubstr("died, signal 11 at " + (Folder / "die.dxf").string()));
    EXPECT_THAT(unwatched.Out, HasSubstr("--resume"));
    EXPECT_THAT(Read(StateFile()), HasSubstr(Entry(0, "b.dxf")));
}

TEST_F(WatchedRun, GivesUpAtTheThirdDeathInARow) {
    const ProgramResult result =
        Run(Arguments({"die1.dxf", "a.dxf", "die2.dxf", "die3.dxf", "die4.dxf", "b.dxf"}));
    EXPECT_EQ(result.Status, 3);
    EXPECT_EQ(HostStarts(), 4U) << "a drawing that went well starts the count anew";
    EXPECT_THAT(result.Errors, HasSubstr("third time in a row"));
    EXPECT_THAT(Read(StateFile()), HasSubstr(Entry(0, "b.dxf")));

    Write("data/Ovrix/mute", "");
    const ProgramResult mute = Run(Arguments({"a.dxf"}));
    EXPECT_EQ(mute.Status, 3);
    EXPECT_THAT(mute.Errors, HasSubstr("could not start"));
    EXPECT_THAT(mute.Errors, HasSubstr("Cannot load the module."));
}

TEST_F(WatchedRun, InterruptCancelsTheDrawingAndResumeTakesTheRest) {
    const ProgramResult once = Run(Arguments({"a.dxf", "slow.dxf", "b.dxf"}), [this](pid_t process) {
        ASSERT_TRUE(WaitForState(Entry(5, "slow.dxf")));
        kill(process, SIGINT);
    });
    EXPECT_EQ(once.Status, 130);
    EXPECT_THAT(once.Out, HasSubstr("\nCanceled 2/3  "));
    EXPECT_THAT(once.Out, HasSubstr("1 Done, 1 Canceled, 1 still ToDo"));
    EXPECT_THAT(once.Out, HasSubstr("tarnel run --resume --data-dir"));
    EXPECT_THAT(Read(StateFile()), HasSubstr(Entry(6, "slow.dxf")));
    EXPECT_EQ(Run({"--resume"}).Status, 1);
    EXPECT_THAT(Read(StateFile()), HasSubstr(Entry(1, "b.dxf")));

    const ProgramResult twice = Run(Arguments({"hang.dxf", "b.dxf"}), [this](pid_t process) {
        ASSERT_TRUE(WaitForState(Entry(5, "hang.dxf")));
        kill(process, SIGINT);
        usleep(300000);
        kill(process, SIGINT);
    });
    EXPECT_EQ(twice.Status, 130);
    EXPECT_THAT(Read(StateFile()), HasSubstr(Entry(5, "hang.dxf")));
    EXPECT_THAT(Read(StateFile()), HasSubstr(Entry(0, "b.dxf")));
}

TEST_F(WatchedRun, AFaultThatBreaksTheRunOffCancelsNoDrawing) {
    for (const char* jobs : {"1", "2"}) {
        const fs::path room = Folder / "data/Ovrix/room";
        fs::remove(room);
        const ProgramResult broken =
            Run(Arguments({"slow.dxf", "full.dxf", "b.dxf"}, {"--jobs", jobs}), [this, jobs](pid_t process) {
                if (*jobs == '1') {
                    ASSERT_TRUE(WaitForState(Entry(5, "slow.dxf")));
                    kill(process, SIGINT);
                }
            });
        EXPECT_EQ(broken.Status, *jobs == '1' ? 130 : 3) << broken.Out;
        const ProgramResult again = *jobs == '1' ? Run({"--resume"}) : broken;
        EXPECT_EQ(again.Status, 3) << again.Out;
        EXPECT_THAT(again.Errors, HasSubstr("script1.scr: cannot be written"));
        EXPECT_THAT(Read(StateFile()), HasSubstr(Entry(0, "full.dxf")));
        // What the user has cancelled stays so.
        EXPECT_THAT(Read(StateFile()), HasSubstr(Entry(*jobs == '1' ? 6 : 0, "slow.dxf")));
        EXPECT_THAT(again.Out, Not(HasSubstr("Canceled 1/")));
        std::ofstream(room) << "";
        EXPECT_EQ(Run({"--resume"}).Status, *jobs == '1' ? 1 : 0);
        EXPECT_THAT(Read(StateFile()), HasSubstr(Entry(1, "full.dxf")));
    }
}

TEST_F(WatchedRun, ASecondRunIsRefusedAndAKilledOneLeavesNoHost) {
    Run(Arguments({"slow.dxf", "b.dxf"}), [this](pid_t process) {
        ASSERT_TRUE(WaitForState(Entry(5, "slow.dxf")));
        const ProgramResult refused = Run({"--resume"});
        EXPECT_EQ(refused.Status, 3);
        EXPECT_THAT(refused.Errors,
                    HasSubstr("another run is at work here (process " + std::to_string(process)));
        // As a script may do.
        fs::remove(Folder / "data/Ovrix/tarnel.lock");
        const ProgramResult again = Run({"--resume"});
        EXPECT_EQ(again.Status, 3);
        EXPECT_THAT(again.Errors, HasSubstr("another run is at work here"));
        kill(process, SIGKILL);
    });
    // The drawing in work has its second attempt, and no third. The lock is free only once the host is dead
    // too.
    const auto resume = [this](bool killed) {
        ProgramResult resumed;
        do {
            usleep(50000);
            const std::size_t starts = HostStarts();
            resumed = Run({"--resume"}, [&](pid_t process) {
                for (int tries = 0; killed && tries < 100 && HostStarts() == starts; ++tries) {
                    usleep(20000);
                }
                if (killed && HostStarts() > starts && WaitForState(Entry(5, "slow.dxf"))) {
                    kill(process, SIGKILL);
                }
            });
        } while (resumed.Errors.find("another run") != std::string::npos);
        return resumed.Status;
    };
    EXPECT_EQ(resume(true), -SIGKILL);
    EXPECT_EQ(resume(false), 1);
    EXPECT_THAT(Read(StateFile()), HasSubstr(Entry(5, "slow.dxf")));
    EXPECT_THAT(Read(StateFile()), HasSubstr(Entry(1, "b.dxf")));
}

TEST_F(WatchedRun, PutsNothingAsideThatItCannotReadForAMoment) {
    ASSERT_EQ(Run(Arguments({"a.dxf"})).Status, 0);
    std::set<std::string> failed;
    for (unsigned number = 1; number < 20; ++number) {
        FailAt("tarnel", "open", number, "once");
        const ProgramResult result = Run(Arguments({"a.dxf"}));
        EXPECT_LE(static_cast<unsigned>(result.Status), 3U) << number << result.Errors;
        const std::string call = Read(Folder / "list");
        failed.insert(call.substr(call.rfind('/') + 1));
        for (const auto& entry : fs::directory_iterator(Folder / "data/Ovrix")) {
            EXPECT_EQ(entry.path().string().find("damaged"), std::string::npos) << number << entry.path();
        }
    }
    EXPECT_TRUE(failed.contains("run.json\n") && failed.contains("TarnelRunner.xml\n"));
}

TEST_F(WatchedRun, KeepsAStateThatItCannotRead) {
    const std::string damaged = "<TarnelRunner><Options><Fil";
    Write("data/Ovrix/TarnelRunner.xml", damaged);
    const ProgramResult resumed = Run({"--resume"});
    EXPECT_EQ(resumed.Status, 3);
    EXPECT_THAT(resumed.Errors, HasSubstr(StateFile() + ": does not hold the state of a run"));
    EXPECT_EQ(Read(StateFile()), damaged);

    const ProgramResult anew = Run(Arguments({"a.dxf"}));
    EXPECT_EQ(anew.Status, 0);
    EXPECT_THAT(anew.Errors, HasSubstr("kept as " + StateFile() + ".damaged-1"));
    EXPECT_EQ(Read(StateFile() + ".damaged-1"), damaged);

    const std::string description = Folder / "data/Ovrix/run.json";
    Write("data/Ovrix/run.json", "{\"run\": \"cut o");
    const ProgramResult cut = Run({"--resume"});
    EXPECT_EQ(cut.Status, 3);
    EXPECT_THAT(cut.Errors, HasSubstr(description + ": does not hold the description of a run"));
    const ProgramResult again = Run(Arguments({"a.dxf"}));
    EXPECT_EQ(again.Status, 0) << again.Errors;
    EXPECT_THAT(again.Errors, HasSubstr("kept as " + description + ".damaged-1"));
}

TEST_F(WatchedRun, RefusesWhatCannotWorkInOneLine) {
    fs::create_directory(Folder / "empty");
    Write("empty.lst", "@nothing yet\r\n\r\n");
    const std::string drawing = Write("a.dxf", "drawing");
    const std::vector<std::vector<std::string>> wrong = {
        {"--script", Script, "empty"},
        {"--script", Script, "none.dxf"},
        {"--script", Script},
        {"--script", "none.scr", drawing},
        {"--script", "empty", drawing},
        {drawing},
        {"--script", Script, "--max-time", "x"},
        {"--script", Script, "--list", "empty.lst"},
        {"--script", Script, "--list", "no.lst"},
        {"--resume", drawing},
        {"--resume", "--retry", "all"},
        {"--retry", "some"},
        {"--script", Script, "--json", "no/r.json", drawing}};
    for (const std::vector<std::string>& arguments : wrong) {
        const ProgramResult result = Run(arguments);
        EXPECT_EQ(result.Status, 2) << testing::PrintToString(arguments);
        EXPECT_THAT(result.Errors, testing::StartsWith("tarnel: ")) << testing::PrintToString(arguments);
        EXPECT_EQ(std::count(result.Errors.begin(), result.Errors.end(), '\n'), 1) << result.Errors;
    }
    EXPECT_EQ(HostStarts(), 0U);
    EXPECT_EQ(Run({"--resume"}).Status, 3) << "no run was started here";
}

// A host that has nothing to tell any more and does not go is ended; the front is not to wait for it.
TEST_F(WatchedRun, AHostThatFallsSilentAndStaysIsEnded) {
    Host = Write("silent",
                 "#!/bin/bash\neval \"exec $TARNEL_REPORT_FD>&-\"\ntrap '' TERM INT\nexec sleep 120\n");
    fs::permissions(Host, fs::perms::owner_all);
    const std::string script = Write("s.scr", "QSAVE\n");
    const std::string drawing = Write("a.dxf", "0\nEOF\n");
    const auto begin = std::chrono::steady_clock::now();
    const ProgramResult result = Run({"--no-check", "--no-monitor", "--script", script, drawing});
    EXPECT_EQ(result.Status, 3) << result.Out << result.Errors;
    EXPECT_THAT(result.Out, HasSubstr("1 still ToDo"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
}

// A run that does not come to its start leaves nothing that tells of an earlier one, and the cause is told at
// once.
TEST_F(WatchedRun, ARunWhoseModuleCannotBeLoadedTellsItAtOnceAndNothingOfARunBefore) {
    const fs::path own = fs::path(TARNEL_PROGRAM).parent_path();
    const fs::path bin = Folder / "bin";
    fs::create_directories(bin);
    Host = fs::read_symlink("/proc/self/exe").parent_path() / "drafthost";
    const std::string script = Write("s.scr", "(princ)\n");
    const std::string drawing = Write("a.dxf", "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n");
    EXPECT_EQ(Run({"--script", script, "--json", "j.json", drawing}).Status, 0);
    EXPECT_THAT(Read(Folder / "j.json"), HasSubstr("\"Done\""));
    fs::copy_file(own / "tarnel", bin / "tarnel");
    Write("bin/tnl3-19-64.arx", "no module");
    const std::string command =
        "cd " + Folder.string() + " && TARNEL_HOST=" + Host +
        " bin/tarnel run --data-dir data --json j.json --script s.scr a.dxf > out 2> err";
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_NE(std::system(command.c_str()), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
    EXPECT_THAT(Read(Folder / "err"), HasSubstr("module cannot be loaded"));
    EXPECT_THAT(Read(Folder / "j.json"), Not(HasSubstr("\"Done\"")));
}

}  // namespace
