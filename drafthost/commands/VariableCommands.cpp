// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "drafthost/commands/Commands.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/lisp/WildcardMatch.h"

namespace drafthost::commands {

namespace {

/// Where the name used last is kept; no variable can have it.
constexpr const char* LastNameKey = "SETVAR last name";

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

std::string lastName(Document& document) {
    auto found = document.variables().find(LastNameKey);
    return found == document.variables().end() ? std::string() : std::get<std::string>(found->second);
}

void listVariables(CommandContext& context, std::string_view pattern) {
    SystemVariables& variables = context.host().variables();
    size_t count = 0;
    for (const std::string& name : variables.names()) {
        auto value = variables.get(name);
        if (!value || !lisp::wildcardMatch(name, pattern, true)) {
            continue;
        }
        std::string line = name + std::string(name.size() < 16 ? 16 - name.size() : 1, ' ') + toText(*value);
        if (variables.find(name)->readOnly) {
            line += std::string(line.size() < 44 ? 44 - line.size() : 1, ' ') + "(read only)";
        }
        context.printLine(line);
        ++count;
    }
    if (count == 0) {
        context.printLine("No variable matches \"" + std::string(pattern) + "\".");
    }
}

/// A number or point that LISP or a module handed over, without the detour over its text.
std::optional<VariableValue> exactValue(const lisp::Value& value) {
    if (value.isInt()) {
        return VariableValue(static_cast<int>(value.toInt()));
    }
    if (value.isReal()) {
        return VariableValue(value.toReal());
    }
    if (value.isCons()) {
        auto items = value.items();
        if ((items.size() == 2 || items.size() == 3) &&
            std::all_of(items.begin(), items.end(),
                        [](const lisp::Value& item) { return item.isNumber(); })) {
            return items.size() == 2
                       ? VariableValue(Point2{items[0].toDouble(), items[1].toDouble()})
                       : VariableValue(Point{items[0].toDouble(), items[1].toDouble(), items[2].toDouble()});
        }
    }
    return std::nullopt;
}

Task<bool> setVariable(CommandContext& context, std::string name) {
    SystemVariables& variables = context.host().variables();
    auto current = variables.get(name);
    if (!current) {
        context.complain("Variable " + name + " has no value here.");
        co_return false;
    }
    std::string shown = toText(*current);
    if (variables.find(name)->readOnly) {
        context.printLine(name + " = " + shown + " (read only)");
        co_return true;
    }
    bool isString = std::holds_alternative<std::string>(*current);
    std::string prompt = "Enter new value for " + name;
    for (;;) {
        std::string text;
        std::optional<VariableValue> exact;
        std::string question = prompt;
        question.append(isString ? ", or . for none" : "").append(" <").append(shown).append(">");
        // Names of layers and styles may hold blanks: they come in quotes, as file names do.
        Ask ask(context, isString ? Ask::Type::FileName : Ask::Type::Input, question, {});
        auto answer = co_await ask;
        if (answer.isEnter()) {
            co_return true;
        }
        exact = exactValue(answer.value);
        text = answer.text;
        std::string reason;
        VariableStatus status;
        if (isString) {
            status = variables.set(name, text == "." ? std::string() : text, reason);
        } else if (exact) {
            status = variables.set(name, *exact, reason);
        } else {
            status = variables.setFromText(name, text, reason);
        }
        if (status == VariableStatus::Ok) {
            co_return true;
        }
        context.complain(reason);
    }
}

void setLogMode(CommandContext& context, int mode) {
    std::string reason;
    if (context.host().variables().set("LOGFILEMODE", mode, reason) != VariableStatus::Ok) {
        context.fail(reason);
    }
}

}  // namespace

CommandTask setvarCommand(CommandContext& context) {
    SystemVariables& variables = context.host().variables();
    // Started by the name of a variable, the command goes straight to the value.
    if (variables.find(context.name())) {
        co_await setVariable(context, context.name());
        co_return;
    }
    for (;;) {
        auto answer = co_await context.word(
            "Enter variable name or [?]",
            {.keywords = "?", .defaultText = lastName(context.document()), .bareText = true});
        if (answer.isKeyword("?") || answer.text == "?") {
            auto pattern = co_await context.word("Enter variable(s) to list", {.defaultText = "*"});
            listVariables(context, pattern.text);
            co_return;
        }
        if (answer.isEnter()) {
            co_return;
        }
        std::string name = upperCase(answer.text);
        if (!variables.find(name)) {
            context.complain("Unknown variable name \"" + answer.text +
                             "\". Type SETVAR ? for a list of variables.");
            continue;
        }
        context.document().variables()[LastNameKey] = name;
        co_await setVariable(context, name);
        co_return;
    }
}

CommandTask logFileOnCommand(CommandContext& context) {
    setLogMode(context, 1);
    co_return;
}

CommandTask logFileOffCommand(CommandContext& context) {
    setLogMode(context, 0);
    co_return;
}

}  // namespace drafthost::commands
