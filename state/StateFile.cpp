// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/StateFile.h"

#include "engine/record/FileName.h"
#include "system/OwnFile.h"
#include "text/CodePage.h"
#include "text/MarkupDocument.h"
#include "text/MarkupFile.h"
#include "text/WholeFile.h"

#include "engine/record/TarnelData.h"

#include <fcntl.h>
#include <cerrno>
#include <cstdio>
#include <QDir>
#include <QFile>

QString UserDataDir() {
    QString base = QFile::decodeName(qgetenv("XDG_DATA_HOME"));
    // The rule for that variable: a path that is not absolute does not count.
    if (!base.startsWith(u'/')) {
        base = JoinPath(QDir::homePath(), u".local/share");
    }
    return JoinPath(base, u"Ovrix");
}

void ResolveStateFile() {
    CTarnelData& data = TarnelData();
    const QString folder = data.DataDir.isEmpty() ? UserDataDir() : data.DataDir;
    files::MakeFolder(QFile::encodeName(folder).toStdString());
    data.StateFile = JoinPath(folder, u"TarnelRunner.xml");
    const QString oldFile = JoinPath(folder, u"Tarnel.xml");
    // Not done when both are there: the new file stays in force and the old one lies untouched.
    if (QFile::exists(oldFile) && !QFile::exists(data.StateFile)) {
        std::rename(QFile::encodeName(oldFile).constData(), QFile::encodeName(data.StateFile).constData());
    }
    RemoveLeftovers(data.StateFile);
}

bool SyncState(QString* error) {
    const QString& path = TarnelData().StateFile;
    const int failure = SyncFile(path);
    if (failure != 0) {
        *error = path + u": cannot be brought to the disk: " + SystemMessage(failure);
    }
    return failure == 0;
}

QString CheckStateFile(const QString& path) {
    QByteArray bytes;
    const int error = ReadWholeFile(path, bytes);
    if (error == ENOENT) {
        return {};
    }
    const QString fault = error != 0 ? u"cannot be read: " + SystemMessage(error) : StateTextFault(bytes, 1);
    return fault.isEmpty() ? fault : path + u": " + fault;
}

QString StateTextFault(const QByteArray& bytes, int full) {
    if (bytes.trimmed().isEmpty()) {
        return QStringLiteral("the file is empty");
    }
    QString report;
    std::uint32_t flags = 0;
    const QString text = DecodeMarkup(bytes, report, flags);
    MarkupDocument document;
    const bool wellFormed = document.SetDocumentText(text);
    const QString fault = document.Result();
    if (!document.FindElement(u"TarnelRunner")) {
        return QStringLiteral("not a state file: it has no element TarnelRunner");
    }
    if (!wellFormed) {
        // The report's first word, as a reader of the file would want it: the fault and its place.
        MarkupDocument words;
        words.SetDocumentText(u"<r>" + fault + u"</r>");
        words.FindChildElement();
        QString cause = words.GetChildName().toString();
        const QString tag = words.GetChildAttribute(u"tagname");
        const QString offset = words.GetChildAttribute(u"offset");
        if (!tag.isEmpty()) {
            cause += u" \"" + tag + u'"';
        }
        if (!offset.isEmpty()) {
            const qsizetype line = QStringView(text).first(offset.toLongLong()).count(u'\n') + 1;
            cause += u" in line " + QString::number(line);
        }
        return u"not a whole state file: " + cause;
    }
    if (full != 0 && (!document.FindChildElement(u"Options") || !document.FindChildElement(u"Files"))) {
        return QStringLiteral("not a whole state file: it has no elements Options and Files");
    }
    return {};
}
