// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The main dialog that the TARNEL command opens over the host's frame: its pages and four buttons. It never
// starts a run itself: it ends with OK, and the command saves the state and sends the start to the host.
#include "widgets/ResizableDialog.h"

#include <memory>

namespace Ui {
class TarnelDlg;
}

class TarnelDlg : public CResizableDialog {
    Q_OBJECT
  public:
    explicit TarnelDlg(QWidget* parent);
    ~TarnelDlg() override;

    /// Run Script: collects, looks for a file to do, makes the script checks, and ends with OK.
    void OnOK();
    /// Close: collects and ends with Cancel. No question, no check.
    void OnCancel();
    /// A name that is none of a page changes nothing.
    void ShowPage(const QString& name);

  protected:
    void reject() override { OnCancel(); }
    void accept() override { OnOK(); }

  private:
    void createPages();
    void addShortcuts();
    void orderTabStops();
    void moveToStored();
    void keepGeometry();
    void onSchedule();
    bool hasToDo() const;
    bool scriptMayRun();

    std::unique_ptr<Ui::TarnelDlg> ui;
};
