// SPDX-License-Identifier: GPL-3.0-or-later
// The right half of the page: what the user does to the queue.
#include "acdocman.h"
#include "engine/record/FileQueue.h"
#include "engine/record/HostText.h"
#include "engine/record/TarnelData.h"
#include "files/BrowseModel.h"
#include "files/DragImage.h"
#include "files/FilesTab.h"
#include "files/QueueEdit.h"
#include "files/QueueModel.h"
#include "html/HTMLayout.h"
#include "ui_FilesTab.h"

#include <algorithm>
#include <QFileInfo>
#include <QScrollBar>
#include <QSet>

namespace {
constexpr int ShortLife = 3000;
constexpr int SortLife = 2000;
}  // namespace

void FilesTab::OnRefresh() {
    showQueueRows({});
}

/// What ends every change of the queue: the counts and the order.
void FilesTab::queueChanged() {
    updateFilesStrip();
    BuildFileOrder(TarnelData());
}

std::vector<std::uint32_t> FilesTab::selectedEntries() const {
    std::vector<std::uint32_t> entries;
    for (const int row : ui->queue->SelectedRows()) {
        entries.push_back(TarnelData().FileOrder[static_cast<std::size_t>(row)]);
    }
    return entries;
}

// Entries keep their selection wherever the order has put them.
void FilesTab::showQueue(const std::vector<std::uint32_t>& selected) {
    queueChanged();
    const CTarnelData& data = TarnelData();
    std::vector<bool> isSelected(data.FileNames.size());
    for (const std::uint32_t entry : selected) {
        isSelected.at(entry) = true;
    }
    std::vector<int> rows;
    for (std::size_t row = 0; !selected.empty() && row < data.FileOrder.size(); ++row) {
        if (isSelected[data.FileOrder[row]]) {
            rows.push_back(static_cast<int>(row));
        }
    }
    showQueueRows(rows);
}

void FilesTab::showQueueRows(const std::vector<int>& rows) {
    updateFilesStrip();
    const int scrolled = ui->queue->verticalScrollBar()->value();
    const int current = ui->queue->currentIndex().row();
    queueModel->Reset();
    ui->queue->ScrollTo(scrolled);
    const int count = queueModel->rowCount();
    if (current >= 0 && count > 0) {
        const int row = rows.empty() ? std::min(current, count - 1) : rows.front();
        ui->queue->selectionModel()->setCurrentIndex(queueModel->index(row, 0),
                                                     QItemSelectionModel::NoUpdate);
    }
    ui->queue->SelectRows(rows);
}

void FilesTab::updateFilesStrip() {
    const CTarnelData& data = TarnelData();
    bool allToDo = true;
    bool anyDone = false;
    for (std::size_t entry = 0; entry < data.FileNames.size(); ++entry) {
        const std::uint32_t status = EntryStatus(data, entry);
        allToDo &= status == ToDo;
        anyDone |= status == Done;
    }
    QString page =
        QStringLiteral(
            "<style>html{background-color:threedface;}body{font-family:Arial;font-size:8pt;padding:0px;"
            "margin:0px;overflow:none;}</style><body>Files: <b>%1</b>%2%3")
            .arg(QString::number(data.FileNames.size()),
                 allToDo ? QString() : QStringLiteral(", <a href=alltodo title=\"All ToDo\">All ToDo</a>"),
                 anyDone ? QStringLiteral(", <a href=removedone title=\"Remove Done\">Remove Done</a>")
                         : QString());
    page += QStringLiteral(", <a href=sort title=\"Sort\">Sort</a>");
    if (page != countsPage) {
        countsPage = page;
        ui->counts->LoadHtml(page);
        fitStrips();
    }
}

void FilesTab::AddSelectedToQueue() {
    if (!ui->fileList->HasSelection()) {
        balloon(ui->add, tr("Add File"), tr("You have not selected a file to add."), ShortLife);
        return;
    }
    std::vector<QString> paths;
    for (const int row : ui->fileList->SelectedRows()) {
        // A link leads to a folder and is never queued.
        if (!browseModel->IsLink(row)) {
            paths.push_back(browseModel->Path(row));
        }
    }
    const std::vector<std::uint32_t> selected = selectedEntries();
    AddToQueue(TarnelData(), paths);
    showQueue(selected);
}

void FilesTab::AddAll() {
    ui->fileList->selectAll();
    AddSelectedToQueue();
}

