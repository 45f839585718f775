// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Commands that modules have added, in groups.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace drafthost {

struct ModuleCommand {
    std::string globalName;
    std::string localName;
    unsigned flags = 0;
    void (*function)() = nullptr;
    /// Module that added it, 0 when that is not known.
    std::uint64_t module = 0;
};

class ModuleCommands {
  public:
    /// False when the group has a command of that global name already.
    bool add(std::string_view group, ModuleCommand command);
    /// False for an unknown group.
    bool removeGroup(std::string_view group);
    /// Takes away whatever a module has left behind.
    void removeModule(std::uint64_t module);
    /// By local name, or by global name where globalOnly asks for it. In any case; shared, because a command
    /// may take its own group away while it runs.
    std::shared_ptr<const ModuleCommand> find(std::string_view name, bool globalOnly) const;

  private:
    struct Group {
        std::string name;
        std::vector<std::shared_ptr<const ModuleCommand>> commands;
    };
    std::vector<Group> groups_;
};

}  // namespace drafthost
