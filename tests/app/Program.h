// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Runs the built program as a user would, in a folder of its own.
#include <gtest/gtest.h>
#include <sys/types.h>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

struct ProgramResult {
    int Status = -1;
    std::string Out;
    std::string Errors;
};

class ProgramTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// `tarnel run ARGS…` in Folder, with the state in Folder/data. meanwhile is called with the process
    /// once it has started.
    ProgramResult Run(std::vector<std::string> arguments, const std::function<void(pid_t)>& meanwhile = {});
    /// `tarnel ARGS…` in Folder.
    ProgramResult Call(std::vector<std::string> arguments, const std::function<void(pid_t)>& meanwhile = {});
    /// Writes a file in Folder and gives its path.
    std::string Write(const std::string& name, const std::string& text) const;
    static std::string Read(const std::string& path);
    std::string StateFile() const { return Folder / "data/Ovrix/TarnelRunner.xml"; }
    /// Waits until the state file holds the text.
    bool WaitForState(const std::string& text) const;

    /// Sets Environment so that in the runs of a program to come its call of a kind with this number, below
    /// Folder, fails; which calls there are stands in the file "list" then. Number 0 lets none fail.
    void FailAt(const std::string& program, const std::string& kind, unsigned number,
                const std::string& mode);

    std::filesystem::path Folder;
    /// Used in place of the real host when not empty.
    std::string Host;
    /// Set for the program, "NAME=VALUE".
    std::vector<std::string> Environment;

  private:
    int runs = 0;
};
