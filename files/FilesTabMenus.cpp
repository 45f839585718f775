// SPDX-License-Identifier: GPL-3.0-or-later
// The menus of the page.
#include "engine/record/TarnelData.h"
#include "files/FilesTab.h"
#include "ui_FilesTab.h"

#include <array>
#include <QMenu>

namespace {

constexpr int Custom = 6;

// What an entry of a menu stands for.
constexpr int SelectAllCommand = 1;
constexpr int InvertCommand = 2;
constexpr int AllToDoCommand = 3;
constexpr int FirstStatusCommand = 5;
constexpr int FirstSortCommand = 1;
constexpr int ReverseCommand = 10;

QAction* addCommand(QMenu& menu, const QString& text, int command) {
    QAction* action = menu.addAction(text);
    action->setData(command);
    return action;
}

void addStatusWords(QMenu& menu) {
    for (std::uint32_t status = ToDo; status <= Canceled; ++status) {
        addCommand(menu, FileStatusWord(status), FirstStatusCommand + static_cast<int>(status));
    }
}

}  // namespace

/// Shows the menu with the point in the middle of its top edge. The command of the entry chosen, 0 for none.
int FilesTab::runMenu(QMenu& menu, const QPoint& screenPoint) {
    const QAction* chosen = menu.exec(screenPoint - QPoint(menu.sizeHint().width() / 2, 0));
    return chosen == nullptr ? 0 : chosen->data().toInt();
}

void FilesTab::SetStatusMenu(QWidget* at) {
    const std::vector<int> rows = ui->queue->SelectedRows();
    if (rows.empty()) {
        balloon(ui->setStatus, tr("Set Status"), tr("You have not selected a file to set the status for."),
                3000);
        return;
    }
    QMenu menu(this);
    addStatusWords(menu);
    menu.addSeparator();
    menu.addAction(tr("Cancel"));
    const int command = runMenu(menu, menuPoint(at));
    if (command >= FirstStatusCommand) {
        SetStatusOfRows(rows, static_cast<std::uint32_t>(command - FirstStatusCommand));
    }
}

void FilesTab::QueueMenu(const QPoint& screenPoint) {
    const std::vector<int> rows = ui->queue->SelectedRows();
    QMenu menu(this);
    addStatusWords(menu);
    menu.addSeparator();
    addCommand(menu, tr("Select All"), SelectAllCommand);
    addCommand(menu, tr("Invert Selection"), InvertCommand);
    menu.addSeparator();
    addCommand(menu, tr("All ToDo"), AllToDoCommand);
    menu.addSeparator();
    menu.addAction(tr("Cancel"));
    const int command = runMenu(menu, screenPoint);
    if (command >= FirstStatusCommand && !rows.empty()) {
        SetStatusOfRows(rows, static_cast<std::uint32_t>(command - FirstStatusCommand));
    } else if (command == SelectAllCommand) {
        ui->queue->selectAll();
    } else if (command == InvertCommand) {
        ui->queue->InvertSelection();
    } else if (command == AllToDoCommand) {
        SetAllToDo();
    }
}

void FilesTab::BrowseMenu(const QPoint& screenPoint) {
    QMenu menu(this);
    const QAction* add = menu.addAction(tr("Add"));
    const QAction* addAll = menu.addAction(tr("Add All"));
    menu.addSeparator();
    const QAction* addOpen = menu.addAction(tr("Add Open Drawings\tAlt+O"));
    menu.addSeparator();
    menu.addAction(tr("Cancel"));
    const QAction* chosen = menu.exec(screenPoint);
    if (chosen == add) {
        AddSelectedToQueue();
    } else if (chosen == addAll) {
        AddAll();
    } else if (chosen == addOpen) {
        AddOpenDrawings();
    }
}

void FilesTab::SortMenu(QWidget* at) {
    CTarnelData& data = TarnelData();
    const std::array<QString, Custom> orders = {tr("File, Directory, Status"), tr("File, Status, Directory"),
                                                tr("Directory, File, Status"), tr("Directory, Status, File"),
                                                tr("Status, File, Directory"), tr("Status, Directory, File")};
    QMenu menu(this);
    menu.addAction(tr("Sort By:"))->setEnabled(false);
    menu.addSeparator();
    const auto addMarked = [&menu](const QString& text, int command, bool marked) {
        QAction* action = addCommand(menu, text, command);
        action->setCheckable(true);
        action->setChecked(marked);
    };
    for (int order = 0; order < Custom; ++order) {
        addMarked(orders.at(static_cast<std::size_t>(order)), FirstSortCommand + order,
                  data.SortIdx == order);
    }
    menu.addSeparator();
    addMarked(tr("Reverse"), ReverseCommand, data.SortReverse > 0);
    menu.addSeparator();
    addMarked(tr("Custom"), FirstSortCommand + Custom, data.SortIdx == Custom);
    const int command = runMenu(menu, menuPoint(at));
    if (command == 0) {
        return;
    }
    const std::vector<std::uint32_t> selected = selectedEntries();
    if (command == ReverseCommand) {
        data.SortReverse = data.SortReverse > 0 ? 0 : 1;
    } else {
        data.SortIdx = command - FirstSortCommand;
    }
    showQueue(selected);
}
