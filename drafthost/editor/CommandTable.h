// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The host's own commands by name. Commands of modules are in ModuleCommands.h, those written in LISP are
// functions named C:NAME in their document's world.

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "drafthost/editor/Command.h"

namespace drafthost {

enum CommandFlags : unsigned {
    CommandModal = 0,
    /// May be called with ' while another command waits.
    CommandTransparent = 1,
    /// Enter at the command prompt does not repeat it.
    CommandNoRepeat = 2,
    /// Also works while no drawing is open; CommandContext::document() is an empty stand-in then.
    CommandNoDocument = 4,
    /// Enter behind it does nothing, unless somebody sits at the keyboard: scripts close its selection
    /// whether or not it asks for more.
    CommandNoEnter = 8,
};

struct CommandEntry {
    std::string name;
    CommandFunction function = nullptr;
    unsigned flags = CommandModal;
};

class CommandTable {
  public:
    /// The name in capitals; "-NAME" for a form that never shows a dialog.
    void add(std::string_view name, CommandFunction function, unsigned flags = CommandModal);
    /// Another name, for example "Z" for "ZOOM".
    void addAlias(std::string_view alias, std::string_view name);
    /// The name in any case, without prefixes but for "-". A name with "-" finds the one without it when
    /// there is no form of its own, and the other way round: a command has no dialog here.
    const CommandEntry* find(std::string_view name) const;
    /// The entry an alias stands for; null when it is none.
    const CommandEntry* findAlias(std::string_view alias) const;
    std::vector<std::string> names() const;
    /// The short names, each with the name it stands for.
    std::map<std::string, std::string> aliases() const;

  private:
    std::unordered_map<std::string, CommandEntry> entries_;
    std::unordered_map<std::string, std::string> aliases_;
};

/// Fills the table; lives in the folder of the commands, not here.
void registerCommands(CommandTable& table);

}  // namespace drafthost
