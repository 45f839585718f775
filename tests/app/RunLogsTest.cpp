// SPDX-License-Identifier: GPL-3.0-or-later
// The run log and the archive of real runs: names that a page would take for markup, drawings that do not end
// well, and disks that take nothing.
#include "app/LogRests.h"
#include "app/RunLogs.h"
#include "tests/app/Program.h"
#include "zip/ZipArchive.h"

#include <gmock/gmock.h>
#include <csignal>
#include <fstream>
#include <map>
#include <QFile>
#include <sstream>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

class RunLogs : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        // A home that cannot be written is no hindrance: all that a run keeps is in its data folder.
        ASSERT_EQ(setenv("XDG_STATE_HOME", Write("state", "in the way").c_str(), 1), 0);
    }
    void TearDown() override {
        unsetenv("XDG_STATE_HOME");
        unsetenv("LC_ALL");
        ProgramTest::TearDown();
    }
    std::string Data() const { return Folder / "data/Ovrix"; }
    std::string Drawing(const std::string& name) const { return Write(name, "0\nEOF\n"); }

    /// What the log says of each drawing, by its path: the text of the log that the entry links to.
    std::map<std::string, std::string> Logs() const {
        std::map<std::string, std::string> logs;
        RunLogContent content;
        std::string error;
        EXPECT_TRUE(ReadLog(Data() + "/tnl log.html", &content, &error)) << error;
        EXPECT_TRUE(content.IsWhole);
        CZipArchive archive;
        EXPECT_TRUE(archive.Open(Data() + "/TNLLog.zip", CZipArchive::Existing));
        for (const RunLogEntry& entry : content.Entries) {
            if (entry.Kind == RunLogEntry::File) {
                const int index = archive.FindFile(entry.Id.toStdString(), true);
                EXPECT_GE(index, 0) << entry.Id.toStdString();
                const std::string path = QFile::encodeName(entry.Name).toStdString();
                EXPECT_TRUE(logs.emplace(path, index < 0 ? "" : archive.ReadWholeFile(index)).second)
                    << path << " stands there twice";
            }
        }
        return logs;
    }
    static std::size_t LinesOf(const std::string& text, const std::string& wanted) {
        std::istringstream lines(text);
        std::size_t count = 0;
        for (std::string line; std::getline(lines, line);) {
            count += line == wanted ? 1 : 0;
        }
        return count;
    }
    bool HostLogsAreLeft() const {
        for (const auto& entry : fs::recursive_directory_iterator(Data())) {
            if (entry.path().extension() == ".log" && entry.path().filename() != "TNLapp.log") {
                ADD_FAILURE() << entry.path() << ":\n" << Read(entry.path());
            }
        }
        return fs::exists(Data() + "/logs") || fs::exists(Data() + "/host.journal");
    }
};

const char* const Say = "(princ (strcat \"this is \" currentfile))\n";

TEST_F(RunLogs, NamesComeBackAsTheyAreInEveryLocale) {
    const std::vector<std::string> names = {"quo\"te.dxf",      "li\nne.dxf", "<script>alert(1).dxf",
                                            "a &amp; b &c.dxf", "план.dxf",   "Pläne.dxf"};
    for (const char* locale : {"C.UTF-8", "en_US.ISO-8859-1"}) {
        ASSERT_EQ(setenv("LC_ALL", locale, 1), 0);
        for (const char* jobs : {"1", "2"}) {
            std::vector<std::string> arguments = {"--script", Write("s.scr", Say), "--jobs", jobs};
            for (const std::string& name : names) {
                arguments.push_back(Drawing(name));
            }
            const ProgramResult result = Run(arguments);
            EXPECT_EQ(result.Status, 0) << locale << jobs << result.Out << result.Errors;
            const std::string bytes = Read(Data() + "/tnl log.html");
            EXPECT_EQ(bytes.find("<script"), std::string::npos);
            // Reading needs the locale of the run, as every reader of a narrow file does.
            if (std::string(locale) == "C.UTF-8") {
                EXPECT_THAT(bytes, HasSubstr("/план.dxf</span>"));
                const auto logs = Logs();
                EXPECT_EQ(logs.size(), names.size());
                for (const std::string& name : names) {
                    EXPECT_TRUE(logs.contains(Folder / name)) << name;
                }
            } else {
                EXPECT_THAT(bytes, HasSubstr("/&#1087;&#1083;&#1072;&#1085;.dxf</span>"));
                EXPECT_THAT(bytes, HasSubstr("/Pl\xe4ne.dxf</span>"));
            }
            EXPECT_FALSE(HostLogsAreLeft());
        }
    }
}

