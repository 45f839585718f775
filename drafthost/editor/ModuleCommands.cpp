// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/ModuleCommands.h"

#include <algorithm>

#include "drafthost/lisp/Symbol.h"

namespace drafthost {

bool ModuleCommands::add(std::string_view group, ModuleCommand command) {
    command.globalName = lisp::upperCase(command.globalName);
    command.localName = lisp::upperCase(command.localName);
    const std::string name = lisp::upperCase(group);
    auto place = std::find_if(groups_.begin(), groups_.end(), [&](const Group& g) { return g.name == name; });
    if (place == groups_.end()) {
        place = groups_.insert(groups_.end(), Group{name, {}});
    }
    for (const auto& other : place->commands) {
        if (other->globalName == command.globalName) {
            return false;
        }
    }
    place->commands.push_back(std::make_shared<const ModuleCommand>(std::move(command)));
    return true;
}

bool ModuleCommands::removeGroup(std::string_view group) {
    const std::string name = lisp::upperCase(group);
    return std::erase_if(groups_, [&](const Group& g) { return g.name == name; }) > 0;
}

void ModuleCommands::removeModule(std::uint64_t module) {
    for (Group& group : groups_) {
        std::erase_if(group.commands, [&](const auto& command) { return command->module == module; });
    }
    std::erase_if(groups_, [](const Group& g) { return g.commands.empty(); });
}

std::shared_ptr<const ModuleCommand> ModuleCommands::find(std::string_view name, bool globalOnly) const {
    const std::string wanted = lisp::upperCase(name);
    for (const Group& group : groups_) {
        for (const auto& command : group.commands) {
            if (wanted == (globalOnly ? command->globalName : command->localName)) {
                return command;
            }
        }
    }
    return nullptr;
}

}  // namespace drafthost
