// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/Session.h"

#include "drafthost/automation/Functions.h"
#include "drafthost/automation/Prompts.h"

namespace drafthost::automation {

Session::Session(LispHost& h) : host(h), world_(*this) {
    for (const auto family : {commandFunctions, promptFunctions, hostFunctions, tableFunctions,
                              dictionaryFunctions, entityFunctions, selectionFunctions, menuFunctions,
                              registryFunctions, measureFunctions, reactorFunctions, layerStateFunctions}) {
        world_.define(family());
    }
    // Kinds of reactors stand for themselves.
    for (const Subr& function : reactorFunctions()) {
        if (function.named != nullptr) {
            const std::string kind = ":" + std::string(function.name);
            world_.set(kind, Value::symbol(kind));
        }
    }
    world_.set("PAUSE", Value::string("\\"));
}

Session::CommandArguments::CommandArguments(Session& session, Evaluator& e)
    : session_(session), outer_(session.commandLevel_) {
    session.commandLevel_ = e.level();
}

void Session::checkPrompts(const Evaluator& e) const {
    if (commandLevel_ == e.level()) {
        fail("AutoCAD rejected function");
    }
}

Value Session::readLine(Evaluator& e) {
    return askUser(e, {.kind = PromptKind::String, .allowBlanks = true});
}

}  // namespace drafthost::automation
