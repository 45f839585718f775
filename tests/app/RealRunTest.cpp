// SPDX-License-Identifier: GPL-3.0-or-later
// Whole runs of the real program over drawings: the samples under their scripts, names that need care,
// drawings that cannot be read, scripts that go wrong.
#include "tests/app/Program.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

namespace {

class RealRun : public ProgramTest {
  protected:
    std::string CopySample(const std::string& sample, const std::string& name) const {
        fs::create_directories((Folder / name).parent_path());
        fs::copy_file(fs::path(SAMPLES) / "drawings" / sample, Folder / name);
        return Folder / name;
    }
    static std::string Script(const std::string& name) { return fs::path(SAMPLES) / name; }
    /// Number of drawings in which an independent reader finds errors; it tells of them on standard output.
    int CountAuditErrors(const fs::path& folder) const {
        const std::string command = "/usr/bin/python3 " AUDIT " " + folder.string();
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
};

TEST_F(RealRun, EverySampleIsDoneUnderEveryScriptAndStaysSound) {
    fs::copy(fs::path(SAMPLES) / "drawings", Folder / "drawings");
    const ProgramResult check = Run({"--script", Script("check-layers.scr"), "drawings"});
    EXPECT_EQ(check.Status, 1);
    EXPECT_THAT(check.Out, HasSubstr("0 Done, 12 Error"));
    EXPECT_THAT(check.Out, HasSubstr("bracket-r12.dxf: 9 objects on layer 0\n"));
    for (const auto& entry : fs::directory_iterator(Folder / "drawings")) {
        EXPECT_EQ(Read(entry.path()), Read(fs::path(SAMPLES) / "drawings" / entry.path().filename()))
            << entry.path() << " was only looked at";
    }

    for (const char* script : {"layer-fixup.scr", "zoom-save.scr", "check-layers.scr"}) {
        const ProgramResult result = Run({"--script", Script(script), "drawings"});
        EXPECT_EQ(result.Status, 0) << script << "\n" << result.Out << result.Errors;
    }
    EXPECT_EQ(CountAuditErrors(Folder / "drawings"), 0);
    EXPECT_THAT(Read(Folder / "drawings/plan-2000-cyrillic.dxf"), HasSubstr("OFFICE-TEXT"));
}

TEST_F(RealRun, TheRunLogLinksEachDrawingToItsLogInTheArchive) {
    constexpr std::size_t Count = 50;
    std::vector<fs::path> samples;
    for (const auto& entry : fs::directory_iterator(fs::path(SAMPLES) / "drawings")) {
        samples.push_back(entry.path().filename());
    }
    std::vector<std::string> drawings;
    std::vector<std::string> arguments = {"--script",
                                          Write("s.scr", "(princ (strcat \"this is \" currentfile))\n")};
    for (std::size_t i = 0; i < Count; ++i) {
        const char* extension = i % 10 == 9 ? ".DXF" : ".dxf";
        drawings.push_back(CopySample(samples[i % samples.size()], "plan " + std::to_string(i) + extension));
        arguments.push_back(drawings.back());
    }
    const ProgramResult result = Run(arguments);
    ASSERT_EQ(result.Status, 0) << result.Out << result.Errors;

    const std::string unzip =
        "cd '" + Folder.string() + "' && mkdir logs && unzip -q data/Ovrix/TNLLog.zip -d logs";
    ASSERT_EQ(std::system(unzip.c_str()), 0);
    std::string log = Read(Folder / "data/Ovrix/tnl log.html");
    EXPECT_THAT(log, testing::StartsWith("<html><body><span>"));
    EXPECT_THAT(log, testing::EndsWith("<br />\r\n</body></html>"));
    std::size_t at = 0;
    for (const std::string& drawing : drawings) {
        const std::string mark = "Processing file: <span id=\"";
        at = log.find(mark, at);
        ASSERT_NE(at, std::string::npos) << drawing;
        at += mark.size();
        const std::string link = log.substr(at, log.find('"', at) - at);
        EXPECT_EQ(log.substr(at + link.size() + 2, drawing.size() + 7), drawing + "</span>");
        EXPECT_THAT(Read(Folder / "logs" / link), HasSubstr("this is " + fs::path(drawing).stem().string()));
        fs::remove(Folder / "logs" / link);
    }
    EXPECT_EQ(log.find("Processing file", at), std::string::npos);
    EXPECT_TRUE(fs::is_empty(Folder / "logs")) << "a log that nothing links to";

    // The trace: each step of each drawing, once, between one start and one end.
    const std::string trace = Read(Folder / "data/Ovrix/TNLapp.log");
    const auto times = [&trace](const std::string& line) {
        std::size_t found = 0;
        for (std::size_t from = trace.find("\n" + line + "\r"); from != std::string::npos;
             from = trace.find("\n" + line + "\r", from + 1)) {
            ++found;
        }
        return found;
    };
    for (const char* step : {"Open document", "Turn on logfile", "WatchNewLogFile", "DoScriptComplete"}) {
        EXPECT_EQ(times(step), Count) << step;
    }
    for (const char* step :
         {"DoStartBatch", "Delete log zip", "Open and write to tnl log.html", "CloseWatch"}) {
        EXPECT_EQ(times(step), 1U) << step;
    }
    EXPECT_THAT(trace, testing::StartsWith(std::string(33, '_')));
    EXPECT_THAT(trace, testing::EndsWith("\r\nRemove Commands\r\nDone"));
}

TEST_F(RealRun, NamesReachTheHostWhole) {
    std::vector<std::string> arguments = {"--script", Script("zoom-save.scr"), "--json", "r.json"};
    const std::vector<std::string> names = {"two  blanks.dxf", "quo\"te.dxf",           "back\\slash\\n.dxf",
                                            "план – 図面.dxf", "(paren) ;semi.dxf",     "CAPITALS.DXF",
                                            "-dash.dxf",       "in a folder/a&b<c>.dxf"};
    for (const std::string& name : names) {
        arguments.push_back(CopySample("rooms-2000.dxf", name));
    }
    const std::string before = Read(Folder / "CAPITALS.DXF");
    const ProgramResult result = Run(arguments);
    EXPECT_EQ(result.Status, 0) << result.Out << result.Errors;
    for (const std::string& name : names) {
        EXPECT_NE(Read(Folder / name), before) << name << " was not saved";
    }
    EXPECT_THAT(Read(Folder / "r.json"), HasSubstr((Folder / "CAPITALS.DXF").string() + "\""));
    EXPECT_EQ(Run({"--retry", "all", "--dry-run"}).Out.find("/links/"), std::string::npos);
}

TEST_F(RealRun, DamagedDrawingsFailOpenWithPlaceAndCauseAndTheRestIsDone) {
    const std::string whole = Read(fs::path(SAMPLES) / "drawings/rooms-2000.dxf");
    Write("d/a.dxf", whole);
    Write("d/b.dxf", "hello\nworld\n");
    Write("d/c.dxf", whole.substr(0, whole.size() / 2));
    Write("d/d.dwg", "AC1032" + std::string(200, '\0'));
    Write("d/e.dxf", "");
    Write("d/f.dxf", whole);
    const ProgramResult result = Run({"--script", Script("zoom-save.scr"), "d", "gone.dxf", "--list",
                                      Write("list.lst", "gone.dxf\nd/last.dxf\n")});
    EXPECT_EQ(result.Status, 2) << "a name on the command line must exist";

    Write("d/last.dxf", whole);
    const ProgramResult listed =
        Run({"--script", Script("zoom-save.scr"), "d", "--list", (Folder / "list.lst").string()});
    EXPECT_EQ(listed.Status, 1);
    EXPECT_THAT(listed.Out, HasSubstr("3 Done, 5 FailOpen"));
    Write("d/f.dxf", "0\nnothing\n");
    fs::remove(Folder / "d/last.dxf");
    EXPECT_THAT(Run({"--script", Script("zoom-save.scr"), "d"}).Out,
                HasSubstr("\nFailOpen 6/6  " + (Folder / "d/f.dxf").string()))
        << "the last one has its line too";
    Write("d/f.dxf", whole);
    for (const char* message : {"d/b.dxf, line 1: ", "d/c.dxf, line ", "d/d.dwg: a DWG file (AC1032)",
                                "d/e.dxf: the file is empty", "gone.dxf"}) {
        EXPECT_THAT(listed.Out, HasSubstr((Folder / message).string()));
    }
    EXPECT_EQ(Read(Folder / "d/c.dxf"), whole.substr(0, whole.size() / 2));
}

TEST_F(RealRun, ScriptsThatAreRefusedOrStopCostTheirDrawingOnly) {
    const std::string first = CopySample("rooms-2000.dxf", "a.dxf");
    const std::string second = CopySample("garden-2007.dxf", "b.dxf");
    struct Case {
        const char* Script;
        const char* Status;
        const char* Message;
    };
    Write("inner.scr", "(setq a 1)\n(setq b 2)\n(setq c 3)\nBAR\n");
    const std::string inner = "(setq a 1)\n_.script\n" + (Folder / "inner.scr").string() + "\n";
    const std::vector<Case> cases = {
        {inner.c_str(), "2 Error", "\n         inner.scr, line 4: Unknown command \"BAR\"."},
        {"zoom\nxyz\n", "2 Error", "script line 2: \"xyz\" is neither a point"},
        {"(while t)\n", "2 Timeout", ""},
        {"FOO\n", "2 Error", "script line 1: Unknown command \"FOO\"."},
        {"; first\n(car 1)\n", "2 Error", "script line 2: bad argument type"},
        {"zoom\n", "2 Error", "the script ends while ZOOM waits for an answer"},
        {"(setq a 1)\nsaveas\n", "2 Error",
         "script line 2: Tarnel: the script ends while SAVEAS waits for an answer"},
        {"(getstring)\n", "2 Error", "script line 1: Tarnel: the script ends while LISP waits for an answer"},
        {"(getstring T \"Name: \")\n", "2 Error", "the script ends while LISP waits for an answer"},
        {"(entsel)\n", "2 Error", "the script ends while LISP waits for an answer"},
        {"(command \"_.ZOOM\" pause)\n", "2 Error", ""},
        {"(princ \"x\n", "2 Error",
         "script line 1: The script ends inside the expression that begins with (princ \"x\n"},
        {"(progn (command \"FOO\") (command \"_.QSAVE\"))\n", "2 Error", "Unknown command \"FOO\""},
        {"._-layer\n_set\nnosuch\n\n", "2 Error", "script line 3: There is no layer \"nosuch\""},
        {"._-layer\n_make\na|b\n\n", "2 Error", "script line 3: The layer name \"a|b\""},
        {"(ssget)\n_all\n\n", "2 Done", ""},
        {"(ssget)\nfoo\n\n._qsave\n", "2 Error", "script line 2: \"foo\" names no object to select."},
        {"(entsel)\nfoo\n", "2 Error", "script line 2: Invalid selection."},
        {"(command-s \"_.FOO\")\n", "2 Error", "script line 1: Unknown command \"FOO\"."},
        {"(command-s \"_.ZOOM\" \"xyz\")\n", "2 Error", "script line 1: \"xyz\" is neither a point"},
        {"(vl-catch-all-apply 'car '(1))\n(defun *error* (s) (princ))\n(car 1)\n", "2 Done", ""},
        {"_.CLOSE\n(setq a 1)\n", "2 Done", ""},
        {"zoom\n(Tarnel_File_Error)\n", "2 Error", ""},
        {"(if (= currentfile \"a\") (Tarnel_File_Error))\n", "1 Done, 1 Error", ""}};
    for (const Case& one : cases) {
        const ProgramResult result =
            Run({"--max-time", "1", "--script", Write("s.scr", one.Script), first, second});
        EXPECT_EQ(result.Status, one.Status[2] == 'D' && one.Status[0] == '2' ? 0 : 1) << one.Script;
        EXPECT_THAT(result.Out, HasSubstr(one.Status)) << one.Script;
        EXPECT_THAT(result.Out, HasSubstr(one.Message)) << one.Script;
        // A call of the chain that a command took as its answer would have saved under that name.
        for (const auto& entry : fs::directory_iterator(Folder)) {
            EXPECT_TRUE(entry.path().extension() != ".dxf" || entry.path() == first || entry.path() == second)
                << entry.path() << " after " << one.Script;
        }
        EXPECT_EQ(Read(first), Read(fs::path(SAMPLES) / "drawings/rooms-2000.dxf")) << one.Script;
        EXPECT_EQ(Read(second), Read(fs::path(SAMPLES) / "drawings/garden-2007.dxf")) << one.Script;
    }
    const ProgramResult without =
        Run({"--lenient", "--max-time", "1", "--script",
             Write("s.scr", "(setvar \"SDI\" 0)\n_.close\n_yes\n(while t)\n"), first, second});
    EXPECT_THAT(without.Out, HasSubstr("2 Timeout")) << "a time limit has to reach a host without a drawing";
    const ProgramResult lenient =
        Run({"--lenient", "--script",
             Write("s.scr", "FOO\n(car 1)\n(command \"BAR\")\n(setvar \"LTSCALE\" 3)\n"), first});
    EXPECT_EQ(lenient.Status, 0);
    EXPECT_THAT(lenient.Out, HasSubstr("Done, not saved, 3 refused"));
}

TEST_F(RealRun, MustSaveAndLenientHoldForAllOfARun) {
    const std::string saved = CopySample("rooms-2000.dxf", "a.dxf");
    const std::string viewed = CopySample("rooms-2000.dxf", "b.dxf");
    const std::string left = CopySample("rooms-2000.dxf", "c.dxf");
    // The first line describes the script and is empty; the state does not hold it.
    const std::string script = Write("s.scr", R"(;DESCRIPTION:
FOO
(cond ((= currentfile "a") (setvar "LTSCALE" 3) (command "_.QSAVE"))
      ((= currentfile "b") (command "_.ZOOM" "_E"))
      (t (setvar "LTSCALE" 3)))
)");
    const std::string json = Folder / "r.json";
    const auto expectOneUnsaved = [&](const ProgramResult& result, const char* how) {
        EXPECT_EQ(result.Status, 1) << how;
        EXPECT_THAT(result.Out, HasSubstr("2 Done, 2 of them with refused lines, 1 Error")) << how;
        EXPECT_THAT(result.Out, HasSubstr("script line 2: Unknown command \"FOO\"")) << how;
        EXPECT_THAT(Read(StateFile()), HasSubstr("<File Status=\"1\">" + saved)) << how;
        EXPECT_THAT(Read(StateFile()), HasSubstr("<File Status=\"1\">" + viewed)) << how;
        EXPECT_THAT(Read(StateFile()), HasSubstr("<File Status=\"5\">" + left)) << how;
        const std::string records = Read(json);
        const std::string last = records.substr(records.rfind("c.dxf"));
        EXPECT_THAT(last, HasSubstr("\"Error\"")) << how;
        EXPECT_THAT(last, HasSubstr("left changes that nothing has saved")) << how;
        EXPECT_THAT(last, testing::ContainsRegex("\"changed\": ?true")) << how;
    };
    expectOneUnsaved(
        Run({"--must-save", "--lenient", "--json", json, "--script", script, saved, viewed, left}), "new");
    expectOneUnsaved(Run({"--retry", "all", "--json", json}), "retried");
    std::string state = Read(StateFile());
    state.replace(state.find("<File Status=\"5\">") + 14, 1, "0");
    Write("data/Ovrix/TarnelRunner.xml", state);
    expectOneUnsaved(Run({"--resume", "--json", json}), "gone on with");

    const ProgramResult told = Run({"--quiet", "--lenient", "--script", script, saved, viewed, left});
    EXPECT_EQ(told.Status, 0) << "a new run takes nothing over";
    EXPECT_THAT(told.Out, HasSubstr("3 Done, 1 of them not saved, 3 of them with refused lines"));
    EXPECT_THAT(told.Out, HasSubstr("Done, not saved, 1 refused  " + left));
    EXPECT_EQ(Run({"--quiet", "--script", Write("v.scr", "zoom\ne\n"), viewed}).Out, "");
}

TEST_F(RealRun, AHostTakesTheMemoryThatItMay) {
    const std::string drawing = CopySample("rooms-2000.dxf", "a.dxf");
    const std::string script = Write("s.scr", "(repeat 3000000 (setq l (cons 1 l)))\n");
    EXPECT_EQ(Run({"--script", script, drawing}).Status, 0);
    const ProgramResult little = Run({"--max-memory", "64M", "--script", script, drawing});
    EXPECT_EQ(little.Status, 1);
    EXPECT_THAT(little.Out, HasSubstr("insufficient memory"));
    for (const char* wrong : {"1M", "much", "-1"}) {
        const ProgramResult refused = Run({"--max-memory", wrong, "--script", script, drawing});
        EXPECT_EQ(refused.Status, 2) << wrong;
        EXPECT_THAT(refused.Errors, HasSubstr("--max-memory")) << wrong;
    }
}

TEST_F(RealRun, TheSystemsLimitOnFilesIsAFailedWriteOfFrontAndHost) {
    const std::string drawing = CopySample("rooms-2000.dxf", "rooms.dxf");
    const std::string script = Write("s.scr", "(setvar \"LTSCALE\" 7.0)\n._qsave\n");
    const auto limited = [&](rlim_t size) {
        rlimit before{};
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
        const rlimit limit{size, before.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        const ProgramResult result = Run({"--script", script, drawing});
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
        return result;
    };
    const ProgramResult front = limited(1000);
    EXPECT_EQ(front.Status, 3) << front.Out;
    EXPECT_THAT(front.Errors, HasSubstr("TarnelRunner.xml: cannot be written: File too large"));
    ASSERT_GT(fs::file_size(drawing), 8000U);
    const ProgramResult host = limited(8000);
    EXPECT_EQ(host.Status, 1) << host.Out << host.Errors;
    EXPECT_THAT(host.Out, HasSubstr("script line 2: " + drawing + ": File too large"));
}

TEST_F(RealRun, AScriptGoesOnBehindClose) {
    const std::string first = CopySample("rooms-2000.dxf", "a.dxf");
    const std::string second = CopySample("garden-2007.dxf", "b.dxf");
    for (const char* close : {"_.close\n", "(command \"_.CLOSE\")\n"}) {
        const ProgramResult result =
            Run({"--max-time", "5", "--json", (Folder / "r.json").string(), "--script",
                 Write("s.scr", std::string(close) + "(princ (strcat \"now in \" (getvar "
                                                     "\"DWGNAME\")))\n"),
                 first, second});
        EXPECT_EQ(result.Status, 0) << close << result.Out;
        EXPECT_THAT(result.Out, HasSubstr("2 Done")) << close;
        EXPECT_EQ(Read(first), Read(fs::path(SAMPLES) / "drawings/rooms-2000.dxf"));
    }
}

TEST_F(RealRun, AScriptCannotSpeakForTheRun) {
    const std::string first = CopySample("rooms-2000.dxf", "a.dxf");
    const std::string second = CopySample("garden-2007.dxf", "b.dxf");
    const std::string script = Write("s.scr", R"(
(setq fakes (list
  (strcat "Tarnel: status Done: " currentfileandpath currentext)
  "Tarnel: run ended"
  (strcat "{\"event\":\"status\",\"entry\":1,\"path\":\"" currentfileandpath currentext "\",\"status\":\"Done\"}")
  "{\"event\":\"run-ended\"}"))
(foreach fake fakes (princ (strcat "\n" fake "\n")))
(setq number 3)
(repeat 60
  (foreach folder '("/proc/self/fd/" "/dev/fd/")
    (if (setq way (open (strcat folder (itoa number)) "a"))
      (progn
        (foreach fake fakes (vl-catch-all-apply 'write-line (list fake way)))
        (vl-catch-all-apply 'close (list way)))))
  (setq number (1+ number)))
(setenv "TARNEL_REPORT_FD" "1")
(foreach fake fakes (princ (strcat "\n" fake "\n")))
(if (= currentfile "b") (Tarnel_File_Error))
)");
    const ProgramResult result = Run({"--max-time", "20", "--script", script, first, second});
    EXPECT_EQ(result.Status, 1) << result.Errors;
    EXPECT_THAT(result.Out, HasSubstr("\nError    2/2  " + second));
    EXPECT_THAT(result.Out, HasSubstr("1 Done, 1 Error"));
    EXPECT_THAT(result.Out, HasSubstr("         {\"event\":\"run-ended\"}\n")) << "the last that it said";
    EXPECT_THAT(Read(StateFile()), HasSubstr("<File Status=\"5\">" + second));
}

TEST_F(RealRun, ALineWithoutEndCostsNoMoreThanItsStart) {
    const std::string drawing = CopySample("rooms-2000.dxf", "a.dxf");
    const std::string script = Write("s.scr",
                                     "(setq s \"\303\244bcdefgh\")\n"
                                     "(repeat 13 (setq s (strcat s s)))\n"
                                     "(repeat 40 (princ s))\n(Tarnel_File_Error)\n");
    const ProgramResult result = Run({"--script", script, "--json", "r.json", drawing});
    EXPECT_EQ(result.Status, 1);
    EXPECT_THAT(result.Out, HasSubstr("bcdefgh ... (2949120 bytes in one line)\n"));
    EXPECT_LT(result.Out.size(), 2000U);
    EXPECT_LT(Read(Folder / "r.json").size(), 2000U);
}

TEST_F(RealRun, InterruptCancelsAndResumeTakesTheRest) {
    const std::string first = CopySample("rooms-2000.dxf", "a.dxf");
    const std::string second = CopySample("garden-2007.dxf", "b.dxf");
    const std::string script =
        Write("s.scr", "(if (= currentfile \"a\") (while (not (findfile \"go\"))))\nzoom e\nqsave\n");
    const ProgramResult result = Run({"--script", script, first, second}, [&](pid_t process) {
        ASSERT_TRUE(WaitForState("<File Status=\"5\">" + first));
        kill(process, SIGINT);
    });
    EXPECT_EQ(result.Status, 130);
    EXPECT_THAT(result.Out, HasSubstr("1 Canceled, 1 still ToDo"));
    EXPECT_EQ(Read(first), Read(fs::path(SAMPLES) / "drawings/rooms-2000.dxf"));
    EXPECT_EQ(Run({"--resume"}).Status, 1);
    EXPECT_THAT(Read(StateFile()), HasSubstr("<File Status=\"1\">" + second));
    Write("go", "");
    EXPECT_EQ(Run({"--retry", "failed"}).Status, 0);
}

TEST_F(RealRun, ARunIsGoneOnWithAsItWasStarted) {
    const std::string first = CopySample("rooms-2000.dxf", "a.dxf");
    const std::string second = CopySample("garden-2007.dxf", "b.dxf");
    const std::string script = Write("s.scr", "(while (not (findfile \"go\")))\n");
    const std::string other = Write("other.scr", "(princ \"another script\")\n");
    const auto change = [this](const std::string& from, const std::string& to) {
        std::string text = Read(StateFile());
        const std::size_t at = text.find(from);
        ASSERT_NE(at, std::string::npos) << text;
        std::ofstream(StateFile(), std::ios::binary) << text.replace(at, from.size(), to);
    };
    EXPECT_EQ(Run({"--script", script, "--max-time", "7", first, second},
                  [&](pid_t process) {
                      ASSERT_TRUE(WaitForState("<File Status=\"5\">" + first));
                      kill(process, SIGINT);
                  })
                  .Status,
              130);
    Write("go", "");
    // As a host that is started by hand, or the window, may leave the state.
    change("findfile", "princ");
    const std::string state = Read(StateFile());
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"--resume"}, {"--retry", "failed"}}) {
        const ProgramResult refused = Run(command);
        EXPECT_EQ(refused.Status, 3) << refused.Out;
        EXPECT_THAT(refused.Errors, HasSubstr("the script there is not that of the run; give --script FILE"));
        EXPECT_EQ(Read(StateFile()), state);
    }
    change("princ", "findfile");
    change("<MaxTime>7<", "<MaxTime>8<");
    const ProgramResult limits = Run({"--resume"});
    EXPECT_EQ(limits.Status, 1) << limits.Errors;
    EXPECT_THAT(limits.Errors, HasSubstr("those of the run hold"));
    EXPECT_THAT(Read(StateFile()), HasSubstr("<MaxTime>7<"));
    change("findfile", "princ");
    EXPECT_EQ(Run({"--retry", "failed", "--script", other}).Status, 0);
    EXPECT_EQ(Run({"--retry", "all"}).Status, 0) << "the other script is the run's now";
}

TEST_F(RealRun, LockedDrawingsArePassedOverOrReadOnly) {
    const std::string locked = CopySample("rooms-2000.dxf", "locked.dxf");
    Write("locked.dwk", "");
    const std::string writeProtected = CopySample("rooms-2000.dxf", "PROTECTED.DXF");
    fs::permissions(writeProtected, fs::perms::owner_read);
    const std::string other = CopySample("garden-2007.dxf", "b.dxf");
    const std::vector<std::string> arguments = {"--script", Script("zoom-save.scr"), locked, writeProtected,
                                                other};
    const std::string told = Run(arguments).Out;
    EXPECT_THAT(told, HasSubstr("1 Done, 2 Locked"));
    EXPECT_THAT(told,
                HasSubstr("Locked   " + locked + "\n         " + locked + " is open elsewhere: there is a"));
    EXPECT_THAT(told, HasSubstr("Locked   " + writeProtected + "\n         " + writeProtected +
                                " is write-protected"));
    // As a disk does that fails for a moment.
    FailAt("drafthost", "open", 0, "");
    Run({"--script", Script("zoom-save.scr"), other});
    std::istringstream calls(Read(Folder / "list"));
    std::string call;
    while (std::getline(calls, call) && !(call.starts_with("open\t") && call.ends_with("/b.dxf"))) {
    }
    FailAt("drafthost", "open", static_cast<unsigned>(std::stoul(call.substr(5))), "once");
    const ProgramResult failed = Run({"--script", Script("zoom-save.scr"), other});
    Environment.clear();
    EXPECT_EQ(failed.Status, 1) << failed.Errors;
    EXPECT_THAT(failed.Out, HasSubstr(other + " cannot be opened for writing: Input/output error"));
    // One that is passed over behind one that is worked on: each has its line, in order.
    EXPECT_THAT(Run({"--script", Script("zoom-save.scr"), other, locked}).Out,
                testing::MatchesRegex("Done     1/2  " + other + "  [0-9.]+ s\nLocked   2/2  " + locked +
                                      "\n(.|\n)*"));
    const std::string look =
        Write("look.scr", "(princ (strcat \"looked at \" (getvar \"dwgname\") \"\\n\"))\n");
    EXPECT_THAT(Run({"--script", look, "--read-only", locked, writeProtected}).Out, HasSubstr("2 Done"));
    std::vector<std::string> readOnly = arguments;
    readOnly.insert(readOnly.end(), {"--read-only", "--max-time", "2"});
    const ProgramResult saved = Run(readOnly);
    EXPECT_THAT(saved.Out, HasSubstr("opened read-only"));
    EXPECT_EQ(Read(writeProtected), Read(fs::path(SAMPLES) / "drawings/rooms-2000.dxf"));
    EXPECT_EQ(Read(locked), Read(fs::path(SAMPLES) / "drawings/rooms-2000.dxf"));
    EXPECT_THAT(Run(arguments).Out, HasSubstr("1 Done, 2 Locked")) << "the option is not kept";
}

TEST_F(RealRun, AMissingDrawingSaysSoWhateverItsExtension) {
    const std::string list = Write("l.lst", "gone.dwg\ngone.dxf\nGONE.DXF\n");
    for (const std::vector<std::string>& more : {std::vector<std::string>{}, {"--read-only"}}) {
        std::vector<std::string> arguments = {"--script", Script("zoom-save.scr"), "--list", list};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const ProgramResult result = Run(arguments);
        EXPECT_THAT(result.Out, HasSubstr("3 FailOpen"));
        for (const char* name : {"/gone.dwg: No such", "/gone.dxf: No such", "/GONE.DXF: No such"}) {
            EXPECT_THAT(result.Out, HasSubstr(name));
        }
    }
}

}  // namespace
