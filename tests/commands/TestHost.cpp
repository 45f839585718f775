// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/commands/TestHost.h"

#include <unistd.h>

#include <fstream>
#include <sstream>

#include "drafthost/editor/SystemVariables.h"

namespace drafthost::test {

TestHost::TestHost() {
    std::string pattern = (std::filesystem::temp_directory_path() / "commandsXXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    registerCommands(host.commands());
    registerSystemVariables(host.variables());
    host.setOutput([this](std::string_view text) { output += text; });
    std::string reason;
    host.variables().set("FILEDIA", 0, reason);
    host.newDocument();
}

TestHost::~TestHost() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void TestHost::type(std::string_view text) {
    output.clear();
    host.input().type(text);
    // The host works in short turns; however slow the machine, each one does a step at least.
    for (int turn = 0; turn < 200; ++turn) {
        host.input().pump();
    }
    host.flushOutput();
}

Outcome TestHost::module(const std::vector<std::string>& answers) {
    output.clear();
    std::vector<Input> inputs;
    for (const std::string& answer : answers) {
        inputs.push_back(Input::fromText(answer));
    }
    Outcome outcome = host.input().speak(inputs, InputSource::Module);
    host.flushOutput();
    return outcome;
}

void TestHost::script(std::string_view text) {
    type("script \"" + write("test.scr", text) + "\"\n");
}

void TestHost::open(const std::string& path) {
    OpenResult result = host.openDocument(path, OpenMode::ReadWrite);
    ASSERT_NE(result.document, nullptr) << result.error;
}

std::string TestHost::write(std::string_view name, std::string_view text) const {
    std::ofstream(folder_ / name, std::ios::binary) << text;
    return path(name);
}

std::string TestHost::read(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

VariableValue TestHost::variable(std::string_view name) {
    auto value = host.variables().get(name);
    EXPECT_TRUE(value) << name;
    return value.value_or(0);
}

}  // namespace drafthost::test
