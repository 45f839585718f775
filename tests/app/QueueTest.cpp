// SPDX-License-Identifier: GPL-3.0-or-later
// The queue from what the user names, and the events of a run.
#include "app/DrawingList.h"
#include "app/HostEvent.h"
#include "app/QueueEntry.h"
#include "app/RunLedger.h"
#include "app/RunRecord.h"
#include "engine/record/TarnelData.h"
#include "tests/app/Program.h"

#include <gmock/gmock.h>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(Mask, FitsNamesInAnyCaseAndAnyOfSeveral) {
    EXPECT_TRUE(MatchesMask("PLAN.DXF", "*.dxf,*.dwg"));
    EXPECT_TRUE(MatchesMask("plan-07.dwg", "x*; plan-??.dwg"));
    EXPECT_FALSE(MatchesMask("plan.dxf.bak", "*.dxf,*.dwg"));
    EXPECT_FALSE(MatchesMask("plan.dxf", ",,"));
}

class DrawingList : public ProgramTest {
  protected:
    std::vector<std::string> Collect(RunOptions options) {
        Error.clear();
        Notes.clear();
        return CollectDrawings(options, &Notes, &Error);
    }
    std::string Error;
    std::vector<std::string> Notes;
};

TEST_F(DrawingList, TakesEachDrawingOnceInTheOrderGiven) {
    const std::string b = Write("in/b.dxf", "");
    const std::string a = Write("in/A.DXF", "");
    const std::string deep = Write("in/deep/c.dwg", "");
    Write("in/notes.txt", "");
    RunOptions options;
    options.Drawings = {Folder / "in/../in/b.dxf", Folder / "in"};
    EXPECT_THAT(Collect(options), ElementsAre(b, a));
    options.Recurse = true;
    options.Mask = "*.dwg";
    EXPECT_THAT(Collect(options), ElementsAre(b, deep));
    options.Drawings = {Folder / "in/none.dxf", a};
    EXPECT_THAT(Collect(options), IsEmpty());
    EXPECT_THAT(Error, testing::HasSubstr("in/none.dxf: No such file"));
    // A name that the host cannot be given stands there spelled out, and costs itself alone.
    options.Drawings = {Write("bad\xE4.dxf", ""), b};
    options.Mask = "*.dxf";
    EXPECT_THAT(Collect(options), ElementsAre((Folder / "bad\\xE4.dxf").string(), b));
}

TEST_F(DrawingList, ReadsListsOfPathsAndSavedQueues) {
    RunOptions options;
    options.Lists = {
        Write("lists/plain.lst", "\xEF\xBB\xBF@ Monday\r\nplan a.dxf\r\n\r\n/abs/b.dxf\nplan a.dxf"),
        Write("saved.xml",
              "<TarnelRunner>\n<Options/>\n<Files>\n"
              "<File Status=\"1\">/abs/&lt;c&gt; &amp; d.dxf</File>\n</Files>\n"
              "</TarnelRunner>\n")};
    EXPECT_THAT(Collect(options), ElementsAre(Folder / "lists/plan a.dxf", "/abs/b.dxf", "/abs/<c> & d.dxf"));
}

