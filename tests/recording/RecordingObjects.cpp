// SPDX-License-Identifier: GPL-3.0-or-later
// The host's objects: documents, editor, command stack, linker, profiles, registry and windows.
#include "accmd.h"
#include "acdocman.h"
#include "aced.h"
#include "acframe.h"
#include "acprofile.h"
#include "acutads.h"
#include "dbmain.h"
#include "rxregsvc.h"
#include "tests/recording/RecordingHost.h"

#include <cstdlib>
#include <QRegularExpression>

namespace {

RecordingHost& host() {
    return RecordingHost::Get();
}

class Document final : public AcApDocument {
  public:
    const ACHAR* fileName() const override { return ACRX_T("Drawing1.dwg"); }
    AcDbDatabase* database() const override { return nullptr; }
    bool isReadOnly() const override { return false; }
    bool isQuiescent() const override { return true; }
};

// Up to eight documents, of which the first is current.
Document documents[8];

class DocumentIterator final : public AcApDocumentIterator {
  public:
    bool done() const override { return at >= host().DocumentCount; }
    void step() override { ++at; }
    AcApDocument* document() override { return &documents[at]; }

  private:
    int at = 0;
};

class DocManager final : public AcApDocManager {
  public:
    AcApDocument* curDocument() const override { return host().DocumentCount ? &documents[0] : nullptr; }
    AcApDocument* mdiActiveDocument() const override { return curDocument(); }
    int documentCount() const override { return host().DocumentCount; }
    AcApDocumentIterator* newAcApDocumentIterator() override { return new DocumentIterator; }
    Acad::ErrorStatus closeDocument(AcApDocument* document) override {
        host().Note(QStringLiteral("closeDocument %1").arg(static_cast<Document*>(document) - documents));
        return Acad::eOk;
    }
    bool isApplicationContext() const override { return false; }
    void executeInApplicationContext(void (*function)(void*), void* data) const override {
        host().Note(QStringLiteral("executeInApplicationContext"));
        function(data);
    }
    Acad::ErrorStatus sendStringToExecute(AcApDocument*, const ACHAR* text, bool activate, bool wrapUp,
                                          bool echo) override {
        host().Note(QStringLiteral("send %1 %2%3%4").arg(TextOf(text)).arg(activate).arg(wrapUp).arg(echo));
        host().Send(TextOf(text));
        return Acad::eOk;
    }
    Acad::ErrorStatus disableDocumentActivation() override {
        host().Note(QStringLiteral("disableDocumentActivation"));
        return Acad::eOk;
    }
    Acad::ErrorStatus enableDocumentActivation() override {
        host().Note(QStringLiteral("enableDocumentActivation"));
        return Acad::eOk;
    }
    void pushResourceHandle() override { ++host().ResourceDepth; }
    void popResourceHandle() override { --host().ResourceDepth; }
};

class Editor final : public AcEditor {
  public:
    void addReactor(AcRxEventReactor* reactor) override {
        host().Note(QStringLiteral("addReactor"));
        host().Reactors.push_back(reactor);
    }
    void removeReactor(AcRxEventReactor* reactor) override {
        host().Note(QStringLiteral("removeReactor"));
        std::erase(host().Reactors, static_cast<void*>(reactor));
    }
};

class CommandStack final : public AcEdCommandStack {
  public:
    Acad::ErrorStatus addCommand(const ACHAR* group, const ACHAR* globalName, const ACHAR* localName,
                                 Adesk::Int32 flags, AcRxFunctionPtr function) override {
        const QString key = TextOf(group) + QLatin1Char('/') + TextOf(globalName);
        host().Note(QStringLiteral("addCommand %1 %2 %3").arg(key, TextOf(localName)).arg(flags));
        if (host().Commands.contains(key)) {
            return Acad::eDuplicateKey;
        }
        host().Commands[key] = function;
        return Acad::eOk;
    }
    Acad::ErrorStatus removeGroup(const ACHAR* group) override {
        host().Note(QStringLiteral("removeGroup ") + TextOf(group));
        const QString prefix = TextOf(group) + QLatin1Char('/');
        const auto removed =
            host().Commands.removeIf([&](const auto& entry) { return entry.key().startsWith(prefix); });
        return removed ? Acad::eOk : Acad::eKeyNotFound;
    }
};

class Linker final : public AcRxDynamicLinker {
  public:
    bool loadModule(const ACHAR* file, bool printit, bool asCmd) override {
        host().Note(QStringLiteral("loadModule %1 %2%3").arg(TextOf(file)).arg(printit).arg(asCmd));
        if (host().OnLoadModule) {
            host().OnLoadModule(TextOf(file));
        }
        return true;
    }
    bool unloadModule(const ACHAR* file, bool asCmd) override {
        host().Note(QStringLiteral("unloadModule %1 %2").arg(TextOf(file)).arg(asCmd));
        return host().Modules.remove(TextOf(file)) > 0;
    }
    bool lockApplication(void*) override { return true; }
    bool unlockApplication(void*) override {
        host().Note(QStringLiteral("unlockApplication"));
        return true;
    }
    bool registerAppMDIAware(void*) override {
        host().Note(QStringLiteral("registerAppMDIAware"));
        return true;
    }
};

class Registry final : public AcRxDictionary {
  public:
    AcRxObject* at(const ACHAR* key) override {
        static Linker linker;
        return TextOf(key) == QLatin1String("DynamicLinker") ? &linker : nullptr;
    }
};

class Profiles final : public AcApProfileManager {
  public:
    Acad::ErrorStatus ProfileRegistryKey(ACHAR*& key, const ACHAR* profile) override {
        const QString path =
            QStringLiteral("HKEY_CURRENT_USER\\Software\\Maker\\Product\\Profiles\\") + TextOf(profile);
        key = static_cast<ACHAR*>(std::malloc((static_cast<std::size_t>(path.size()) + 1) * sizeof(ACHAR)));
        CopyOut(path, key, static_cast<int>(path.size()) + 1);
        return Acad::eOk;
    }
};

class Services final : public AcDbHostApplicationServices {
  public:
    const ACHAR* getRegistryProductRootKey() override { return ACRX_T("Software\\Maker\\Product\\R1"); }
};

QString registryKey(const ACHAR* root, const ACHAR* path) {
    return TextOf(root) + QLatin1Char('\\') + TextOf(path);
}

bool registryWrite(const ACHAR* root, const ACHAR* path, const QVariant& value) {
    host().Note(QStringLiteral("registry %1=%2").arg(registryKey(root, path), value.toString()));
    if (host().RegistryWritable) {
        host().Registry[registryKey(root, path)] = value;
    }
    return host().RegistryWritable;
}

}  // namespace

