// SPDX-License-Identifier: GPL-3.0-or-later
// What a word at the command prompt means.

#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/ModuleCommands.h"
#include "drafthost/lisp/World.h"

namespace drafthost {
namespace {

struct CommandWord {
    std::string name;
    bool global = false;   ///< "_": the global name is meant
    bool ownOnly = false;  ///< ".": the host's own command is meant
    bool transparent = false;
};

CommandWord readWord(std::string_view typed) {
    CommandWord word;
    while (!typed.empty()) {
        if (typed[0] == '_') {
            word.global = true;
        } else if (typed[0] == '.') {
            word.ownOnly = true;
        } else if (typed[0] == '\'') {
            word.transparent = true;
        } else {
            break;
        }
        typed.remove_prefix(1);
    }
    word.name = lisp::upperCase(typed);
    return word;
}

}  // namespace

Outcome InputStream::callModuleCommand(Document& document, std::string_view name, bool globalOnly,
                                       InputSource source, bool& found) {
    auto command = host_.moduleCommands().find(name, globalOnly);
    found = command != nullptr;
    return found ? document.commandLine().run(*command, source) : Outcome::Ok;
}

void InputStream::deny(std::string_view command) {
    denied_.insert(lisp::upperCase(command));
}

bool InputStream::isDenied(std::string_view command) const {
    if (command.starts_with('-')) {
        command.remove_prefix(1);
    }
    return root_ == InputSource::Script && denied_.contains(command);
}

Outcome InputStream::command(Document& document, std::string_view typed, InputSource source, bool more) {
    const CommandWord word = readWord(typed);
    CommandLine& line = document.commandLine();
    if (isDenied(word.name)) {
        host_.printLine(word.name + " cannot be used in a script here.", Said::Refusal);
        return Outcome::Rejected;
    }
    const CommandEntry* entry = host_.commands().find(word.name);
    if (!host_.current() && (!entry || !(entry->flags & CommandNoDocument))) {
        host_.printLine("No drawing is open; OPEN, NEW and QUIT work here, \"" + word.name + "\" does not.",
                        Said::Refusal);
        return Outcome::Rejected;
    }
    if (entry) {
        return line.start(*entry, word.name, source, more);
    }
    if (!word.ownOnly) {
        bool found = false;
        Outcome outcome = callModuleCommand(document, word.name, word.global, source, found);
        if (found) {
            return outcome;
        }
        // Functions of LISP are commands for whoever types them, not for code.
        const bool typedByHand = source != InputSource::Lisp && source != InputSource::Module;
        if (typedByHand && document.world().hasFunction("C:" + word.name)) {
            line.setLastCommand(word.name);
            const std::string call = "(C:" + word.name + ")";
            lisp::EvalResult result = document.lisp().run(call, call);
            if (result.ok() && !result.value.isNullSymbol()) {
                host_.printLine(DocumentLisp::shown(result.value), Said::Aside);
            }
            return outcomeOf(result);
        }
        if (host_.variables().find(word.name)) {
            return askVariable(line, word.name, source, more);
        }
        if (const CommandEntry* alias = host_.commands().findAlias(word.name)) {
            return line.start(*alias, alias->name, source, more);
        }
    }
    // The host's own variables are no less its own than its commands.
    if (word.ownOnly && host_.variables().find(word.name)) {
        return askVariable(line, word.name, source, more);
    }
    host_.printLine("Unknown command \"" + word.name + "\".", Said::Refusal);
    return Outcome::Rejected;
}

Outcome InputStream::askVariable(CommandLine& line, const std::string& name, InputSource source, bool more) {
    const CommandEntry* setVariable = host_.commands().find("SETVAR");
    Outcome begun = line.start(*setVariable, setVariable->name, source, true);
    line.setLastCommand(name);
    return begun == Outcome::Ok && !line.atPrompt() ? line.answer(Input::fromText(name), more) : begun;
}

Outcome InputStream::transparent(Document& document, std::string_view typed, InputSource source) {
    const CommandWord word = readWord(typed);
    CommandLine& line = document.commandLine();
    const CommandEntry* entry = host_.commands().find(word.name);
    if (!entry) {
        entry = host_.commands().findAlias(word.name);
    }
    if (!entry && host_.variables().find(word.name)) {
        entry = host_.commands().find("SETVAR");
        if (entry && !line.hasTransparent()) {
            Outcome begun = line.start(*entry, entry->name, source, true);
            return begun == Outcome::Ok ? line.answer(Input::fromText(word.name), false) : begun;
        }
    }
    if (!entry) {
        host_.printLine("Unknown command \"" + word.name + "\".", Said::Refusal);
        return Outcome::Rejected;
    }
    if (!(entry->flags & CommandTransparent) || line.hasTransparent()) {
        host_.printLine(entry->name + " cannot be used while " + line.names() + " is active.", Said::Refusal);
        return Outcome::Rejected;
    }
    return line.start(*entry, word.name, source, false);
}

}  // namespace drafthost
