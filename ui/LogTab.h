// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Page of the last run. The run log is not shown as it lies on disk: the names in it become links to the
// host's log of each drawing, which comes out of the archive into the same view, with a way back.
#include "widgets/MainPage.h"

#include <functional>
#include <memory>

namespace Ui {
class LogTab;
}

class LogTab : public MainPage {
    Q_OBJECT
  public:
    explicit LogTab(QWidget* parent = nullptr);
    ~LogTab() override;

    /// Fills the view from the run log; a log without its closing tags counts as none.
    void LoadRunLog();
    /// Follows a link of the view: "back", or "logfile:ID:NAME".
    void ShowHostLog(const QString& link, int* handled);
    void ClearLog();
    void SaveLog();
    /// What the button "Email Log" does; set by the module, as it needs the archive and the mail program.
    std::function<void(QWidget*)> EmailLog;

  private:
    void showNoLog();

    std::unique_ptr<Ui::LogTab> ui;
};
