#pragma once
// The host's frame: the drawing in the middle, the command line docked below, tabs for several documents. It
// only shows; everything that happens to drawings happens on the command line.
#include "drafthost/editor/HostObserver.h"

#include <QMainWindow>
#include <QTimer>

class QTabBar;
class QLabel;

namespace drafthost {

class CommandLineWidget;
class DrawingView;
class Host;

class MainFrame : public QMainWindow, private HostObserver {
    Q_OBJECT
  public:
    explicit MainFrame(Host& host);
    ~MainFrame() override;
    DrawingView* view() const { return drawingView; }
    CommandLineWidget* commandLine() const { return line; }

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void documentOpened(Document&) override;
    void documentClosing(Document&) override;
    void documentActivated(Document*) override;
    void commandEnded(std::string_view) override;
    void lispEnded() override;
    void saveComplete(Document&, std::string_view) override;
    void showCurrent();
    void addMenus();
    void type(const QString& text);

    Host& host;
    DrawingView* drawingView;
    CommandLineWidget* line;
    QTabBar* tabs;
    QLabel* place;
    /// Several changes in a row are painted once.
    QTimer repaint;
};

}  // namespace drafthost