TEST_F(DrawingList, ReadsListsMadeOnOtherSystemsAndByEarlierVersions) {
    const auto read = [this](const std::string& name, const std::string& text) {
        RunOptions options;
        options.Lists = {Write(name, text)};
        return Collect(options);
    };
    Write("odd\\name.dxf", "");
    const std::string folder = Folder.string() + "/";
    // A Windows page, backslashes, CR LF, any case of the extension, and what has no place here.
    EXPECT_THAT(read("w.TXT", "@ pl\xE4ne\r\nsub\\gr\xFCn.dxf\r\nP:\\Plans\\A.DWG\r\nodd\\name.dxf\r\n"),
                ElementsAre(folder + "sub/grün.dxf", "p:\\plans\\a.dwg", folder + "odd\\name.dxf"));
    EXPECT_THAT(read("u.lst", "sub\\gr\xC3\xBCn.dxf\n\\\\Srv\\x\\B.dwg"),
                ElementsAre(folder + "sub/grün.dxf", "\\\\srv\\x\\b.dwg"));
    EXPECT_THAT(read("q.XML",
                     "<TarnelRunner><Files><File Status=\"1\">sub\\a.dxf</File>"
                     "<File>C:\\B.dxf</File></Files></TarnelRunner>"),
                ElementsAre("C:\\B.dxf", folder + "sub/a.dxf"))
        << "in the order that the queue is shown in";
    // The script that such a file names may be long gone; the drawings are what counts.
    EXPECT_THAT(read("g.grp",
                     "Tarnel V2 Script File\r\nC:\\s.scr\r\n90\r\n45\r\n"
                     "5     Sub\\A.dxf\r\n0     /b.dxf\r\n1 ____\r\n"),
                ElementsAre(folder + "Sub/A.dxf", "/b.dxf"));
    EXPECT_THAT(read("g.grp", "a.dxf\n"), IsEmpty());
    EXPECT_THAT(Error, testing::HasSubstr("g.grp: the first line is not"));
    EXPECT_THAT(read("u16.txt", std::string("\xFF\xFE/\0\xE4\0", 6)), ElementsAre("/ä"));
    // One line from elsewhere leaves the others as they are.
    EXPECT_THAT(read("mixed.txt", "/gr\xFCn.dxf\n/gr\xC3\xBCn2.dxf\n"),
                ElementsAre("/grün.dxf", "/grün2.dxf"));
    EXPECT_THAT(Notes, ElementsAre(testing::HasSubstr("mixed.txt: line 1 is not in UTF-8")));
    EXPECT_THAT(read("x.xml", "a.dxf\n"), IsEmpty());
    EXPECT_THAT(Error, testing::HasSubstr("x.xml: does not hold the state of a run"));
    RunOptions options;
    options.Lists = {Folder};
    EXPECT_THAT(Collect(options), IsEmpty());
    EXPECT_THAT(Error, testing::HasSubstr("cannot be read: Is a directory"));
}

TEST_F(DrawingList, AQueueOnDiskIsRunInItsSortOrder) {
    const auto order = [this](const std::string& key, const std::string& reverse) {
        CTarnelData record;
        std::string error;
        EXPECT_TRUE(ReadRecord(Write("state.xml", "<TarnelRunner><Options><SortIdx>" + key +
                                                      "</SortIdx><SortReverse>" + reverse +
                                                      "</SortReverse></Options><Files>"
                                                      "<File Status=\"2\">/2/b</File>"
                                                      "<File Status=\"0\">/1/B</File>"
                                                      "<File Status=\"1\">/3/a</File>"
                                                      "</Files></TarnelRunner>"),
                               &record, &error))
            << error;
        std::string paths;
        for (const QueueEntry& entry : QueueOf(record)) {
            paths += entry.Path;
        }
        return paths;
    };
    EXPECT_EQ(order("6", "0"), "/2/b/1/B/3/a");
    EXPECT_EQ(order("6", "1"), "/3/a/1/B/2/b");
    EXPECT_EQ(order("0", "0"), "/3/a/1/B/2/b");
    EXPECT_EQ(order("2", "1"), "/3/a/2/b/1/B");
    EXPECT_EQ(order("4", "0"), "/1/B/3/a/2/b");
}

TEST_F(DrawingList, NumbersOfAStateAreReadAsTheModuleReadsThem) {
    CTarnelData record;
    std::string error;
    std::string files;
    for (const char* status : {"0", "1x", " 2", "4294967296", "-1", "7", "x"}) {
        files += std::string("<File Status=\"") + status + "\">/a.dxf</File>";
    }
    ASSERT_TRUE(ReadRecord(Write("state.xml",
                                 "<TarnelRunner><Options><MaxTime>60x</MaxTime><SortIdx>6</SortIdx></Options>"
                                 "<Files>" +
                                     files + "</Files></TarnelRunner>"),
                           &record, &error))
        << error;
    EXPECT_EQ(record.MaxTime, 60U);
    std::string words;
    for (const QueueEntry& entry : QueueOf(record)) {
        words += std::string(StatusWord(entry.Status)) + " ";
    }
    EXPECT_EQ(words, "ToDo Done FailOpen Error Error Error ToDo ") << "entries of one path are entries each";
    EXPECT_FALSE(ReadRecord(Write("half.xml", "<TarnelRunner><Options/></TarnelRunner>"), &record, &error));
    EXPECT_THAT(error, testing::HasSubstr("half.xml: does not hold the state of a run"));
}

