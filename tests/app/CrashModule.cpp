// SPDX-License-Identifier: GPL-3.0-or-later
// A module whose one command ends the host with a segmentation fault, as a faulty module of somebody else
// would.
#include <csignal>

#include "accmd.h"
#include "rxregsvc.h"

namespace {

void crash() {
    // A sanitizer's handler would make an ordinary end of it.
    std::signal(SIGSEGV, SIG_DFL);
    std::raise(SIGSEGV);
}

}  // namespace

extern "C" ARX_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* appId) {
    if (message == AcRx::kInitAppMsg) {
        auto* linker = AcRxDynamicLinker::cast(acrxSysRegistry()->at(u"DynamicLinker"));
        linker->unlockApplication(appId);
        linker->registerAppMDIAware(appId);
        acedRegCmdsPtr()->addCommand(u"TESTS", u"CRASH", u"CRASH", ACRX_CMD_MODAL, crash);
    } else if (message == AcRx::kUnloadAppMsg) {
        acedRegCmdsPtr()->removeGroup(u"TESTS");
    }
    return AcRx::kRetOK;
}

extern "C" ARX_EXPORT int acrxGetApiVersion() {
    return kArxApiVersion;
}
