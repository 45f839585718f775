// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ScriptChain.h"

#include "acedads.h"
#include "engine/FileStamp.h"
#include "engine/record/HostText.h"
#include "engine/record/TarnelData.h"
#include "engine/report/Report.h"
#include "engine/RunState.h"
#include "log/Trace.h"
#include "text/ScriptText.h"
#include "text/StdioFileEx.h"
#include "text/UserText.h"
#include "text/WholeFile.h"

#include <QFile>

#include <array>
#include <optional>

namespace {

QString scriptFile(bool first) {
    return DataFile(first ? QStringLiteral("script1.scr") : QStringLiteral("script2.scr"));
}

/// A path as the host takes it.
QString forHost(QString path) {
    return path.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

QString usersScript() {
    QString text = DecodeUserText(TarnelData().Script).Text;
    if (!text.endsWith(QLatin1Char('\n'))) {
        text += QLatin1Char('\n');
    }
    return text;
}

/// What a script file was given last.
struct WrittenScript {
    QString Text;
    std::optional<FileStamp> Stamp;
};
std::array<WrittenScript, 2> written;

/// The scripts of a run are all the same text, and a file that holds it is left alone: writing one anew costs
/// some file systems more than the rest of the step. A disk that is full shows here first: the host will then
/// find no script, and the cause must stand above.
void writeScript(const QString& path, const QString& text, WrittenScript& before) {
    if (before.Stamp && before.Text == text && StampOf(path) == before.Stamp) {
        return;
    }
    before.Stamp.reset();
    CStdioFileEx file;
    QString cause;
    bool complete = file.Open(path, CStdioFileEx::modeCreate | CStdioFileEx::modeWrite, &cause);
    if (complete) {
        complete = file.WriteString(text) && file.Close();
        cause = file.Error();
    }
    if (complete) {
        before = {text, StampOf(path)};
    } else {
        ConsoleLine(QStringLiteral("%1: %2").arg(path, cause));
    }
}

}  // namespace

QString ComposeScript() {
    const CTarnelData& data = TarnelData();
    QString text = QStringLiteral("(TNL_Script_Start)\n(TNL_Script_SetVars)\n");
    text += usersScript();
    if (!data.DisableScriptChain) {
        text += QStringLiteral("(TNL_Script_Complete)\n");
    }
    return text;
}

QString ScriptFault() {
    const QString fault = DecodeUserText(TarnelData().Script).Fault();
    return fault.isEmpty() ? fault : QStringLiteral("the script: ") + fault;
}

int LinesOfScript() {
    QString text = usersScript();
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return static_cast<int>(text.count(QLatin1Char('\n')) + text.count(QLatin1Char('\r')));
}

QStringList ScriptFiles() {
    return {forHost(scriptFile(true)), forHost(scriptFile(false))};
}

void StartNextScript() {
    CTarnelData& data = TarnelData();
    const QString text = ComposeScript();
    data.ScriptPath = scriptFile(data.UseScript1);
    Trace("WriteScript\n");
    writeScript(data.ScriptPath, text, written[data.UseScript1 ? 0 : 1]);
    data.UseScript1 = !data.UseScript1;
    const QString argument = QLatin1Char('"') + forHost(data.ScriptPath) + QLatin1Char('"');
    Trace("Call Script\n");
    acedCommand(RTSTR, ACRX_T("._script"), RTSTR, HostText(argument), RTNONE);
}

bool ReadScriptFile(const QString& path, QString* cause) {
    CTarnelData& data = TarnelData();
    data.Script.clear();
    Trace("OpenFile\n");
    QByteArray bytes;
    QString fault;
    if (const int error = ReadWholeFile(path, bytes)) {
        fault = SystemMessage(error);
    }
    if (fault.isEmpty()) {
        Trace("ReadFile\n");
        const ScriptText read = DecodeScript(bytes);
        fault = read.Fault;
        data.Script = read.Script;
        if (!read.Note.isEmpty()) {
            HostPrint(QStringLiteral("\n%1: %2\n").arg(path, read.Note));
        }
    }
    if (!fault.isEmpty()) {
        if (cause) {
            *cause = fault;
        }
        return false;
    }
    data.ScriptDescription = TakeDescription(data.Script);
    data.SetScriptModified(false);
    data.LastScriptFile = path;
    return true;
}

void DeleteScripts() {
    QFile::remove(scriptFile(true));
    QFile::remove(scriptFile(false));
}

void ResetScripts() {
    written = {};
}