TEST(RunLedger, FollowsTheEventsOfARun) {
    RunLedger ledger({{"/a.dxf", DrawingStatus::ToDo},
                      {"/locked.dwg", DrawingStatus::ToDo},
                      {"/b.dxf", DrawingStatus::ToDo},
                      {"/a.dxf", DrawingStatus::ToDo}});
    const auto start = RunLedger::Clock::now();
    const auto take = [&](const std::string& line, int seconds) -> std::string {
        std::string settled;
        const auto event = ReadEvent(line);
        EXPECT_TRUE(event) << line;
        for (const DrawingRecord* record : ledger.Take(*event, start + std::chrono::seconds(seconds))) {
            settled += record->Path + ";";
        }
        return settled;
    };
    const auto status = [](int entry, const std::string& path, const std::string& word) {
        return R"({"event":"status","entry":)" + std::to_string(entry) + R"(,"path":")" + path +
               R"(","status":")" + word + R"("})";
    };
    const auto file = [](int entry, const std::string& path) {
        return R"({"event":"file","number":1,"of":4,"entry":)" + std::to_string(entry) + R"(,"path":")" +
               path + R"("})";
    };
    take(R"({"event":"text","text":"Cannot load a font."})", 0);
    take(status(0, "/a.dxf", "FailOpen"), 0);
    take(file(0, "/a.dxf"), 0);
    take(status(0, "/a.dxf", "Error"), 1);
    take(R"({"event":"text","text":"Unknown command \"FOO\"."})", 1);
    take(R"({"event":"prompt","text":"Specify first point: "})", 1);
    take(status(0, "/a.dxf", "Timeout"), 3);
    EXPECT_EQ(take(status(1, "/locked.dwg", "Locked"), 3), "/a.dxf;/locked.dwg;");
    take(status(2, "/b.dxf", "FailOpen"), 3);
    take(file(2, "/b.dxf"), 4);
    EXPECT_EQ(ledger.Current()->Path, "/b.dxf");
    take(R"({"event":"prompt","text":"Specify first point: "})", 5);
    take(status(2, "/b.dxf", "Error"), 9);
    take(status(3, "/a.dxf", "FailOpen"), 9);
    take(file(3, "/a.dxf"), 9);
    take(status(3, "/a.dxf", "Done"), 10);
    EXPECT_EQ(take(R"({"event":"run-ended"})", 11), "/a.dxf;");
    for (const char* other : {"Tarnel: run ended", "{\"event\":\"run-ended\"", "[]", R"({"event":"other"})",
                              R"({"event":"status","entry":0,"path":"/a.dxf","status":"Fine"})"}) {
        EXPECT_FALSE(ReadEvent(other)) << other;
    }

    const DrawingRecord& first = ledger.Records()[0];
    EXPECT_EQ(first.Status, DrawingStatus::Timeout);
    EXPECT_EQ(first.Message, "Unknown command \"FOO\".");
    EXPECT_EQ(first.Seconds, 3.0);
    EXPECT_FALSE(ledger.Records()[1].Seconds);
    EXPECT_EQ(ledger.Records()[2].Seconds, 5.0);
    EXPECT_EQ(ledger.Records()[2].Message, "Specify first point:");
    EXPECT_EQ(ledger.Records()[3].Status, DrawingStatus::Done) << "the second entry of that path";

    EXPECT_FALSE(ledger.Reconcile({{"/a.dxf", DrawingStatus::Timeout},
                                   {"/locked.dwg", DrawingStatus::Locked},
                                   {"/b.dxf", DrawingStatus::ToDo},
                                   {"/a.dxf", DrawingStatus::Done}}))
        << "a drawing that was worked on is not saved";
    EXPECT_EQ(ledger.Records()[0].Status, DrawingStatus::Timeout);
    EXPECT_EQ(ledger.Records()[2].Status, DrawingStatus::Error);
    EXPECT_EQ(ledger.Records()[3].Status, DrawingStatus::Done);
}

}  // namespace
