// SPDX-License-Identifier: GPL-3.0-or-later
// What comes in from folders, pipes and other programs, and what of it is no drawing.
#include "app/DrawingList.h"
#include "app/Files.h"
#include "tests/app/Program.h"
#include "zip/ZipArchive.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <thread>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class Input : public ProgramTest {
  protected:
    std::vector<std::string> Collect(const RunOptions& options) {
        Notes.clear();
        Error.clear();
        return CollectDrawings(options, &Notes, &Error);
    }
    std::string MakePipe(const std::string& name) const {
        EXPECT_EQ(mkfifo((Folder / name).c_str(), 0600), 0);
        return Folder / name;
    }
    std::vector<std::string> Notes;
    std::string Error;
};

TEST_F(Input, HiddenFilesAndFoldersAreLeftOutUnlessWanted) {
    const std::string plain = Write("in/a.dxf", "");
    const std::string hidden = Write("in/.save-1.dxf", "");
    const std::string inside = Write("in/.git/b.dxf", "");
    RunOptions options;
    options.Drawings = {Folder / "in"};
    options.Recurse = true;
    EXPECT_THAT(Collect(options), ElementsAre(plain));
    options.Hidden = true;
    EXPECT_THAT(Collect(options), testing::UnorderedElementsAre(plain, hidden, inside));
    options.Hidden = false;
    options.Drawings = {hidden, Folder / "in/.git"};
    EXPECT_THAT(Collect(options), ElementsAre(hidden, inside)) << "named by the user";
}

TEST_F(Input, OneDrawingUnderTwoNamesIsTakenOnceAndSaid) {
    const std::string plan = Write("plan.dxf", "");
    fs::create_symlink(plan, Folder / "alias.dxf");
    fs::create_hard_link(plan, Folder / "twin.dxf");
    RunOptions options;
    options.Drawings = {plan, Folder / "alias.dxf", plan, plan, Folder / "twin.dxf", Write("other.dxf", "")};
    EXPECT_THAT(Collect(options), ElementsAre(plan, (Folder / "other.dxf").string()));
    EXPECT_THAT(Notes,
                ElementsAre(HasSubstr("alias.dxf: is the same file as " + plan),
                            plan + ": is named more than once; it is taken once", HasSubstr("twin.dxf")));
}

TEST_F(Input, ListsComeFromPipesAndKeepAnyName) {
    const std::string pipe = MakePipe("list");
    const auto collect = [&](const std::string& text, bool nullEnds) {
        std::thread writer([&] {
            const int end = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
            EXPECT_EQ(write(end, text.data(), text.size()), ssize_t(text.size()));
            close(end);
        });
        RunOptions options;
        options.Lists = {pipe};
        options.NullEnds = nullEnds;
        std::vector<std::string> found = Collect(options);
        writer.join();
        return found;
    };
    // More than a pipe holds at once.
    std::string many;
    for (int i = 0; i < 20000; ++i) {
        many += "/a/plan " + std::to_string(i) + ".dxf\n";
    }
    EXPECT_EQ(collect(many, false).size(), 20000U);
    EXPECT_THAT(collect("a.dxf\n", false), ElementsAre((fs::current_path() / "a.dxf").string()));
    const std::string odd("/@a\nb\\c\r.dxf\0/d.dxf\0", 20);
    EXPECT_THAT(collect(odd, true), ElementsAre("/@a\nb\\c\r.dxf", "/d.dxf"));
    EXPECT_THAT(collect(odd, false), IsEmpty());
    EXPECT_THAT(Error, HasSubstr("--null"));
}

TEST_F(Input, WhatIsTooLargeIsRefusedBeforeItIsRead) {
    const std::string huge = Write("huge.lst", "");
    fs::resize_file(huge, std::uintmax_t{3} << 30);
    RunOptions options;
    options.Lists = {huge};
    EXPECT_THAT(Collect(options), IsEmpty());
    EXPECT_THAT(Error, HasSubstr("huge.lst: cannot be read: holds more than 256 MB"));
    options.Lists = {"/dev/zero"};
    EXPECT_THAT(Collect(options), IsEmpty());
    EXPECT_THAT(Error, HasSubstr("/dev/zero: cannot be read: holds more"));
}

