// SPDX-License-Identifier: GPL-3.0-or-later
// LISP functions of modules.

#include "acedads.h"
#include "drafthost/api/ApiHost.h"
#include "drafthost/api/ResBufValues.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/ModuleTable.h"
#include "drafthost/lisp/World.h"

using namespace drafthost;

namespace {

int giveBack(lisp::Value value) {
    ModuleCall* call = apiHost().modules().currentCall();
    if (!call) {
        return RTERROR;
    }
    call->result = std::move(value);
    return RTNORM;
}

}  // namespace

int acedDefun(const ACHAR* name, int code) {
    Document* document = apiHost().current();
    const std::uint64_t module = apiHost().modules().moduleOf(__builtin_return_address(0));
    if (!document || !name || module == 0 || code < 0) {
        return RTERROR;
    }
    document->world().defineModuleFunction(toUtf8(name), module, code);
    apiHost().modules().setOwnsFunctions(module);
    return RTNORM;
}

int acedUndef(const ACHAR* name, int) {
    Document* document = apiHost().current();
    const std::uint64_t module = apiHost().modules().moduleOf(__builtin_return_address(0));
    if (!document || !name || module == 0) {
        return RTERROR;
    }
    document->world().undefineModuleFunction(toUtf8(name), module);
    return RTNORM;
}

int acedRegFunc(int (*function)(), int code) {
    const std::uint64_t module = apiHost().modules().moduleOf(reinterpret_cast<const void*>(function));
    return function && apiHost().modules().setFunction(module, code, function) ? RTNORM : RTERROR;
}

int acedGetFunCode() {
    ModuleCall* call = apiHost().modules().currentCall();
    return call ? call->code : RTERROR;
}

resbuf* acedGetArgs() {
    ModuleCall* call = apiHost().modules().currentCall();
    return call ? chainOf(call->arguments) : nullptr;
}

int acedRetT() {
    return giveBack(lisp::Value::truth());
}
int acedRetNil() {
    return giveBack({});
}
int acedRetVoid() {
    return giveBack(lisp::Value::nullSymbol());
}
int acedRetInt(int value) {
    return giveBack(lisp::Value::integer(value));
}
int acedRetReal(ads_real value) {
    return giveBack(lisp::Value::real(value));
}
int acedRetStr(const ACHAR* value) {
    return giveBack(lisp::Value::string(toUtf8(value)));
}

int acedRetList(const resbuf* chain) {
    auto values = valuesOf(chain);
    if (!values) {
        return RTERROR;
    }
    // A chain that is one list already is not wrapped into another.
    const bool isList = chain && chain->restype == RTLB && values->size() == 1;
    return giveBack(isList ? values->front() : lisp::Value::list(*values));
}

int acedInvoke(const resbuf* arguments, resbuf** out) {
    Document* document = apiHost().current();
    auto values = valuesOf(arguments);
    if (!out || !document || !values || values->empty() || !values->front().isString()) {
        return RTERROR;
    }
    *out = nullptr;
    const std::string name = values->front().toString();
    if (!document->world().isExposed(name)) {
        return RTERROR;
    }
    lisp::EvalResult result = document->world().call(name, std::span(*values).subspan(1));
    if (result.ok() && !result.value.isNil() && !result.value.isNullSymbol()) {
        *out = chainOf({&result.value, 1});
    }
    return RTNORM;
}
