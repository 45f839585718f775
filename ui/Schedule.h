// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Waits for a moment that the user picks, with a tick every second, and then ends as if OK had been pressed.
// A schedule does not survive the dialog.
#include <functional>
#include <memory>
#include <QDateTime>
#include <QDialog>

namespace Ui {
class Schedule;
}

class Schedule : public QDialog {
    Q_OBJECT
  public:
    explicit Schedule(QWidget* parent = nullptr);
    ~Schedule() override;

    bool Waiting() const { return waiting; }
    /// One second has gone.
    void Tick();
    /// The clock, to be replaced by tests.
    std::function<QDateTime()> Now = [] { return QDateTime::currentDateTime(); };

  private:
    void onGo();
    void readPickers();

    std::unique_ptr<Ui::Schedule> ui;
    QDate runDate;
    QTime runTime;
    bool waiting = false;
};
