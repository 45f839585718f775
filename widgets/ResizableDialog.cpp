#include "widgets/ResizableDialog.h"

#include <QEvent>
#include <QSizeGrip>

CResizableDialog::CResizableDialog(QWidget* parent) : QDialog(parent) {
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

void CResizableDialog::SetPage() {
    page = true;
    setWindowFlags(Qt::Widget);
}

void CResizableDialog::InitLayout() {
    layout.Attach(this);
    if (page)
        return;
    setMinimumSize(layout.DesignSize() * 3 / 5);
    grip = new QSizeGrip(this);
    grip->resize(grip->sizeHint());
    grip->move(rect().bottomRight() - grip->rect().bottomRight());
}

void CResizableDialog::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    layout.Arrange();
    if (grip != nullptr)
        grip->move(rect().bottomRight() - grip->rect().bottomRight());
}

void CResizableDialog::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && grip != nullptr)
        grip->setVisible(!isMaximized());
}
