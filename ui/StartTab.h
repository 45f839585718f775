// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// First page of the main dialog: a welcome with links to the help, to outside pages and to the other pages.
#include "widgets/MainPage.h"

#include <memory>

namespace Ui {
class StartTab;
}

class StartTab : public MainPage {
    Q_OBJECT
  public:
    explicit StartTab(QWidget* parent = nullptr);
    ~StartTab() override;

    /// Follows a link of the page; sets *openExternally to 1 when the system's browser should open it.
    void OnLink(const QString& href, int* openExternally);

  private:
    std::unique_ptr<Ui::StartTab> ui;
};
