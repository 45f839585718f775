// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ConsoleDialog.h"

#include "acdocman.h"
#include "acedads.h"
#include "engine/ConsoleUi.h"
#include "engine/HostVariables.h"
#include "engine/record/FileName.h"
#include "engine/record/FileQueue.h"
#include "engine/record/HostText.h"
#include "engine/record/TarnelData.h"
#include "engine/RunState.h"
#include "engine/ScriptChain.h"

#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <array>

namespace {

constexpr int MaxAnswer = 4096;
constexpr std::uint32_t StatusCount = Canceled + 1;

std::size_t countOf(std::uint32_t status) {
    const auto& all = TarnelData().FileStatus;
    return static_cast<std::size_t>(std::count(all.begin(), all.end(), status));
}

void printSummary() {
    const CTarnelData& data = TarnelData();
    QStringList counts;
    for (std::uint32_t status = ToDo; status < StatusCount; ++status) {
        if (const std::size_t count = countOf(status)) {
            counts << QStringLiteral("%1 %2").arg(count).arg(FileStatusWord(status));
        }
    }
    ConsoleLine(
        QStringLiteral("%1 files%2%3")
            .arg(data.FileNames.size())
            .arg(counts.isEmpty() ? QString() : QStringLiteral(": "), counts.join(QStringLiteral(", "))));
    const QString script = data.Script.isEmpty()           ? QStringLiteral("none")
                           : data.LastScriptFile.isEmpty() ? QStringLiteral("without a file")
                                                           : data.LastScriptFile;
    ConsoleLine(QStringLiteral("script: ") + script);
    ConsoleLine(QStringLiteral("limits: maximum %1 s, alarm %2 s; read-only files %3; recover %4")
                    .arg(data.MaxTime)
                    .arg(data.AlarmTime)
                    .arg(data.ProcessReadOnly ? QStringLiteral("processed") : QStringLiteral("skipped"),
                         data.RecoverMode ? QStringLiteral("on") : QStringLiteral("off")));
}

/// A keyword; empty for Enter, null when the user cancelled.
QString askKeyword(const ACHAR* keywords, const QString& prompt) {
    std::array<ACHAR, 64> answer{};
    acedInitGet(0, keywords);
    const int result = acedGetKword(HostText(prompt), answer.data(), static_cast<int>(answer.size()));
    if (result == RTNORM) {
        return FromHost(answer.data());
    }
    return result == RTNONE ? QStringLiteral("") : QString();
}

/// A path; empty when none was given. A name without a folder is taken from the current one.
QString askPath(const ACHAR* prompt) {
    std::array<ACHAR, MaxAnswer> answer{};
    if (acedGetString(1, prompt, answer.data(), MaxAnswer) != RTNORM) {
        return {};
    }
    QString path = FromHost(answer.data()).trimmed();
    if (path.size() >= 2 && path.startsWith(QLatin1Char('"')) && path.endsWith(QLatin1Char('"'))) {
        path = path.mid(1, path.size() - 2);
    }
    if (path.isEmpty() || IsWindowsPath(path)) {
        return path;
    }
    return QFileInfo(path).absoluteFilePath();
}

void askScript() {
    const QString path = askPath(ACRX_T("\nScript file: "));
    if (path.isEmpty()) {
        return;
    }
    CTarnelData& data = TarnelData();
    const QByteArray before = data.Script;
    QString cause;
    if (ReadScriptFile(path, &cause)) {
        ConsoleLine(QStringLiteral("script: ") + path);
        return;
    }
    data.Script = before;
    ConsoleLine(QStringLiteral("%1: %2").arg(path, cause));
}

void askSeconds(const QString& what, std::uint32_t& field) {
    int seconds = 0;
    const QString prompt = QStringLiteral("\n%1 in seconds, 0 for none <%2>: ").arg(what).arg(field);
    acedInitGet(0, ACRX_T(""));
    if (acedGetInt(HostText(prompt), &seconds) != RTNORM) {
        return;
    }
    if (seconds < 0) {
        ConsoleLine(QStringLiteral("a time cannot be negative"));
    } else {
        field = static_cast<std::uint32_t>(seconds);
    }
}

void askSwitch(const QString& what, bool& field) {
    const QString prompt = QStringLiteral("\n%1 [Yes/No] <%2>: ")
                               .arg(what, field ? QStringLiteral("Yes") : QStringLiteral("No"));
    const QString answer = askKeyword(ACRX_T("Yes No"), prompt);
    if (!answer.isEmpty()) {
        field = answer == QLatin1String("Yes");
    }
}

void addFile() {
    const QString path = askPath(ACRX_T("\nDrawing: "));
    if (path.isEmpty()) {
        return;
    }
    const QFileInfo file(path);
    if (!file.exists() && !IsWindowsPath(path)) {
        ConsoleLine(QStringLiteral("%1: there is no such file").arg(path));
    } else if (file.isDir()) {
        ConsoleLine(QStringLiteral("%1: this is a folder").arg(path));
    } else {
        AppendEntry(TarnelData(), path);
    }
}

void clearQueue() {
    CTarnelData& data = TarnelData();
    const QString answer = askKeyword(
        ACRX_T("Yes No"),
        QStringLiteral("\nTake all %1 files out of the queue [Yes/No] <No>: ").arg(data.FileNames.size()));
    if (answer != QLatin1String("Yes")) {
        return;
    }
    data.FileNames.clear();
    data.FileDirs.clear();
    data.FileStatus.clear();
    data.FileOrder.clear();
}

void retry() {
    const QString answer = askKeyword(ACRX_T("All Failed Open Timeout Locked Error Canceled"),
                                      QStringLiteral("\nTry again which "
                                                     "[All/Failed/Open/Timeout/Locked/Error/Canceled] "
                                                     "<Failed>: "));
    if (answer.isNull()) {
        return;
    }
    std::size_t changed = 0;
    for (std::uint32_t& status : TarnelData().FileStatus) {
        const QString word = FileStatusWord(status);
        const bool failed = status != Done && status != ToDo;
        const bool chosen = answer == QLatin1String("All")                          ? status != ToDo
                            : answer == QLatin1String("Open")                       ? status == FailOpen
                            : answer.isEmpty() || answer == QLatin1String("Failed") ? failed
                                                                                    : answer == word;
        if (chosen) {
            status = ToDo;
            ++changed;
        }
    }
    ConsoleLine(QStringLiteral("%1 set to ToDo").arg(changed));
}

void listFiles() {
    CTarnelData& data = TarnelData();
    BuildFileOrder(data);
    for (const std::uint32_t entry : data.FileOrder) {
        ConsoleLine(QStringLiteral("entry ") + FileStatusWord(EntryStatus(data, entry)) +
                    QStringLiteral(": ") + EntryPath(data, entry));
    }
}

/// Settles what the start of a run will ask. False when the user would rather not start.
bool settleStart(StartAnswers& answers) {
    answers = {};
    if (acDocManagerPtr()->documentCount() > 1) {
        const QString answer =
            askKeyword(ACRX_T("Yes No"), QStringLiteral("\nA run works with one drawing. Close the others, "
                                                        "without saving them [Yes/No] <No>: "));
        if (answer != QLatin1String("Yes")) {
            return false;
        }
        answers.Documents = RunUi::Yes;
    }
    if (DrawingIsModified()) {
        const QString answer =
            askKeyword(ACRX_T("Save Discard Cancel"),
                       QStringLiteral("\nThe drawing has unsaved changes [Save/Discard/Cancel] <Cancel>: "));
        if (answer != QLatin1String("Save") && answer != QLatin1String("Discard")) {
            return false;
        }
        answers.Changes = answer == QLatin1String("Save") ? RunUi::Yes : RunUi::No;
    }
    return true;
}

/// One choice of the dialog that does not end it.
void perform(const QString& choice) {
    CTarnelData& data = TarnelData();
    if (choice == QLatin1String("Script")) {
        askScript();
    } else if (choice == QLatin1String("Maxtime")) {
        askSeconds(QStringLiteral("Time limit of a drawing"), data.MaxTime);
    } else if (choice == QLatin1String("ALarmtime")) {
        askSeconds(QStringLiteral("Alarm"), data.AlarmTime);
    } else if (choice == QLatin1String("REAdonly")) {
        askSwitch(QStringLiteral("Process read-only files"), data.ProcessReadOnly);
    } else if (choice == QLatin1String("RECover")) {
        askSwitch(QStringLiteral("Start a new drawing instead of opening"), data.RecoverMode);
    } else if (choice == QLatin1String("Add")) {
        addFile();
    } else if (choice == QLatin1String("CLEAR")) {
        clearQueue();
    } else if (choice == QLatin1String("RETry")) {
        retry();
    } else if (choice == QLatin1String("List")) {
        listFiles();
    }
}

}  // namespace

// The capitals are what must be typed at least. No beginning of a word fits two of them, and what starts a
// run or empties the queue is typed in full.
RunUi::Answer RunConsoleDialog(StartAnswers& answers) {
    Run().Scheduled = false;
    printSummary();
    if (!KeyboardAnswers()) {
        return RunUi::Cancel;
    }
    for (;;) {
        const QString choice = askKeyword(
            ACRX_T("RUN Script Maxtime ALarmtime REAdonly RECover Add CLEAR RETry List eXit"),
            QStringLiteral(
                "\nTarnel [RUN/Script/Maxtime/ALarmtime/REAdonly/RECover/Add/CLEAR/RETry/List/eXit] "
                "<eXit>: "));
        if (choice.isEmpty() || choice == QLatin1String("eXit")) {
            return RunUi::Cancel;
        }
        if (choice == QLatin1String("RUN")) {
            if (countOf(ToDo) == 0) {
                ConsoleLine(QStringLiteral("none of the files has the status ToDo"));
            } else if (settleStart(answers)) {
                return RunUi::Ok;
            }
            continue;
        }
        perform(choice);
    }
}
