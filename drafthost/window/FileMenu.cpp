// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/FileMenu.h"

#include "drafthost/drawing/Drawing.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/RegistryFile.h"
#include "drafthost/editor/ScriptReader.h"
#include "drafthost/window/ChangesBox.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenuBar>
#include <QStatusBar>

namespace drafthost {

namespace {

constexpr const char* UserRoot = "HKEY_CURRENT_USER";
constexpr int RecentCount = 9;

std::string recentKey(int number) {
    return RegistryFile::productKey() + "\\Recent File List\\File" + std::to_string(number);
}

}  // namespace

FileMenu::FileMenu(Host& owner, QMainWindow& window, std::function<void(const QString&)> type)
    : host_(owner), frame_(window), command_(std::move(type)) {
    QMenu* menu = frame_.menuBar()->addMenu(tr("&File"));
    menu->addAction(tr("&New"), QKeySequence::New, this, [this] { command_(QStringLiteral("NEW\n\n")); });
    menu->addAction(tr("&Open..."), QKeySequence::Open, this, [this] {
        const QString path = QFileDialog::getOpenFileName(&frame_, tr("Open a drawing"), QString(),
                                                          tr("Drawings (*.dxf *.DXF *.dwg);;All files (*)"));
        if (!path.isEmpty()) {
            openPath(path);
        }
    });
    recentMenu_ = menu->addMenu(tr("Open &recent"));
    recentMenu_->setObjectName(QStringLiteral("recent"));
    connect(menu, &QMenu::aboutToShow, this, &FileMenu::fillRecent);
    menu->addAction(tr("&Close"), QKeySequence::Close, this, [this] { command_(QStringLiteral("CLOSE\n")); });
    menu->addSeparator();
    menu->addAction(tr("&Save"), QKeySequence::Save, this, [this] { save(); });
    menu->addAction(tr("Save &as..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), this,
                    [this] { saveAs(); });
    menu->addSeparator();
    menu->addAction(tr("&Quit"), QKeySequence::Quit, &frame_, &QWidget::close);
    host_.addObserver(this);
}

FileMenu::~FileMenu() {
    host_.removeObserver(this);
}

/// A path stands between quotes on the command line, which knows no way to write a quote itself.
bool FileMenu::canBeTyped(const QString& path) {
    const bool can = !path.contains(u'"') && !path.contains(u'\n');
    if (!can) {
        frame_.statusBar()->showMessage(tr("%1: the command line takes no such name.").arg(path), 10000);
    }
    return can;
}

void FileMenu::openPath(const QString& path) {
    for (Document* document : host_.documents()) {
        if (document->path() == path.toStdString() && host_.input().isIdle()) {
            return host_.activate(*document);
        }
    }
    if (canBeTyped(path)) {
        command_(QStringLiteral("OPEN\n\"%1\"\n").arg(path));
    }
}

void FileMenu::save() {
    const Document* document = host_.current();
    if (document == nullptr || (document->hasName() && !document->isReadOnly())) {
        command_(QStringLiteral("QSAVE\n"));
    } else {
        saveAs();
    }
}

void FileMenu::saveAs() {
    const Document* document = host_.current();
    const QString path = document == nullptr ? QString() : askSavePath(&frame_, *document);
    // The dialog runs the event loop, in which the drawing may have gone.
    if (path.isEmpty() || host_.current() != document || !canBeTyped(path)) {
        return;
    }
    // The dialog has asked already whether an old file may be replaced.
    const bool asks = QFileInfo::exists(path) && host_.variables().integer("EXPERT", 0) < 2;
    command_(QStringLiteral("SAVEAS\nDXF\n%1\n\"%2\"\n%3")
                 .arg(host_.current()->drawing().isBinary() ? QStringLiteral("Binary") : QString(), path,
                      asks ? QStringLiteral("Yes\n") : QString()));
}

QStringList FileMenu::recent() const {
    QStringList paths;
    for (int i = 1; i <= RecentCount; ++i) {
        const auto path = host_.registry().readString(UserRoot, recentKey(i));
        if (path && !path->empty()) {
            paths << QString::fromStdString(*path);
        }
    }
    return paths;
}

void FileMenu::remember(const QString& path) {
    // A run opens thousands; only what a person opens is of interest to him later.
    if (host_.script().isRunning()) {
        return;
    }
    QStringList paths = recent();
    if (!paths.isEmpty() && paths.first() == path) {
        return;
    }
    paths.removeAll(path);
    paths.prepend(path);
    for (int i = 1; i <= std::min<int>(RecentCount, int(paths.size())); ++i) {
        host_.registry().write(UserRoot, recentKey(i), paths[i - 1].toStdString());
    }
}

void FileMenu::fillRecent() {
    recentMenu_->clear();
    int number = 0;
    for (const QString& path : recent()) {
        const QFileInfo file(path);
        QString text = file.fileName() + QStringLiteral("  -  ") + QDir::toNativeSeparators(file.path());
        text.replace(u'&', QLatin1String("&&"));
        QAction* action = recentMenu_->addAction(QStringLiteral("&%1 %2").arg(++number).arg(text), this,
                                                 [this, path] { openPath(path); });
        action->setEnabled(file.exists());
    }
    recentMenu_->setEnabled(number > 0);
}

void FileMenu::documentOpened(Document& document) {
    if (document.hasName()) {
        remember(QString::fromStdString(document.path()));
    }
}

void FileMenu::saveComplete(Document& document, std::string_view) {
    if (document.hasName()) {
        remember(QString::fromStdString(document.path()));
    }
}

}  // namespace drafthost
