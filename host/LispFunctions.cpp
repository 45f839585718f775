// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/LispFunctions.h"

#include "acedads.h"
#include "engine/Batch.h"
#include "engine/Outcomes.h"
#include "engine/record/HostText.h"
#include "engine/RunGuard.h"
#include "host/LispSettings.h"

namespace {

/// The host's form of a function: no arguments and the host's result code.
template <void (*Function)()>
int call() {
    Function();
    return RSRSLT;
}

/// The same for a function that the script of a run may not call in the host that was started for it.
template <void (*Function)(), bool (*Refuses)()>
int guarded() {
    if (Refuses()) {
        acedRetVoid();
        return RSERR;
    }
    Function();
    return RSRSLT;
}

int scriptComplete() {
    return DoScriptComplete() ? RSRSLT : RSERR;
}

void startBatch() {
    if (DoStartBatch()) {
        acedRetT();
    } else {
        acedRetNil();
    }
}

struct LispFunction {
    const char* Name;
    int (*Function)();
};

constexpr LispFunction Functions[] = {
    {"TNL_Start_Batch", guarded<startBatch, RefusesCommand>},
    {"TNL_Script_Start", call<DoScriptStart>},
    {"TNL_Script_SetVars", call<DoScriptSetVars>},
    {"TNL_Script_Complete", scriptComplete},
    {"TNL_Cancel_Batch", guarded<DoCancelBatch, RefusesCancel>},
    {"Tarnel_SetRecoverMode", guarded<DoSetRecoverMode, RefusesSetting>},
    {"Tarnel_DoReadOnly", guarded<DoProcessReadOnly, RefusesSetting>},
    {"TarnelDisableScriptChain", guarded<DoDisableScriptChain, RefusesSetting>},
    {"C:Tarnel", guarded<DoBatchLisp, RefusesCommand>},
    {"Tarnel_File_Next", scriptComplete},
    {"Tarnel_File_Error", call<DoScriptError>},
    {"Tarnel_File_Timeout", call<DoScriptTimeout>},
    {"Tarnel_File_OpenTimeout", call<DoScriptOpenTimeout>},
    {"Tarnel_SetScript", guarded<DoSetScript, RefusesSetting>},
    {"Tarnel_SetMask", guarded<DoSetMask, RefusesSetting>},
};

}  // namespace

void RegisterLispFunctions() {
    int code = 0;
    for (const LispFunction& function : Functions) {
        ++code;
        acedDefun(HostText(QString::fromLatin1(function.Name)), code);
        acedRegFunc(function.Function, code);
    }
}
