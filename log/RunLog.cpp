#include "log/RunLog.h"

#include "engine/HostText.h"
#include "engine/RunState.h"
#include "log/NarrowFile.h"
#include "log/Trace.h"
#include "log/ZipArchive.h"
#include "state/CodePage.h"

#include <QFile>
#include <QStringList>

#include <ctime>

namespace {

NarrowFile RunLogStream;
QStringList HostLogList;

QString localTime() {
    char text[128] = {};
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::strftime(text, sizeof text, "%x %X", &local);
    return DecodeText(text, LocalePage);
}

/// One host log into the archive. A log that is not there is passed over.
void packLog(CZipArchive& archive, const QString& path) {
    QFile log(path);
    if (!log.open(QIODevice::ReadOnly))
        return;
    const QByteArray content = log.readAll();
    CFileHeader header;
    header.Name = HostLogId(path).toStdString();
    archive.OpenNewFile(header, 9, QFile::encodeName(path).constData());
    archive.WriteNewFile(content.constData(), static_cast<std::size_t>(content.size()));
    archive.CloseNewFile();
}

/// The logs are deleted only once they are safe in the archive.
void packLogs() {
    // A host without a log of the drawing gives no name, and a refused open gives the name before once more.
    HostLogList.removeAll(QString());
    HostLogList.removeDuplicates();
    if (HostLogList.isEmpty())
        return;
    const QString file = DataFile(QStringLiteral("TNLLog.zip"));
    try {
        CZipArchive archive;
        if (!archive.Open(QFile::encodeName(file).toStdString(), CZipArchive::Create)) {
            HostPrint(QStringLiteral("\nTarnel: %1: %2; the host's logs stay where they are.\n")
                          .arg(file, qt_error_string()));
            return;
        }
        for (const QString& path : std::as_const(HostLogList))
            packLog(archive, path);
        archive.Close();
    } catch (const CZipException& error) {
        HostPrint(QStringLiteral("\nTarnel: %1; the host's logs stay where they are.\n")
                      .arg(QString::fromUtf8(error.what())));
        return;
    }
    for (const QString& path : std::as_const(HostLogList))
        QFile::remove(path);
}

}  // namespace

QString HostLogId(const QString& hostLogPath) {
    QString id = hostLogPath;
    id.replace(QLatin1Char(':'), QLatin1Char('-'));
    id.replace(QLatin1Char('\\'), QLatin1Char('_'));
    id.replace(QLatin1Char('/'), QLatin1Char('_'));
    return id;
}

void OpenRunLog() {
    Trace("Open and write to tnl log.html\n");
    if (!RunLogStream.IsOpen())
        RunLogStream.OpenNew(QFile::encodeName(DataFile(QStringLiteral("tnl log.html"))).toStdString());
    if (RunLogStream.IsOpen())
        RunLogStream.Write(QStringLiteral("<html><body>"));
    RunLogLine(QStringLiteral("<font color=blue>Batch started</font>"));
}

void RunLogLine(const QString& text) {
    if (RunLogStream.IsOpen())
        RunLogStream.Write(QStringLiteral("<span>%1: %2</span><br />\n").arg(localTime(), text));
}

void WatchNewLogFile(const QString& hostLogPath) {
    HostLogList.append(hostLogPath);
    RunLogLine(QStringLiteral("Processing file: <span id=\"%1\">%2</span>")
                   .arg(HostLogId(hostLogPath), Run().CurrentFileText));
}

bool CloseRunLog() {
    if (!RunLogStream.IsOpen())
        return false;
    packLogs();
    HostLogList.clear();
    RunLogLine(QStringLiteral("<font color=blue>Batch completed</font>"));
    RunLogStream.Write(QStringLiteral("</body></html>"));
    RunLogStream.Close();
    return true;
}

void ResetRunLog() {
    RunLogStream.Close();
    HostLogList.clear();
}
