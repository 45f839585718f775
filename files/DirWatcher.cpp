// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/DirWatcher.h"

#include "engine/record/FileName.h"
#include "files/FolderWatch.h"
#include "log/Trace.h"

#include <QFile>
#include <QSocketNotifier>

namespace {
/// Time in which changes are gathered: a copy of many files gives a few signals a second.
constexpr int GatherMs = 250;
}  // namespace

DirWatcher::DirWatcher(QObject* parent) : QObject(parent) {
    gathering.setSingleShot(true);
    gathering.setInterval(GatherMs);
    connect(&gathering, &QTimer::timeout, this, &DirWatcher::Changed);
}

DirWatcher::~DirWatcher() {
    if (watch) {
        watch->Stop();
    }
}

void DirWatcher::SetDirectory(const QString& path) {
    const QString trimmed = TrimSeparators(path);
    // The root folder is nothing but a separator.
    directory = trimmed.isEmpty() ? path.left(1) : trimmed;
    rearm();
}

void DirWatcher::SetWatchSubtree(bool on) {
    watchSubtree = on;
    rearm();
}

void DirWatcher::SetMostFolders(std::size_t count) {
    mostFolders = count;
    rearm();
}

void DirWatcher::SetWatchDirs(bool on) {
    watchDirs = on;
    rearm();
}

void DirWatcher::SetPaused(bool on) {
    paused = on;
    rearm();
}

void DirWatcher::rearm() {
    gathering.stop();
    notices.reset();
    news.reset();
    if (watch) {
        watch->Stop();
        watch.reset();
    }
    if (paused || directory.isEmpty()) {
        return;
    }
    watch = std::make_shared<FolderWatch>(QFile::encodeName(directory), watchSubtree, watchDirs, mostFolders);
    if (watch->NoticesHandle() < 0 || watch->NewsHandle() < 0) {
        watch.reset();
        if (!std::exchange(limitTold, true)) {
            Trace(QStringLiteral("Not watched, too many open watches: %1\n").arg(directory));
        }
        return;
    }
    notices = std::make_unique<QSocketNotifier>(watch->NoticesHandle(), QSocketNotifier::Read);
    connect(notices.get(), &QSocketNotifier::activated, this, &DirWatcher::onNotices);
    news = std::make_unique<QSocketNotifier>(watch->NewsHandle(), QSocketNotifier::Read);
    connect(news.get(), &QSocketNotifier::activated, this, &DirWatcher::onWatchNews);
    FolderWatch::Start(watch);
}

void DirWatcher::onNotices() {
    if (watch->ReadNotices()) {
        noteChange();
    }
}

void DirWatcher::onWatchNews() {
    const FolderWatch::News told = watch->ReadNews();
    if (told.LimitReached && !std::exchange(limitTold, true)) {
        Trace(
            QStringLiteral("The system's limit of watched folders is reached; not watched from here on: %1\n")
                .arg(QFile::decodeName(told.FirstUnwatched)));
    }
    if (told.Changed) {
        noteChange();
    }
}

// Not started anew by a change in between, so that a stream of changes does not put the signal off for ever.
void DirWatcher::noteChange() {
    if (!gathering.isActive()) {
        gathering.start();
    }
}
