// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/ResizableDialog.h"

#include <QKeyEvent>
#include <QSizeGrip>

CResizableDialog::CResizableDialog(QWidget* parent) : QDialog(parent) {
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint);
}

void CResizableDialog::SetPage() {
    page = true;
    setWindowFlags(Qt::Widget);
    // Its own ground, since some styles paint the tab control lighter than the pages in HTML.
    setAutoFillBackground(true);
}

void CResizableDialog::InitLayout() {
    layout.Attach(this);
    if (page) {
        return;
    }
    // Narrower than this, what keeps to the left and what keeps to the right would meet.
    const QSize design = layout.DesignSize();
    setMinimumSize(design.width() * 17 / 20, design.height() * 3 / 5);
    grip = new QSizeGrip(this);
    grip->resize(grip->sizeHint());
    grip->move(rect().bottomRight() - grip->rect().bottomRight());
}

void CResizableDialog::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    layout.Arrange();
    if (grip != nullptr) {
        grip->move(rect().bottomRight() - grip->rect().bottomRight());
    }
}

// Esc and Enter mean the dialog that the page stands in; a dialog's own answer to Esc would hide the page.
void CResizableDialog::keyPressEvent(QKeyEvent* event) {
    if (page) {
        event->ignore();
    } else {
        QDialog::keyPressEvent(event);
    }
}

void CResizableDialog::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && grip != nullptr) {
        grip->setVisible(!isMaximized());
    }
}
