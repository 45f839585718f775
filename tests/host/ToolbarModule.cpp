// SPDX-License-Identifier: GPL-3.0-or-later
// A module that offers the shared toolbar, as it lies beside ours in an office: tells each call on the
// command line.

#include "acutads.h"
#include "rxregsvc.h"

extern "C" ARX_EXPORT int AddToToolbar(const ACHAR* command, const ACHAR* label, void* resources, int picture,
                                       int, int) {
    acutPrintf(u"\n[add %s %s %d %d]\n", command, label, resources != nullptr ? 1 : 0, picture);
    return 0;
}

extern "C" ARX_EXPORT int RemoveFromToolbar(const ACHAR* command) {
    acutPrintf(u"\n[remove %s]\n", command);
    return 0;
}

extern "C" ARX_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void*) {
    if (message == AcRx::kInitAppMsg) {
        acutPrintf(u"\n[toolbar module]\n");
    }
    return AcRx::kRetOK;
}

extern "C" ARX_EXPORT int acrxGetApiVersion() {
    return kArxApiVersion;
}