// A drawing that is open and in the queue already is to be processed again.
void FilesTab::AddOpenDrawings() {
    std::vector<QString> paths;
    QSet<QString> open;
    const std::unique_ptr<AcApDocumentIterator> walk(acDocManagerPtr()->newAcApDocumentIterator());
    for (; !walk->done(); walk->step()) {
        const QString path = FromHost(walk->document()->fileName());
        // One that has never been saved has a title alone.
        if (QFileInfo(path).isAbsolute()) {
            paths.push_back(path);
            open.insert(path);
        }
    }
    CTarnelData& data = TarnelData();
    const std::vector<std::uint32_t> selected = selectedEntries();
    for (std::size_t entry = 0; !open.isEmpty() && entry < data.FileNames.size(); ++entry) {
        if (open.contains(EntryPath(data, entry))) {
            SetEntryStatus(data, entry, ToDo);
        }
    }
    AddToQueue(data, paths);
    showQueue(selected);
}

void FilesTab::RemoveSelectedFromQueue() {
    if (!ui->queue->HasSelection()) {
        balloon(ui->removeFiles, tr("Remove File"), tr("You have not selected a file to remove."), ShortLife);
        return;
    }
    RemoveFromQueue(TarnelData(), selectedEntries());
    showQueue({});
}

void FilesTab::RemoveAll() {
    ui->queue->selectAll();
    RemoveSelectedFromQueue();
}

void FilesTab::RemoveDone() {
    const std::vector<std::uint32_t> done = EntriesOfStatus(TarnelData(), Done);
    if (done.empty()) {
        ui->queue->clearSelection();
        RemoveSelectedFromQueue();
        return;
    }
    RemoveFromQueue(TarnelData(), done);
    showQueue({});
}

void FilesTab::SetAllToDo() {
    CTarnelData& data = TarnelData();
    const std::vector<std::uint32_t> selected = selectedEntries();
    for (std::size_t entry = 0; entry < data.FileNames.size(); ++entry) {
        SetEntryStatus(data, entry, ToDo);
    }
    showQueue(selected);
}

void FilesTab::SetStatusOfRows(const std::vector<int>& rows, std::uint32_t status) {
    CTarnelData& data = TarnelData();
    const std::vector<std::uint32_t> selected = selectedEntries();
    std::vector<std::uint32_t> entries;
    for (const int row : rows) {
        entries.push_back(data.FileOrder[static_cast<std::size_t>(row)]);
    }
    SetStatusOfEntries(data, entries, status);
    showQueue(selected);
}

void FilesTab::flattenOrder() {
    CTarnelData& data = TarnelData();
    if (data.SortIdx == 6 && data.SortReverse == 0) {
        return;
    }
    const bool wasSorted = FlattenOrder(data);
    // The rows stand where they stood; only what they are numbered by is another.
    queueChanged();
    if (wasSorted) {
        balloon(ui->queue, tr("Sort"), tr("Changing the sort to Custom."), SortLife);
    }
}

void FilesTab::MoveSelectedRows(int targetRow) {
    const RowRange moved = MoveRows(TarnelData(), ui->queue->SelectedRows(), targetRow);
    std::vector<int> rows;
    for (int i = 0; i < moved.Count; ++i) {
        rows.push_back(moved.First + i);
    }
    showQueueRows(rows);
}

void FilesTab::shiftSelectedRows(int direction) {
    const std::vector<int> rows = ui->queue->SelectedRows();
    if (rows.empty()) {
        return;
    }
    flattenOrder();
    const std::vector<int> now = ShiftRows(TarnelData(), rows, direction);
    showQueueRows(now);
    ui->queue->scrollTo(queueModel->index(direction < 0 ? now.front() : now.back(), 0));
}

void FilesTab::beginDrag(const QPoint& screenPoint) {
    flattenOrder();
    dropAllowed = false;
    dropRow = -1;
    dragImage = new DragImage(this, *ui->queue);
    dragImage->MoveTo(screenPoint);
}

void FilesTab::moveDrag(const QPoint& screenPoint) {
    dragImage->MoveTo(screenPoint);
    if (ui->queue->IsOver(screenPoint)) {
        dropRow = ui->queue->RowAt(screenPoint);
        if (dropRow >= 0 && !ui->queue->IsRowSelected(dropRow)) {
            ui->queue->SetDropRow(dropRow);
            if (!std::exchange(dropAllowed, true)) {
                ui->queue->viewport()->setCursor(Qt::ArrowCursor);
            }
            return;
        }
    }
    ui->queue->SetDropRow(-1);
    if (std::exchange(dropAllowed, false)) {
        ui->queue->viewport()->setCursor(Qt::ForbiddenCursor);
    }
}

void FilesTab::endDrag(bool drop) {
    delete std::exchange(dragImage, nullptr);
    ui->queue->SetDropRow(-1);
    ui->queue->viewport()->unsetCursor();
    if (drop && dropRow >= 0 && dropAllowed) {
        MoveSelectedRows(dropRow);
    }
}
