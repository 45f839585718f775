// SPDX-License-Identifier: GPL-3.0-or-later
// Runs over shares of a list, as on several machines, and the one result that is made of them.
#include "tests/app/Program.h"

#include "app/QueueEntry.h"
#include "app/RunRecord.h"
#include "engine/record/TarnelData.h"
#include "zip/ZipArchive.h"

#include <gmock/gmock.h>
#include <csignal>
#include <nlohmann/json.hpp>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

class Merge : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        for (int i = 0; i < 7; ++i) {
            Write("p" + std::to_string(i) + (i == 3 ? ".DXF" : ".dxf"), i == 4 ? "hello\n" : "0\nEOF\n");
            List += "p" + std::to_string(i) + (i == 3 ? ".DXF\n" : ".dxf\n");
        }
        Write("all.lst", List);
        Write("s.scr", "zoom e\n");
    }
    ProgramResult RunShare(const std::string& share, const std::string& folder,
                           std::vector<std::string> more = {}) {
        more.insert(more.begin(), {"run", "--script", "s.scr", "--list", "all.lst", "--shard", share,
                                   "--data-dir", folder});
        return Call(more);
    }
    ProgramResult MergeInto(const std::string& target, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"merge", "--data-dir", target});
        return Call(arguments);
    }
    std::string State(const std::string& folder) const { return Folder / folder / "Ovrix/TarnelRunner.xml"; }
    /// Names without folders.
    std::vector<std::string> Queue(const std::string& folder) const {
        CTarnelData record;
        std::string error;
        EXPECT_TRUE(ReadRecord(State(folder), &record, &error)) << error;
        std::vector<std::string> names;
        for (const QueueEntry& entry : QueueOf(record)) {
            names.push_back(std::string(StatusWord(entry.Status)) + " " +
                            fs::path(entry.Path).filename().string());
        }
        return names;
    }

    std::string List;
};

TEST_F(Merge, LogsThatAreMissingAreTold) {
    ASSERT_EQ(RunShare("1/3", "one").Status, 0);
    ASSERT_EQ(RunShare("2/3", "two").Status, 1);
    ASSERT_EQ(RunShare("3/3", "three").Status, 0);
    // The log of a retry is begun anew, so that it tells of one drawing only; that is no loss.
    ASSERT_EQ(Call({"run", "--data-dir", "two", "--retry", "failed"}).Status, 1);
    EXPECT_EQ(MergeInto("all", {"one", "two", "three"}).Errors, "");
    EXPECT_EQ(Call({"run", "--data-dir", "all", "--resume"}).Status, 1);

    fs::remove(Folder / "three/Ovrix/tnl log.html");
    fs::remove(Folder / "three/Ovrix/TNLLog.zip");
    fs::remove(Folder / "one/Ovrix/TNLLog.zip");
    const ProgramResult merged = MergeInto("all", {"one", "two", "three"});
    EXPECT_EQ(merged.Status, 3);
    EXPECT_THAT(merged.Out, HasSubstr("6 Done, 1 FailOpen"));
    EXPECT_THAT(merged.Errors, HasSubstr("three/Ovrix/tnl log.html"));
    EXPECT_THAT(merged.Errors, HasSubstr("one/Ovrix/TNLLog.zip: the log of " + (Folder / "p0.dxf").string()));
    for (const char* folder : {"three", "one", "all"}) {
        const ProgramResult resumed = Call({"run", "--data-dir", folder, "--resume", "--quiet"});
        EXPECT_EQ(resumed.Status, 3) << folder;
        EXPECT_THAT(resumed.Errors, HasSubstr("Ovrix/")) << folder;
    }
}

