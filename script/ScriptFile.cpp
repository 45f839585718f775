// SPDX-License-Identifier: GPL-3.0-or-later
#include "script/ScriptFile.h"

#include "engine/record/FileName.h"

#include <QFile>

namespace {

const QByteArray Mark = QByteArrayLiteral(";DESCRIPTION:");
/// A first line is read up to here.
constexpr qint64 LongestLine = 4096;

}  // namespace

ScriptFileText TakeScriptFile(const QByteArray& bytes) {
    const qsizetype end = bytes.startsWith(Mark) ? bytes.indexOf('\n') : -1;
    if (end < 0) {
        return {{}, bytes};
    }
    QByteArray description = bytes.sliced(Mark.size(), end - Mark.size());
    if (description.endsWith('\r')) {
        description.chop(1);
    }
    return {QString::fromLocal8Bit(description), bytes.sliced(end + 1)};
}

QByteArray MakeScriptFile(const ScriptFileText& text) {
    return Mark + text.Description.toLocal8Bit() + "\r\n" + text.Script;
}

QString ScriptFileTitle(const QString& path) {
    QString title = CFileName(path).GetName();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return title;
    }
    QByteArray line = file.readLine(LongestLine);
    if (!line.startsWith(Mark)) {
        return title;
    }
    line.remove(0, Mark.size());
    while (line.endsWith('\n') || line.endsWith('\r')) {
        line.chop(1);
    }
    while (line.startsWith(' ')) {
        line.remove(0, 1);
    }
    return QString::fromLocal8Bit(line);
}