AcApDocManager* acDocManagerPtr() {
    static DocManager manager;
    return &manager;
}

AcEditor* acedEditorPtr() {
    static Editor editor;
    return &editor;
}

AcEdCommandStack* acedRegCmdsPtr() {
    static CommandStack stack;
    return &stack;
}

AcRxDictionary* acrxSysRegistry() {
    static Registry registry;
    return &registry;
}

bool acrxModulePath(const ACHAR* fileName, ACHAR* result, int size) {
    const auto found = host().Modules.constFind(TextOf(fileName));
    if (found == host().Modules.constEnd()) {
        return false;
    }
    CopyOut(*found, result, size);
    return true;
}

void* acrxModuleSymbol(const ACHAR* fileName, const char* symbol) {
    return host().ModuleSymbols.value(TextOf(fileName) + QLatin1Char('!') + QLatin1String(symbol));
}

AcApProfileManager* acProfileManagerPtr() {
    static Profiles profiles;
    return &profiles;
}

AcDbHostApplicationServices* acdbHostApplicationServices() {
    static Services services;
    return &services;
}

bool acrxRegistryReadDword(const ACHAR* root, const ACHAR* path, unsigned int* value) {
    const auto found = host().Registry.constFind(registryKey(root, path));
    if (found == host().Registry.constEnd() || found->userType() == QMetaType::QString) {
        return false;
    }
    *value = found->toUInt();
    return true;
}

bool acrxRegistryReadString(const ACHAR* root, const ACHAR* path, ACHAR* value, int size) {
    const auto found = host().Registry.constFind(registryKey(root, path));
    if (found == host().Registry.constEnd() || found->userType() != QMetaType::QString) {
        return false;
    }
    CopyOut(found->toString(), value, size);
    return true;
}

bool acrxRegistryWriteDword(const ACHAR* root, const ACHAR* path, unsigned int value) {
    return registryWrite(root, path, value);
}

bool acrxRegistryWriteString(const ACHAR* root, const ACHAR* path, const ACHAR* value) {
    return registryWrite(root, path, TextOf(value));
}

QMainWindow* acedGetAcadFrame() {
    return nullptr;
}

QWidget* adsw_acadMainWnd() {
    return nullptr;
}

QWidget* acedGetAcadDwgView() {
    return nullptr;
}

void AdUiSaveDockingToolPositions() {
    host().Note(QStringLiteral("saveDockingToolPositions"));
}

bool AdUiRestoreDockingToolPosition(QDockWidget*) {
    return false;
}

void acedPumpMessage() {
    host().Note(QStringLiteral("pump"));
}

int acutWcMatch(const ACHAR* text, const ACHAR* pattern) {
    return acutWcMatchEx(text, pattern, false) ? RTNORM : RTERROR;
}

bool acutWcMatchEx(const ACHAR* text, const ACHAR* pattern, bool ignoreCase) {
    // Stars, sets and alternatives, which is what the module's patterns are made of.
    QString expression = QRegularExpression::escape(TextOf(pattern));
    expression.replace(QLatin1String("\\*"), QLatin1String(".*"))
        .replace(QLatin1String("\\[\\~"), QLatin1String("[^"))
        .replace(QLatin1String("\\]"), QLatin1String("]"))
        .replace(QLatin1String("\\,"), QLatin1String("|"));
    QRegularExpression::PatternOptions options = QRegularExpression::DotMatchesEverythingOption;
    if (ignoreCase) {
        options |= QRegularExpression::CaseInsensitiveOption;
    }
    return QRegularExpression(QRegularExpression::anchoredPattern(expression), options)
        .match(TextOf(text))
        .hasMatch();
}