TEST_F(RunLogs, ADrawingThatDoesNotEndWellHasItsLogToTheLastWord) {
    const std::string script = Write("s.scr", std::string(Say) + R"(
(if (= currentfile "error") (Tarnel_File_Error))
(if (= currentfile "time") (while t))
(if (= currentfile "dies") (progn (arxload ")" CRASH_MODULE R"(") (command "CRASH")))
(if (= currentfile "waits") (while t))
)");
    const std::vector<std::string> names = {"error.dxf", "bad.dxf",  "time.dxf",
                                            "dies.dxf",  "well.dxf", "waits.dxf"};
    std::vector<std::string> arguments = {"--script", script, "--max-time", "3"};
    for (const std::string& name : names) {
        arguments.push_back(Drawing(name));
    }
    Write("bad.dxf", "nothing\nat all\n");
    const ProgramResult result = Run(arguments, [&](pid_t front) {
        ASSERT_TRUE(WaitForState("<File Status=\"5\">" + arguments.back()));
        usleep(200000);
        kill(front, SIGINT);
    });
    EXPECT_EQ(result.Status, 130) << result.Out << result.Errors;
    const auto logs = Logs();
    ASSERT_EQ(logs.size(), names.size());
    for (const std::string& name : names) {
        const std::string& log = logs.at(Folder / name);
        EXPECT_THAT(log, HasSubstr(name == "bad.dxf" ? name + "\r\nThe drawing was not opened"
                                                     : "this is " + fs::path(name).stem().string()));
    }
    EXPECT_THAT(logs.at(Folder / "bad.dxf"), HasSubstr("bad.dxf, line 1: "));
    EXPECT_FALSE(HostLogsAreLeft());
}

TEST_F(RunLogs, AHostThatIsKilledWithTheRunLeavesItsLogs) {
    const std::vector<std::string> names = {"a.dxf", "b.dxf"};
    std::vector<std::string> arguments = {
        "--script", Write("s.scr", std::string(Say) + "(if (= currentfile \"b\") (while t))\n")};
    for (const std::string& name : names) {
        arguments.push_back(Drawing(name));
    }
    const ProgramResult result = Run(arguments, [&](pid_t front) {
        ASSERT_TRUE(WaitForState("<File Status=\"5\">" + arguments.back()));
        usleep(200000);
        // Twice: the host is not asked, it is killed.
        kill(front, SIGINT);
        kill(front, SIGTERM);
        kill(front, SIGINT);
    });
    EXPECT_EQ(result.Status, 130) << result.Out << result.Errors;
    const auto logs = Logs();
    EXPECT_THAT(logs.at(Folder / "a.dxf"), HasSubstr("this is a"));
    EXPECT_THAT(logs.at(Folder / "b.dxf"), HasSubstr("this is b"));
    EXPECT_FALSE(HostLogsAreLeft());
}

