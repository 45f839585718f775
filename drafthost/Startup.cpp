// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/Startup.h"

#include <filesystem>

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/drawing/FileBytes.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/ModuleTable.h"
#include "drafthost/editor/RegistryFile.h"
#include "drafthost/lisp/FileText.h"

namespace drafthost {
namespace {

constexpr std::string_view UserRoot = "HKEY_CURRENT_USER";
constexpr std::string_view MachineRoot = "HKEY_LOCAL_MACHINE";
constexpr std::uint32_t LoadAtStart = 2;

void loadOnce(Host& host, const std::string& module) {
    if (!host.modules().isLoaded(module)) {
        // Whoever lists a module has chosen it, wherever it lies.
        host.modules().load(module, false, ModuleTable::Chosen::ByUser);
    }
}

/// One module to a line; ";" begins a comment.
void loadList(Host& host) {
    const std::string path = host.findStartUp("acad.rx");
    if (path.empty()) {
        return;
    }
    std::string bytes, error;
    if (!readFile(path, bytes, error)) {
        host.printLine(error);
        return;
    }
    const std::optional<std::string> text = lisp::decodeProgram(std::move(bytes), error);
    if (!text) {
        host.printLine("Cannot read " + path + ": " + error);
        return;
    }
    for (std::size_t at = 0; at < text->size();) {
        const std::size_t end = std::min(text->find('\n', at), text->size());
        std::string line = text->substr(at, end - at);
        at = end + 1;
        line.erase(line.find_last_not_of(" \t\r") + 1);
        line.erase(0, line.find_first_not_of(" \t"));
        if (!line.empty() && line[0] != ';') {
            loadOnce(host, line);
        }
    }
}

/// "NumStartup" says how many values "1Startup", "2Startup" there are.
void loadSuite(Host& host) {
    const RegistryFile& registry = host.registry();
    const std::string key = RegistryFile::profileKey(registry.profile()) + "\\Dialogs\\Appload\\Startup\\";
    const int count =
        automation::readInteger(registry.readString(UserRoot, key + "NumStartup").value_or("0")).value_or(0);
    for (int i = 1; i <= count; ++i) {
        auto module = registry.readString(UserRoot, key + std::to_string(i) + "Startup");
        if (!module) {
            host.printLine("The start-up suite has no entry " + std::to_string(i) + ".");
            break;
        }
        loadOnce(host, *module);
    }
}

/// The module's file stands under the key that RegPath names: \\ROOT\key.
void loadOnDemandEntries(Host& host) {
    const RegistryFile& registry = host.registry();
    const std::string applications = RegistryFile::productKey() + "\\Applications";
    for (const std::string& name : registry.keys(MachineRoot, applications)) {
        std::string entry = applications;
        entry.append("\\").append(name).append("\\");
        if ((registry.readNumber(MachineRoot, entry + "LOADCTRLS").value_or(0) & LoadAtStart) == 0) {
            continue;
        }
        std::string path = registry.readString(MachineRoot, entry + "RegPath").value_or("");
        path.erase(0, path.find_first_not_of('\\'));
        const std::size_t slash = path.find('\\');
        auto module =
            slash == std::string::npos
                ? std::nullopt
                : registry.readString(path.substr(0, slash), path.substr(slash + 1) + "\\Loader\\MODULE");
        if (module) {
            loadOnce(host, *module);
        } else {
            host.printLine("The demand-load entry " + name + " names no module.");
        }
    }
}

}  // namespace

void loadStartupModules(Host& host, const std::vector<std::string>& others) {
    loadList(host);
    loadSuite(host);
    loadOnDemandEntries(host);
    for (const std::string& module : others) {
        // On a command line a path counts from where it was typed.
        std::error_code code;
        const bool hasFolder = module.find('/') != std::string::npos;
        loadOnce(host, hasFolder ? std::filesystem::absolute(module, code).string() : module);
    }
}

}  // namespace drafthost
