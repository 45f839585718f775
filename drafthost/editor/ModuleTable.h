// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The loaded modules. A module is a shared library that exports acrxEntryPoint and acrxGetApiVersion and
// hears of what happens through messages. It is never really unmapped: code of the window library may still
// point into it, so an unloaded module that is loaded again gets a new first message in the same memory.

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "drafthost/automation/LispHost.h"
#include "rxregsvc.h"

namespace drafthost {

class Host;

/// A module's LISP function in the middle of being called.
struct ModuleCall {
    std::span<const lisp::Value> arguments;
    lisp::Value result;
    int code = 0;
};

class ModuleTable {
  public:
    explicit ModuleTable(Host& host);
    ~ModuleTable();
    ModuleTable(const ModuleTable&) = delete;
    ModuleTable& operator=(const ModuleTable&) = delete;

    /// Who wants a module: what the user has listed for the start needs no leave of SECURELOAD.
    enum class Chosen { ByProgram, ByUser };

    /// Loads by name or path; ".arx" is added to a name without extension. Tells in one line when that does
    /// not go, and with verbose also what was done. A module that is loaded already is not loaded again.
    automation::ModuleStatus load(std::string_view name, bool verbose, Chosen chosen = Chosen::ByProgram);
    /// Unloads by name or path; refused while it is locked.
    automation::ModuleStatus unload(std::string_view name, bool verbose);
    /// The second load of a module that asks for it: counts its users.
    void addReference(std::string_view name);
    /// Unloads all, the last one first.
    void unloadAll();

    std::vector<std::string> names() const;
    bool isLoaded(std::string_view name) const { return find(name) != nullptr; }
    /// Full path of a loaded module, by its file name in any case; empty when it is not loaded.
    std::string path(std::string_view name) const;
    /// Address of an export of a loaded module, null without one.
    void* symbol(std::string_view name, const char* symbol) const;
    /// Whether any module would not bear a second document.
    bool needsSingleDocument() const;

    bool setLocked(void* id, bool locked);
    bool setMdiAware(void* id);

    void sendToAll(AcRx::AppMsgCode message);
    /// Only to modules that have LISP functions.
    void sendToFunctionOwners(AcRx::AppMsgCode message);

    /// The module whose code the address lies in, or that is being called into; 0 for none.
    std::uint64_t moduleOf(const void* address) const;
    /// Registers the function that a code of the module stands for.
    bool setFunction(std::uint64_t module, int code, int (*function)());
    void setOwnsFunctions(std::uint64_t module);
    /// Calls a LISP function of a module. False when the module is gone or the function has failed.
    bool call(std::uint64_t module, int code, std::span<const lisp::Value> arguments, lisp::Value& result);
    /// The innermost call in progress; null when there is none.
    ModuleCall* currentCall() { return calls_.empty() ? nullptr : calls_.back(); }
    /// True when that module's code is on the stack in a LISP function.
    bool isCalling(std::uint64_t module) const;

    /// Runs code of a module; an exception that it lets out is told in one line and answered false.
    bool guarded(std::uint64_t module, const std::function<void()>& code);

  private:
    struct Module;

    Module* find(std::string_view name) const;
    Module* byId(std::uint64_t id) const;
    bool send(Module& module, AcRx::AppMsgCode message);
    void remove(Module& module);

    Host& host_;
    std::vector<std::unique_ptr<Module>> modules_;
    std::vector<ModuleCall*> calls_;
    std::vector<std::uint64_t> entered_;
    std::vector<std::uint64_t> calling_;
};

}  // namespace drafthost
