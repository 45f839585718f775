// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// How a run reaches the user where the host has a frame: with dialogs over it.
#include "engine/RunUi.h"

#include <functional>
#include <QPointer>

class QWidget;
class StatusDialog;

class DialogUi : public RunUi {
  public:
    DialogUi() = default;
    ~DialogUi() override;

    Answer RunMainDialog() override;
    Answer Ask(const QString& caption, const QString& text, Buttons buttons) override;
    void OpenStatus(int fileCount) override;
    void ShowStatus() override;
    void ShowFile(const QString& path, int limit) override;
    void StepFileTime() override;
    void Alarm() override;
    void Flash(bool on) override;
    void ShowFileStatus(std::uint32_t entry, const QString& path, const QString& status) override;
    void CloseStatus() override;
    bool IsStepThroughVisible() const override;
    void CloseStepThrough() override;
    bool IsKeyCaptureOn() const override;
    void OpenStepThrough() override;
    void RefreshActiveWindow() override;

    /// What "Email Log" does.
    std::function<void(QWidget*)> EmailLog;

  private:
    QWidget* owner() const;

    QPointer<QWidget> mainDialog;
    QPointer<StatusDialog> status;
};
