// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The least that the language can run in: it collects what is printed and answers from queues.

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "drafthost/lisp/Printer.h"
#include "drafthost/lisp/World.h"

namespace drafthost::lisp {

class FakeHost : public WorldHost {
  public:
    std::map<std::string, Value, std::less<>> variables;
    std::string printed;
    std::deque<std::string> lines;  ///< what the user types
    std::function<bool(const Exsubr&, std::span<const Value>, Value&)> onModule;
    std::map<std::string, std::string, std::less<>> files;
    bool cancelPending = false;
    bool gone = false;

    void print(std::string_view text) override { printed += text; }
    void alert(std::string_view text) override { print(std::string(text) + "\n"); }
    Value readLine(Evaluator&) override {
        if (lines.empty()) {
            return {};
        }
        Value line = Value::string(lines.front());
        lines.pop_front();
        return line;
    }
    std::optional<Value> getVar(std::string_view name) override {
        const auto found = variables.find(upperCase(name));
        return found == variables.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<std::string> programToLoad(std::string_view name) override {
        for (const std::string& file : {std::string(name) + ".lsp", std::string(name)}) {
            if (const auto found = files.find(file); found != files.end()) {
                return found->second;
            }
        }
        return std::nullopt;
    }
    bool callModuleFunction(const Exsubr& function, std::span<const Value> args, Value& result) override {
        return onModule && onModule(function, args, result);
    }
    bool checkInterrupt() override { return std::exchange(cancelPending, false); }
    bool documentGone() override { return gone; }
};

/// What an expression gives, as the command line shows it: its value or "; error: …".
inline std::string run(World& world, std::string_view text) {
    const EvalResult result = world.evaluate(text);
    switch (result.status) {
        case EvalResult::Status::Ok:
            return prin1(result.value);
        case EvalResult::Status::DocumentGone:
            return "; gone";
        default:
            return "; error: " + result.text;
    }
}

}  // namespace drafthost::lisp
