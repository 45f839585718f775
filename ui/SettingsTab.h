// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Page of the options of a run: an HTML form, whose values go to the record on CollectSignal and come from it
// on RefreshSignal. Nothing reaches the record in between.
#include "widgets/MainPage.h"

#include <memory>

namespace Ui {
class SettingsTab;
}

class SettingsTab : public MainPage {
    Q_OBJECT
  public:
    explicit SettingsTab(QWidget* parent = nullptr);
    ~SettingsTab() override;

    /// From the record to the form.
    void OnRefresh();
    /// From the form to the record. A check box that is missing from the page reads as false.
    void OnCollect();

  private:
    std::unique_ptr<Ui::SettingsTab> ui;
};
