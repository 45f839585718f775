#pragma once
// Page of the queue: the drawings of a run in the order they will be processed, with their statuses.
#include "widgets/ResizableDialog.h"

#include <array>
#include <memory>

class QAbstractTableModel;

namespace Ui {
class FilesTab;
}

class FilesTab : public CResizableDialog {
    Q_OBJECT
  public:
    explicit FilesTab(QWidget* parent = nullptr);
    ~FilesTab() override;

    /// Shows the queue anew.
    void OnRefresh();
    /// Widths of the three columns, for the record.
    std::array<int, 3> ColumnWidths() const;

  private:
    std::unique_ptr<Ui::FilesTab> ui;
    QAbstractTableModel* model;
};
