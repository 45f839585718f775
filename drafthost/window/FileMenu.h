// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The menu of files: new, open, the drawings of late, save, save as, close, quit. Each entry types the
// command that a user would type; only paths are chosen in a dialog.
#include "drafthost/editor/HostObserver.h"

#include <functional>
#include <QObject>

class QMainWindow;
class QMenu;

namespace drafthost {

class Host;

class FileMenu : public QObject, private HostObserver {
    Q_OBJECT
  public:
    /// The function gives a command to the host.
    FileMenu(Host& host, QMainWindow& frame, std::function<void(const QString&)> command);
    ~FileMenu() override;

  private:
    void documentOpened(Document& document) override;
    void saveComplete(Document& document, std::string_view path) override;
    void openPath(const QString& path);
    void save();
    void saveAs();
    void fillRecent();
    QStringList recent() const;
    void remember(const QString& path);
    bool canBeTyped(const QString& path);

    Host& host_;
    QMainWindow& frame_;
    std::function<void(const QString&)> command_;
    QMenu* recentMenu_ = nullptr;
};

}  // namespace drafthost