TEST_F(Input, WhatIsNoDrawingIsKnownWithoutBeingOpened) {
    fs::create_directories(Folder / "folder.dxf");
    const std::string socketPath = Folder / "s.dxf";
    const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(socketPath.size(), sizeof address.sun_path);
    socketPath.copy(address.sun_path, socketPath.size());
    ASSERT_EQ(bind(server, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    close(server);
    fs::create_symlink("/dev/null", Folder / "null.dxf");
    EXPECT_THAT(WhyNoDrawing(MakePipe("pipe.dxf"), false), HasSubstr("a pipe"));
    EXPECT_THAT(WhyNoDrawing(Folder / "folder.dxf", false), HasSubstr("a folder"));
    EXPECT_THAT(WhyNoDrawing(socketPath, false), HasSubstr("a socket"));
    EXPECT_THAT(WhyNoDrawing(Folder / "null.dxf", true), HasSubstr("a device"));
    EXPECT_THAT(WhyNoDrawing(Write("rooms.dxf.bak", ""), false), HasSubstr("by its name"));
    EXPECT_EQ(WhyNoDrawing(Write("rooms.dxf.bak", ""), true), "");
    EXPECT_EQ(WhyNoDrawing(Write("PLAN.DXF", ""), false), "");
    EXPECT_EQ(WhyNoDrawing(Folder / "gone.dwg", false), "") << "that the host tells";
}

TEST_F(Input, WhatIsNoDrawingEndsFailOpenWithoutAHost) {
    const std::string sample = fs::path(SAMPLES) / "drawings/rooms-2000.dxf";
    fs::copy_file(sample, Folder / "PLAN.DXF");
    Write("readme.txt", "hello");
    Write("rooms.dxf.bak", "hello");
    fs::create_directories(Folder / "folder.dxf");
    MakePipe("pipe.dxf");
    fs::create_symlink("/dev/zero", Folder / "zero.dxf");
    const std::string script = Write("s.scr", "(princ \"seen\\n\")\n");
    const std::string list = Write("l.lst", "readme.txt\nPLAN.DXF\nrooms.dxf.bak\n");
    for (const char* jobs : {"1", "3"}) {
        const ProgramResult result = Run({"--script", script, "--list", list, "folder.dxf", "pipe.dxf",
                                          "zero.dxf", "--jobs", jobs, "--json", "out.json", "--no-check"});
        EXPECT_EQ(result.Status, 1);
        EXPECT_THAT(result.Out, HasSubstr("1 Done, 5 FailOpen"));
        EXPECT_EQ(std::count(result.Errors.begin(), result.Errors.end(), '\n'), 5) << result.Errors;
        for (const char* why : {"folder.dxf is a folder", "pipe.dxf is a pipe", "zero.dxf is a device",
                                "readme.txt is no drawing", "rooms.dxf.bak is no drawing"}) {
            EXPECT_THAT(result.Errors, HasSubstr(why));
            EXPECT_THAT(result.Out, HasSubstr(why));
            EXPECT_THAT(Read(Folder / "out.json"), HasSubstr(why));
        }
    }
    EXPECT_THAT(Run({"--resume"}).Out, HasSubstr("1 Done, 5 FailOpen"));
    const ProgramResult again = Run({"--retry", "failed"});
    EXPECT_THAT(again.Out, HasSubstr("1 Done, 5 FailOpen"));
    EXPECT_THAT(again.Errors, HasSubstr("pipe.dxf is a pipe"));
    const ProgramResult none = Run({"--script", script, "readme.txt", "--json", "none.json"});
    EXPECT_EQ(none.Status, 1);
    EXPECT_THAT(none.Out, HasSubstr("0 Done, 1 FailOpen"));
}

TEST_F(Input, RecordsTakeThePlaceOfNothingThatTheRunNeeds) {
    const std::string drawing = Write("p/a.dxf", Read(fs::path(SAMPLES) / "drawings/rooms-2000.dxf"));
    const std::string script = Write("s.scr", "(princ \"seen\\n\")\n");
    const std::string list = Write("z.lst", drawing + "\n");
    const std::string odd = Write("rooms.bak", Read(drawing));
    fs::create_symlink(script, Folder / "link");
    ASSERT_EQ(Run({"--script", script, "--list", list, "--json", "out.json"}).Status, 0);
    const std::string state = Read(StateFile());
    const auto refused = [&](std::vector<std::string> arguments, const std::string& target) {
        arguments.insert(arguments.end(), {"--json", target});
        const std::string before = Read(Folder / target);
        const ProgramResult result = Run(arguments);
        EXPECT_EQ(result.Status, 2) << target;
        EXPECT_THAT(result.Errors, HasSubstr(target)) << target;
        EXPECT_EQ(Read(Folder / target), before);
        EXPECT_EQ(Read(StateFile()), state) << target;
    };
    refused({"--script", script, drawing}, "p/a.dxf");
    refused({"--script", script, drawing}, "new.DWG");
    refused({"--script", script, "--recover", odd}, "rooms.bak");
    refused({"--script", script, drawing}, "s.scr");
    refused({"--script", script, drawing}, "link");
    refused({"--script", script, "--list", list}, "z.lst");
    refused({"--script", script, drawing}, "data/Ovrix/TarnelRunner.xml");
    refused({"--retry", "all"}, "s.scr");
    refused({"--resume"}, "data/Ovrix/new.json");
    for (const std::string target : {"s.bak", "data/Ovrix/run.json", "data/Ovrix/tnl log.html"}) {
        const std::string before = Read(Folder / target);
        EXPECT_EQ(Call({"merge", "--data-dir", "all", "--json", target, "data"}).Status,
                  target == "s.bak" ? 0 : 2);
        EXPECT_TRUE(target == "s.bak" || Read(Folder / target) == before);
    }
}

TEST_F(Input, ANameThatCannotBeGivenToTheHostCostsItselfOnly) {
    const std::string sample = Read(fs::path(SAMPLES) / "drawings/rooms-2000.dxf");
    Write("in/good.dxf", sample);
    Write("in/caf\xE9.dxf", sample);
    Write("in/caf\xE8.dxf", sample);
    const std::string odd = Write("in/li\nne\x1B[31m\xC2\x9B.dxf", sample);
    const std::string list = Write("null.lst", std::string("in/caf\xE9.dxf\0in/good.dxf\0", 24));
    const std::string script = Write("s.scr", "(princ \"seen\\n\")\n");
    const auto expectOne = [&](const ProgramResult& result, const char* counts) {
        EXPECT_EQ(result.Status, 1) << result.Errors;
        EXPECT_THAT(result.Out, HasSubstr(counts));
        EXPECT_THAT(result.Errors, HasSubstr("caf\\xE9.dxf has a name that is not UTF-8"));
        EXPECT_THAT(Read(Folder / "out.json"), HasSubstr("not UTF-8"));
    };
    const ProgramResult folder = Run({"--script", script, "in", "--json", "out.json"});
    expectOne(folder, "4 drawings");
    EXPECT_THAT(folder.Out, HasSubstr("2 Done, 2 FailOpen"));
    EXPECT_THAT(folder.Out, HasSubstr("li\\nne\\x1B[31m\\x9B.dxf"));
    EXPECT_EQ(folder.Out.find('\x1B'), std::string::npos);
    EXPECT_THAT(nlohmann::json::parse(Read(Folder / "out.json")).dump(),
                HasSubstr(nlohmann::json(odd).dump()));
    expectOne(Run({"--retry", "failed", "--json", "out.json"}), "2 Done, 2 FailOpen");
    expectOne(Run({"--script", script, "--null", "--list", list, "--json", "out.json"}),
              "1 Done, 1 FailOpen");

    const ProgramResult data = Call({"run", "--data-dir", "d\xE9", "--script", script, "in/good.dxf"});
    EXPECT_EQ(data.Status, 3);
    EXPECT_THAT(data.Errors, HasSubstr("d\\xE9: the name of the data folder is not UTF-8"));
    EXPECT_FALSE(fs::exists(Folder / "d\xE9"));
}

TEST_F(Input, NoTerminalObeysTheNamesInMessages) {
    Write("s\x1B[31m.scr", "(princ)\n");
    const std::string data = "d\x1B[31m";
    const ProgramResult installed = Call({"install", "--data-dir", data, "s\x1B[31m.scr"});
    EXPECT_EQ(installed.Status, 0) << installed.Errors;
    EXPECT_EQ(installed.Out, (Folder / data / "Ovrix/Scripts/s\x1B[31m.scr").string() + "\n")
        << "for programs";
    Write("s\x1B[31m.scr", "(princ 1)\n");
    for (const std::vector<std::string>& call :
         {std::vector<std::string>{"install", "--data-dir", data, "s\x1B[31m.scr"},
          {"bundle", "--data-dir", data}}) {
        const ProgramResult refused = Call(call);
        EXPECT_EQ(refused.Status, 3) << call.front();
        EXPECT_THAT(refused.Errors, HasSubstr("d\\x1B[31m/")) << call.front();
        EXPECT_EQ(refused.Errors.find('\x1B'), std::string::npos) << call.front();
    }
}

TEST_F(Input, AScriptComesFromAPipeAndInAWindowsPage) {
    fs::copy_file(fs::path(SAMPLES) / "drawings/rooms-2000.dxf", Folder / "a.dxf");
    const std::string pipe = MakePipe("script");
    std::thread writer([&] {
        const std::string text = "-layer\nn\nW\xE4nde\n\nqsave\n";
        const int end = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
        EXPECT_EQ(write(end, text.data(), text.size()), ssize_t(text.size()));
        close(end);
    });
    const ProgramResult result = Run({"--script", pipe, "a.dxf"});
    writer.join();
    EXPECT_EQ(result.Status, 0) << result.Out << result.Errors;
    EXPECT_THAT(result.Errors, HasSubstr("script: line 3 is not in UTF-8"));
    const std::string saved = Read(Folder / "a.dxf");
    EXPECT_TRUE(saved.find("W\xE4nde") != std::string::npos ||
                saved.find("W\xC3\xA4nde") != std::string::npos);
    EXPECT_EQ(saved.find("\xEF\xBF\xBD"), std::string::npos);
    EXPECT_THAT(Run({"--script", Write("b.scr", std::string("a\0\n", 3)), "a.dxf"}).Errors,
                HasSubstr("b.scr: line 1 holds a NUL"));
}

TEST_F(Input, AScriptInAScriptIsReadAlike) {
    fs::copy_file(fs::path(SAMPLES) / "drawings/plan-2000-cyrillic.dxf", Folder / "a.dxf");
    Write("inner.scr", "-layer\nn\n\xD1\xF2\xE5\xED\xE0\n\nqsave\n");
    Write("f.lsp", "(princ \"\xC4\xEE\xEC\\n\")\n");
    const std::string script =
        Write("s.scr", "(load \"" + (Folder / "f.lsp").string() + "\")\n(command \"._script\" \"" +
                           (Folder / "inner.scr").string() + "\")\n");
    const char* before = std::getenv("LC_ALL");
    const std::string kept = before ? before : "";
    setenv("LC_ALL", "ru_RU.UTF-8", 1);
    const ProgramResult result = Run({"--script", script, "--max-time", "3", "a.dxf"});
    before ? setenv("LC_ALL", kept.c_str(), 1) : unsetenv("LC_ALL");
    EXPECT_NE(Read(Folder / "a.dxf").find("\xD1\xF2\xE5\xED\xE0"), std::string::npos) << result.Out;
}

TEST_F(Input, LinesInPlaceOfAScriptAndWhatIsWrongWithThem) {
    fs::copy_file(fs::path(SAMPLES) / "drawings/rooms-2000.dxf", Folder / "a.dxf");
    const ProgramResult done = Run({"-e", "._-layer _m fresh-layer", "-e", "", "-e", "._qsave", "a.dxf"});
    EXPECT_EQ(done.Status, 0) << done.Out << done.Errors;
    EXPECT_EQ(done.Errors, "");
    EXPECT_THAT(Read(Folder / "a.dxf"), HasSubstr("fresh-layer"));
    EXPECT_EQ(Run({"--resume"}).Status, 0) << "the script is kept";
    Run({"-e", "._-layer _m second", "-e", "", "-e", "._qsave", "-e", "._-layer _m third", "-e", "", "-e",
         "._qsave", "a.dxf", "--json", "twice.json"});
    const std::string records = Read(Folder / "twice.json");
    const std::size_t saved = records.find("\"saved\"");
    ASSERT_NE(saved, std::string::npos);
    const std::string list = records.substr(saved, records.find(']', saved) - saved);
    EXPECT_THAT(list, HasSubstr("a.dxf"));
    EXPECT_EQ(list.find(','), std::string::npos) << "a path once: " << list;
    const ProgramResult wrong = Run({"-e", "._zom", "a.dxf"});
    EXPECT_EQ(wrong.Status, 1);
    EXPECT_EQ(wrong.Errors,
              "tarnel: -e:1: unknown command ZOM\n"
              "tarnel: -e:1: no QSAVE or SAVEAS: changes to the drawings are not saved\n");
    EXPECT_EQ(Run({"-e", "._zom", "a.dxf", "--no-check"}).Errors, "");
    EXPECT_EQ(Run({"-e", "._zom", "a.dxf", "--quiet"}).Errors, "");
    EXPECT_EQ(Run({"-e", "zoom", "--script", "s.scr", "a.dxf"}).Status, 2);
    EXPECT_THAT(Run({"-e", " ", "a.dxf"}).Errors, HasSubstr("-e: the script is empty"));
}

TEST_F(Input, ScriptsAreCheckedWithoutARun) {
    std::vector<std::string> samples = {"check"};
    for (const char* name : {"zoom-save.scr", "layer-fixup.scr"}) {
        samples.push_back(fs::path(SAMPLES) / name);
    }
    const ProgramResult clean = Call(samples);
    EXPECT_EQ(clean.Status, 0);
    EXPECT_EQ(clean.Out + clean.Errors, "");
    Write("s.scr", ";DESCRIPTION:x\r\n._zom\r\n(princ\r\n");
    const ProgramResult told = Call({"check", "s.scr"});
    EXPECT_EQ(told.Status, 1);
    EXPECT_EQ(told.Out,
              "s.scr:1: no QSAVE or SAVEAS: changes to the drawings are not saved\n"
              "s.scr:2: unknown command ZOM\n"
              "s.scr:3: the parenthesis that opens here is never closed\n");
    // In a run the lines are those of the file as well.
    fs::copy_file(fs::path(SAMPLES) / "drawings/rooms-2000.dxf", Folder / "a.dxf");
    EXPECT_THAT(Run({"--script", "s.scr", "a.dxf"}).Errors, HasSubstr("s.scr:2: unknown command ZOM"));
    std::string many;
    for (int i = 0; i < 300; ++i) {
        many += "._zom\n";
    }
    Write("many.scr", many);
    const ProgramResult cut = Run({"--script", "many.scr", "a.dxf"});
    EXPECT_EQ(std::count(cut.Errors.begin(), cut.Errors.end(), '\n'), 21);
    EXPECT_THAT(cut.Errors, HasSubstr("281 more like these: tarnel check many.scr"));
    const ProgramResult gone = Call({"check", "s.scr", "gone.scr"});
    EXPECT_EQ(gone.Status, 3);
    EXPECT_THAT(gone.Errors, HasSubstr("gone.scr: "));
    EXPECT_THAT(gone.Out, HasSubstr("s.scr:2:")) << "the others are told all the same";
    Host = "/bin/false";
    EXPECT_THAT(Call({"check", "s.scr"}).Out, Not(HasSubstr("ZOM"))) << "no host, no judgement of commands";
    EXPECT_EQ(Call({"check"}).Status, 2);
}

TEST_F(Input, TheLongestNamesKeepTheirLogs) {
    std::string umlauts;
    for (int i = 0; i < 125; ++i) {
        umlauts += "\xC3\xA4";
    }
    const std::vector<std::string> names = {std::string(251, 'x') + ".dxf", umlauts + ".dxf"};
    std::vector<std::string> arguments = {"-e", "._zoom e", "-e", "._qsave"};
    for (const std::string& name : names) {
        fs::copy_file(fs::path(SAMPLES) / "drawings/rooms-2000.dxf", Folder / name);
        arguments.push_back(name);
    }
    const ProgramResult result = Run(arguments);
    EXPECT_EQ(result.Status, 0) << result.Out << result.Errors;
    EXPECT_EQ(result.Errors, "");
    CZipArchive archive;
    ASSERT_TRUE(archive.Open((Folder / "data/Ovrix/TNLLog.zip").string(), CZipArchive::Existing));
    EXPECT_EQ(archive.Count(), 2);
}

}  // namespace
