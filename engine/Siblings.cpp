// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Siblings.h"

#include "engine/record/HostText.h"
#include "engine/record/ResBuf.h"
#include "engine/RunState.h"
#include "rxregsvc.h"

namespace {

/// Longest path of a module that is remembered, in units with the end mark.
constexpr int MaxModulePath = 1024;

bool modulePath(const QString& name, QString& path) {
    ACHAR buffer[MaxModulePath] = {};
    if (!acrxModulePath(HostText(name), buffer, MaxModulePath)) {
        return false;
    }
    path = FromHost(buffer);
    return true;
}

AcRxDynamicLinker* linker() {
    return AcRxDynamicLinker::cast(acrxSysRegistry()->at(ACRX_T("DynamicLinker")));
}

void putTrue(const char* symbol) {
    ResBuf value;
    value.AddBool(true);
    value.PutSym(QString::fromLatin1(symbol));
}

}  // namespace

void UnloadSiblings() {
    RunState& run = Run();
    QString path;
    if (!modulePath(run.QrmModuleName, path)) {
        return;
    }
    putTrue("QRMSKIPCLEANUP");
    run.QrmModulePath = path;
    run.SiblingsUnloaded = linker()->unloadModule(HostText(run.QrmModuleName), true);
    if (modulePath(run.ZenbrixModuleName, path)) {
        run.ZenbrixModulePath = path;
        linker()->unloadModule(HostText(run.ZenbrixModuleName), true);
    }
}

void LoadSiblings() {
    RunState& run = Run();
    if (!run.SiblingsUnloaded) {
        return;
    }
    putTrue("QRMSKIPINIT");
    run.SiblingsUnloaded = false;
    linker()->loadModule(HostText(run.QrmModulePath), false, true);
    linker()->loadModule(HostText(run.ZenbrixModulePath), false, true);
}
