// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Page of the script that a run executes on each drawing.
#include "widgets/MainPage.h"

#include <memory>

namespace Ui {
class ScriptTab;
}

class ScriptTab : public MainPage {
    Q_OBJECT
  public:
    explicit ScriptTab(QWidget* parent = nullptr);
    ~ScriptTab() override;

    void OnRefresh();
    /// The text goes into the record with CR LF line ends, in the narrow encoding.
    void OnCollect();

  private:
    std::unique_ptr<Ui::ScriptTab> ui;
};
