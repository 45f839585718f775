#include "ui/HelpPages.h"

#include "engine/RunState.h"
#include "engine/TarnelData.h"

#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

void ShowHelp() {
    const QString source = TarnelData().ModuleDir + QStringLiteral("tarnel-help.html");
    const QString folder = DataFile(QStringLiteral("help"));
    QDir().mkpath(folder);
    const QString target = folder + QStringLiteral("/tarnel-help.html");
    const QFileInfo from(source);
    if (!from.exists())
        return;
    const QFileInfo to(target);
    if (!to.exists() || to.lastModified() != from.lastModified()) {
        QFile::remove(target);
        QFile::copy(source, target);
        QFile copy(target);
        if (copy.open(QIODevice::ReadWrite))
            copy.setFileTime(from.lastModified(), QFileDevice::FileModificationTime);
    }
    QDesktopServices::openUrl(QUrl::fromLocalFile(target));
}
