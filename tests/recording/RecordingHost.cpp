// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/recording/RecordingHost.h"

#include <QFile>

#include <cstring>

RecordingHost& RecordingHost::Get() {
    static RecordingHost host = [] {
        RecordingHost fresh;
        fresh.Reset();
        return fresh;
    }();
    return host;
}

void RecordingHost::Reset() {
    *this = RecordingHost();
    Variables = {{"SDI", 0},
                 {"CMDDIA", 1},
                 {"FILEDIA", 1},
                 {"CMDECHO", 1},
                 {"DBMOD", 0},
                 {"DWGNAME", "Drawing1.dwg"},
                 {"CMDNAMES", ""},
                 {"CMDACTIVE", 0},
                 {"LOGFILENAME", ""},
                 {"ACADVER", "18.2s"},
                 {"CPROFILE", "Standard"},
                 {"DWGPREFIX", "/"}};
}

QStringList RecordingHost::CallsOf(const QString& prefix) const {
    QStringList found;
    for (const QString& call : Calls) {
        if (call.startsWith(prefix)) {
            found << call;
        }
    }
    return found;
}

int RecordingHost::Command(const QStringList& words) {
    Note(QStringLiteral("command ") + words.join(QLatin1Char('|')));
    const int result = OnCommand ? OnCommand(words) : RTNORM;
    if (result == RTNORM && words.size() == 2 && words[0] == QLatin1String("._script")) {
        QString path = words[1];
        path.remove(QLatin1Char('"'));
        QFile file(path);
        script.clear();
        if (file.open(QIODevice::ReadOnly)) {
            script =
                QString::fromLocal8Bit(file.readAll()).remove(QLatin1Char('\r')).split(QLatin1Char('\n'));
        }
    }
    return result;
}

void RecordingHost::Send(const QString& text) {
    QString rest = text;
    // Cancels work at once, and the script that ran is broken off.
    if (rest.contains(QChar(3))) {
        script.clear();
    }
    rest.remove(QChar(3));
    Queued.push_back(rest);
}

bool RecordingHost::nextLine(QString& line) {
    if (!script.isEmpty()) {
        line = script.takeFirst();
        return true;
    }
    if (Queued.empty()) {
        return false;
    }
    line = Queued.front();
    Queued.pop_front();
    return true;
}

void RecordingHost::RunInput(int lines) {
    QString line;
    while (lines-- > 0 && nextLine(line)) {
        line = line.trimmed();
        if (line.isEmpty()) {
            continue;
        }
        const QString name = line.mid(1, line.size() - 2).toUpper();
        if (line.startsWith(QLatin1Char('(')) && Functions.contains(name)) {
            callFromScript(name);
        } else {
            Note(QStringLiteral("line ") + line);
        }
    }
}

void RecordingHost::callFromScript(const QString& name) {
    try {
        CallLisp(name);
    } catch (const std::exception& error) {
        // An error of LISP ends the script.
        Note(QStringLiteral("exception ") + QString::fromUtf8(error.what()));
        script.clear();
    }
}

QString RecordingHost::CallLisp(const QString& name, const std::vector<LispValue>& arguments) {
    const auto found = Functions.constFind(name.toUpper());
    if (found == Functions.constEnd()) {
        return QStringLiteral("no function");
    }
    Note(QStringLiteral("lisp ") + name.toUpper());
    Arguments = arguments;
    Result = QStringLiteral("none");
    Handlers.value (*found)();
    Arguments.clear();
    return Result;
}

void CopyOut(const QString& text, ACHAR* out, int size) {
    const QString fitting = text.left(size - 1);
    std::memcpy(out, fitting.utf16(), (static_cast<std::size_t>(fitting.size()) + 1) * sizeof(ACHAR));
}
