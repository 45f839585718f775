// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/Toolbar.h"

#include "achar.h"
#include "engine/record/HostText.h"
#include "engine/record/TarnelData.h"
#include "html/HtmlResources.h"
#include "log/Trace.h"
#include "rxregsvc.h"

#include <QFile>

#include <dlfcn.h>

namespace {

constexpr char ToolbarModule[] = "ovrixtoolbar-19-64.arx";
/// The button's picture among the module's resources: 32 by 32 pixels.
constexpr int ButtonPicture = 1036;

using AddFunction = int (*)(const ACHAR* command, const ACHAR* label, void* resources, int picture, int, int);
using RemoveFunction = int (*)(const ACHAR* command);

void* entry(const char* name) {
    return acrxModuleSymbol(HostText(QString::fromLatin1(ToolbarModule)), name);
}

bool toolbarIsLoaded() {
    ACHAR path[1024] = {};
    return acrxModulePath(HostText(QString::fromLatin1(ToolbarModule)), path, 1024);
}

/// Where this module lies in memory, which stands for its resources.
void* ownInstance() {
    Dl_info info{};
    return dladdr(reinterpret_cast<void*>(&OvrixSetupToolbar), &info) ? info.dli_fbase : nullptr;
}

void addButton(void* function) {
    Trace("AddToToolbar\n");
    InitHtmlResources();
    reinterpret_cast<AddFunction>(function)(ACRX_T("tarnel\n"), ACRX_T("Tarnel"), ownInstance(),
                                            ButtonPicture, 0, 0);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int OvrixSetupToolbar() {
    if (toolbarIsLoaded()) {
        if (void* add = entry("AddToToolbar")) {
            addButton(add);
            return 1;
        }
    }
    const QString file = TarnelData().ModuleDir + QString::fromLatin1(ToolbarModule);
    if (!QFile::exists(file)) {
        return 1;
    }
    Trace("Load Toolbar\n");
    AcRxDynamicLinker::cast(acrxSysRegistry()->at(ACRX_T("DynamicLinker")))
        ->loadModule(HostText(file), false, true);
    // A file of that name that is no toolbar must not take the host down.
    if (void* add = entry("AddToToolbar")) {
        addButton(add);
    }
    return 1;
}

void OvrixRemoveToolbar() {
    if (!toolbarIsLoaded()) {
        return;
    }
    if (void* remove = entry("RemoveFromToolbar")) {
        Trace("RemoveFromToolbar\n");
        reinterpret_cast<RemoveFunction>(remove)(ACRX_T("tarnel\n"));
    }
}
