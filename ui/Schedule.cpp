// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Schedule.h"

#include "ui_Schedule.h"
#include "widgets/ResizableLayout.h"

#include <ctime>
#include <QTimer>

Schedule::Schedule(QWidget* parent) : QDialog(parent), ui(std::make_unique<Ui::Schedule>()) {
    ui->setupUi(this);
    CResizableLayout layout;
    layout.Attach(this);
    setFixedSize(size());
    const QDateTime now = Now();
    ui->date->setDate(now.date());
    ui->time->setTime(now.time());
    ui->time->setDisplayFormat(QStringLiteral("HH:mm:ss"));
    readPickers();
    connect(ui->go, &QPushButton::clicked, this, &Schedule::onGo);
    connect(ui->cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &Schedule::Tick);
    timer->start(1000);
}

Schedule::~Schedule() = default;

void Schedule::readPickers() {
    runDate = ui->date->date();
    runTime = ui->time->time();
}

void Schedule::Tick() {
    const QDateTime now = Now();
    const std::time_t seconds = now.toSecsSinceEpoch();
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[128];
    if (std::strftime(text, sizeof text, "%x %X", &local) > 0) {
        ui->now->setText(QStringLiteral("Current time: ") + QString::fromLocal8Bit(text));
    }
    const QDateTime target(runDate, QTime(runTime.hour(), runTime.minute(), runTime.second()));
    if (waiting) {
        if (target < now) {
            accept();
        }
        return;
    }
    readPickers();
    ui->go->setEnabled(target > now);
}

void Schedule::onGo() {
    if (waiting) {
        accept();
        return;
    }
    ui->go->setText(tr("Run Now"));
    readPickers();
    ui->date->setEnabled(false);
    ui->time->setEnabled(false);
    waiting = true;
}
