// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/HostVariables.h"

#include "engine/record/FileName.h"
#include "engine/record/FileQueue.h"
#include "engine/record/ResBuf.h"
#include "engine/record/TarnelData.h"
#include "engine/RunState.h"
#include "log/Trace.h"
#include "state/StateFile.h"

namespace {

void putString(const char* symbol, const QString& value) {
    ResBuf chain;
    chain.AddString(value);
    chain.PutSym(QString::fromLatin1(symbol));
}

void setShort(const QString& variable, int value) {
    ResBuf chain;
    chain.AddShort(value);
    chain.SetVar(variable);
}

}  // namespace

void SaveSystemVars(int mask, int cmddia, int filedia, int cmdecho, int sdi) {
    CTarnelData& data = TarnelData();
    const std::array<int, 4> values = {sdi, cmddia, filedia, cmdecho};
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!(mask & (1 << i))) {
            continue;
        }
        ResBuf before;
        const bool isKnown = before.GetVar(data.SysVarNames[i]) == RTNORM;
        data.SavedSysVars[i].reset();
        if (isKnown) {
            data.SavedSysVars[i] = static_cast<short>(before.Integer(0));
        }
        setShort(data.SysVarNames[i], values[i]);
        data.SysVarsSaved = true;
    }
}

void ResetSystemVars() {
    CTarnelData& data = TarnelData();
    if (!data.SysVarsSaved) {
        return;
    }
    for (std::size_t i = 0; i < data.SavedSysVars.size(); ++i) {
        if (data.SavedSysVars[i]) {
            setShort(data.SysVarNames[i], *data.SavedSysVars[i]);
        }
        data.SavedSysVars[i].reset();
    }
    data.SysVarsSaved = false;
}

void RestoreLeftSystemVars() {
    CTarnelData left;
    const QString file = DataFile(QStringLiteral("TarnelRunner.xml"));
    LoadState(left, &file, 1);
    if (!left.SysVarsSaved) {
        return;
    }
    for (std::size_t i = 0; i < left.SavedSysVars.size(); ++i) {
        if (left.SavedSysVars[i]) {
            setShort(left.SysVarNames[i], *left.SavedSysVars[i]);
        }
    }
}

QString HostTextVariable(const char* name) {
    ResBuf value;
    value.GetVar(QString::fromLatin1(name));
    return value.IsType(0, RTSTR) ? value.String(0) : QString();
}

bool ScriptIsActive() {
    /// Bit of CMDACTIVE.
    constexpr int ScriptActive = 4;
    ResBuf active;
    return active.GetVar(QStringLiteral("CMDACTIVE")) == RTNORM && (active.Integer(0) & ScriptActive) != 0;
}

bool DrawingIsModified() {
    ResBuf dbmod;
    return dbmod.GetVar(QStringLiteral("dbmod")) == RTNORM && dbmod.Integer(0) != 0;
}

bool DrawingHasChanges() {
    /// Bits of DBMOD: the place of the window, and the view.
    constexpr int OnlyLookedAt = 8 | 16;
    ResBuf dbmod;
    return dbmod.GetVar(QStringLiteral("dbmod")) == RTNORM && (dbmod.Integer(0) & ~OnlyLookedAt) != 0;
}

void SetScriptVariables() {
    const CTarnelData& data = TarnelData();
    const std::uint32_t entry = data.FileOrder[static_cast<std::size_t>(data.CurrentFile)];
    Trace("SetVars\n");
    SetScriptVariables(EntryPath(data, entry));
}

void SetScriptVariables(const QString& path) {
    const CFileName file(path);
    putString("currentfileandpath", file.GetDirectory() + file.GetName());
    putString("currentpath", file.GetDirectory());
    putString("currentfile", file.GetName());
    putString("currentext", file.GetExt());
}
