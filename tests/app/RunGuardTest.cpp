// SPDX-License-Identifier: GPL-3.0-or-later
// A script cannot change, begin, cancel or leave the run that it is part of: the drawing ends as Error with
// the cause, nothing behind the line runs, and the drawings behind it have their own script.
#include "tests/app/Program.h"

#include <gmock/gmock.h>
#include <chrono>
#include <csignal>
#include <nlohmann/json.hpp>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

constexpr const char* Change = "(setvar \"LTSCALE\" 7.0)\n._qsave\n";

class RunGuard : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        Write("other.scr", "(princ)\n");
        for (const char* name : {"flange-r14.dxf", "rooms-2000.dxf"}) {
            fs::copy_file(fs::path(SAMPLES) / "drawings" / name, Folder / name);
        }
    }
    ProgramResult RunScript(const std::string& script, std::vector<std::string> options = {},
                            int drawings = 2) {
        const auto begun = std::chrono::steady_clock::now();
        fs::remove_all(Folder / "data");
        Write("s.scr", script);
        options.insert(options.end(), {"--json", "r.json", "--script", "s.scr", "flange-r14.dxf"});
        if (drawings == 2) {
            options.emplace_back("rooms-2000.dxf");
        }
        const ProgramResult result = Run(options);
        EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(20)) << script;
        for (const auto& entry : fs::directory_iterator(Folder / "data/Ovrix")) {
            EXPECT_NE(entry.path().filename(), "host.journal") << script;
        }
        records = nlohmann::json::parse(Read(Folder / "r.json"));
        return result;
    }
    bool IsUntouched(const std::string& name) const {
        return Read(Folder / name) == Read(fs::path(SAMPLES) / "drawings" / name);
    }

    nlohmann::json records;
};

TEST_F(RunGuard, WhatWouldChangeTheRunEndsTheDrawingAsError) {
    const char* lines[] = {"(Tarnel_SetScript \"other.scr\")",
                           "(Tarnel_SetRecoverMode T)",
                           "(Tarnel_DoReadOnly T)",
                           "(TarnelDisableScriptChain T)",
                           "(TNL_Cancel_Batch)",
                           "(TNL_Start_Batch)",
                           "(C:Tarnel)",
                           "(C:Tarnel '(\"x.dxf\"))",
                           "_TARNEL\n_RUN",
                           "(command \"_TARNEL\")",
                           "(command \"_.QUIT\" \"_Y\")",
                           "._-quit\n_y",
                           "exit",
                           "_.RSCRIPT",
                           "(arxunload \"tnl3-19-64.arx\")"};
    for (const std::string line : lines) {
        const ProgramResult result = RunScript(line + "\n" + Change);
        EXPECT_EQ(result.Status, 1) << line << "\n" << result.Errors;
        ASSERT_EQ(records.size(), 2U) << line;
        for (const auto& record : records) {
            EXPECT_EQ(record["status"], "Error") << line;
            EXPECT_THAT(record["message"].get<std::string>(), testing::StartsWith("script line 1: ")) << line;
            EXPECT_EQ(record["saved"].size(), 0U) << line;
        }
        EXPECT_TRUE(IsUntouched("flange-r14.dxf") && IsUntouched("rooms-2000.dxf")) << line;
    }
}

TEST_F(RunGuard, LispSaysWhyTheHostRefuses) {
    const std::pair<const char*, const char*> lines[] = {
        {"(command-s \"_.QUIT\")", "QUIT cannot be used in a script here."},
        {"(command-s \"_.RSCRIPT\")", "RSCRIPT cannot be used in a script here."},
        {"(arxunload \"tnl3-19-64.arx\")", "tnl3-19-64.arx cannot be unloaded: it is locked."}};
    for (const auto& [line, why] : lines) {
        EXPECT_EQ(RunScript(std::string(line) + "\n", {}, 1).Status, 1) << line;
        EXPECT_EQ(records[0]["message"], std::string("script line 1: ") + why);
    }
}

TEST_F(RunGuard, ReadingIsFreeAndALenientRunGoesOnUnchanged) {
    EXPECT_EQ(RunScript("(Tarnel_SetScript)\n(Tarnel_SetRecoverMode)\n(TarnelDisableScriptChain)\n").Status,
              0);
    for (const std::string line : {"(TNL_Cancel_Batch)", "(Tarnel_SetScript \"other.scr\")", "_TARNEL"}) {
        const ProgramResult result = RunScript(line + "\n" + Change, {"--lenient"});
        EXPECT_THAT(result.Out, HasSubstr("2 Done")) << line;
        for (const auto& record : records) {
            EXPECT_EQ(record["refused"].size(), 1U) << line;
            EXPECT_EQ(record["saved"].size(), 1U) << line << ": it ran under its own script";
        }
    }
}

TEST_F(RunGuard, NothingOfAScriptGoesOnBehindTheEndOfItsRun) {
    for (const std::string script :
         {"(Tarnel_File_Next)\n(setvar \"LTSCALE\" 7.0)\n._qsave\n",
          "(progn (Tarnel_File_Next) (command \"._saveas\" \"DXF\" \"16\" \"leak.dxf\"))\n",
          "(Tarnel_File_Error)\n._saveas\nDXF\n16\nleak.dxf\n", "(Tarnel_File_Next)\n._line\n0,0\n"}) {
        const ProgramResult result = RunScript(script, {}, 1);
        EXPECT_LT(result.Status, 2) << script << result.Errors;
        EXPECT_FALSE(fs::exists(Folder / "leak.dxf")) << script;
        EXPECT_FALSE(fs::exists(Folder / "QUIT.dxf")) << script;
    }
}

TEST_F(RunGuard, TheFrontItselfStillCancels) {
    Write("s.scr", "(while T)\n");
    const ProgramResult result = Run(
        {"--json", "r.json", "--script", "s.scr", "flange-r14.dxf", "rooms-2000.dxf"}, [this](pid_t program) {
            EXPECT_TRUE(WaitForState("<File Status=\"5\">"));
            kill(program, SIGTERM);
        });
    records = nlohmann::json::parse(Read(Folder / "r.json"));
    EXPECT_EQ(records[0]["status"], "Canceled") << result.Errors;
    EXPECT_EQ(records[1]["status"], "ToDo");
}

}  // namespace
