// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// One armed watch: the system's notices of a folder, or of a whole tree of folders, and the thread that puts
// the tree under watch. It is shared by that thread and the watcher, so that either may be gone first: a
// thread that hangs in a dead mount keeps what it needs and nothing else.
#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <QByteArray>
#include <unordered_map>

class FolderWatch {
  public:
    /// At most that many folders are watched, if the system has no lower limit.
    FolderWatch(QByteArray folder, bool subtree, bool folderNames, std::size_t mostFolders);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /// Starts the thread, and gives it a moment to have the folder itself under watch.
    static void Start(const std::shared_ptr<FolderWatch>& watch);
    void Stop();

    /// Descriptors that become readable: by notices of the system, and by what the thread has to tell.
    int NoticesHandle() const { return notices; }
    int NewsHandle() const { return news; }
    /// Takes in all notices that are there. True when one of them counts as a change.
    bool ReadNotices();
    /// What the thread has to tell: a change that no notice came for, and that the system's limit is reached.
    struct News {
        bool Changed = false;
        bool LimitReached = false;
        QByteArray FirstUnwatched;
    };
    News ReadNews();

  private:
    struct Job {
        QByteArray Folder;
        /// The folder has come up in a tree that is watched: what lies in it has come with it.
        bool Appeared = false;
    };

    void work();
    void addTree(const Job& job);
    bool addFolder(const QByteArray& path, bool isRoot);
    void addJob(Job job);
    void forgetBelow(const QByteArray& path);
    void tell(bool changed, const QByteArray& firstUnwatched);
    bool isLate(int folderHandle) const;

    const QByteArray folder;
    const bool subtree;
    const bool folderNames;
    const std::size_t mostFolders;
    const std::int64_t armedAt;
    int notices = -1;
    int news = -1;
    std::atomic<bool> stopped = false;

    std::mutex guard;
    std::condition_variable wake;
    std::deque<Job> jobs;
    std::unordered_map<int, QByteArray> folders;
    bool rootReady = false;
    News told;
};
