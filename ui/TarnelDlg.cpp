// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TarnelDlg.h"

#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "engine/RunState.h"
#include "engine/ScriptChain.h"
#include "log/Trace.h"
#include "ui/HelpPages.h"
#include "ui/Icons.h"
#include "ui/MainPages.h"
#include "ui/Schedule.h"
#include "ui/ScriptChecks.h"
#include "ui_TarnelDlg.h"
#include "widgets/BalloonHelp.h"

#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>
#include <QShortcut>
#include <QTabBar>
#include <vector>

TarnelDlg::TarnelDlg(QWidget* parent) : CResizableDialog(parent), ui(std::make_unique<Ui::TarnelDlg>()) {
    Trace("Default InitDialog\n");
    ui->setupUi(this);
    Trace("LoadAccelerators\n");
    addShortcuts();
    Trace("Load Tab ImageList\n");
    Trace("Get Tab Rect\n");
    Trace("Set Window Text\n");
    setWindowTitle(QStringLiteral("%1 v%2").arg(TarnelData().ProductName, TarnelData().Version));
    createPages();
    Trace("Show the current tab\n");
    ui->tab->SetActive(TarnelData().LastTab);
    Trace("Add resizing info\n");
    InitLayout();
    Trace("Move the window to it's stored position\n");
    moveToStored();
    Trace("Load the icon\n");
    setWindowIcon(ResourceIcon(QStringLiteral("tarnel")));
    Trace("Set button info\n");
    ui->help->SetInfo(ResourceIcon(QStringLiteral("help")), tr("Help"));
    ui->runScript->SetInfo(ResourceIcon(QStringLiteral("run")), tr("Run Batch"));
    ui->schedule->SetInfo(ResourceIcon(QStringLiteral("schedule")), tr("Schedule Batch"));
    ui->close->SetInfo(ResourceIcon(QStringLiteral("close")), tr("Close Tarnel"));
    connect(ui->help, &QPushButton::clicked, this, &ShowHelp);
    connect(ui->runScript, &QPushButton::clicked, this, &TarnelDlg::OnOK);
    connect(ui->schedule, &QPushButton::clicked, this, &TarnelDlg::onSchedule);
    connect(ui->close, &QPushButton::clicked, this, &TarnelDlg::OnCancel);
    orderTabStops();
    // Who opens the dialog and types must not end up with Enter on Run Script.
    ui->tab->FocusPage();
    Run().Scheduled = false;
    Trace("InitDone\n");
}

TarnelDlg::~TarnelDlg() {
    CBalloonHelp::CloseAll();
}

void TarnelDlg::createPages() {
    std::vector<MainPage*> pages;
    for (const MainPageEntry& entry : MainPages()) {
        Trace(QStringLiteral("Create %1 Tab\n").arg(QLatin1String(entry.TraceName)));
        pages.push_back(entry.Make(this));
        connect(pages.back(), &MainPage::PageWanted, this, &TarnelDlg::ShowPage);
        connect(pages.back(), &MainPage::HelpWanted, this, &ShowHelp);
        connect(pages.back(), &MainPage::CloseWanted, this, &TarnelDlg::OnCancel);
    }
    Trace("Add the Pages to the Tab\n");
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const MainPageEntry& entry = MainPages()[i];
        ui->tab->AddTab(tr(entry.Title), pages[i], ResourceIcon(entry.Icon));
    }
}

// Alt with the letter of a tab's title shows its page; the tab control itself sees to that.
void TarnelDlg::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    add(Qt::CTRL | Qt::Key_Tab, [this] { ui->tab->Step(1); });
    add(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, [this] { ui->tab->Step(-1); });
    add(Qt::Key_F1, [] { ShowHelp(); });
}

// The keyboard goes as the eye does: titles of the pages, the page, the buttons below it.
void TarnelDlg::orderTabStops() {
    QWidget* last = ui->tab->tabBar();
    for (int i = 0; i < ui->tab->count(); ++i) {
        QWidget* page = ui->tab->widget(i);
        // The focus chain of a page is in order in itself.
        for (QWidget* next = page->nextInFocusChain(); next != nullptr && page->isAncestorOf(next);
             next = next->nextInFocusChain()) {
            if (next->focusPolicy() != Qt::NoFocus) {
                last = next;
            }
        }
    }
    for (QWidget* button : {ui->help, ui->schedule, ui->runScript, ui->close}) {
        setTabOrder(last, button);
        last = button;
    }
}

