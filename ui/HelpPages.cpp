// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/HelpPages.h"

#include "engine/record/TarnelData.h"
#include "engine/RunState.h"
#include "system/OwnFile.h"
#include "text/WholeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <array>
#include <QDesktopServices>
#include <QFile>
#include <QUrl>

namespace {

/// To the millisecond, as some file systems keep them.
bool sameTime(const timespec& a, const timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec / 1000000 == b.tv_nsec / 1000000;
}

}  // namespace

void ShowHelp() {
    const QString source = TarnelData().ModuleDir + QStringLiteral("tarnel-help.html");
    const QString folder = DataFile(QStringLiteral("help"));
    const QString target = folder + QStringLiteral("/tarnel-help.html");
    struct stat from {};
    if (::stat(QFile::encodeName(source).constData(), &from) != 0 ||
        files::MakeFolder(QFile::encodeName(folder).toStdString()) != 0) {
        return;
    }
    const QByteArray name = QFile::encodeName(target);
    struct stat to {};
    QByteArray text;
    if ((::stat(name.constData(), &to) != 0 || !sameTime(to.st_mtim, from.st_mtim)) &&
        ReadWholeFile(source, text) == 0 && WriteWholeFile(target, text) == 0) {
        const std::array<timespec, 2> times = {from.st_atim, from.st_mtim};
        ::utimensat(AT_FDCWD, name.constData(), times.data(), AT_SYMLINK_NOFOLLOW);
    }
    QDesktopServices::openUrl(QUrl::fromLocalFile(target));
}
