// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Restartable.h"

#include "acedads.h"
#include "acprofile.h"
#include "dbmain.h"
#include "engine/record/HostText.h"
#include "engine/record/ResBuf.h"
#include "engine/record/TarnelData.h"
#include "engine/RegistryValue.h"
#include "log/Trace.h"
#include "text/StdioFileEx.h"

#include <array>
#include <cstdlib>

namespace {

/// Values of LOADCTRLS: load when the host starts, load on request.
constexpr unsigned LoadAtStart = 2;
constexpr unsigned LoadOnRequest = 8;
constexpr unsigned NoValue = static_cast<unsigned>(-1);
constexpr int MaxPath = 4096;

const QString& moduleName() {
    static const QString name = QString::fromLatin1(ModuleFileName);
    return name;
}

QString machineRoot() {
    return QStringLiteral("HKEY_LOCAL_MACHINE");
}

QString userRoot() {
    return QStringLiteral("HKEY_CURRENT_USER");
}

QString productRoot() {
    return FromHost(acdbHostApplicationServices()->getRegistryProductRootKey());
}

QString loadControlsPath() {
    return productRoot() + QStringLiteral("\\Applications\\OvrixTNL3\\LOADCTRLS");
}

/// The name behind the last separator; such a list may come from a system with either kind.
QString fileNamePart(const QString& line) {
    const QString path = line.trimmed();
    const qsizetype at = std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    return path.mid(at + 1);
}

bool loadedByList() {
    Trace("acedFileFile for acad.rx\n");
    std::array<ACHAR, MaxPath> path{};
    if (acedFindFile(ACRX_T("acad.rx"), path.data(), MaxPath) != RTNORM) {
        return false;
    }
    Trace("Found, openfile\n");
    CStdioFileEx file;
    if (!file.Open(FromHost(path.data()), CStdioFileEx::modeRead)) {
        return false;
    }
    Trace("Read Contents\n");
    QString line;
    // An empty line leaves the text as it was.
    for (; file.ReadString(line); line.clear()) {
        if (line.startsWith(QLatin1Char(';'))) {
            continue;
        }
        if (fileNamePart(line).compare(moduleName(), Qt::CaseInsensitive) == 0) {
            Trace("Loaded from acad.rx\n");
            return true;
        }
    }
    return false;
}

/// Key of the start-up suite of the current profile, below the user's root.
QString startupSuiteKey() {
    ResBuf profile;
    profile.GetVar(QStringLiteral("cprofile"));
    const QString name = profile.IsType(0, RTSTR) ? profile.String(0) : QString();
    ACHAR* text = nullptr;
    if (acProfileManagerPtr()->ProfileRegistryKey(text, HostText(name)) != Acad::eOk) {
        return {};
    }
    QString key = FromHost(text);
    std::free(text);
    key.remove(0, key.indexOf(QLatin1Char('\\')) + 1);
    return key + QStringLiteral("\\Dialogs\\Appload\\Startup");
}

bool loadedBySuite() {
    Trace("Not Found, get cprofile and look in AppLoad reg entries\n");
    const QString key = startupSuiteKey();
    RegistryString number(key + QStringLiteral("\\NumStartup"), QStringLiteral("0"), true, userRoot());
    const int count = number.Get().toInt();
    for (int i = 1; i <= count; ++i) {
        RegistryString entry(QStringLiteral("%1\\%2Startup").arg(key).arg(i), QString(), true, userRoot());
        if (entry.Get().toLower().contains(moduleName())) {
            Trace("Found\n");
            return true;
        }
    }
    return false;
}

void setString(const QString& path, const QString& text) {
    RegistryString value(productRoot() + path, QString(), true, machineRoot());
    value = text;
}

}  // namespace

void EnsureRestartable() {
    if (loadedByList() || loadedBySuite()) {
        return;
    }
    Trace("Not Found, place entry\n");
    CTarnelData& data = TarnelData();
    RegistryDword controls(loadControlsPath(), NoValue, true, machineRoot());
    if (controls.Get() == LoadAtStart) {
        return;
    }
    data.TemporarilyLoadFromRegistry = true;
    controls = LoadAtStart;
    setString(QStringLiteral("\\Applications\\OvrixTNL3\\RegPath"),
              QStringLiteral("\\\\HKEY_LOCAL_MACHINE\\") + productRoot() +
                  QStringLiteral("\\AutodeskApps\\OvrixTNL3"));
    setString(QStringLiteral("\\AutodeskApps\\OvrixTNL3\\Commands\\tarnel"), QStringLiteral("tarnel"));
    setString(QStringLiteral("\\AutodeskApps\\OvrixTNL3\\Loader\\MODULE"), data.ModuleDir + moduleName());
    setString(QStringLiteral("\\AutodeskApps\\OvrixTNL3\\Name\\tarnel"), QStringLiteral("tarnel"));
}

void RemoveRestartable() {
    RegistryDword controls(loadControlsPath(), NoValue, true, machineRoot());
    controls = LoadOnRequest;
    TarnelData().TemporarilyLoadFromRegistry = false;
}
