// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/CommandTable.h"

#include <algorithm>

#include "drafthost/lisp/Symbol.h"

namespace drafthost {

void CommandTable::add(std::string_view name, CommandFunction function, unsigned flags) {
    entries_[std::string(name)] = {std::string(name), function, flags};
}

void CommandTable::addAlias(std::string_view alias, std::string_view name) {
    aliases_[std::string(alias)] = std::string(name);
}

const CommandEntry* CommandTable::find(std::string_view name) const {
    std::string key = lisp::upperCase(name);
    auto found = entries_.find(key);
    if (found == entries_.end()) {
        found = entries_.find(key.starts_with('-') ? key.substr(1) : "-" + key);
    }
    return found == entries_.end() ? nullptr : &found->second;
}

const CommandEntry* CommandTable::findAlias(std::string_view alias) const {
    auto found = aliases_.find(lisp::upperCase(alias));
    return found == aliases_.end() ? nullptr : find(found->second);
}

std::vector<std::string> CommandTable::names() const {
    std::vector<std::string> names;
    for (const auto& [name, entry] : entries_) {
        names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::map<std::string, std::string> CommandTable::aliases() const {
    return {aliases_.begin(), aliases_.end()};
}

}  // namespace drafthost
