// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/ScriptText.h"

#include "text/CodePage.h"
#include "text/UserText.h"

ScriptText DecodeScript(QByteArrayView bytes) {
    ScriptText result;
    const UserText text = DecodeUserText(bytes);
    result.Note = text.Note();
    result.Fault = text.Fault();
    if (const qsizetype zero = text.Text.indexOf(QChar(u'\0')); result.Fault.isEmpty() && zero >= 0) {
        result.Fault = QStringLiteral("line %1 holds a NUL, so this is no script")
                           .arg(QStringView(text.Text).first(zero).count(u'\n') + 1);
    }
    if (!result.Fault.isEmpty()) {
        return result;
    }
    bool lossy = false;
    result.Script = EncodeText(text.Text, LocalePage, '?', &lossy);
    if (lossy) {
        result.Fault = QStringLiteral("it holds characters that %1, the encoding of the locale, cannot write")
                           .arg(QString::fromLatin1(LocaleEncoding()));
        result.Script.clear();
    }
    return result;
}

QString TakeDescription(QByteArray& script) {
    constexpr QByteArrayView Head = ";DESCRIPTION:";
    if (!script.startsWith(Head)) {
        return {};
    }
    const qsizetype end = script.indexOf('\n');
    const QByteArray line = script.mid(Head.size(), end < 0 ? -1 : end - Head.size());
    script.remove(0, end < 0 ? script.size() : end + 1);
    return DecodeText(line, LocalePage);
}
