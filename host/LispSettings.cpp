// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/LispSettings.h"

#include "acedads.h"
#include "engine/Batch.h"
#include "engine/ConsoleUi.h"
#include "engine/FileInWork.h"
#include "engine/HostInput.h"
#include "engine/record/FileQueue.h"
#include "engine/record/HostText.h"
#include "engine/record/ResBuf.h"
#include "engine/record/TarnelData.h"
#include "engine/RunState.h"
#include "engine/ScriptChain.h"
#include "log/Trace.h"
#include "state/StateFile.h"
#include "text/CodePage.h"

namespace {

void returnBool(bool value) {
    if (value) {
        acedRetT();
    } else {
        acedRetNil();
    }
}

/// What the setters begin with: the state as it is on disk, and their arguments.
ResBuf beginSetter(const char* trace) {
    Trace(trace);
    if (TarnelData().StateFile.isEmpty()) {
        ResolveStateFile();
    }
    Trace("LoadState\n");
    LoadRunState();
    Trace("GetArgs\n");
    ResBuf arguments;
    arguments.GetArgs();
    return arguments;
}

void saveSetting() {
    Trace("SaveState\n");
    SaveRunState();
}

/// Reads or sets a switch.
void setSwitch(const ResBuf& arguments, const char* label, bool& field) {
    if (arguments.IsEmpty()) {
        returnBool(field);
        return;
    }
    if (!arguments.IsType(0, RTT) && !arguments.IsType(0, RTNIL)) {
        HostPrint(QStringLiteral("Invalid parameter: expected bool\n"));
        acedRetNil();
        return;
    }
    field = arguments.IsType(0, RTT);
    Trace(QStringLiteral("%1: %2\n")
              .arg(QString::fromLatin1(label), field ? QStringLiteral("true") : QStringLiteral("false")));
    saveSetting();
    returnBool(field);
}

void refuseNoString() {
    HostPrint(QStringLiteral("Invalid parameter: expected string\n"));
    acedRetNil();
}

/// The queue becomes the paths between the list's marks.
void takeQueue(ResBuf& arguments) {
    CTarnelData& data = TarnelData();
    const FileInWork inWork(data);
    data.FileNames.clear();
    data.FileOrder.clear();
    data.FileDirs.clear();
    data.FileStatus.clear();
    data.SortIdx = 6;
    data.SortReverse = 0;
    const int count = arguments.Count();
    for (int i = 1; i < count && !arguments.IsType(i, RTLE); ++i) {
        AppendEntry(data, arguments.String(i));
    }
    inWork.FindAgain(data);
}

}  // namespace

void DoSetRecoverMode() {
    const ResBuf arguments = beginSetter("DoSetRecoverMode\n");
    setSwitch(arguments, "SetRecoverMode", TarnelData().RecoverMode);
    Trace("Return\n");
}

void DoProcessReadOnly() {
    const ResBuf arguments = beginSetter("DoProcessReadOnly\n");
    setSwitch(arguments, "ProcessReadOnly", TarnelData().ProcessReadOnly);
    Trace("Return\n");
}

void DoDisableScriptChain() {
    Trace("DoDisableScriptChain\n");
    Trace("GetArgs\n");
    ResBuf arguments;
    arguments.GetArgs();
    bool& field = TarnelData().DisableScriptChain;
    const int type = arguments.Type(0);
    const bool integer = type == RTSHORT || type == RTLONG;
    if (arguments.IsEmpty()) {
        returnBool(field);
    } else if (type == RTT || type == RTNIL || integer) {
        field = type == RTT || (integer && arguments.Integer(0) != 0);
        Trace(field ? "DisableScriptChain: true\n" : "DisableScriptChain: false\n");
        returnBool(field);
    }
    Trace("Return\n");
}

void DoSetMask() {
    const ResBuf arguments = beginSetter("DoSetMask\n");
    CTarnelData& data = TarnelData();
    if (arguments.IsEmpty()) {
        acedRetStr(data.UseFilter ? HostText(data.Filter) : ACRX_T("*.dwg"));
    } else if (arguments.IsType(0, RTSTR)) {
        data.UseFilter = 1;
        data.Filter = arguments.String(0);
        Trace(QStringLiteral("SetMask: %1\n").arg(data.Filter));
        saveSetting();
        acedRetT();
    } else {
        refuseNoString();
    }
    Trace("Return\n");
}

void DoSetScript() {
    const ResBuf arguments = beginSetter("DoSetScript\n");
    if (arguments.IsEmpty()) {
        acedRetStr(HostText(DecodeText(TarnelData().Script, LocalePage)));
    } else if (arguments.IsType(0, RTSTR)) {
        QString cause;
        if (!ReadScriptFile(arguments.String(0), &cause)) {
            HostPrint(QStringLiteral("\n%1: %2\n").arg(arguments.String(0), cause));
        }
        saveSetting();
        acedRetT();
    } else {
        refuseNoString();
    }
    Trace("Return\n");
}

void DoBatchLisp() {
    Trace("DoBatchLisp\nGetArgs\n");
    ResBuf arguments;
    arguments.GetArgs();
    if (!arguments.IsType(0, RTLB)) {
        Trace("Call DoBatch\n");
        DoBatch();
        acedRetT();
        Trace("Return\n");
        return;
    }
    if (IsHostOfOneRun()) {
        ConsoleLine(QStringLiteral("this host was started for one run, and no other can begin in it"));
        acedRetNil();
        return;
    }
    if (TarnelData().StateFile.isEmpty()) {
        ResolveStateFile();
    }
    Trace("LoadState\n");
    LoadRunState();
    takeQueue(arguments);
    saveSetting();
    Trace("Send Start Batch\n");
    SendToHost(StartString());
    acedRetT();
    Trace("Return\n");
}
