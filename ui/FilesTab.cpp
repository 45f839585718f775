// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FilesTab.h"

#include "acdocman.h"
#include "engine/record/FileQueue.h"
#include "engine/record/HostText.h"
#include "engine/record/TarnelData.h"
#include "ui_FilesTab.h"

#include <algorithm>
#include <QAbstractTableModel>
#include <QFileDialog>
#include <QFileInfo>
#include <QHash>
#include <QHeaderView>

namespace {

/// The record's arrays as rows, in processing order; it holds nothing itself.
class QueueModel : public QAbstractTableModel {
  public:
    using QAbstractTableModel::QAbstractTableModel;
    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(TarnelData().FileOrder.size());
    }
    int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : 3; }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role != Qt::DisplayRole && role != Qt::ToolTipRole) {
            return {};
        }
        const CTarnelData& record = TarnelData();
        const std::uint32_t entry = record.FileOrder[static_cast<std::size_t>(index.row())];
        if (role == Qt::ToolTipRole) {
            return EntryPath(record, entry);
        }
        switch (index.column()) {
            case 0:
                return record.FileNames[entry];
            case 1:
                return record.FileDirs[entry];
            default:
                return FileStatusWord(EntryStatus(record, entry));
        }
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
            return {};
        }
        const QStringList titles = {tr("File"), tr("Folder"), tr("Status")};
        return titles.value(section);
    }
    void Reload() {
        beginResetModel();
        endResetModel();
    }
};

}  // namespace

FilesTab::FilesTab(QWidget* parent)
    : MainPage(parent), ui(std::make_unique<Ui::FilesTab>()), model(new QueueModel(this)) {
    SetPage();
    ui->setupUi(this);
    InitLayout();
    setFocusProxy(ui->queue);
    ui->queue->setModel(model);
    ui->queue->setRootIsDecorated(false);
    ui->queue->setUniformRowHeights(true);
    const CTarnelData& data = TarnelData();
    const int fallback[3] = {220, 340, 90};
    for (int i = 0; i < 3; ++i) {
        const int stored = data.ColumnWidths[static_cast<std::size_t>(i) + 1];
        ui->queue->setColumnWidth(i, stored > 0 ? stored : fallback[i]);
    }
    connect(ui->addFiles, &QPushButton::clicked, this, &FilesTab::AddDrawings);
    connect(ui->addOpen, &QPushButton::clicked, this, &FilesTab::AddOpenDrawings);
    connect(ui->setToDo, &QPushButton::clicked, this, &FilesTab::SetToDo);
    connect(ui->removeFiles, &QPushButton::clicked, this, &FilesTab::RemoveDrawings);
    connect(&data.Signals, &TarnelSignals::CollectSignal, this, &FilesTab::OnCollect);
    connect(&data.Signals, &TarnelSignals::RefreshSignal, this, &FilesTab::OnRefresh);
}

FilesTab::~FilesTab() = default;

void FilesTab::OnRefresh() {
    static_cast<QueueModel*>(model)->Reload();
}

// A drawing that is in the queue already is to be processed again; one drawing is never there twice.
void FilesTab::add(const QStringList& paths) {
    CTarnelData& data = TarnelData();
    QHash<QString, std::size_t> places;
    for (std::size_t i = 0; i < data.FileNames.size(); ++i) {
        places.insert(EntryPath(data, i), i);
    }
    for (const QString& path : paths) {
        if (const auto found = places.constFind(path); found != places.constEnd()) {
            SetEntryStatus(data, *found, ToDo);
            continue;
        }
        AppendEntry(data, path);
        places.insert(path, data.FileNames.size() - 1);
    }
    BuildFileOrder(data);
    OnRefresh();
}

void FilesTab::AddDrawings() {
    add(QFileDialog::getOpenFileNames(this, tr("Add drawings"), QString(),
                                      tr("Drawings (*.dxf *.DXF *.dwg *.DWG);;All files (*)")));
}

void FilesTab::AddOpenDrawings() {
    QStringList paths;
    const std::unique_ptr<AcApDocumentIterator> walk(acDocManagerPtr()->newAcApDocumentIterator());
    for (; !walk->done(); walk->step()) {
        const QString path = FromHost(walk->document()->fileName());
        // A drawing that has never been saved has a title alone.
        if (QFileInfo(path).isAbsolute()) {
            paths << path;
        }
    }
    add(paths);
}

std::vector<std::uint32_t> FilesTab::chosen() const {
    std::vector<std::uint32_t> entries;
    for (const QModelIndex& row : ui->queue->selectionModel()->selectedRows()) {
        entries.push_back(TarnelData().FileOrder[static_cast<std::size_t>(row.row())]);
    }
    return entries;
}

void FilesTab::SetToDo() {
    CTarnelData& data = TarnelData();
    const std::vector<std::uint32_t> entries = chosen();
    for (const std::uint32_t entry : entries) {
        SetEntryStatus(data, entry, ToDo);
    }
    if (entries.empty()) {
        for (std::size_t i = 0; i < data.FileNames.size(); ++i) {
            SetEntryStatus(data, i, ToDo);
        }
    }
    OnRefresh();
}

void FilesTab::RemoveDrawings() {
    CTarnelData& data = TarnelData();
    std::vector<std::uint32_t> entries = chosen();
    std::sort(entries.rbegin(), entries.rend());
    for (const std::uint32_t entry : entries) {
        data.FileNames.erase(entry);
        data.FileDirs.erase(entry);
        if (entry < data.FileStatus.size()) {
            data.FileStatus.erase(entry);
        }
    }
    BuildFileOrder(data);
    OnRefresh();
}

void FilesTab::OnCollect() {
    for (int i = 0; i < 3; ++i) {
        TarnelData().ColumnWidths[static_cast<std::size_t>(i) + 1] = ui->queue->columnWidth(i);
    }
}
