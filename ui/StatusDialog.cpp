// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/StatusDialog.h"

#include "ui_StatusDialog.h"
#include "widgets/ResizableLayout.h"

#include <QApplication>
#include <QCloseEvent>

struct StatusDialog::Parts {
    Ui::StatusDialog Form;
    CResizableLayout Layout;
};

StatusDialog::StatusDialog(QWidget* parent, int fileCount)
    : QDialog(parent, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      parts(std::make_unique<Parts>()) {
    parts->Form.setupUi(this);
    parts->Layout.Attach(this);
    setMinimumSize(parts->Layout.DesignSize() / 2);
    parts->Form.batch->setRange(0, std::max(fileCount, 1));
    parts->Form.batch->setValue(0);
    parts->Form.fileTime->setRange(0, 1);
    // Enter, pressed once too often on Run Script, must not end the run that has just begun.
    parts->Form.cancel->setAutoDefault(false);
    parts->Form.fileText->setFocus();
    connect(parts->Form.cancel, &QPushButton::clicked, this, &StatusDialog::CancelPressed);
    if (parent != nullptr) {
        move(parent->frameGeometry().center() - rect().center());
    }
}

StatusDialog::~StatusDialog() = default;

void StatusDialog::ShowFile(const QString& path, int limit) {
    Flash(false);
    parts->Form.batch->setValue(parts->Form.batch->value() + 1);
    parts->Form.fileText->setPlainText(path);
    parts->Form.fileText->setToolTip(path);
    showName();
    parts->Form.fileTime->setFormat(limit > 0 ? tr("%v of %m s") : tr("no limit"));
    parts->Form.fileTime->setRange(0, std::max(limit, 1));
    parts->Form.fileTime->setValue(0);
}

void StatusDialog::StepFileTime() {
    parts->Form.fileTime->setValue(
        std::min(parts->Form.fileTime->value() + 1, parts->Form.fileTime->maximum()));
}

void StatusDialog::Flash(bool on) {
    QPalette colors;
    if (on) {
        colors.setColor(QPalette::Window, QColor(0xE0, 0x9F, 0x3E));
        colors.setColor(QPalette::WindowText, Qt::black);
    }
    setPalette(colors);
}

// The window stays until the run ends it; the button is the way to cancel.
void StatusDialog::closeEvent(QCloseEvent* event) {
    event->ignore();
}

void StatusDialog::reject() {}

// Of a path that is longer than its field, the name at its end is what tells the drawing.
void StatusDialog::showName() {
    parts->Form.fileText->moveCursor(QTextCursor::End);
    parts->Form.fileText->ensureCursorVisible();
}

void StatusDialog::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    parts->Layout.Arrange();
    showName();
}
