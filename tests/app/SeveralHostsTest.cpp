// SPDX-License-Identifier: GPL-3.0-or-later
// Runs whose hosts die, one host or several, with the real programs: nothing is lost, nothing is done twice,
// and one log and one archive tell of it all.
#include "tests/app/Program.h"

#include "app/Shares.h"
#include "zip/ZipArchive.h"

#include <gmock/gmock.h>
#include <unistd.h>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <thread>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

class SeveralHosts : public ProgramTest {
  protected:
    /// Small drawings, and a script that writes a line to Folder/tally for each drawing that it finishes.
    std::vector<std::string> Arguments(std::size_t count, const std::string& before,
                                       std::vector<std::string> options) {
        for (std::size_t i = 0; i < count; ++i) {
            Drawings.push_back(Write("p" + std::to_string(1000 + i) + ".dxf", "0\nEOF\n"));
            options.push_back(Drawings.back());
        }
        const std::string script = Write("s.scr", before + "(setq f (open \"" + (Folder / "tally").string() +
                                                      "\" \"a\")) (write-line currentfile f) (close f)\n");
        options.insert(options.begin(), {"--script", script});
        return options;
    }
    std::map<std::string, int> Tally() const {
        std::map<std::string, int> tally;
        std::ifstream in(Folder / "tally");
        for (std::string line; std::getline(in, line);) {
            ++tally[line];
        }
        return tally;
    }
    std::size_t CountInState(int status) const {
        const std::string text = Read(StateFile());
        const std::string mark = "Status=\"" + std::to_string(status) + "\"";
        std::size_t count = 0;
        for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + 1)) {
            ++count;
        }
        return count;
    }
    std::size_t LinesInTally() const {
        std::size_t lines = 0;
        for (const auto& [name, count] : Tally()) {
            lines += static_cast<std::size_t>(count);
        }
        return lines;
    }
    /// The first host of the front; 0 when none starts.
    static pid_t WaitForHost(pid_t front) {
        const std::string number = std::to_string(front);
        pid_t host = 0;
        for (int tries = 0; tries < 2000 && host == 0; ++tries) {
            std::ifstream("/proc/" + number + "/task/" + number + "/children") >> host;
            usleep(host == 0 ? 5000 : 0);
        }
        return host;
    }
    /// Waits until so many more drawings are finished and so many microseconds, then ends one of the front's
    /// hosts with a signal and waits until it is dead.
    void KillAHost(pid_t front, std::size_t after, int signal, useconds_t later) const {
        WaitForTally(LinesInTally() + after);
        usleep(later);
        const pid_t host = WaitForHost(front);
        ASSERT_GT(host, 0) << "the run was over before its host could be killed";
        kill(host, signal);
        for (int tries = 0; tries < 2000 && kill(host, 0) == 0; ++tries) {
            usleep(5000);
        }
    }
    void WaitForTally(std::size_t lines) const {
        for (int tries = 0; tries < 4000 && LinesInTally() < lines; ++tries) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    /// Each drawing that was opened stands in the run log, between one start and one end; what its host had
    /// begun to write lies in the archive.
    void ExpectWholeLog(std::size_t atLeastPacked) const {
        const std::string log = Read(Folder / "data/Ovrix/tnl log.html");
        for (const std::string& drawing : Drawings) {
            const std::string entry = ">" + drawing + "</span>";
            EXPECT_NE(log.find(entry), std::string::npos) << drawing;
            EXPECT_EQ(log.find(entry), log.rfind(entry)) << drawing << " stands there twice";
        }
        EXPECT_EQ(log.find("Batch started"), log.rfind("Batch started"));
        EXPECT_EQ(log.find("Batch completed"), log.rfind("Batch completed"));
        EXPECT_THAT(log, testing::EndsWith("Batch completed</font></span><br />\r\n</body></html>"));
        CZipArchive archive;
        ASSERT_TRUE(archive.Open(Folder / "data/Ovrix/TNLLog.zip", CZipArchive::Existing));
        EXPECT_GE(static_cast<std::size_t>(archive.Count()), atLeastPacked);
        for (int i = 0; i < archive.Count(); ++i) {
            CFileHeader header;
            archive.GetFileInfo(header, i);
            EXPECT_THAT(log, HasSubstr("id=\"" + header.Name + "\"")) << "a log that nothing links to";
        }
        // Another program must be able to read it too.
        const std::string unzip = "unzip -tqq '" + (Folder / "data/Ovrix/TNLLog.zip").string() + "' >&2";
        EXPECT_EQ(std::system(unzip.c_str()), 0);
        EXPECT_FALSE(fs::exists(Folder / "data/Ovrix/job-1"));
    }

    std::vector<std::string> Drawings;
};

const std::string Dawdle = "(setq i 0) (while (< i 20000) (setq i (1+ i)))\n";
const std::string Crash = "(arxload \"" CRASH_MODULE "\")\n(command \"CRASH\")\n";

