// SPDX-License-Identifier: GPL-3.0-or-later
// docs/formats.md is what other programs go by: each of its examples is read by our reader, and what our
// writer makes of it is the example again.
#include "app/DataFolder.h"
#include "app/DrawingList.h"
#include "app/HostEvent.h"
#include "app/HostProcess.h"
#include "app/RecordFile.h"
#include "app/RunDescription.h"
#include "app/RunJournal.h"
#include "app/RunRecord.h"
#include "engine/record/TarnelData.h"
#include "log/HostLogArchive.h"
#include "log/RunLogText.h"
#include "state/GroupList.h"
#include "system/FileJournal.h"
#include "tests/app/Program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using testing::ElementsAre;

namespace {

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// The text with another in each place of one.
std::string Replaced(std::string text, const std::string& what, const std::string& with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
        text.replace(at, what.size(), with);
    }
    return text;
}

class Formats : public ProgramTest {
  protected:
    /// The block of docs/formats.md that is fenced under that name.
    static std::string Example(const std::string& name) {
        std::string found;
        bool inside = false;
        for (const std::string& line : LinesOf(Read(FORMATS))) {
            if (inside && line == "```") {
                return found;
            }
            if (inside) {
                found += line + "\n";
            }
            inside = inside || (line.starts_with("```") && line.ends_with(" " + name));
        }
        ADD_FAILURE() << "no example of the name " << name;
        return {};
    }

    std::string Error;
};

TEST_F(Formats, StateFile) {
    const std::string example = Replaced(Example("state"), "\n", "\r\n");
    CTarnelData record;
    ASSERT_TRUE(ReadRecord(Write("state.xml", example), &record, &Error)) << Error;
    EXPECT_EQ(record.Script, QByteArray("._-purge _all * _no\r\n._qsave\r\n"));
    EXPECT_EQ(record.LastTab, 1);
    EXPECT_EQ(record.MainWindow.Right, 1100);
    EXPECT_THAT(record.PreviousDirectories, ElementsAre(QByteArray("/srv/plans")));
    const RunQueue queue = QueueOf(record);
    EXPECT_THAT(PathsOf(queue),
                ElementsAre("/srv/plans/ground-floor.dxf", "/srv/plans/r&d/roof.dxf", "/srv/plans/site.dwg"));
    EXPECT_EQ(queue[1].Status, DrawingStatus::Error);
    ASSERT_TRUE(WriteRecord(Folder / "written.xml", record, &Error)) << Error;
    EXPECT_EQ(Read(Folder / "written.xml"), example);
}

TEST_F(Formats, GroupFiles) {
    RunOptions options;
    std::vector<std::string> notes;
    for (const char* name : {"group.xml", "grp.grp", "list.lst"}) {
        const std::string form = std::string(name).substr(0, std::string(name).find('.'));
        options.Lists = {Write(name, Example(form))};
        EXPECT_THAT(CollectDrawings(options, &notes, &Error),
                    ElementsAre("/srv/plans/ground-floor.dxf", "/srv/plans/site.dwg"))
            << name << ": " << Error;
    }
    ScriptFileGroup group;
    EXPECT_EQ(ScriptFileGroupOfText(QString::fromStdString(Example("grp")), &group), GroupListError::None);
    EXPECT_EQ(group.Script, QStringLiteral("/home/me/purge.scr"));
    EXPECT_EQ(group.MaxTime, 60U);
    EXPECT_EQ(group.AlarmTime, 40U);
    ASSERT_EQ(group.Entries.size(), 2U);
    EXPECT_EQ(group.Entries[1].OldStatus, 5);
}

TEST_F(Formats, RunLog) {
    // The file ends behind the last mark.
    const std::string example = Replaced(Example("log"), "\n", "\r\n");
    const std::string whole = example.substr(0, example.size() - 2);
    const RunLogContent log = ReadRunLog(QByteArray::fromStdString(whole));
    EXPECT_TRUE(log.IsWhole);
    ASSERT_EQ(log.Entries.size(), 4U);
    EXPECT_EQ(log.Entries[1].Id, QStringLiteral("_srv_logs_ground-floor_1_1_b46a.log"));
    EXPECT_EQ(log.Entries[2].Name, QStringLiteral("/srv/plans/<old> R&D.dxf"));
    QString text = RunLogHead;
    const auto add = [&](std::size_t line, const QString& html) {
        text += RunLogLineText(log.Entries[line].Time, html);
    };
    add(0, BatchStartedHtml());
    add(1, ProcessingHtml(log.Entries[1].Id, log.Entries[1].Name));
    add(2, ProcessingHtml(log.Entries[2].Id, log.Entries[2].Name));
    add(3, BatchCompletedHtml());
    EXPECT_EQ(EncodeRunLog(text + RunLogTail).toStdString(), whole);
    EXPECT_EQ(log.Entries[3].Kind, RunLogEntry::Completed);
}

