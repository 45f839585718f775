// SPDX-License-Identifier: GPL-3.0-or-later
// Modules, profiles and the registry file for modules.

#include "acprofile.h"
#include "dbmain.h"
#include "drafthost/api/ApiHost.h"
#include "drafthost/api/Toolbar.h"
#include "drafthost/editor/ModuleTable.h"
#include "drafthost/editor/RegistryFile.h"
#include "rxregsvc.h"

namespace drafthost {
namespace {

class Linker : public AcRxDynamicLinker {
  public:
    bool loadModule(const ACHAR* file, bool printit, bool asCmd) override {
        const std::string name = toUtf8(file);
        automation::ModuleStatus status = apiHost().modules().load(name, printit);
        if (status == automation::ModuleStatus::AlreadyLoaded && !asCmd) {
            apiHost().modules().addReference(name);
            return true;
        }
        return status == automation::ModuleStatus::Done;
    }
    bool unloadModule(const ACHAR* file, bool) override {
        return apiHost().modules().unload(toUtf8(file), false) == automation::ModuleStatus::Done;
    }
    bool lockApplication(void* appId) override { return apiHost().modules().setLocked(appId, true); }
    bool unlockApplication(void* appId) override { return apiHost().modules().setLocked(appId, false); }
    bool registerAppMDIAware(void* appId) override { return apiHost().modules().setMdiAware(appId); }
};

class SystemRegistry : public AcRxDictionary {
  public:
    AcRxObject* at(const ACHAR* key) override {
        return std::u16string_view(key) == u"DynamicLinker" ? &linker_ : nullptr;
    }

  private:
    Linker linker_;
};

class ProfileManager : public AcApProfileManager {
  public:
    Acad::ErrorStatus ProfileRegistryKey(ACHAR*& key, const ACHAR* profile) override {
        const RegistryFile& registry = apiHost().registry();
        const std::string name = profile ? toUtf8(profile) : registry.profile();
        bool known = name == registry.profile();
        for (const std::string& other :
             registry.keys("HKEY_CURRENT_USER", RegistryFile::productKey() + "\\Profiles")) {
            known = known || other == name;
        }
        if (!known) {
            return Acad::eProfileDoesNotExist;
        }
        key = duplicate("HKEY_CURRENT_USER\\" + RegistryFile::profileKey(name));
        return Acad::eOk;
    }
};

class HostServices : public AcDbHostApplicationServices {
  public:
    const ACHAR* getRegistryProductRootKey() override {
        static const std::u16string key = toUtf16(RegistryFile::productKey());
        return key.c_str();
    }
};

/// A module's setting has to outlive whatever happens next, so it goes to the file at once.
bool write(const ACHAR* root, const ACHAR* path, RegistryFile::Value value) {
    RegistryFile& registry = apiHost().registry();
    registry.write(toUtf8(root), toUtf8(path), std::move(value));
    std::string error;
    if (!registry.save(error)) {
        apiHost().printLine(error);
        return false;
    }
    return true;
}

}  // namespace
}  // namespace drafthost

using namespace drafthost;

AcRxDictionary* acrxSysRegistry() {
    static SystemRegistry registry;
    return &registry;
}

AcApProfileManager* acProfileManagerPtr() {
    static ProfileManager manager;
    return &manager;
}

AcDbHostApplicationServices* acdbHostApplicationServices() {
    static HostServices services;
    return &services;
}

bool acrxModulePath(const ACHAR* fileName, ACHAR* result, int size) {
    const std::string name = toUtf8(fileName);
    std::string path = apiHost().modules().path(name);
    if (path.empty() && isSharedToolbar(name)) {
        path = name;
    }
    return !path.empty() && copyTo(result, size, path);
}

void* acrxModuleSymbol(const ACHAR* fileName, const char* symbol) {
    const std::string name = toUtf8(fileName);
    void* address = apiHost().modules().symbol(name, symbol);
    return !address && isSharedToolbar(name) ? sharedToolbarSymbol(symbol) : address;
}

bool acrxRegistryReadDword(const ACHAR* root, const ACHAR* path, unsigned int* value) {
    auto number = apiHost().registry().readNumber(toUtf8(root), toUtf8(path));
    if (number) {
        *value = *number;
    }
    return number.has_value();
}

bool acrxRegistryReadString(const ACHAR* root, const ACHAR* path, ACHAR* value, int size) {
    auto text = apiHost().registry().readString(toUtf8(root), toUtf8(path));
    return text && copyTo(value, size, *text);
}

bool acrxRegistryWriteDword(const ACHAR* root, const ACHAR* path, unsigned int value) {
    return write(root, path, value);
}

bool acrxRegistryWriteString(const ACHAR* root, const ACHAR* path, const ACHAR* value) {
    return write(root, path, toUtf8(value));
}