TEST_F(SeveralHosts, ACrashCostsOneDrawingAndOneRestart) {
    const std::vector<std::string> arguments =
        Arguments(5, "(if (= currentfile \"p1002\") (progn " + Crash + "))\n", {"--json", "r.json"});
    const ProgramResult result = Run(arguments);
    EXPECT_EQ(result.Status, 1);
    EXPECT_THAT(result.Out, HasSubstr("4 Done, 1 Error"));
    EXPECT_THAT(result.Out, testing::ContainsRegex("Error    " + Drawings[2] +
                                                   "\n(         .*\n)?         the host died, signal 11\n"));
    EXPECT_EQ(result.Errors.find("started again"), result.Errors.rfind("started again")) << result.Errors;
    EXPECT_THAT(result.Errors, HasSubstr("started again"));
    EXPECT_THAT(Read(Folder / "r.json"), HasSubstr("\"host\": \"died, signal 11\""));
    EXPECT_THAT(Tally(), ElementsAre(testing::Pair("p1000", 1), testing::Pair("p1001", 1),
                                     testing::Pair("p1003", 1), testing::Pair("p1004", 1)));
    ExpectWholeLog(4);
}

TEST_F(SeveralHosts, ThreeCrashesInARowEndTheRunOfAllHosts) {
    for (const char* jobs : {"1", "2"}) {
        Drawings.clear();
        const ProgramResult result = Run(Arguments(9, Crash, {"--jobs", jobs}));
        EXPECT_EQ(result.Status, 3);
        EXPECT_THAT(result.Errors, HasSubstr("third time in a row"));
        EXPECT_GT(CountInState(0), 0U) << "what was not reached still waits";
        EXPECT_THAT(result.Out, HasSubstr("--resume"));
    }
}

TEST_F(SeveralHosts, KilledHostsLoseNothingAndDoNothingTwice) {
    std::vector<fs::path> samples;
    for (const auto& entry : fs::directory_iterator(fs::path(SAMPLES) / "drawings")) {
        samples.push_back(entry.path());
    }
    const std::vector<std::string> arguments =
        Arguments(200, Dawdle + "zoom e\nqsave\n", {"--jobs", "2", "--json", "r.json"});
    for (std::size_t i = 0; i < Drawings.size(); ++i) {
        fs::copy_file(samples[i % samples.size()], Drawings[i], fs::copy_options::overwrite_existing);
    }
    const ProgramResult result = Run(arguments, [this](pid_t front) {
        for (const useconds_t later : {0, 2500, 6000}) {
            KillAHost(front, 20, SIGKILL, later);
        }
    });
    EXPECT_EQ(result.Status, 0) << result.Out << result.Errors;
    EXPECT_NE(result.Errors.find("started again"), std::string::npos) << result.Errors;
    EXPECT_THAT(result.Out, HasSubstr(":  200 Done\n"));
    EXPECT_EQ(CountInState(1), 200U);
    // A host may die between a script's last line and the save of the status: what ran twice must be one of
    // the drawings that were in work when their hosts were killed.
    const auto records = nlohmann::json::parse(Read(Folder / "r.json"));
    std::map<std::string, int> tally = Tally();
    std::size_t killed = 0;
    for (const auto& record : records) {
        const bool wasKilled = record.value("host", "") == "died, signal 9";
        killed += wasKilled ? 1 : 0;
        const int times = tally[fs::path(std::string(record["path"])).stem()];
        EXPECT_TRUE(times == 1 || (wasKilled && times == 2)) << record << " ran " << times << " times";
    }
    EXPECT_LE(killed, 3U);
    EXPECT_EQ(records.size(), 200U);
    ExpectWholeLog(200);
}

TEST_F(SeveralHosts, ADrawingWhoseHostIsKilledIsTriedOnceMore) {
    const std::string mark = Folder / "mark";
    for (const int number : {SIGKILL, SIGTERM}) {
        Drawings.clear();
        fs::remove(Folder / "tally");
        const std::vector<std::string> arguments =
            Arguments(3, "(if (= currentfile \"p1001\") (while (not (findfile \"" + mark + "\"))))\n",
                      {"--json", "r.json"});
        const ProgramResult once = Run(arguments, [&](pid_t front) {
            ASSERT_TRUE(WaitForState("Status=\"5\">" + Drawings[1]));
            KillAHost(front, 0, number, 0);
            Write("mark", "");
        });
        fs::remove(mark);
        EXPECT_EQ(once.Status, 0) << once.Out << once.Errors;
        EXPECT_THAT(once.Out, HasSubstr(Drawings[1] + "\n         the host died, signal " +
                                        std::to_string(number) + "; the second attempt went well\n"));
        EXPECT_THAT(Read(Folder / "r.json"), HasSubstr("\"host\": \"died, signal " + std::to_string(number)));
        EXPECT_EQ(LinesInTally(), 3U);
        ExpectWholeLog(3);
    }
    Drawings.clear();
    const std::vector<std::string> arguments =
        Arguments(3, "(if (= currentfile \"p1001\") (while t))\n", {"--json", "r.json"});
    const ProgramResult twice = Run(arguments, [&](pid_t front) {
        for (const char* attempt : {"first", "second"}) {
            // The host before must be gone from the state too.
            WaitForHost(front);
            ASSERT_TRUE(WaitForState("Status=\"5\">" + Drawings[1])) << attempt;
            KillAHost(front, 0, SIGKILL, 0);
        }
    });
    EXPECT_EQ(twice.Status, 1);
    EXPECT_THAT(twice.Out, HasSubstr("2 Done, 1 Error"));
    // What the killed hosts had not yet written of their own logs is lost.
    ExpectWholeLog(2);
}

