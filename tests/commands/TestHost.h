// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A host with the real commands and variables, driven as a user, a script or a module drives it, and a folder
// of its own for the files of one test.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "drafthost/editor/CommandLine.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"

namespace drafthost::test {

class TestHost : public testing::Test {
  protected:
    TestHost();
    ~TestHost() override;

    /// Types text; a line end is Enter. What was printed since the last call is in `output`.
    void type(std::string_view text);
    /// One call of a module with these answers.
    Outcome module(const std::vector<std::string>& answers);
    /// Runs a script of that text.
    void script(std::string_view text);
    void open(const std::string& path);

    std::string path(std::string_view name) const { return (folder_ / name).string(); }
    std::string write(std::string_view name, std::string_view text) const;
    static std::string read(const std::string& path);

    VariableValue variable(std::string_view name);
    int integer(std::string_view name) { return std::get<int>(variable(name)); }
    std::string text(std::string_view name) { return std::get<std::string>(variable(name)); }
    bool idle() { return host.current() && host.current()->commandLine().atPrompt(); }
    Document& document() { return *host.current(); }

    std::filesystem::path folder_;
    std::string output;
    Host host{""};
};

}  // namespace drafthost::test
