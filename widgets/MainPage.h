// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A page of the main dialog. It takes part in the dialog by the record's CollectSignal and RefreshSignal, and
// asks for another page by its name.
#include "widgets/ResizableDialog.h"

class MainPage : public CResizableDialog {
    Q_OBJECT
  public:
    using CResizableDialog::CResizableDialog;

  Q_SIGNALS:
    /// The page of that name is asked for.
    void PageWanted(const QString& name);
    void HelpWanted();
    /// As the dialog's Close button.
    void CloseWanted();
};
