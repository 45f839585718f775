// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/MainFrame.h"

#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/ScriptReader.h"
#include "drafthost/window/ChangesBox.h"
#include "drafthost/window/CommandLineWidget.h"
#include "drafthost/window/DocumentTabs.h"
#include "drafthost/window/DrawingView.h"
#include "drafthost/window/FileMenu.h"
#include "drafthost/window/FramePlace.h"
#include "drafthost/window/ModuleTools.h"

#include <algorithm>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QLabel>
#include <QMenuBar>
#include <QSessionManager>
#include <QStatusBar>
#include <QVBoxLayout>

namespace drafthost {

MainFrame::MainFrame(Host& owner)
    : host_(owner),
      drawingView_(new DrawingView(this)),
      line_(new CommandLineWidget(owner, this)),
      tabs_(new DocumentTabs(this)),
      place_(new QLabel(this)) {
    auto* middle = new QWidget(this);
    auto* column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(tabs_);
    column->addWidget(drawingView_, 1);
    setCentralWidget(middle);
    auto* dock = new QDockWidget(tr("Command line"), this);
    dock->setObjectName(QStringLiteral("commandLineDock"));
    dock->setWidget(line_);
    dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    addDockWidget(Qt::BottomDockWidgetArea, dock);
    resizeDocks({dock}, {150}, Qt::Vertical);
    statusBar()->addPermanentWidget(place_);
    addMenus();
    restorePlace(*this, host_.registry());
    repaint_.setSingleShot(true);
    connect(&repaint_, &QTimer::timeout, this, &MainFrame::showCurrent);
    connect(line_, &CommandLineWidget::typed, this, [this](const QString& text) { type(text + u'\n'); });
    connect(line_, &CommandLineWidget::cancelled, this, [this] { host_.input().cancel(); });
    connect(drawingView_, &DrawingView::pointed, this, [this](const QPointF& at) {
        place_->setText(QStringLiteral("%1, %2").arg(at.x(), 0, 'f', 4).arg(at.y(), 0, 'f', 4));
    });
    connect(drawingView_, &DrawingView::resized, this, [this](const QSize& size) {
        host_.setScreenAspect(double(std::max(size.width(), 1)) / std::max(size.height(), 1));
    });
    connect(tabs_, &QTabBar::tabBarClicked, this, &MainFrame::activateTab);
    connect(tabs_, &QTabBar::tabCloseRequested, this, [this](int index) {
        if (activateTab(index)) {
            command(QStringLiteral("CLOSE\n"));
        }
    });
    connect(qGuiApp, &QGuiApplication::commitDataRequest, this, &MainFrame::endSession, Qt::DirectConnection);
    host_.setChangesBox([this](Document& document) { return askChanges(this, document); });
    host_.addObserver(this);
    line_->setFocus();
}

MainFrame::~MainFrame() {
    host_.removeObserver(this);
    host_.setChangesBox({});
    host_.setScreenAspect({});
}

void MainFrame::type(const QString& text) {
    host_.input().type(text.toStdString());
}

void MainFrame::command(const QString& text) {
    if (host_.script().isRunning()) {
        statusBar()->showMessage(tr("A script is running; Esc on the command line stops it."), 5000);
        return;
    }
    const Document* document = host_.current();
    if (!host_.input().isIdle() || (document != nullptr && !host_.current()->commandLine().atPrompt())) {
        host_.input().cancel();
    }
    type(text);
}

void MainFrame::addMenus() {
    const auto run = [this](const QString& text) { command(text); };
    files_ = std::make_unique<FileMenu>(host_, *this, run);
    QMenu* viewMenu = menuBar()->addMenu(tr("&View"));
    viewMenu->addAction(tr("Zoom &extents"), this, [this] { command(QStringLiteral("ZOOM\nE\n")); });
    viewMenu->addAction(tr("&Regenerate"), this, [this] { command(QStringLiteral("REGEN\n")); });
    tools_ = std::make_unique<ModuleTools>(*this, run);
}

bool MainFrame::activateTab(int index) {
    const auto open = host_.documents();
    if (index < 0 || std::size_t(index) >= open.size() || !host_.input().isIdle()) {
        // The click has moved the tabs already.
        repaint_.start(0);
        return false;
    }
    host_.activate(*open[std::size_t(index)]);
    if (host_.current() != open[std::size_t(index)]) {
        statusBar()->showMessage(tr("The current drawing has to stay while the script is stepped through."),
                                 5000);
        repaint_.start(0);
        return false;
    }
    return true;
}

// Typing goes to the command line from wherever the keyboard is.
void MainFrame::keyPressEvent(QKeyEvent* event) {
    if (!line_->takeKey(*event)) {
        QMainWindow::keyPressEvent(event);
    }
}

// Closing the window is QUIT, with what QUIT asks in a box.
void MainFrame::closeEvent(QCloseEvent* event) {
    if (host_.quitRequested()) {
        event->accept();
        return;
    }
    event->ignore();
    host_.input().cancel();
    type(QStringLiteral("QUIT\n"));
}

// A logout waits for changes that a person has made: it is called off, and QUIT asks. What a script or a run
// is doing to a drawing is given up with the session.
void MainFrame::endSession(QSessionManager& manager) {
    const auto open = host_.documents();
    const bool changed = std::any_of(open.begin(), open.end(),
                                     [](const Document* document) { return document->modified() != 0; });
    if (!changed || host_.script().isRunning() || !host_.input().isIdle() ||
        host_.variables().integer("SDI", 0) != 0 || !manager.allowsInteraction()) {
        return;
    }
    manager.release();
    manager.cancel();
    QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
}

void MainFrame::documentOpened(Document&) {
    repaint_.start(0);
}

void MainFrame::documentClosing(Document&) {
    drawingView_->show(nullptr);
    repaint_.start(0);
}

void MainFrame::documentActivated(Document*) {
    repaint_.start(0);
}

void MainFrame::commandEnded(std::string_view name) {
    if (name == "ZOOM") {
        drawingView_->followView();
    }
    repaint_.start(30);
}

void MainFrame::commandCancelled(std::string_view) {
    repaint_.start(30);
}

void MainFrame::commandFailed(std::string_view) {
    repaint_.start(30);
}

void MainFrame::lispEnded() {
    repaint_.start(30);
}

void MainFrame::saveComplete(Document&, std::string_view) {
    repaint_.start(30);
}

void MainFrame::quitWillStart() {
    keepPlace(*this, host_.registry());
}

void MainFrame::showCurrent() {
    Document* current = host_.current();
    tabs_->showDocuments(host_);
    setWindowTitle(current == nullptr
                       ? QStringLiteral("drafthost")
                       : QString::fromStdString(current->title()) + QStringLiteral("[*] - drafthost"));
    setWindowModified(current != nullptr && current->modified() != 0);
    drawingView_->show(current);
}

}  // namespace drafthost
