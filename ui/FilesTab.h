// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Page of the queue: the drawings of a run in the order they will be processed, with their statuses.
#include "widgets/ResizableDialog.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

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

    void AddDrawings();
    /// The host's open drawings that have a file.
    void AddOpenDrawings();
    /// The chosen entries, or all when none is chosen.
    void SetToDo();
    void RemoveDrawings();

  private:
    void add(const QStringList& paths);
    std::vector<std::uint32_t> chosen() const;

    std::unique_ptr<Ui::FilesTab> ui;
    QAbstractTableModel* model;
};