TEST_F(Merge, SharesBecomeOneRunInTheOrderOfTheList) {
    EXPECT_EQ(RunShare("1/3", "one").Status, 0);
    EXPECT_EQ(RunShare("2/3", "two", {"--jobs", "2"}).Status, 1);
    EXPECT_EQ(RunShare("3/3", "three").Status, 0);
    const ProgramResult merged = MergeInto("all", {"three", "one", "two", "--json", "all.json"});
    EXPECT_EQ(merged.Status, 1) << merged.Errors;
    EXPECT_THAT(merged.Out, HasSubstr("7 drawings:  6 Done, 1 FailOpen"));
    EXPECT_THAT(Queue("all"), testing::ElementsAre("Done p0.dxf", "Done p1.dxf", "Done p2.dxf", "Done p3.DXF",
                                                   "FailOpen p4.dxf", "Done p5.dxf", "Done p6.dxf"));

    const auto records = nlohmann::json::parse(Read(Folder / "all.json"));
    ASSERT_EQ(records.size(), 7U);
    EXPECT_EQ(records[3]["path"], (Folder / "p3.DXF").string());
    EXPECT_TRUE(records[6]["seconds"].is_number());
    EXPECT_THAT(std::string(records[4]["message"]), HasSubstr("p4.dxf, line 1"));

    const std::string log = Read(Folder / "all/Ovrix/tnl log.html");
    EXPECT_EQ(log.find("Batch started"), log.rfind("Batch started"));
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(Folder / "all/Ovrix/TNLLog.zip", CZipArchive::Existing));
    EXPECT_EQ(archive.Count(), 7);
    for (int i = 0; i < archive.Count(); ++i) {
        CFileHeader header;
        archive.GetFileInfo(header, i);
        EXPECT_THAT(log, HasSubstr("id=\"" + header.Name + "\""));
    }

    // The result is a run like any other, with a script of its own.
    const std::string state = Read(State("all"));
    std::string other = state;
    other.replace(other.find("zoom e"), 6, "zoom a");
    Write("all/Ovrix/TarnelRunner.xml", other);
    const ProgramResult refused = Call({"run", "--resume", "--data-dir", "all"});
    EXPECT_EQ(refused.Status, 3);
    EXPECT_THAT(refused.Errors, HasSubstr("the script there is not that of the run"));
    Write("all/Ovrix/TarnelRunner.xml", state);
    Write("p4.dxf", "0\nEOF\n");
    fs::remove_all(Folder / "two");
    EXPECT_EQ(Call({"run", "--retry", "failed", "--data-dir", "all"}).Status, 0);
    EXPECT_THAT(Queue("all"), testing::Contains("Done p4.dxf"));
}

TEST_F(Merge, RefusesWhatWouldLoseOrDoubleADrawing) {
    RunShare("1/2", "one");
    RunShare("2/2", "two");
    RunShare("2/2", "again");
    RunShare("1/3", "third");
    Call({"run", "--script", "s.scr", "--data-dir", "plain", "p0.dxf", "p1.dxf"});
    Call({"run", "--script", "s.scr", "--data-dir", "other", "p1.dxf"});
    Call({"run", "--script", "s.scr", "--data-dir", "waits", "p5.dxf", "p6.dxf"});
    Call({"run", "--script", "s.scr", "--data-dir", "damaged", "p2.dxf"});
    std::string waits = Read(State("waits"));
    waits.replace(waits.find("Status=\"1\""), 10, "Status=\"0\"");
    Write("waits/Ovrix/TarnelRunner.xml", waits);
    Write("damaged/Ovrix/TarnelRunner.xml", "<TarnelRunner><Fi");
    struct Case {
        std::vector<std::string> Folders;
        int Status;
        std::string Message;
    };
    const std::vector<Case> cases = {
        {{"one"}, 3, "shard 2 of 2 is not among the folders"},
        {{"one", "two", "again"}, 3, "again/Ovrix: holds shard 2/2, as "},
        {{"two", "third"}, 3, "third/Ovrix: holds shard 1/3, while "},
        {{"one", "plain"}, 3, "plain/Ovrix: holds no shard, while "},
        {{"plain", "other"}, 3, "p1.dxf: stands in "},
        {{"plain", "waits"}, 3, "waits/Ovrix: 1 of 2 drawings still wait; go on with tarnel run --resume"},
        {{"plain", "damaged"}, 3, "damaged/Ovrix/TarnelRunner.xml: does not hold the state"},
        {{"plain", "nowhere"}, 3, "nowhere/Ovrix: no run was started here"},
        {{"plain", "./plain"}, 2, "plain/Ovrix: is given twice"},
        {{"plain", "all"}, 2, "all/Ovrix: the result cannot go where a part of it is"},
        {{}, 2, "required"}};
    Write("all/Ovrix/TarnelRunner.xml", waits);
    for (const Case& one : cases) {
        const ProgramResult result = MergeInto("all", one.Folders);
        EXPECT_EQ(result.Status, one.Status) << one.Message;
        EXPECT_THAT(result.Errors, HasSubstr(one.Message));
        EXPECT_EQ(std::count(result.Errors.begin(), result.Errors.end(), '\n'), 1) << result.Errors;
        EXPECT_EQ(Read(State("all")), waits) << one.Message;
    }

    // A log that cannot be read is not taken for an empty one.
    const fs::path log = fs::path(State("plain")).parent_path() / "tnl log.html";
    fs::rename(log, log.string() + ".kept");
    fs::create_directory(log);
    const ProgramResult unread = MergeInto("all", {"plain"});
    EXPECT_EQ(unread.Status, 3);
    EXPECT_THAT(unread.Errors, HasSubstr("tnl log.html: Is a directory"));
    EXPECT_EQ(Read(State("all")), waits);
    fs::remove(log);
    fs::rename(log.string() + ".kept", log);

    // On demand an unfinished one is taken, and what waits can be gone on with in the result.
    EXPECT_EQ(MergeInto("all", {"plain", "waits", "--unfinished"}).Status, 1);
    EXPECT_THAT(Queue("all"),
                testing::ElementsAre("Done p0.dxf", "Done p1.dxf", "ToDo p5.dxf", "Done p6.dxf"));
    EXPECT_EQ(Call({"run", "--resume", "--data-dir", "all"}).Status, 0);
    EXPECT_EQ(MergeInto("part", {"one", "--unfinished"}).Status, 1);
}