TEST_F(RunLogs, WhatTheRunThatIsResumedHasLostIsToldAgain) {
    const std::string script =
        Write("s.scr", std::string(Say) + "(if (= currentfile \"b\") (while (not (findfile \"go\"))))\n");
    const std::vector<std::string> drawings = {Drawing("a.dxf"), Drawing("b.dxf"), Drawing("c.dxf")};
    EXPECT_EQ(Run({"--script", script, drawings[0], drawings[1], drawings[2]},
                  [&](pid_t front) {
                      ASSERT_TRUE(WaitForState("<File Status=\"5\">" + drawings[1]));
                      kill(front, SIGINT);
                  })
                  .Status,
              130);
    ASSERT_EQ(Logs().size(), 2U);
    fs::remove(Data() + "/tnl log.html");
    // A full disk takes the journal's lines too.
    const std::string journal = Read(Data() + "/run.journal");
    const std::size_t line = journal.find('\n') + 1;
    ASSERT_THAT(journal.substr(line, journal.find('\n', line) - line), HasSubstr("\"place\":0"));
    std::ofstream(Data() + "/run.journal")
        << journal.substr(0, line) << journal.substr(journal.find('\n', line) + 1);
    for (const char* attempt : {"first", "nothing waits"}) {
        const ProgramResult result = Run({"--resume"});
        EXPECT_EQ(result.Status, 3) << attempt << result.Out;
        EXPECT_THAT(result.Errors, HasSubstr("tnl log.html: the run log is not whole: " + drawings[0]));
    }
    // A log of its own owes nothing to the one before, whoever goes on with it.
    Write("go", "");
    EXPECT_EQ(Run({"--retry", "failed"}).Status, 0);
    EXPECT_EQ(Logs().size(), 1U);
    const ProgramResult result = Run({"--resume"});
    EXPECT_EQ(result.Status, 0) << result.Errors;
}

TEST_F(RunLogs, ALogThatIsNotWholeIsToldAndIsNoSuccess) {
    const std::string script = Write("s.scr", Say);
    for (const char* file : {"tnl log.html", "TNLLog.zip"}) {
        fs::create_directories(Folder / "data/Ovrix" / file / "in the way");
        const ProgramResult result = Run({"--script", script, Drawing("a.dxf")});
        EXPECT_EQ(result.Status, 3) << file << result.Out;
        EXPECT_THAT(result.Errors, HasSubstr(file));
        fs::remove_all(Folder / "data/Ovrix" / file);
    }
    const std::string inTheWay = Write("data/Ovrix/logs", "a file");
    const ProgramResult blocked = Run({"--script", script, Drawing("a.dxf")});
    EXPECT_EQ(blocked.Status, 3) << blocked.Out;
    EXPECT_THAT(blocked.Errors, HasSubstr(inTheWay + ": the folder cannot be made: Not a directory"));
    fs::remove(inTheWay);
    // The trace is a comfort.
    fs::remove_all(Folder / "data/Ovrix/TNLapp.log");
    fs::create_directories(Folder / "data/Ovrix/TNLapp.log");
    const ProgramResult result = Run({"--script", script, Drawing("a.dxf")});
    EXPECT_EQ(result.Status, 0) << result.Errors;
    EXPECT_NE(result.Errors.find("TNLapp.log"), std::string::npos);
    EXPECT_EQ(result.Errors.find("TNLapp.log"), result.Errors.rfind("TNLapp.log"));
}

TEST_F(RunLogs, OfDocumentsThatAScriptOpensBesidesNothingIsLeft) {
    // One for each, as two hosts work at the same time.
    Drawing("other-a.dxf");
    Drawing("other-b.dxf");
    const std::string script =
        Write("s.scr", std::string(Say) + "_.OPEN\n(strcat currentpath \"other-\" currentfile \".dxf\")\n" +
                           "_.CLOSE\n(princ 1)\n");
    for (const char* jobs : {"1", "2"}) {
        const ProgramResult result =
            Run({"--script", script, "--jobs", jobs, Drawing("a.dxf"), Drawing("b.dxf")});
        EXPECT_EQ(result.Status, 0) << result.Out << result.Errors;
        EXPECT_THAT(Logs().at(Folder / "a.dxf"), HasSubstr("this is a"));
        EXPECT_FALSE(HostLogsAreLeft());
    }
}

