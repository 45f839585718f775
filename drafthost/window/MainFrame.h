// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The host's frame: the drawing in the middle, the command line docked below, tabs for several documents,
// menus and the buttons of modules. It only shows; everything that happens to drawings happens on the command
// line.
#include "drafthost/editor/HostObserver.h"

#include <memory>
#include <QMainWindow>
#include <QTimer>

class QLabel;
class QSessionManager;

namespace drafthost {

class CommandLineWidget;
class DocumentTabs;
class DrawingView;
class FileMenu;
class Host;
class ModuleTools;

class MainFrame : public QMainWindow, private HostObserver {
    Q_OBJECT
  public:
    explicit MainFrame(Host& host);
    ~MainFrame() override;
    DrawingView* view() const { return drawingView_; }
    CommandLineWidget* commandLine() const { return line_; }
    ModuleTools& moduleTools() const { return *tools_; }

    /// What a menu, a button or a tab types: what stands half answered on the command line is cancelled
    /// before. While a script runs it is refused, since the script would take it for its own.
    void command(const QString& text);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void documentOpened(Document&) override;
    void documentClosing(Document&) override;
    void documentActivated(Document*) override;
    void commandEnded(std::string_view) override;
    void commandCancelled(std::string_view) override;
    void commandFailed(std::string_view) override;
    void lispEnded() override;
    void saveComplete(Document&, std::string_view) override;
    void quitWillStart() override;
    void showCurrent();
    void addMenus();
    bool activateTab(int index);
    void endSession(QSessionManager& manager);
    void type(const QString& text);

    Host& host_;
    DrawingView* drawingView_;
    CommandLineWidget* line_;
    DocumentTabs* tabs_;
    QLabel* place_;
    std::unique_ptr<FileMenu> files_;
    std::unique_ptr<ModuleTools> tools_;
    /// Several changes in a row are painted once.
    QTimer repaint_;
};

}  // namespace drafthost