void TarnelDlg::ShowPage(const QString& name) {
    ui->tab->SetActive(MainPageIndex(name));
}

namespace {

/// As much of a place as a screen can show: a screen that is small, or has gone in the meantime, must not
/// keep the buttons out of reach.
QRect insideScreen(QRect place) {
    const QScreen* screen = QGuiApplication::screenAt(place.center());
    const bool gone = screen == nullptr;
    const QRect available = (gone ? QGuiApplication::primaryScreen() : screen)->availableGeometry();
    place.setSize(place.size().boundedTo(available.size()));
    if (gone) {
        place.moveCenter(available.center());
    }
    place.moveRight(std::min(place.right(), available.right()));
    place.moveBottom(std::min(place.bottom(), available.bottom()));
    place.moveLeft(std::max(place.left(), available.left()));
    place.moveTop(std::max(place.top(), available.top()));
    return place;
}

}  // namespace

void TarnelDlg::moveToStored() {
    const CTarnelData& data = TarnelData();
    const WindowRect& stored = data.MainWindow;
    QRect place(QPoint(), size());
    if (stored.Right != 0) {
        place = QRect(QPoint(static_cast<int>(stored.Left), static_cast<int>(stored.Top)),
                      QPoint(static_cast<int>(stored.Right) - 1, static_cast<int>(stored.Bottom) - 1));
    } else if (const QWidget* frame = parentWidget()) {
        place.moveCenter(frame->window()->geometry().center());
    } else {
        place.moveCenter(QGuiApplication::primaryScreen()->availableGeometry().center());
    }
    setGeometry(insideScreen(place));
    if (data.WasMaximized != 0) {
        setWindowState(windowState() | Qt::WindowMaximized);
    }
}

void TarnelDlg::keepGeometry() {
    CTarnelData& data = TarnelData();
    data.LastTab = ui->tab->currentIndex();
    data.WasMaximized = isMaximized() ? 1 : 0;
    const QRect place = isMaximized() && normalGeometry().isValid() ? normalGeometry() : geometry();
    data.MainWindow = {place.left(), place.right() + 1, place.top(), place.bottom() + 1};
}

bool TarnelDlg::hasToDo() const {
    const CTarnelData& data = TarnelData();
    for (std::size_t i = 0; i < data.FileNames.size(); ++i) {
        if (EntryStatus(data, i) == ToDo) {
            return true;
        }
    }
    return false;
}

bool TarnelDlg::scriptMayRun() {
    if (const QString fault = ScriptFault(); !fault.isEmpty()) {
        QMessageBox::critical(this, QStringLiteral("Script Warning"),
                              tr("No run is started. In %1.").arg(fault));
        return false;
    }
    if (Run().Scheduled) {
        return true;
    }
    const bool may = RunScriptChecks([this](const ScriptQuestion& question) {
        QMessageBox box(QMessageBox::Warning, QStringLiteral("Script Warning"), question.Text,
                        QMessageBox::Yes | QMessageBox::No, this);
        box.setDefaultButton(question.YesIsDefault ? QMessageBox::Yes : QMessageBox::No);
        return box.exec() == QMessageBox::Yes;
    });
    if (!may) {
        Q_EMIT TarnelData().Signals.RefreshSignal();
    }
    return may;
}

void TarnelDlg::OnOK() {
    Q_EMIT TarnelData().Signals.CollectSignal();
    TarnelData().LastTab = ui->tab->currentIndex();
    if (!hasToDo()) {
        CBalloonHelp::CloseAll();
        const QPoint edge(ui->runScript->width() / 2, 0);
        CBalloonHelp::Show(this, tr("Run Script"),
                           tr("None of the files have a status of TODO.\n\nHighlight the file you wish to "
                              "process and change their status.\n"),
                           ui->runScript->mapToGlobal(edge), QMessageBox::Information, 10000);
        return;
    }
    if (!scriptMayRun()) {
        return;
    }
    keepGeometry();
    QDialog::accept();
}

void TarnelDlg::OnCancel() {
    Q_EMIT TarnelData().Signals.CollectSignal();
    keepGeometry();
    QDialog::reject();
}

void TarnelDlg::onSchedule() {
    Schedule schedule(this);
    if (schedule.exec() != QDialog::Accepted) {
        return;
    }
    Run().Scheduled = true;
    OnOK();
    Run().Scheduled = result() == QDialog::Accepted;
}