// Whatever keeps the host from writing its logs, the front has what it said.
TEST_F(RunLogs, WhatTheHostCannotWriteOfItsLogsTheFrontWrites) {
    const std::string script = Write("s.scr", std::string(Say) + "(repeat 20 (princ \"\\nmore\"))\n");
    const auto start = [&](const std::string& jobs) {
        return Run(
            {"--script", script, "--jobs", jobs, Drawing("a.dxf"), Drawing("b.dxf"), Drawing("c.dxf")});
    };
    // Over what a run has left, as those that are to fail.
    ASSERT_EQ(start("1").Status, 0);
    FailAt("drafthost", "write", 0, "");
    ASSERT_EQ(start("1").Status, 0);
    const auto whole = Logs();
    // Which writes go to logs, and which to the journal of their names.
    std::vector<unsigned> numbers;
    std::istringstream list(Read(Folder / "list"));
    std::size_t logWrites = 0;
    for (std::string line; std::getline(list, line);) {
        const bool isLog = line.find("/logs/drafthost/") != std::string::npos;
        if (line.starts_with("write\t") &&
            (isLog ? logWrites++ % 29 == 2 : line.ends_with("/host.journal") && numbers.size() % 2 == 0)) {
            numbers.push_back(static_cast<unsigned>(std::stoul(line.substr(6))));
        }
    }
    ASSERT_GT(numbers.size(), 4U);
    int tried = 0;
    for (const char* jobs : {"1", "2"}) {
        for (const unsigned number : numbers) {
            SCOPED_TRACE("write " + std::to_string(number) + " jobs " + jobs);
            FailAt("drafthost", "write", number, "file");
            const ProgramResult result = start(jobs);
            // No run makes its calls in quite the same order as the last.
            const std::string call = Read(Folder / "list");
            if (call.find("/logs/drafthost/") == std::string::npos &&
                call.find("/host.journal") == std::string::npos) {
                continue;
            }
            ++tried;
            EXPECT_EQ(result.Status, 0) << result.Out << result.Errors;
            const auto logs = Logs();
            ASSERT_EQ(logs.size(), whole.size());
            for (const auto& [drawing, text] : logs) {
                EXPECT_THAT(text, HasSubstr("this is " + fs::path(drawing).stem().string()));
                EXPECT_EQ(LinesOf(text, "more"), LinesOf(whole.at(drawing), "more")) << text;
            }
            EXPECT_FALSE(HostLogsAreLeft());
        }
    }
    EXPECT_GT(tried, 4);
}

TEST_F(RunLogs, ALogThatNobodyCouldWriteIsToldAgainAndAgain) {
    const std::string script = Write("s.scr", std::string(Say) + R"(
(if (= currentfile "b") (progn (setvar "LOGFILEMODE" 0) (vl-file-delete (getvar "LOGFILENAME")) (vl-mkdir (getvar "LOGFILENAME")) (setvar "LOGFILEMODE" 1)))
)");
    for (const char* jobs : {"1", "2"}) {
        const ProgramResult result =
            Run({"--script", script, "--jobs", jobs, Drawing("a.dxf"), Drawing("b.dxf"), Drawing("c.dxf")});
        EXPECT_EQ(result.Status, 3) << jobs << result.Out;
        EXPECT_THAT(result.Errors, HasSubstr("is not whole: Is a directory"));
        for (int again = 0; again < 2; ++again) {
            const ProgramResult resumed = Run({"--resume"});
            EXPECT_EQ(resumed.Status, 3) << jobs << resumed.Out;
            EXPECT_THAT(resumed.Errors, HasSubstr("b.dxf"));
        }
    }
}

