// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The main dialog that the TARNEL command opens over the host's frame: five pages and four buttons. It never
// starts a run itself: it ends with OK, and the command saves the state and sends the start to the host.
#include "widgets/ResizableDialog.h"

#include <memory>

class FilesTab;
class LogTab;
class ScriptTab;
class SettingsTab;
class StartTab;
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
    void ShowPage(int index);
    LogTab& Log() { return *log; }

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
    StartTab* start;
    FilesTab* files;
    ScriptTab* script;
    SettingsTab* settings;
    LogTab* log;
};
