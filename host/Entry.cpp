// SPDX-License-Identifier: GPL-3.0-or-later
// The names by which the host reaches the module.
#include "engine/RunState.h"
#include "host/LispFunctions.h"
#include "host/Module.h"
#include "rxregsvc.h"

#define TNL_EXPORT __attribute__((visibility("default")))

extern "C" TNL_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* appId) {
    switch (message) {
        case AcRx::kInitAppMsg: {
            StartModule();
            auto* linker = AcRxDynamicLinker::cast(acrxSysRegistry()->at(ACRX_T("DynamicLinker")));
            // A script that unloaded the module would take its run away.
            if (!IsHostOfOneRun()) {
                linker->unlockApplication(appId);
            }
            linker->registerAppMDIAware(appId);
            break;
        }
        case AcRx::kUnloadAppMsg:
            StopModule();
            break;
        case AcRx::kLoadDwgMsg:
            RegisterLispFunctions();
            break;
        default:
            break;
    }
    return AcRx::kRetOK;
}

extern "C" TNL_EXPORT int acrxGetApiVersion() {
    return kArxApiVersion;
}
