// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A host without event loop: it records what LISP asks for and answers from queues.

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "drafthost/automation/Session.h"
#include "drafthost/lisp/Printer.h"
#include "tests/lisp/FakeHost.h"

namespace drafthost::automation {

class FakeHost : public LispHost {
  public:
    std::vector<std::string> commands;  ///< every call, its answers joined by a blank
    std::map<std::string, Value, std::less<>> variables;
    std::string printed;
    std::deque<PromptAnswer> answers;
    std::vector<PromptRequest> asked;
    std::vector<std::string> refusals;
    bool retry = false;
    CommandStatus commandStatus = CommandStatus::Done;
    std::function<void()> onCommand;
    std::function<bool(const Exsubr&, std::span<const Value>, Value&)> onModule;
    std::map<std::string, std::string, std::less<>> files;
    Drawing* currentDrawing = nullptr;
    int changes = 0;
    bool cancelPending = false;
    bool gone = false;

    CommandStatus command(std::span<const Value> tokens) override {
        std::string line;
        for (const Value& v : tokens) {
            line += (line.empty() ? "" : " ") + lisp::prin1(v);
        }
        commands.push_back(tokens.empty() ? "ESC" : line);
        if (onCommand) {
            onCommand();
        }
        return commandStatus;
    }
    CommandStatus commandS(std::span<const Value> tokens) override { return command(tokens); }
    std::optional<Value> getVar(std::string_view name) override {
        const auto found = variables.find(lisp::upperCase(name));
        return found == variables.end() ? std::nullopt : std::optional(found->second);
    }
    bool setVar(std::string_view name, const Value& value) override {
        const auto found = variables.find(lisp::upperCase(name));
        if (found == variables.end() || found->second.type() != value.type()) {
            return false;
        }
        found->second = value;
        return true;
    }
    void print(std::string_view text) override { printed += text; }
    PromptAnswer ask(const PromptRequest& request) override {
        asked.push_back(request);
        if (answers.empty()) {
            return PromptAnswer::cancelled();
        }
        PromptAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }
    bool askAgain(const PromptRequest&, std::string_view reason) override {
        refusals.emplace_back(reason);
        return retry;
    }
    std::optional<std::string> askFile(std::string_view, std::string_view, std::string_view, int) override {
        return std::nullopt;
    }
    bool callModuleFunction(const Exsubr& function, std::span<const Value> args, Value& result) override {
        return onModule && onModule(function, args, result);
    }
    ModuleStatus loadModule(std::string_view) override { return ModuleStatus::AlreadyLoaded; }
    ModuleStatus unloadModule(std::string_view) override { return ModuleStatus::NotLoaded; }
    std::vector<std::string> loadedModules() override { return {"one.arx"}; }
    std::optional<std::string> findFile(std::string_view name) override {
        const auto found = files.find(name);
        return found == files.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<std::string> findTrustedFile(std::string_view name) override { return findFile(name); }
    std::optional<std::string> programToLoad(std::string_view name) override {
        auto longer = findFile(std::string(name) + ".lsp");
        return longer ? longer : findFile(name);
    }
    std::optional<std::string> environment(std::string_view) override { return std::nullopt; }
    void setEnvironment(std::string_view, std::string_view) override {}
    std::optional<std::string> configValue(std::string_view) override { return std::nullopt; }
    bool setConfigValue(std::string_view, std::string_view) override { return false; }
    std::string versionText() override { return "test"; }
    std::optional<std::string> commandName(std::string_view) override { return std::nullopt; }
    bool startProgram(std::string_view, std::string_view) override { return false; }
    std::optional<lisp::Value> registryValue(std::string_view, std::string_view) override { return {}; }
    bool setRegistryValue(std::string_view, std::string_view, const lisp::Value&) override { return false; }
    std::vector<std::string> registryNames(std::string_view, bool) override { return {}; }
    bool deleteRegistry(std::string_view, std::optional<std::string_view>) override { return false; }
    Drawing* drawing() override { return currentDrawing; }
    void drawingChanged(bool) override { ++changes; }
    bool checkInterrupt() override { return std::exchange(cancelPending, false); }
    bool documentGone() override { return gone; }
};

using lisp::run;

}  // namespace drafthost::automation
