// SPDX-License-Identifier: GPL-3.0-or-later
#include "log/Trace.h"

#include "engine/record/FileName.h"
#include "engine/report/Report.h"
#include "log/NarrowFile.h"
#include "text/CodePage.h"

#include <QFile>
#include <QFileInfo>

#include <ctime>

namespace {

/// Once from a start to the next: the trace is a comfort, and its loss must not drown what else is said.
bool isLossTold = false;

QString tracePath;
/// The same for the system, since each line opens the file.
std::string traceFile;

/// The last word of a clean end is "Done". The comparison is one of wide characters while the log is narrow,
/// so it holds for no log that this module wrote: the trail of earlier starts stays in the file.
bool endsInDone(QFile& file) {
    char16_t tail[4] = {};
    if (!file.seek(file.size() - 4) || file.read(reinterpret_cast<char*>(tail), 4) != 4) {
        return false;
    }
    return QStringView(tail, 4) == QStringView(u"Done");
}

}  // namespace

void Trace(const QString& text) {
    NarrowFile file;
    if (traceFile.empty() || (file.OpenForAppend(traceFile) && file.Write(text)) || isLossTold) {
        return;
    }
    isLossTold = true;
    ConsoleLine(QStringLiteral("%1: cannot be written: %2; lines of the trace are missing")
                    .arg(tracePath, qt_error_string()));
}

void Trace(const char* text) {
    Trace(QString::fromLatin1(text));
}

QString BeginTrace(const QString& folder, const QString& version) {
    isLossTold = false;
    tracePath = JoinPath(folder, u"TNLapp.log");
    traceFile = QFile::encodeName(tracePath).toStdString();
    QFile last(tracePath);
    if (QFileInfo(last).isFile() && last.open(QIODevice::ReadOnly)) {
        const bool done = endsInDone(last);
        last.close();
        if (done) {
            last.remove();
        }
    }
    char when[128] = {};
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::strftime(when, sizeof when, "%x %X", &local);
    Trace(QString(33, QLatin1Char('_')) + QStringLiteral("%1 (%2 built on %3 %4)\n")
                                              .arg(DecodeText(when, LocalePage), version,
                                                   QStringLiteral(__DATE__), QStringLiteral(__TIME__)));
    return tracePath;
}
