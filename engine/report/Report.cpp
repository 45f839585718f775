// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/report/Report.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <fcntl.h>
#include <sys/socket.h>
#include <cerrno>

namespace {

void (*console)(const QString&) = nullptr;

/// Looked up once: a script may set the variable to what it likes later on. What the host starts has no
/// business with it.
int findDescriptor() {
    bool isNumber = false;
    const int number = qEnvironmentVariableIntValue("TARNEL_REPORT_FD", &isNumber);
    qunsetenv("TARNEL_REPORT_FD");
    return isNumber && ::fcntl(number, F_SETFD, FD_CLOEXEC) == 0 ? number : -1;
}

}  // namespace

bool Report(const QJsonObject& event) {
    static int descriptor = findDescriptor();
    if (descriptor < 0) {
        return false;
    }
    const QByteArray line = QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n';
    for (qsizetype at = 0; at < line.size();) {
        const ssize_t sent =
            ::send(descriptor, line.constData() + at, static_cast<size_t>(line.size() - at), MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) {
            continue;
        }
        if (sent < 0) {
            // Whoever listened is gone.
            descriptor = -1;
            return false;
        }
        at += sent;
    }
    return true;
}

void SetConsole(void (*print)(const QString&)) {
    console = print;
}

void ConsoleLine(const QString& text) {
    if (console != nullptr) {
        console(QStringLiteral("\nTarnel: ") + text + QLatin1Char('\n'));
    }
    Report({{QStringLiteral("event"), QStringLiteral("message")}, {QStringLiteral("text"), text}});
}
