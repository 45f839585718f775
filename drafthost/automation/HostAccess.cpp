// SPDX-License-Identifier: GPL-3.0-or-later
// Variables, settings, files and modules of the host.

#include "drafthost/automation/Functions.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/automation/Session.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::automation {
namespace {

Value textOrNil(std::optional<std::string> text) {
    return text ? Value::string(std::move(*text)) : Value();
}

Value getVariable(Evaluator& e, Args args) {
    return sessionOf(e).host.getVar(nameArg(args[0])).value_or(Value());
}

Value setVariable(Evaluator& e, Args args) {
    const std::string name = nameArg(args[0]);
    const bool done = sessionOf(e).host.setVar(name, args[1]);
    e.checkDocument();
    if (!done) {
        fail("AutoCAD variable setting rejected: " + lisp::prin1(Value::string(name)) + " " +
             lisp::prin1(args[1]));
    }
    return args[1];
}

Value getEnvironment(Evaluator& e, Args args) {
    return textOrNil(sessionOf(e).host.environment(stringArg(args[0])));
}

Value setEnvironment(Evaluator& e, Args args) {
    sessionOf(e).host.setEnvironment(stringArg(args[0]), stringArg(args[1]));
    return args[1];
}

Value getConfig(Evaluator& e, Args args) {
    return textOrNil(sessionOf(e).host.configValue(stringArg(args[0])));
}

Value setConfig(Evaluator& e, Args args) {
    return sessionOf(e).host.setConfigValue(stringArg(args[0]), stringArg(args[1])) ? args[1] : Value();
}

Value findFile(Evaluator& e, Args args) {
    return textOrNil(sessionOf(e).host.findFile(stringArg(args[0])));
}
Value findTrustedFile(Evaluator& e, Args args) {
    return textOrNil(sessionOf(e).host.findTrustedFile(stringArg(args[0])));
}

Value version(Evaluator& e, Args) {
    return Value::string(sessionOf(e).host.versionText());
}

Value commandName(Evaluator& e, Args args) {
    return textOrNil(sessionOf(e).host.commandName(stringArg(args[0])));
}

Value startProgram(Evaluator& e, Args args) {
    const std::string argument = optional(args, 1) ? stringArg(args[1]) : "";
    return sessionOf(e).host.startProgram(stringArg(args[0]), argument) ? Value::integer(33) : Value();
}

Value moduleResult(Evaluator& e, Args args, ModuleStatus status, const char* what) {
    e.checkDocument();
    if (status == ModuleStatus::Done) {
        return args[0];
    }
    if (args.size() == 2) {
        const Value function = e.findFunction(args[1]);
        return function ? e.apply(function, {}) : args[1];
    }
    if (status == ModuleStatus::AlreadyLoaded) {
        fail(lisp::prin1(args[0]) + " application already loaded");
    }
    fail(std::string(what) + " failed: " + lisp::prin1(args[0]));
}

Value loadModule(Evaluator& e, Args args) {
    return moduleResult(e, args, sessionOf(e).host.loadModule(stringArg(args[0])), "ARXLOAD");
}

Value unloadModule(Evaluator& e, Args args) {
    return moduleResult(e, args, sessionOf(e).host.unloadModule(stringArg(args[0])), "ARXUNLOAD");
}

Value loadedModules(Evaluator& e, Args) {
    ListBuilder result;
    for (std::string& name : sessionOf(e).host.loadedModules()) {
        result.add(Value::string(std::move(name)));
    }
    return result.take();
}

Value redraw(Evaluator& e, Args args) {
    if (!args.empty() && args[0]) {
        enameArg(args[0]);
    }
    sessionOf(e).host.refreshView();
    return {};
}

constexpr Subr Functions[] = {
    {"GETVAR", 1, 1, getVariable},
    {"SETVAR", 2, 2, setVariable},
    {"GETENV", 1, 1, getEnvironment},
    {"SETENV", 2, 2, setEnvironment},
    {"GETCFG", 1, 1, getConfig},
    {"SETCFG", 2, 2, setConfig},
    {"FINDFILE", 1, 1, findFile},
    {"FINDTRUSTEDFILE", 1, 1, findTrustedFile},
    {"VER", 0, 0, version},
    {"GETCNAME", 1, 1, commandName},
    {"STARTAPP", 1, 2, startProgram},
    {"ARXLOAD", 1, 2, loadModule},
    {"ARXUNLOAD", 1, 2, unloadModule},
    {"ARX", 0, 0, loadedModules},
    {"REDRAW", 0, 2, redraw},
};

}  // namespace

std::span<const Subr> hostFunctions() {
    return Functions;
}

}  // namespace drafthost::automation
