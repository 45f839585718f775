// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ScriptCheck.h"

#include "app/Commands.h"
#include "app/Files.h"
#include "app/HostProcess.h"
#include "app/NameText.h"
#include "text/ScriptLint.h"
#include "text/ScriptText.h"

#include <cstdio>
#include <QFile>
#include <QProcess>
#include <QSet>

namespace {

constexpr int PatienceMs = 10000;

/// Names and short names of the host's commands; empty when it does not tell.
QSet<QByteArray> commandsOf(const std::string& host) {
    QProcess process;
    process.start(QFile::decodeName(host.c_str()), {QStringLiteral("--commands")}, QIODevice::ReadOnly);
    if (!process.waitForFinished(PatienceMs)) {
        process.kill();
        process.waitForFinished(PatienceMs);
        return {};
    }
    QSet<QByteArray> names;
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0) {
        for (const QByteArray& line : process.readAllStandardOutput().split('\n')) {
            names.insert(line.split(' ').first());
        }
        names.remove(QByteArray());
    }
    return names;
}

class KnownCommands {
  public:
    explicit KnownCommands(std::string host) : host(std::move(host)) {}

    bool operator()(const QString& typed) {
        if (!asked) {
            asked = true;
            names = commandsOf(host);
        }
        const QByteArray name = typed.toLatin1();
        // The module's own; and a command has one form here, with and without the hyphen.
        const QByteArray other = name.startsWith('-') ? name.mid(1) : '-' + name;
        return names.isEmpty() || names.contains(name) || names.contains(other) || name == "TARNEL" ||
               name.startsWith("TNL_");
    }

  private:
    std::string host;
    bool asked = false;
    QSet<QByteArray> names;
};

}  // namespace

std::vector<std::string> CheckScriptLines(const std::string& name, const QByteArray& script,
                                          const std::string& host) {
    KnownCommands known(host);
    std::vector<std::string> lines;
    for (const ScriptRemark& remark :
         CheckScript(script, [&](const QString& typed) { return known(typed); })) {
        lines.push_back(name + ':' + std::to_string(remark.Line) + ": " + remark.Text.toStdString());
    }
    return lines;
}

ExitStatus CheckScripts(const std::vector<std::string>& files) {
    HostFiles programs;
    std::string error;
    if (!programs.Find(&error)) {
        Complain(error);
        return BrokenOff;
    }
    ExitStatus status = AllDone;
    for (const std::string& file : files) {
        const std::string name = IsStandardInput(file) ? "standard input" : file;
        QByteArray bytes;
        if (!ReadInput(file, &bytes, &error)) {
            Complain(error);
            status = BrokenOff;
            continue;
        }
        const ScriptText script = DecodeScript(bytes);
        if (!script.Fault.isEmpty()) {
            Complain(name + ": " + script.Fault.toStdString());
            status = BrokenOff;
            continue;
        }
        for (const std::string& line : CheckScriptLines(name, script.Script, programs.Host)) {
            PrintName(line);
            status = status == AllDone ? SomeNotDone : status;
        }
    }
    return status;
}
