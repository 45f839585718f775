// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Which files of a folder are listed. OK writes the four values straight into the record; whoever shows the
// dialog keeps them and puts them back unless it ends with OK.
#include <memory>
#include <QDialog>

namespace Ui {
class FilterDlg;
}

class FilterDlg : public QDialog {
    Q_OBJECT
  public:
    explicit FilterDlg(QWidget* parent = nullptr);
    ~FilterDlg() override;

    void accept() override;

  private:
    std::unique_ptr<Ui::FilterDlg> ui;
};
