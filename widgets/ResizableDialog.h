// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A dialog whose controls keep their anchors while it is resized. As a page of a tab control it is a plain
// child without a frame or size grip.
#include "widgets/ResizableLayout.h"

#include <QDialog>

class QSizeGrip;

class CResizableDialog : public QDialog {
    Q_OBJECT
  public:
    explicit CResizableDialog(QWidget* parent = nullptr);
    /// Marks the dialog as a page of another one. Call before InitLayout.
    void SetPage();
    /// After the template was set up: takes over its geometry, and shows the grip.
    void InitLayout();
    CResizableLayout& Layout() { return layout; }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    CResizableLayout layout;
    QSizeGrip* grip = nullptr;
    bool page = false;
};
