// SPDX-License-Identifier: GPL-3.0-or-later
// Commands, variables and symbols of the current document for modules.

#include <cstdlib>

#include "accmd.h"
#include "acedads.h"
#include "drafthost/api/ApiHost.h"
#include "drafthost/api/ArgumentList.h"
#include "drafthost/api/ResBufValues.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/ModuleCommands.h"
#include "drafthost/editor/ModuleTable.h"
#include "drafthost/lisp/World.h"

namespace drafthost {
namespace {

int resultOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::Ok:
            return RTNORM;
        case Outcome::Cancelled:
            return RTCAN;
        default:
            return RTERROR;
    }
}

/// ERRNO of a refused setting.
int errorNumber(VariableStatus status) {
    constexpr int ReadOnly = 20, OutOfRange = 22, WrongType = 24;
    switch (status) {
        case VariableStatus::ReadOnly:
            return ReadOnly;
        case VariableStatus::WrongType:
            return WrongType;
        default:
            return OutOfRange;
    }
}

class CommandStack : public AcEdCommandStack {
  public:
    Acad::ErrorStatus addCommand(const ACHAR* group, const ACHAR* globalName, const ACHAR* localName,
                                 Adesk::Int32 flags, AcRxFunctionPtr function) override {
        if (!group || !globalName || !localName || !function) {
            return Acad::eInvalidInput;
        }
        ModuleCommand command;
        command.globalName = toUtf8(globalName);
        command.localName = toUtf8(localName);
        command.flags = unsigned(flags);
        command.function = function;
        command.module = apiHost().modules().moduleOf(reinterpret_cast<const void*>(function));
        return apiHost().moduleCommands().add(toUtf8(group), std::move(command)) ? Acad::eOk
                                                                                 : Acad::eDuplicateKey;
    }
    Acad::ErrorStatus removeGroup(const ACHAR* group) override {
        return apiHost().moduleCommands().removeGroup(toUtf8(group)) ? Acad::eOk : Acad::eKeyNotFound;
    }
};

}  // namespace
}  // namespace drafthost

using namespace drafthost;

AcEdCommandStack* acedRegCmdsPtr() {
    static CommandStack stack;
    return &stack;
}

int acedCommand(int type, ...) {
    Arguments arguments;
    va_start(arguments.list, type);
    resbuf* chain = buildList(type, arguments);
    va_end(arguments.list);
    if (!chain && type != RTNONE && type != 0) {
        return RTERROR;
    }
    const int result = acedCmd(chain);
    acutRelRb(chain);
    return result;
}

int acedCmd(const resbuf* chain) {
    if (apiHost().input().inApplicationContext()) {
        return RTREJ;
    }
    auto values = valuesOf(chain);
    if (!values || !apiHost().current()) {
        return RTERROR;
    }
    std::vector<Input> inputs;
    for (const lisp::Value& value : *values) {
        inputs.push_back(Input::fromValue(value));
    }
    return resultOf(apiHost().input().speak(inputs, InputSource::Module));
}

int acedGetVar(const ACHAR* name, resbuf* out) {
    auto value = name && out ? apiHost().variables().get(toUtf8(name)) : std::nullopt;
    if (!value) {
        return RTERROR;
    }
    store(*value, *out);
    out->rbnext = nullptr;
    return RTNORM;
}

int acedSetVar(const ACHAR* name, const resbuf* given) {
    auto value = name && given ? variableValueOf(*given) : std::nullopt;
    if (!value) {
        return RTERROR;
    }
    std::string reason;
    VariableStatus status = apiHost().variables().set(toUtf8(name), *value, reason);
    if (status == VariableStatus::Ok) {
        return RTNORM;
    }
    if (Document* document = apiHost().current()) {
        document->variables()["ERRNO"] = errorNumber(status);
    }
    return RTERROR;
}

int acedGetSym(const ACHAR* name, resbuf** out) {
    Document* document = apiHost().current();
    if (!document || !name || !out) {
        return RTERROR;
    }
    *out = nullptr;
    const lisp::Value value = document->world().get(toUtf8(name));
    if (value.isFunction()) {
        return RTERROR;
    }
    if (!value.isNil()) {
        *out = chainOf({&value, 1});
    }
    return RTNORM;
}

int acedPutSym(const ACHAR* name, const resbuf* given) {
    Document* document = apiHost().current();
    auto values = valuesOf(given);
    const std::string symbol = lisp::upperCase(toUtf8(name));
    const bool isProtected = symbol.empty() || symbol == "T" || symbol == "NIL" || symbol == "PI";
    if (!document || !values || values->size() > 1 || isProtected) {
        return RTERROR;
    }
    document->world().set(symbol, values->empty() ? lisp::Value() : values->front());
    return RTNORM;
}

// No command of this host shows a dialog on its own.
void acedInitDialog(bool) {}

int ads_queueexpr(const ACHAR* expression) {
    apiHost().input().queue(toUtf8(expression) + "\n", false);
    return RTNORM;
}

int acedUsrBrk() {
    return apiHost().input().takeUserBreak() ? 1 : 0;
}

int acedFindFile(const ACHAR* name, ACHAR* result, int size) {
    const std::string path = apiHost().findFile(toUtf8(name));
    return !path.empty() && copyTo(result, size, path) ? RTNORM : RTERROR;
}
