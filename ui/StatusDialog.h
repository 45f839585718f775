// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The small window over the host's frame during a run: the drawing in work, the seconds of its time, the
// drawings of the run, and Cancel. The time limits themselves belong to the engine, which tells this window.
#include <memory>
#include <QDialog>

class StatusDialog : public QDialog {
    Q_OBJECT
  public:
    explicit StatusDialog(QWidget* parent, int fileCount);
    ~StatusDialog() override;

    void ShowFile(const QString& path, int limit);
    void StepFileTime();
    void Flash(bool on);

  Q_SIGNALS:
    void CancelPressed();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void showName();

    struct Parts;
    std::unique_ptr<Parts> parts;
};
