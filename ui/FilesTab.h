// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Page of the queue: the drawings of a run in the order they will be processed, with their statuses.
#include "ui/MainPage.h"

#include <cstdint>
#include <memory>
#include <vector>

class QAbstractTableModel;

namespace Ui {
class FilesTab;
}

class FilesTab : public MainPage {
    Q_OBJECT
  public:
    explicit FilesTab(QWidget* parent = nullptr);
    ~FilesTab() override;

    /// Shows the queue anew.
    void OnRefresh();
    /// The widths of the columns go to the record; the queue is there already.
    void OnCollect();

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