TEST_F(Merge, EveryShareIsOfTheSameListAndWhole) {
    EXPECT_EQ(RunShare("1/2", "one").Status, 1);
    Write("all.lst", "p6.dxf\n" + List.substr(0, List.size() - 7));
    RunShare("2/2", "two");
    const ProgramResult other = MergeInto("all", {"one", "two"});
    EXPECT_EQ(other.Status, 3);
    EXPECT_THAT(other.Errors, HasSubstr("two/Ovrix: holds a shard of another list"));
    EXPECT_FALSE(fs::exists(State("all")));

    // A drawing that is gone from a share's state cannot be told as done, and is not gone on without.
    Write("all.lst", List);
    EXPECT_EQ(RunShare("2/2", "two").Status, 0);
    EXPECT_EQ(MergeInto("all", {"one", "two"}).Status, 1);
    std::string state = Read(State("two"));
    const std::size_t start = state.find("<File ");
    state.erase(start, state.find("</File>") + 7 - start);
    Write("two/Ovrix/TarnelRunner.xml", state);
    for (const ProgramResult& refused :
         {MergeInto("all", {"one", "two"}), Call({"run", "--resume", "--data-dir", "two"})}) {
        EXPECT_EQ(refused.Status, 3);
        EXPECT_THAT(refused.Errors, HasSubstr("is not the queue of shard 2/2"));
    }
}

TEST_F(Merge, SharesWithoutDrawingsAndInterruptedOnesAreWhole) {
    EXPECT_EQ(RunShare("8/8", "empty").Status, 0);
    EXPECT_TRUE(Queue("empty").empty());
    EXPECT_EQ(RunShare("0/2", "x").Status, 2);
    EXPECT_EQ(RunShare("3/2", "x").Status, 2);
    EXPECT_EQ(RunShare("1", "x").Status, 2);
    EXPECT_EQ(RunShare("1/2", "x", {"--dry-run"}).Out, Folder.string() + "/p0.dxf\n" + Folder.string() +
                                                           "/p2.dxf\n" + Folder.string() + "/p4.dxf\n" +
                                                           Folder.string() + "/p6.dxf\n");

    // What an interrupted share has told is still known after it was gone on with.
    Write("s.scr",
          "(if (= currentfile \"p3\") (while (not (findfile \"" + (Folder / "go").string() + "\"))))\n");
    const ProgramResult once =
        Call({"run", "--script", "s.scr", "--list", "all.lst", "--shard", "2/2", "--data-dir", "data"},
             [this](pid_t front) {
                 ASSERT_TRUE(WaitForState("Status=\"5\""));
                 kill(front, SIGTERM);
             });
    EXPECT_EQ(once.Status, 130);
    Write("go", "");
    EXPECT_EQ(Call({"run", "--resume", "--data-dir", "data", "--json", "r.json"}).Status, 1);
    const auto records = nlohmann::json::parse(Read(Folder / "r.json"));
    ASSERT_EQ(records.size(), 3U);
    for (const auto& record : records) {
        EXPECT_TRUE(record["seconds"].is_number()) << record;
    }
}

}  // namespace