TEST_F(SeveralHosts, AKilledFrontGoesOnWithOneHostOrSeveral) {
    for (const char* jobs : {"1", "3"}) {
        Drawings.clear();
        fs::remove(Folder / "tally");
        Run(Arguments(120, Dawdle, {"--jobs", "3"}), [this](pid_t front) {
            WaitForTally(20);
            kill(front, SIGKILL);
        });
        ProgramResult resumed;
        do {  // The lock is free once the hosts are dead too.
            usleep(20000);
            resumed = Run({"--resume", "--jobs", jobs});
        } while (resumed.Status == 3 && resumed.Errors.find("another run") != std::string::npos);
        EXPECT_EQ(resumed.Status, 0) << resumed.Out << resumed.Errors;
        EXPECT_EQ(CountInState(1), 120U);
        EXPECT_LE(LinesInTally(), 123U) << "only what was in work runs again";
        ExpectWholeLog(120);
        EXPECT_EQ(Run({"--resume"}).Status, 0);
        ExpectWholeLog(120);
    }
}

TEST_F(SeveralHosts, TwoEntriesOfOnePathAreTwoDrawings) {
    // As the window or a list of another program may have it; the second time the script goes wrong.
    const std::string twin = Write("twin.dxf", "0\nEOF\n");
    const std::string mark = Folder / "mark";
    Write("data/Ovrix/TarnelRunner.xml",
          "<TarnelRunner><Options><Script>(if (findfile \"" + mark +
              "\") (Tarnel_File_Error))\n(setq f (open \"" + mark +
              "\" \"w\")) (close f)\n</Script><SortIdx>6</SortIdx></Options><Files><File Status=\"0\">" +
              twin + "</File><File Status=\"1\">/done.dxf</File><File Status=\"0\">" + twin +
              "</File></Files></TarnelRunner>");
    const ProgramResult result = Run({"--resume", "--json", "r.json"});
    EXPECT_EQ(result.Status, 1) << result.Errors;
    EXPECT_THAT(result.Out, HasSubstr("2 Done, 1 Error"));
    EXPECT_THAT(result.Out, HasSubstr("Error    2/2  " + twin)) << "each has its line";
    const auto records = nlohmann::json::parse(Read(Folder / "r.json"));
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0]["status"], "Done");
    EXPECT_EQ(records[2]["status"], "Error");
    EXPECT_TRUE(records[0]["seconds"].is_number() && records[2]["seconds"].is_number()) << records;
}

TEST_F(SeveralHosts, SharesAreFairWholeAndInOrder) {
    std::vector<QueueEntry> queue;
    for (const std::size_t size : {900, 10, 300, 20, 300, 30, 300}) {
        queue.push_back({Write(std::to_string(queue.size()) + ".dxf", std::string(size * 1024, ' ')),
                         DrawingStatus::ToDo});
    }
    queue[1].Status = DrawingStatus::Done;
    const auto shares = SplitBySize(queue, 2);
    ASSERT_EQ(shares.size(), 2U);
    std::set<std::size_t> given;
    for (const auto& share : shares) {
        std::uintmax_t size = 0;
        for (const std::size_t place : share) {
            EXPECT_TRUE(given.insert(place).second);
            size += fs::file_size(queue[place].Path);
        }
        EXPECT_TRUE(std::is_sorted(share.begin(), share.end()));
        EXPECT_GE(size, 900U * 1024);
    }
    EXPECT_EQ(given.size(), 6U);
    EXPECT_EQ(SplitBySize(queue, 50).size(), 6U) << "no host without a drawing";

    // Two hosts would lock the drawing to each other.
    fs::create_hard_link(queue[0].Path, Folder / "twin.dxf");
    fs::create_symlink(queue[2].Path, Folder / "link.dxf");
    queue.push_back({Folder / "twin.dxf", DrawingStatus::ToDo});
    queue.push_back({Folder / "link.dxf", DrawingStatus::ToDo});
    const auto parted = SplitBySize(queue, 50);
    EXPECT_EQ(parted.size(), 6U);
    EXPECT_THAT(parted, testing::Contains(testing::ElementsAre(0U, 7U)));
    EXPECT_THAT(parted, testing::Contains(testing::ElementsAre(2U, 8U)));
}

}  // namespace