TEST_F(Formats, NamesInTheArchive) {
    const std::vector<std::string> lines = LinesOf(Example("archive"));
    ASSERT_FALSE(lines.empty());
    for (const std::string& line : lines) {
        const std::size_t middle = line.find(" = ");
        EXPECT_EQ(HostLogId(QString::fromStdString(line.substr(0, middle))).toStdString(),
                  line.substr(middle + 3));
    }
}

TEST_F(Formats, Records) {
    const std::string example = Example("records");
    std::vector<DrawingRecord> records;
    for (const Json& one : Json::parse(example)) {
        ASSERT_TRUE(RecordFromJson(one, &records.emplace_back()));
    }
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].Seconds, 1.204);
    EXPECT_EQ(records[1].RefusedCount, 130U);
    EXPECT_EQ(records[1].Host, "died, signal 11");
    EXPECT_FALSE(records[2].Seconds);
    ASSERT_TRUE(WriteRecords(records, Folder / "out.json", &Error)) << Error;
    EXPECT_EQ(Read(Folder / "out.json"), example);
}

TEST_F(Formats, DescriptionOfARun) {
    const Json example = Json::parse(Example("description"));
    const std::string file = Write("run.json", example.dump());
    std::optional<RunDescription> description;
    ASSERT_TRUE(ReadDescription(Folder, &description, &Error)) << Error;
    ASSERT_TRUE(description);
    EXPECT_EQ(ShardText(*description->Share), "2/4");
    EXPECT_THAT(description->Places, ElementsAre(0U, 1U));
    EXPECT_TRUE(description->JobsReady && description->OldLogs && description->HasHeading);
    ASSERT_TRUE(WriteDescription(Folder, *description, &Error)) << Error;
    EXPECT_EQ(Read(file), example.dump() + "\n");
}

TEST_F(Formats, Journal) {
    const std::string example = Example("journal");
    const std::string id = Json::parse(LinesOf(example)[0]).at("run");
    const DataFolder folder(Folder / "data");
    const std::string file = Write("data/Ovrix/run.journal", example);
    const JournalContent content = ReadJournal(folder, id, 2);
    EXPECT_THAT(content.TriedAgain, ElementsAre(true, false));
    ASSERT_TRUE(content.Records[0] && content.Records[1]);
    EXPECT_EQ(content.Records[1]->Status, DrawingStatus::Timeout);
    EXPECT_TRUE(content.Records[1]->EarlierLog);
    ASSERT_TRUE(WriteJournal(folder.Path(), id, {*content.Records[0], *content.Records[1]},
                             content.TriedAgain, &Error))
        << Error;
    EXPECT_EQ(Read(file), example);
}

TEST_F(Formats, JournalOfAHost) {
    const std::string example = Replaced(Example("host-journal"), "/srv/plans", Folder / "plans");
    const std::string file = Folder / "host.journal";
    {
        files::FileJournal journal;
        ASSERT_TRUE(journal.Open(file, "node7 4711 123456", &Error)) << Error;
        journal.NoteTemporary(Folder / "plans/.save-7f3a");
        journal.NoteMarker(Folder / "plans/site.dwk");
        journal.Gone(Folder / "plans/.save-7f3a");
        EXPECT_TRUE(journal.NoteLog(Folder / "plans/logs/site 100%.log"));
        EXPECT_EQ(Read(file), example);
    }
    const std::string gone = Write("plans/.save-7f3a", "somebody's own by now");
    const std::string marker = Write("plans/site.dwk", "me\nnode7\n4711\n123456\n");
    const std::string log = Write("plans/logs/site 100%.log", "");
    Write("host.journal", example);
    files::ClearJournal(file, files::Logs::Remove);
    EXPECT_TRUE(fs::exists(gone));
    EXPECT_FALSE(fs::exists(marker) || fs::exists(log) || fs::exists(file));
}

