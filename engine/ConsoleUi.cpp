// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ConsoleUi.h"

#include "acedads.h"
#include "engine/ConsoleDialog.h"
#include "engine/HostVariables.h"
#include "engine/record/HostText.h"
#include "engine/record/ResBuf.h"
#include "engine/record/TarnelData.h"
#include "engine/RunState.h"
#include "engine/ScriptChain.h"

#include <QJsonArray>
#include <QJsonObject>

#include <array>

namespace {
/// Bits of CMDACTIVE.
constexpr int ScriptActive = 4;
constexpr int LispActive = 32;

QJsonObject named(const char* event) {
    return {{QStringLiteral("event"), QString::fromLatin1(event)}};
}

/// An event of a file: its number in the queue, counted from 0, tells apart entries that have one path.
QJsonObject ofFile(const char* event, std::uint32_t entry, const QString& path) {
    QJsonObject object = named(event);
    object[QStringLiteral("entry")] = static_cast<qint64>(entry);
    object[QStringLiteral("path")] = path;
    return object;
}

QJsonObject ofCurrentFile(const char* event, const QString& path) {
    const CTarnelData& data = TarnelData();
    return ofFile(event, data.FileOrder[static_cast<std::size_t>(data.CurrentFile)], path);
}
}  // namespace

bool KeyboardAnswers() {
    ResBuf active;
    return active.GetVar(QStringLiteral("CMDACTIVE")) == RTNORM &&
           (active.Integer(0) & (ScriptActive | LispActive)) == 0;
}

RunUi::Answer ConsoleUi::RunMainDialog() {
    startAnswers = {};
    return RunConsoleDialog(startAnswers);
}

RunUi::Answer ConsoleUi::Ask(const QString& caption, const QString& text, Buttons buttons) {
    QString oneLine = text;
    oneLine.replace(QStringLiteral("\n\n"), QStringLiteral(" ")).replace(QLatin1Char('\n'), QLatin1Char(' '));
    if (buttons == OkOnly) {
        ConsoleLine(oneLine);
        return Ok;
    }
    const bool cancel = buttons == YesNoCancel;
    std::optional<Answer>& prepared = cancel ? startAnswers.Changes : startAnswers.Documents;
    if (prepared) {
        const Answer answer = *prepared;
        prepared.reset();
        return answer;
    }
    if (!KeyboardAnswers()) {
        // Nobody can answer, and nothing may be lost: what is asked about stays as it is.
        ConsoleLine(QStringLiteral("%1 Nobody can answer here, so the answer is %2 and nothing is changed.")
                        .arg(oneLine, cancel ? QStringLiteral("Cancel") : QStringLiteral("No")));
        return cancel ? Cancel : No;
    }
    std::array<ACHAR, 64> answer{};
    acedInitGet(0, cancel ? ACRX_T("Yes No Cancel") : ACRX_T("Yes No"));
    const QString prompt =
        QStringLiteral("\n%1: %2 [%3] <%4>: ")
            .arg(caption, oneLine, cancel ? QStringLiteral("Yes/No/Cancel") : QStringLiteral("Yes/No"),
                 cancel ? QStringLiteral("Cancel") : QStringLiteral("No"));
    const int result = acedGetKword(HostText(prompt), answer.data(), static_cast<int>(answer.size()));
    const QString word = result == RTNORM ? FromHost(answer.data()) : QString();
    if (word == QLatin1String("Yes")) {
        return Yes;
    }
    if (word == QLatin1String("No")) {
        return No;
    }
    return cancel ? Cancel : No;
}

void ConsoleUi::OpenStatus(int count) {
    fileCount = count;
    fileNumber = 0;
    currentFile.clear();
    QJsonObject event = named("run-started");
    event[QStringLiteral("todo")] = count;
    event[QStringLiteral("head")] = LinesBeforeScript;
    event[QStringLiteral("lines")] = LinesOfScript();
    event[QStringLiteral("scripts")] = QJsonArray::fromStringList(ScriptFiles());
    if (!Report(event)) {
        ConsoleLine(QStringLiteral("run started, %1 to do").arg(count));
    }
}

void ConsoleUi::ShowFile(const QString& path, int) {
    currentFile = path;
    ++fileNumber;
    QJsonObject event = ofCurrentFile("file", path);
    event[QStringLiteral("number")] = fileNumber;
    event[QStringLiteral("of")] = fileCount;
    if (!Report(event)) {
        ConsoleLine(QStringLiteral("file %1 of %2: ").arg(fileNumber).arg(fileCount) + path);
    }
}

void ConsoleUi::Alarm() {
    if (!Report(ofCurrentFile("alarm", currentFile))) {
        ConsoleLine(QStringLiteral("alarm: ") + currentFile);
    }
}

void ConsoleUi::ShowFileStatus(std::uint32_t entry, const QString& path, const QString& status) {
    QJsonObject event = ofFile("status", entry, path);
    event[QStringLiteral("status")] = status;
    event[QStringLiteral("changed")] = DrawingHasChanges();
    const bool isLocked = status == FileStatusWord(Locked);
    if (isLocked) {
        event[QStringLiteral("reason")] = Run().WhyLocked;
    }
    if (!Report(event)) {
        ConsoleLine(QStringLiteral("status ") + status + QStringLiteral(": ") + path);
        if (isLocked) {
            ConsoleLine(Run().WhyLocked);
        }
    }
}

void ConsoleUi::CloseStatus() {
    if (!Report(named("run-ended"))) {
        ConsoleLine(QStringLiteral("run ended"));
    }
}

void ConsoleUi::OpenStepThrough() {
    ConsoleLine(QStringLiteral("stepping through a script needs the host's window"));
}
