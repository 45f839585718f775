#include "drafthost/window/MainFrame.h"

#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/window/CommandLineWidget.h"
#include "drafthost/window/DrawingView.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QTabBar>
#include <QVBoxLayout>

namespace drafthost {

MainFrame::MainFrame(Host& owner)
    : host(owner),
      drawingView(new DrawingView(this)),
      line(new CommandLineWidget(owner, this)),
      tabs(new QTabBar(this)),
      place(new QLabel(this)) {
    auto* middle = new QWidget(this);
    auto* column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(tabs);
    column->addWidget(drawingView, 1);
    setCentralWidget(middle);
    tabs->setExpanding(false);
    tabs->setAccessibleName(tr("Open drawings"));
    auto* dock = new QDockWidget(tr("Command line"), this);
    dock->setObjectName(QStringLiteral("commandLineDock"));
    dock->setWidget(line);
    dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    addDockWidget(Qt::BottomDockWidgetArea, dock);
    resizeDocks({dock}, {150}, Qt::Vertical);
    statusBar()->addPermanentWidget(place);
    addMenus();
    resize(1000, 720);
    repaint.setSingleShot(true);
    connect(&repaint, &QTimer::timeout, this, &MainFrame::showCurrent);
    connect(line, &CommandLineWidget::typed, this, [this](const QString& text) { type(text + u'\n'); });
    connect(line, &CommandLineWidget::cancelled, this, [this] { host.input().cancel(); });
    connect(drawingView, &DrawingView::pointed, this, [this](const QPointF& at) {
        place->setText(QStringLiteral("%1, %2").arg(at.x(), 0, 'f', 4).arg(at.y(), 0, 'f', 4));
    });
    connect(tabs, &QTabBar::tabBarClicked, this, [this](int index) {
        const auto open = host.documents();
        if (index >= 0 && std::size_t(index) < open.size() && host.input().isIdle())
            host.activate(*open[std::size_t(index)]);
    });
    host.addObserver(this);
    line->setFocus();
}

MainFrame::~MainFrame() {
    host.removeObserver(this);
}

void MainFrame::type(const QString& text) {
    host.input().type(text.toStdString());
}

void MainFrame::addMenus() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&New"), QKeySequence::New, this, [this] { type(QStringLiteral("NEW\n\n")); });
    file->addAction(tr("&Open..."), QKeySequence::Open, this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, tr("Open a drawing"), QString(),
                                                          tr("Drawings (*.dxf *.DXF *.dwg);;All files (*)"));
        if (!path.isEmpty())
            type(QStringLiteral("OPEN\n\"%1\"\n").arg(path));
    });
    file->addAction(tr("&Save"), QKeySequence::Save, this, [this] { type(QStringLiteral("QSAVE\n")); });
    file->addSeparator();
    file->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);
    QMenu* viewMenu = menuBar()->addMenu(tr("&View"));
    viewMenu->addAction(tr("Zoom &extents"), this, [this] { type(QStringLiteral("ZOOM\nE\n")); });
    viewMenu->addAction(tr("&Regenerate"), this, [this] { type(QStringLiteral("REGEN\n")); });
}

// Closing the window is QUIT, with the questions that QUIT asks.
void MainFrame::closeEvent(QCloseEvent* event) {
    if (host.quitRequested()) {
        event->accept();
        return;
    }
    event->ignore();
    host.input().cancel();
    type(QStringLiteral("QUIT\n"));
}

void MainFrame::documentOpened(Document&) {
    repaint.start(0);
}

void MainFrame::documentClosing(Document&) {
    drawingView->show(nullptr);
    repaint.start(0);
}

void MainFrame::documentActivated(Document*) {
    repaint.start(0);
}

void MainFrame::commandEnded(std::string_view) {
    repaint.start(30);
}

void MainFrame::lispEnded() {
    repaint.start(30);
}

void MainFrame::saveComplete(Document&, std::string_view) {
    repaint.start(30);
}

void MainFrame::showCurrent() {
    Document* current = host.current();
    const auto open = host.documents();
    const QSignalBlocker quiet(tabs);
    while (tabs->count() > int(open.size()))
        tabs->removeTab(tabs->count() - 1);
    while (tabs->count() < int(open.size()))
        tabs->addTab(QString());
    for (int i = 0; i < int(open.size()); ++i) {
        const Document& document = *open[std::size_t(i)];
        tabs->setTabText(i, QString::fromStdString(document.title()));
        tabs->setTabToolTip(i, QString::fromStdString(document.path()));
        if (&document == current)
            tabs->setCurrentIndex(i);
    }
    setWindowTitle(current == nullptr
                       ? QStringLiteral("drafthost")
                       : QString::fromStdString(current->title()) + QStringLiteral(" - drafthost"));
    drawingView->show(current);
}

}  // namespace drafthost
