// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Tells that the names in a folder have changed, by the system's own notices. The folder may lie on a mount
// that does not answer, so everything that looks a path up happens on a thread of the watch's own, which
// nobody waits for; the signal comes on the thread of the watcher. Many changes in a moment are told once.
#include <limits>
#include <memory>
#include <QObject>
#include <QString>
#include <QTimer>

class QSocketNotifier;
class FolderWatch;

class DirWatcher : public QObject {
    Q_OBJECT
  public:
    explicit DirWatcher(QObject* parent = nullptr);
    ~DirWatcher() override;

    /// The folder, without separators at its end; empty for none. Each setter takes effect at once, with all
    /// four values as they then stand.
    const QString& Directory() const { return directory; }
    void SetDirectory(const QString& path);
    /// Whether all folders below are watched too, as far as the system's limit goes.
    bool WatchSubtree() const { return watchSubtree; }
    void SetWatchSubtree(bool on);
    /// How many folders at most; the system may allow fewer. What lies beyond is told once in the trace.
    void SetMostFolders(std::size_t count);
    /// Whether the names of folders count, beside those of files.
    bool WatchDirs() const { return watchDirs; }
    void SetWatchDirs(bool on);
    /// While paused nothing is watched and nothing told.
    bool Paused() const { return paused; }
    void SetPaused(bool on);

  Q_SIGNALS:
    void Changed();

  private:
    void rearm();
    void onNotices();
    void onWatchNews();
    void noteChange();

    QString directory;
    bool watchSubtree = false;
    bool watchDirs = false;
    bool paused = false;
    bool limitTold = false;
    std::size_t mostFolders = std::numeric_limits<std::size_t>::max();
    std::shared_ptr<FolderWatch> watch;
    std::unique_ptr<QSocketNotifier> notices;
    std::unique_ptr<QSocketNotifier> news;
    QTimer gathering;
};
