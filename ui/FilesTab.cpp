#include "ui/FilesTab.h"

#include "engine/TarnelData.h"
#include "ui_FilesTab.h"

#include <QAbstractTableModel>
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
        if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
            return {};
        const CTarnelData& record = TarnelData();
        const std::uint32_t entry = record.FileOrder[static_cast<std::size_t>(index.row())];
        if (role == Qt::ToolTipRole)
            return EntryPath(record, entry);
        switch (index.column()) {
            case 0:
                return record.FileNames[entry];
            case 1:
                return record.FileDirs[entry];
            default:
                return FileStatusWord(record.FileStatus[entry]);
        }
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
            return {};
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
    : CResizableDialog(parent), ui(std::make_unique<Ui::FilesTab>()), model(new QueueModel(this)) {
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
    connect(&data.Signals, &TarnelSignals::RefreshSignal, this, &FilesTab::OnRefresh);
}

FilesTab::~FilesTab() = default;

void FilesTab::OnRefresh() {
    static_cast<QueueModel*>(model)->Reload();
}

std::array<int, 3> FilesTab::ColumnWidths() const {
    return {ui->queue->columnWidth(0), ui->queue->columnWidth(1), ui->queue->columnWidth(2)};
}
