// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/StatusDialog.h"

#include "ui_StatusDialog.h"
#include "widgets/ResizableLayout.h"

#include <QApplication>
#include <QCloseEvent>

struct StatusDialog::Parts {
    Ui::StatusDialog ui;
    CResizableLayout layout;
};

StatusDialog::StatusDialog(QWidget* parent, int fileCount)
    : QDialog(parent, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      parts(std::make_unique<Parts>()) {
    parts->ui.setupUi(this);
    parts->layout.Attach(this);
    setMinimumSize(parts->layout.DesignSize() / 2);
    parts->ui.batch->setRange(0, std::max(fileCount, 1));
    parts->ui.batch->setValue(0);
    parts->ui.fileTime->setRange(0, 1);
    // Enter, pressed once too often on Run Script, must not end the run that has just begun.
    parts->ui.cancel->setAutoDefault(false);
    parts->ui.fileText->setFocus();
    connect(parts->ui.cancel, &QPushButton::clicked, this, &StatusDialog::CancelPressed);
    if (parent != nullptr) {
        move(parent->frameGeometry().center() - rect().center());
    }
}

StatusDialog::~StatusDialog() = default;

void StatusDialog::ShowFile(const QString& path, int limit) {
    Flash(false);
    parts->ui.batch->setValue(parts->ui.batch->value() + 1);
    parts->ui.fileText->setPlainText(path);
    parts->ui.fileText->setToolTip(path);
    showName();
    parts->ui.fileTime->setFormat(limit > 0 ? tr("%v of %m s") : tr("no limit"));
    parts->ui.fileTime->setRange(0, std::max(limit, 1));
    parts->ui.fileTime->setValue(0);
}

void StatusDialog::StepFileTime() {
    parts->ui.fileTime->setValue(std::min(parts->ui.fileTime->value() + 1, parts->ui.fileTime->maximum()));
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
    parts->ui.fileText->moveCursor(QTextCursor::End);
    parts->ui.fileText->ensureCursorVisible();
}

void StatusDialog::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    parts->layout.Arrange();
    showName();
}
