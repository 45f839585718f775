// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/ModuleTable.h"

#include <dlfcn.h>
#include <link.h>
#include <algorithm>
#include <filesystem>

#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/ModuleCommands.h"
#include "drafthost/editor/ProgramFiles.h"
#include "drafthost/lisp/World.h"

namespace drafthost {

using automation::ModuleStatus;

struct ModuleTable::Module {
    std::string path;
    std::string name;
    void* handle = nullptr;
    AcRx::AppRetCode (*entry)(AcRx::AppMsgCode, void*) = nullptr;
    bool locked = true;
    bool mdiAware = false;
    bool ownsFunctions = false;
    int references = 1;
    std::unordered_map<int, int (*)()> functions;

    std::uint64_t id() const { return reinterpret_cast<std::uint64_t>(this); }
};

namespace {

std::string fileName(std::string_view path) {
    std::size_t slash = path.find_last_of("/\\");
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string withExtension(std::string_view name) {
    std::string text(name);
    if (fileName(text).find('.') == std::string::npos) {
        text += ".arx";
    }
    return text;
}

}  // namespace

ModuleTable::ModuleTable(Host& host) : host_(host) {}
ModuleTable::~ModuleTable() = default;

ModuleTable::Module* ModuleTable::find(std::string_view name) const {
    const std::string wanted = lisp::upperCase(fileName(withExtension(name)));
    for (const auto& module : modules_) {
        if (lisp::upperCase(module->name) == wanted) {
            return module.get();
        }
    }
    return nullptr;
}

ModuleTable::Module* ModuleTable::byId(std::uint64_t id) const {
    for (const auto& module : modules_) {
        if (module->id() == id) {
            return module.get();
        }
    }
    return nullptr;
}

ModuleStatus ModuleTable::load(std::string_view name, bool verbose, Chosen chosen) {
    const std::string wanted = withExtension(name);
    if (Module* loaded = find(wanted)) {
        if (verbose) {
            host_.printLine(loaded->name + " is already loaded.");
        }
        return ModuleStatus::AlreadyLoaded;
    }
    const ProgramFiles::Found found = host_.programs().find(wanted, {});
    if (found.path.empty() && found.passedOver.empty()) {
        host_.printLine("The module " + wanted + " cannot be found.");
        return ModuleStatus::NotFound;
    }
    if ((chosen == Chosen::ByProgram || found.path.empty()) && !host_.programs().toLoad(wanted, {})) {
        return ModuleStatus::NotFound;
    }
    const std::string& path = found.path;
    void* handle = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!handle) {
        host_.printLine("The module cannot be loaded: " + std::string(::dlerror()));
        return ModuleStatus::Failed;
    }
    auto entry =
        reinterpret_cast<AcRx::AppRetCode (*)(AcRx::AppMsgCode, void*)>(::dlsym(handle, "acrxEntryPoint"));
    auto version = reinterpret_cast<int (*)()>(::dlsym(handle, "acrxGetApiVersion"));
    if (!entry || !version) {
        host_.printLine(path + " is not a module: it does not export " +
                        (entry ? "acrxGetApiVersion." : "acrxEntryPoint."));
        ::dlclose(handle);
        return ModuleStatus::Failed;
    }
    if (int asked = version(); asked != kArxApiVersion) {
        host_.printLine(path + " was built for version " + std::to_string(asked) + " of the interface, not " +
                        std::to_string(kArxApiVersion) + ".");
        ::dlclose(handle);
        return ModuleStatus::Failed;
    }
    auto owned = std::make_unique<Module>();
    Module* module = owned.get();
    module->path = path;
    module->name = fileName(path);
    module->handle = handle;
    module->entry = entry;
    modules_.push_back(std::move(owned));
    if (!send(*module, AcRx::kInitAppMsg)) {
        host_.printLine(path + " refused to start.");
        remove(*module);
        return ModuleStatus::Failed;
    }
    if (!module->mdiAware && host_.documents().size() > 1) {
        host_.printLine(path + " works with one document only; close the others first.");
        send(*module, AcRx::kUnloadAppMsg);
        remove(*module);
        return ModuleStatus::Failed;
    }
    if (verbose) {
        host_.printLine(module->name + " loaded.");
    }
    host_.forEachDocument([&] { send(*module, AcRx::kLoadDwgMsg); });
    return ModuleStatus::Done;
}

ModuleStatus ModuleTable::unload(std::string_view name, bool verbose) {
    Module* module = find(name);
    if (!module) {
        if (verbose) {
            host_.printLine(std::string(name) + " is not loaded.");
        }
        return ModuleStatus::NotLoaded;
    }
    if (module->locked) {
        host_.printLine(module->name + " cannot be unloaded: it is locked.", Said::Refusal);
        return ModuleStatus::Failed;
    }
    if (--module->references > 0) {
        return ModuleStatus::Done;
    }
    const std::string shown = module->name;
    send(*module, AcRx::kUnloadAppMsg);
    remove(*module);
    if (verbose) {
        host_.printLine(shown + " unloaded.");
    }
    return ModuleStatus::Done;
}

void ModuleTable::addReference(std::string_view name) {
    if (Module* module = find(name)) {
        ++module->references;
    }
}

void ModuleTable::unloadAll() {
    while (!modules_.empty()) {
        Module& module = *modules_.back();
        send(module, AcRx::kUnloadAppMsg);
        remove(module);
    }
}

void ModuleTable::remove(Module& module) {
    host_.moduleCommands().removeModule(module.id());
    for (Document* document : host_.documents()) {
        document->world().undefineModule(module.id());
    }
    ::dlclose(module.handle);
    std::erase_if(modules_, [&](const auto& other) { return other.get() == &module; });
}

std::vector<std::string> ModuleTable::names() const {
    std::vector<std::string> names;
    for (const auto& module : modules_) {
        names.push_back(module->name);
    }
    return names;
}

std::string ModuleTable::path(std::string_view name) const {
    const Module* module = find(name);
    return module ? module->path : std::string();
}

void* ModuleTable::symbol(std::string_view name, const char* symbol) const {
    const Module* module = find(name);
    return module ? ::dlsym(module->handle, symbol) : nullptr;
}

bool ModuleTable::needsSingleDocument() const {
    return std::any_of(modules_.begin(), modules_.end(),
                       [](const auto& module) { return !module->mdiAware; });
}

bool ModuleTable::setLocked(void* id, bool locked) {
    Module* module = byId(reinterpret_cast<std::uint64_t>(id));
    if (module) {
        module->locked = locked;
    }
    return module != nullptr;
}

bool ModuleTable::setMdiAware(void* id) {
    Module* module = byId(reinterpret_cast<std::uint64_t>(id));
    if (module) {
        module->mdiAware = true;
    }
    return module != nullptr;
}

bool ModuleTable::send(Module& module, AcRx::AppMsgCode message) {
    AcRx::AppRetCode answer = AcRx::kRetError;
    guarded(module.id(), [&] { answer = module.entry(message, &module); });
    return answer == AcRx::kRetOK;
}

void ModuleTable::sendToAll(AcRx::AppMsgCode message) {
    std::vector<std::uint64_t> ids;
    for (const auto& module : modules_) {
        ids.push_back(module->id());
    }
    for (const std::uint64_t id : ids) {
        // It may have been unloaded by one before it.
        if (Module* module = byId(id)) {
            send(*module, message);
        }
    }
}

void ModuleTable::sendToFunctionOwners(AcRx::AppMsgCode message) {
    std::vector<std::uint64_t> ids;
    for (const auto& module : modules_) {
        if (module->ownsFunctions) {
            ids.push_back(module->id());
        }
    }
    for (const std::uint64_t id : ids) {
        if (Module* module = byId(id)) {
            send(*module, message);
        }
    }
}

std::uint64_t ModuleTable::moduleOf(const void* address) const {
    Dl_info info{};
    link_map* map = nullptr;
    if (::dladdr1(address, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) != 0) {
        for (const auto& module : modules_) {
            // The handle that dlopen gives is the link map of the library.
            if (module->handle == map) {
                return module->id();
            }
        }
    }
    return entered_.empty() ? 0 : entered_.back();
}

bool ModuleTable::setFunction(std::uint64_t module, int code, int (*function)()) {
    Module* owner = byId(module);
    if (owner) {
        owner->functions[code] = function;
    }
    return owner != nullptr;
}

void ModuleTable::setOwnsFunctions(std::uint64_t module) {
    if (Module* owner = byId(module)) {
        owner->ownsFunctions = true;
    }
}

bool ModuleTable::call(std::uint64_t id, int code, std::span<const lisp::Value> arguments,
                       lisp::Value& result) {
    Module* module = byId(id);
    if (!module) {
        return false;
    }
    ModuleCall call{arguments, {}, code};
    calls_.push_back(&call);
    calling_.push_back(id);
    auto function = module->functions.find(code);
    bool done = false;
    if (function != module->functions.end()) {
        int answer = 0;
        auto address = function->second;
        done = guarded(id, [&] { answer = address(); }) && answer >= 0;
    } else {
        done = send(*module, AcRx::kInvkSubrMsg);
    }
    calling_.pop_back();
    calls_.pop_back();
    result = call.result;
    return done;
}

bool ModuleTable::isCalling(std::uint64_t module) const {
    return std::find(calling_.begin(), calling_.end(), module) != calling_.end();
}

bool ModuleTable::guarded(std::uint64_t module, const std::function<void()>& code) {
    entered_.push_back(module);
    bool done = false;
    std::string cause;
    try {
        code();
        done = true;
    } catch (const std::exception& problem) {
        cause = problem.what();
    } catch (...) {
        cause = "an exception of unknown kind";
    }
    entered_.pop_back();
    if (!done) {
        const Module* owner = byId(module);
        host_.printLine("An error in " + (owner ? owner->name : std::string("a module")) + ": " + cause);
    }
    return done;
}

}  // namespace drafthost
