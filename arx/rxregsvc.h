// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Entry of a module and the host's dynamic linker.
#include "achar.h"

namespace AcRx {
enum AppMsgCode {
    kNullMsg = 0,
    kInitAppMsg = 1,
    kUnloadAppMsg = 2,
    kLoadDwgMsg = 3,
    kUnloadDwgMsg = 4,
    kInvkSubrMsg = 5,
    kCfgMsg = 6,
    kEndMsg = 7,
    kQuitMsg = 8,
    kSaveMsg = 9,
    kDependencyMsg = 10,
    kNoDependencyMsg = 11,
    kOleUnloadAppMsg = 12,
    kPreQuitMsg = 13,
    kInitDialogMsg = 14,
    kEndDialogMsg = 15,
    kSuspendMsg = 16,
    kInitTabGroupMsg = 17,
    kEndTabGroupMsg = 18,
};
enum AppRetCode { kRetOK = 0, kRetError = 3 };
}  // namespace AcRx

/// API version that the host offers and asks of a module through acrxGetApiVersion before the first message.
constexpr int kArxApiVersion = 19;

// A module exports:
//   extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* appId);
//   extern "C" int acrxGetApiVersion();

class ARX_EXPORT AcRxObject {
  public:
    virtual ~AcRxObject() = default;
};

/// Loads and unloads modules by the name or path of their files.
class ARX_EXPORT AcRxDynamicLinker : public AcRxObject {
  public:
    static AcRxDynamicLinker* cast(AcRxObject* object) { return dynamic_cast<AcRxDynamicLinker*>(object); }
    /// printit writes what happened to the command line. A second load is refused with asCmd; without it
    /// the reference count goes up and the answer is true.
    virtual bool loadModule(const ACHAR* file, bool printit, bool asCmd = false) = 0;
    /// False when it is unknown or locked.
    virtual bool unloadModule(const ACHAR* file, bool asCmd = false) = 0;
    virtual bool lockApplication(void* appId) = 0;
    virtual bool unlockApplication(void* appId) = 0;
    virtual bool registerAppMDIAware(void* appId) = 0;
};

class ARX_EXPORT AcRxDictionary : public AcRxObject {
  public:
    virtual AcRxObject* at(const ACHAR* key) = 0;
};

/// Holds the linker under "DynamicLinker".
ARX_EXPORT AcRxDictionary* acrxSysRegistry();

/// Full path of a loaded module by its file name (compared without case), false when it is not loaded.
/// Stands in for the module look-up of the operating system.
ARX_EXPORT bool acrxModulePath(const ACHAR* fileName, ACHAR* result, int size);
/// Address of a name that a loaded module exports, null without one.
ARX_EXPORT void* acrxModuleSymbol(const ACHAR* fileName, const char* symbol);
