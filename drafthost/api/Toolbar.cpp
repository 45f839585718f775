// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/api/Toolbar.h"

#include <dlfcn.h>
#include <filesystem>
#include <utility>

#include "drafthost/api/ApiHost.h"

namespace drafthost {
namespace {

constexpr std::string_view FileName = "ovrixtoolbar-19-64.arx";

SharedToolbar theToolbar;

/// The picture of that number among a module's resources, which stand under the module's name.
std::string pictureOf(const void* resources, int number) {
    Dl_info info{};
    if (!resources || !::dladdr(resources, &info) || !info.dli_fname) {
        return {};
    }
    return ":/" + std::filesystem::path(info.dli_fname).stem().string() + "/" + std::to_string(number) +
           ".svg";
}

int addToToolbar(const ACHAR* command, const ACHAR* label, void* resources, int picture, int, int) {
    if (!theToolbar.add || !command || !label) {
        return 0;
    }
    theToolbar.add(toUtf8(command), toUtf8(label), pictureOf(resources, picture));
    return 1;
}

int removeFromToolbar(const ACHAR* command) {
    if (!theToolbar.remove || !command) {
        return 0;
    }
    theToolbar.remove(toUtf8(command));
    return 1;
}

}  // namespace

void setSharedToolbar(SharedToolbar toolbar) {
    theToolbar = std::move(toolbar);
}

bool isSharedToolbar(std::string_view module) {
    return theToolbar.add && module == FileName;
}

void* sharedToolbarSymbol(std::string_view symbol) {
    if (symbol == "AddToToolbar") {
        return reinterpret_cast<void*>(&addToToolbar);
    }
    return symbol == "RemoveFromToolbar" ? reinterpret_cast<void*>(&removeFromToolbar) : nullptr;
}

}  // namespace drafthost
