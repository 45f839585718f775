// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FilterDlg.h"

#include "engine/record/TarnelData.h"
#include "ui_FilterDlg.h"
#include "widgets/BalloonHelp.h"
#include "widgets/ResizableLayout.h"

#include <algorithm>

FilterDlg::FilterDlg(QWidget* parent) : QDialog(parent), ui(std::make_unique<Ui::FilterDlg>()) {
    ui->setupUi(this);
    CResizableLayout layout;
    layout.Attach(this);
    // The check box stands on the frame of its group and is only as wide as its text.
    ui->useFilter->resize(ui->useFilter->sizeHint().width(), ui->useFilter->height());
    // The template's room is for narrower fonts than some desktops have.
    const int missing = std::max(0, ui->caption->sizeHint().width() - ui->caption->width());
    for (QWidget* wide : {static_cast<QWidget*>(this), static_cast<QWidget*>(ui->frame),
                          static_cast<QWidget*>(ui->caption), static_cast<QWidget*>(ui->mask)}) {
        wide->resize(wide->width() + missing, wide->height());
    }
    setFixedSize(size());
    const CTarnelData& data = TarnelData();
    ui->useFilter->setChecked(data.UseFilter != 0);
    ui->mask->setText(data.Filter);
    ui->includeReadOnly->setChecked(data.IncludeReadOnly != 0);
    ui->recurse->setChecked(data.Recurse != 0);
    ui->mask->setFocus();
    // Names are lowered before they are compared with the mask.
    connect(ui->mask, &QLineEdit::textEdited, this, [this](const QString& text) {
        const int cursor = ui->mask->cursorPosition();
        ui->mask->setText(text.toLower());
        ui->mask->setCursorPosition(cursor);
    });
    connect(ui->ok, &QPushButton::clicked, this, &FilterDlg::accept);
    connect(ui->cancel, &QPushButton::clicked, this, &FilterDlg::reject);
}

FilterDlg::~FilterDlg() {
    CBalloonHelp::CloseAll();
}

void FilterDlg::accept() {
    CTarnelData& data = TarnelData();
    data.UseFilter = ui->useFilter->isChecked() ? 1 : 0;
    data.Filter = ui->mask->text();
    data.IncludeReadOnly = ui->includeReadOnly->isChecked() ? 1 : 0;
    data.Recurse = ui->recurse->isChecked() ? 1 : 0;
    if (data.UseFilter != 0 && data.Filter.isEmpty()) {
        CBalloonHelp::CloseAll();
        CBalloonHelp::Show(
            this, tr("Filter"), tr("You cannot have a blank filter.\nUse *.* to specify all files."),
            ui->mask->mapToGlobal(QPoint(ui->mask->width() / 2, 0)), QMessageBox::Warning, 3000);
        return;
    }
    QDialog::accept();
}
