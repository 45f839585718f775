// SPDX-License-Identifier: GPL-3.0-or-later
// The front dies before each of its calls that change the disk: what is found afterwards is the run before or
// the new one, whole, and going on with it gives the same as if nothing had happened.
#include "tests/app/Program.h"

#include "app/QueueEntry.h"
#include "app/RunRecord.h"
#include "engine/record/TarnelData.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <unistd.h>
#include <csignal>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

constexpr std::size_t Drawings = 4;

class KilledFront : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        for (const char* run : {"old", "new"}) {
            for (std::size_t i = 0; i < Drawings; ++i) {
                Write(Drawing(run, i), "0\nEOF\n");
            }
            Write(std::string(run) + ".scr", "(setq f (open \"" + (Folder / "tally").string() +
                                                 "\" \"a\")) (write-line (strcat \"" + run +
                                                 " \" currentfile) f) (close f)\n");
        }
    }
    static std::string Drawing(const std::string& run, std::size_t number) {
        return run + std::to_string(number) + ".dxf";
    }
    ProgramResult Start(const std::string& run, const std::string& jobs) {
        std::vector<std::string> arguments = {"--script", run + ".scr", "--jobs", jobs};
        for (std::size_t i = 0; i < Drawings; ++i) {
            arguments.push_back(Drawing(run, i));
        }
        return Run(arguments);
    }
    /// How often each drawing was run, by "SCRIPT DRAWING".
    std::map<std::string, std::size_t> Tally() const {
        std::map<std::string, std::size_t> tally;
        std::ifstream in(Folder / "tally");
        for (std::string line; std::getline(in, line);) {
            ++tally[line];
        }
        return tally;
    }
    /// The host dies with its front and then gives the folder back.
    void WaitForLock() const {
        const int lock =
            open((Folder / "data/Ovrix/tarnel.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
        flock(lock, LOCK_EX);
        close(lock);
    }
    void Clear() {
        Environment.clear();
        fs::remove_all(Folder / "data");
        fs::remove(Folder / "tally");
    }
    std::string QueueText() const {
        CTarnelData record;
        std::string error;
        std::string text;
        EXPECT_TRUE(ReadRecord(StateFile(), &record, &error)) << error;
        for (const QueueEntry& entry : QueueOf(record)) {
            text += fs::path(entry.Path).stem().string() + " " + StatusWord(entry.Status) + ";";
        }
        return text;
    }
    void ExpectWhole(const std::string& run, const ProgramResult& resumed, std::size_t jobs) {
        EXPECT_EQ(resumed.Status, 0) << resumed.Out << resumed.Errors;
        EXPECT_EQ(QueueText(), run + "0 Done;" + run + "1 Done;" + run + "2 Done;" + run + "3 Done;");
        const auto tally = Tally();
        const std::string log = Read(Folder / "data/Ovrix/tnl log.html");
        std::size_t twice = 0;
        for (std::size_t i = 0; i < Drawings; ++i) {
            const auto found = tally.find(run + " " + run + std::to_string(i));
            ASSERT_NE(found, tally.end()) << run << i << " was told as Done and never run";
            twice += found->second - 1;
            const std::string entry = ">" + (Folder / Drawing(run, i)).string() + "</span>";
            EXPECT_NE(log.find(entry), std::string::npos) << entry;
            EXPECT_EQ(log.find(entry), log.rfind(entry)) << entry;
        }
        EXPECT_LE(twice, jobs) << "only what was in work is run again";
        const std::string other = run == "new" ? "old" : "new";
        EXPECT_EQ(log.find(Drawing(other, 0)), std::string::npos) << "a log of another run";
        for (const auto& [line, count] : tally) {
            EXPECT_EQ(line.substr(0, 3), line.substr(4, 3)) << "a drawing under the script of another run";
        }
        std::size_t unknown = 0;
        for (const auto& record : nlohmann::json::parse(Read(Folder / "r.json"))) {
            unknown += record["seconds"].is_null() ? 1 : 0;
        }
        EXPECT_LE(unknown, jobs) << "what the first part told is lost";
        EXPECT_FALSE(fs::exists(Folder / "data/Ovrix/next"));
        EXPECT_FALSE(fs::exists(Folder / "data/Ovrix/job-1"));
    }
};

TEST_F(KilledFront, LeavesTheRunBeforeOrTheNewOneWhole) {
    ASSERT_EQ(Start("old", "1").Status, 0);
    fs::copy(Folder / "data", Folder / "before", fs::copy_options::recursive);
    fs::copy(Folder / "tally", Folder / "tally before");
    std::size_t kills = 0;
    std::size_t newRuns = 0;
    for (const char* kind : {"mkdir", "rename", "write", "open", "unlink"}) {
        for (const std::string jobs : {"1", "3"}) {
            const bool over = jobs == "1" || *kind == 'r' || *kind == 'm';
            // Renames are where a change is made; of the others some are enough.
            const unsigned step = *kind == 'r' ? (jobs == "1" ? 1 : 2) : *kind == 'm' ? 2 : 17;
            for (unsigned number = 1;; number += step) {
                SCOPED_TRACE(std::string(kind) + " " + std::to_string(number) + " jobs " + jobs);
                Clear();
                if (over) {
                    fs::copy(Folder / "before", Folder / "data", fs::copy_options::recursive);
                    fs::copy(Folder / "tally before", Folder / "tally");
                }
                FailAt("tarnel", kind, number, "kill");
                const ProgramResult killed = Start("new", jobs);
                Environment.clear();
                if (killed.Status != -SIGKILL) {
                    EXPECT_EQ(killed.Status, 0) << killed.Errors;
                    break;
                }
                ++kills;
                WaitForLock();
                const ProgramResult resumed = Run({"--resume", "--jobs", jobs, "--json", "r.json"});
                if (!over && resumed.Status == 3) {
                    EXPECT_THAT(resumed.Errors, HasSubstr("no run was started here"));
                    EXPECT_TRUE(Tally().empty());
                    continue;
                }
                const bool isNew = QueueText().starts_with("new");
                newRuns += isNew ? 1 : 0;
                ExpectWhole(isNew ? "new" : "old", resumed, static_cast<std::size_t>(std::stoi(jobs)));
                if (HasFailure()) {
                    return;
                }
            }
        }
    }
    EXPECT_GT(kills, 30U);
    EXPECT_GT(newRuns, 10U);
}

TEST_F(KilledFront, TellsWhichDrawingWasInWorkBothTimes) {
    Write("new.scr", Read(Folder / "new.scr") + "(if (= currentfile \"new1\") (while T))\n");
    for (const std::size_t attempt : {1, 2}) {
        const auto kill = [&](pid_t program) {
            for (int tries = 0; tries < 600 && Tally()["new new1"] < attempt; ++tries) {
                usleep(50'000);
            }
            ::kill(program, SIGKILL);
        };
        std::vector<std::string> arguments = {"--script", "new.scr", "new0.dxf", "new1.dxf", "new2.dxf"};
        const ProgramResult killed = attempt == 1 ? Run(arguments, kill) : Run({"--resume"}, kill);
        EXPECT_EQ(killed.Status, -SIGKILL) << killed.Errors;
        WaitForLock();
    }
    // It is known to whoever comes later, too.
    for (int again = 0; again < 2; ++again) {
        const ProgramResult resumed = Run({"--resume", "--json", "r.json"});
        EXPECT_EQ(resumed.Status, 1) << resumed.Errors;
        const auto records = nlohmann::json::parse(Read(Folder / "r.json"));
        EXPECT_EQ(records[1]["status"], "Error");
        EXPECT_THAT(records[1]["message"].get<std::string>(), HasSubstr("second attempt"));
        EXPECT_EQ(records[2]["status"], "Done");
    }
}

}  // namespace
