// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Commands that modules offer to the mouse: each stands in a tool bar and in the menu of modules. Both are
// only there while a module has added something.
#include <functional>
#include <QObject>

class QMainWindow;
class QMenu;
class QToolBar;

namespace drafthost {

class ModuleTools : public QObject {
    Q_OBJECT
  public:
    /// The function gives a command to the host.
    ModuleTools(QMainWindow& frame, std::function<void(const QString&)> command);
    /// The text is what the button types, line end and all; the picture is a file, as a rule of the
    /// resources.
    void add(const QString& text, const QString& label, const QString& picture);
    void remove(const QString& text);

  private:
    void showWhatIsThere();

    QToolBar* bar_;
    QMenu* menu_;
    std::function<void(const QString&)> command_;
};

}  // namespace drafthost