TEST_F(RunLogs, TheRestOfALogIsWrittenWhenThatGoes) {
    const std::string folder = Folder / "logs";
    const std::string log = folder + "/a.log";
    std::string error;
    Write("logs", "in the way");
    LogRests rests(folder);
    rests.Take({log, 0, "all of it", true, "No space left on device"});
    EXPECT_FALSE(rests.Write(&error));
    EXPECT_THAT(error, HasSubstr(log + " is not whole: No space left on device; "));
    fs::remove(folder);
    fs::create_directory(folder);
    EXPECT_TRUE(rests.Write(&error));
    EXPECT_EQ(Read(log), "all of it");

    // Half of the rest may have got there at an attempt before.
    Write("logs/b.log.cut", "begun, and ha");
    rests.Take({folder + "/b.log", 5, " and ended", true, "cause"});
    EXPECT_EQ(Read(folder + "/b.log"), "begun and ended");
    EXPECT_FALSE(fs::exists(folder + "/b.log.cut"));
    EXPECT_TRUE(rests.Write(&error));

    // What stays without its start or its end bears another name.
    rests.Take({folder + "/c.log", 5, " and ended", true, "cause"});
    EXPECT_FALSE(rests.Write(&error));
    EXPECT_FALSE(fs::exists(folder + "/c.log"));
    LogRests others(folder);
    Write("logs/d.log", "begun");
    others.Take({folder + "/d.log", 5, " and cut", false, "cause"});
    EXPECT_FALSE(others.Write(&error));
    EXPECT_EQ(Read(folder + "/d.log.cut"), "begun and cut");
    EXPECT_FALSE(fs::exists(folder + "/d.log"));

    LogRests elsewhere(folder);
    elsewhere.Take({Folder / "else.log", 0, "text", true, "cause"});
    elsewhere.Take({folder + "/../else.log", 0, "text", true, "cause"});
    EXPECT_FALSE(elsewhere.Write(&error));
    EXPECT_FALSE(fs::exists(Folder / "else.log"));
}

// The archive keeps what there is, under a name that says so.
TEST_F(RunLogs, ALogThatIsCutIsToldAgainAndAgain) {
    const std::string script =
        Write("s.scr", std::string(Say) + "(if (= currentfile \"b\") (while (not (findfile \"go\"))))\n");
    Drawing("a.dxf");
    const std::string b = Drawing("b.dxf");
    ASSERT_EQ(Run({"--script", script, "a.dxf", "b.dxf"},
                  [&](pid_t front) {
                      ASSERT_TRUE(WaitForState("<File Status=\"5\">" + b));
                      for (const auto& entry : fs::directory_iterator(Data() + "/logs/drafthost")) {
                          if (entry.path().filename().string().starts_with("a_")) {
                              fs::rename(entry.path(), entry.path().string() + ".cut");
                          }
                      }
                      kill(front, SIGKILL);
                  })
                  .Status,
              -SIGKILL);
    Write("go", "");
    for (int again = 0; again < 3; ++again) {
        const ProgramResult resumed = Run({"--resume"});
        EXPECT_EQ(resumed.Status, 3) << resumed.Out;
        EXPECT_THAT(resumed.Errors, HasSubstr("a.dxf is not whole: its end could not be written"));
        EXPECT_THAT(Logs().at(Folder / "a.dxf"), HasSubstr("this is a"));
        EXPECT_FALSE(HostLogsAreLeft());
    }
}

// A full disk leaves logs with nothing in them, and a later run cannot make good for that.
TEST_F(RunLogs, AnEmptyLogInTheArchiveIsNoSuccess) {
    const std::vector<std::string> arguments = {
        "--script", Write("s.scr", std::string(Say) + "(if (= currentfile \"b\") (Tarnel_File_Error))\n"),
        Drawing("a.dxf"), Drawing("b.dxf")};
    ASSERT_EQ(Run(arguments).Status, 1);
    const auto logs = Logs();
    RunLogContent content;
    std::string error;
    ASSERT_TRUE(ReadLog(Data() + "/tnl log.html", &content, &error)) << error;
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(Data() + "/TNLLog.zip", CZipArchive::Create));
    for (const RunLogEntry& entry : content.Entries) {
        if (entry.Kind == RunLogEntry::File) {
            const std::string path = QFile::encodeName(entry.Name).toStdString();
            const std::string text = path == Folder / "a.dxf" ? "" : logs.at(path);
            CFileHeader header;
            header.Name = entry.Id.toStdString();
            archive.OpenNewFile(header, 9);
            archive.WriteNewFile(text.data(), text.size());
            archive.CloseNewFile();
        }
    }
    archive.Close();
    const ProgramResult again = Run({"--resume", "--retry", "failed"});
    EXPECT_EQ(again.Status, 3) << again.Out;
    EXPECT_THAT(again.Errors,
                HasSubstr("TNLLog.zip: the log of " + (Folder / "a.dxf").string() + " is empty"));
}

}  // namespace
