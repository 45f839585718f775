// SPDX-License-Identifier: GPL-3.0-or-later
#include "script/ScriptFile.h"

#include "engine/record/FileName.h"
#include "text/CodePage.h"
#include "text/ScriptText.h"
#include "text/UserText.h"

#include <QFile>

namespace {

const QByteArray Mark = QByteArrayLiteral(";DESCRIPTION:");
/// A first line is read up to here.
constexpr qint64 LongestLine = 4096;

/// A mark is no part of a script, and the zeros of wide text could be neither read nor typed.
QByteArray narrowText(const QByteArray& bytes) {
    if (bytes.startsWith("\xEF\xBB\xBF") && IsUtf8Page(LocalePage)) {
        return bytes.sliced(3);
    }
    if (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF")) {
        const ScriptText text = DecodeScript(bytes);
        return text.Fault.isEmpty() ? text.Script : bytes;
    }
    return bytes;
}

}  // namespace

ScriptFileText TakeScriptFile(const QByteArray& file) {
    const QByteArray bytes = narrowText(file);
    const qsizetype end = bytes.startsWith(Mark) ? bytes.indexOf('\n') : -1;
    if (end < 0) {
        return {{}, bytes};
    }
    QByteArray description = bytes.sliced(Mark.size(), end - Mark.size());
    if (description.endsWith('\r')) {
        description.chop(1);
    }
    return {DecodeUserText(description).Text, bytes.sliced(end + 1)};
}

QByteArray MakeScriptFile(const ScriptFileText& text) {
    return Mark + EncodeText(text.Description, LocalePage) + "\r\n" + text.Script;
}

QString ScriptFileTitle(const QString& path) {
    QString title = CFileName(path).GetName();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return title;
    }
    QByteArray line = narrowText(file.readLine(LongestLine));
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
    return DecodeUserText(line).Text;
}
