// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/MapiSession.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace {

// xdg-email's exit statuses, from its manual page.
QString statusText(int status) {
    switch (status) {
        case 1:
            return QStringLiteral("it did not understand its arguments");
        case 2:
            return QStringLiteral("a file to attach does not exist");
        case 3:
            return QStringLiteral("no mail program was found");
        case 4:
            return QStringLiteral("the mail program failed");
        default:
            return QStringLiteral("it ended with status %1").arg(status);
    }
}

void addAll(QStringList& arguments, const QString& option, const std::vector<CMapiRecipient>& recipients) {
    for (const CMapiRecipient& recipient : recipients) {
        arguments << option << recipient.Address;
    }
}

}  // namespace

CMapiSession::CMapiSession() : program(QStandardPaths::findExecutable(QStringLiteral("xdg-email"))) {}

bool CMapiSession::Send(const CMapiMessage& message) {
    lastError.clear();
    if (!MapiInstalled()) {
        lastError = QStringLiteral("xdg-email is not installed");
        return false;
    }
    QStringList arguments{QStringLiteral("--utf8")};
    addAll(arguments, QStringLiteral("--cc"), message.CC);
    addAll(arguments, QStringLiteral("--bcc"), message.BCC);
    arguments << QStringLiteral("--subject") << message.Subject;
    if (!message.Body.isEmpty()) {
        arguments << QStringLiteral("--body") << message.Body;
    }
    for (const QString& path : message.Attachments) {
        arguments << QStringLiteral("--attach") << path;
    }
    for (const CMapiRecipient& recipient : message.To) {
        arguments << recipient.Address;
    }

    // Output goes to files: a pipe would break under a mail program that outlives this call and still writes.
    QTemporaryFile errors;
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(errors.open() ? errors.fileName() : QProcess::nullDevice());
    process.start(program, arguments);
    if (!process.waitForStarted(-1) || !process.waitForFinished(-1)) {
        lastError = QStringLiteral("%1: %2").arg(program, process.errorString());
        return false;
    }
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0) {
        return true;
    }
    const QString said = QString::fromLocal8Bit(errors.read(1000)).trimmed();
    lastError = process.exitStatus() == QProcess::NormalExit
                    ? QStringLiteral("%1: %2").arg(program, statusText(process.exitCode()))
                    : QStringLiteral("%1: it died").arg(program);
    if (!said.isEmpty()) {
        lastError += QStringLiteral(" (%1)").arg(said);
    }
    return false;
}