/// Names of the members of each kind of event, as the example has them.
std::map<std::string, std::set<std::string>> MembersOf(const std::vector<std::string>& lines) {
    std::map<std::string, std::set<std::string>> members;
    for (const std::string& line : lines) {
        const Json object = Json::parse(line);
        std::set<std::string>& names = members[object.at("event")];
        for (const auto& [name, value] : object.items()) {
            names.insert(name);
        }
    }
    return members;
}

TEST_F(Formats, LinesForProgramsAreRead) {
    const std::vector<std::string> lines = LinesOf(Example("events"));
    std::set<HostEvent::Kind> kinds;
    for (const std::string& line : lines) {
        const std::optional<HostEvent> event = ReadEvent(line);
        ASSERT_TRUE(event) << line;
        kinds.insert(event->What);
        if (event->What == HostEvent::Kind::RunStarted) {
            EXPECT_EQ(event->Line, 2U);
            EXPECT_EQ(event->Lines, 3U);
            EXPECT_EQ(event->Scripts.size(), 2U);
        } else if (event->What == HostEvent::Kind::Status) {
            EXPECT_EQ(event->Status == DrawingStatus::Locked, !event->Reason.empty()) << line;
        } else if (event->What == HostEvent::Kind::Refused) {
            EXPECT_EQ(event->Line, 3U);
            EXPECT_EQ(event->Script, "/data/Ovrix/script1.scr");
        } else if (event->What == HostEvent::Kind::Log) {
            EXPECT_EQ(event->Rest.Text, "Command: QSAVE");
            EXPECT_EQ(event->Rest.Written, 4096U);
            EXPECT_FALSE(event->Rest.Cause.empty());
        } else if (event->What != HostEvent::Kind::RunEnded) {
            EXPECT_FALSE(event->Text.empty()) << line;
        }
    }
    EXPECT_EQ(kinds.size(), static_cast<std::size_t>(HostEvent::Kind::Log) + 1) << "a kind has no example";
}

TEST_F(Formats, LinesForProgramsAreWrittenByHostAndModule) {
    for (const char* name : {"rooms-2000.dxf", "bracket-r12.dxf", "flange-r14.dxf"}) {
        fs::copy(fs::path(SAMPLES) / "drawings" / name, Folder / name);
    }
    Write("flange-r14.dwk", "somebody else has it");
    CTarnelData record;
    record.Script =
        "(if (= (getvar \"DWGNAME\") \"rooms-2000.dxf\") (command \"._qsave\"))\r\nnonsense\r\n"
        "(entmake '((0 . \"POINT\") (10 7.0 7.0)))\r\n";
    SetQueue(&record,
             {{Folder / "rooms-2000.dxf"}, {Folder / "bracket-r12.dxf"}, {Folder / "flange-r14.dxf"}});
    ASSERT_TRUE(WriteRecord(StateFile(), record, &Error)) << Error;
    HostFiles files;
    files.Host = HOST_PROGRAM;
    files.Module = HOST_MODULE;
    HostPlace place;
    place.DataHome = Folder / "data";
    place.StateHome = Folder / "logs";
    place.Registry = Folder / "registry.ini";
    place.Run = RunDigestOf(StateFile(), &Error);
    place.Lenient = place.MustSave = true;
    HostProcess host;
    ASSERT_TRUE(host.Launch(files, place, &Error)) << Error;
    host.Send("TARNEL\n");
    bool answered = false;
    std::vector<std::string> told;
    std::vector<std::string> stray;
    const auto ended = [&] {
        return !told.empty() && told.back().find("\"run-ended\"") != std::string::npos;
    };
    for (bool alive = true; alive && !ended();) {
        std::vector<pollfd> watched;
        host.AddDescriptors(&watched);
        ASSERT_GT(poll(watched.data(), watched.size(), 60000), 0) << "the host says nothing more";
        host.Flush();
        alive = host.Read(&told, &stray);
        if (!answered && !told.empty() && told.back().find("\"prompt\"") != std::string::npos) {
            host.Send("Run\n");
            answered = true;
        }
    }
    const auto described = MembersOf(LinesOf(Example("events")));
    auto written = MembersOf(told);
    // No drawing takes long here, and no disk is full.
    for (const char* absent : {"alarm", "log"}) {
        EXPECT_EQ(written.count(absent), 0U);
        written[absent] = described.at(absent);
    }
    for (const auto& [event, members] : described) {
        EXPECT_EQ(written[event], members) << event;
    }
    EXPECT_EQ(written.size(), described.size());
}

}  // namespace
