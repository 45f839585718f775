// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the user sees of the module in a host that has no window: lines on the host's command line, all with
// the prefix "Tarnel: ", and prompts in place of dialogs. How a run goes is told either by such lines or,
// where a program listens, by events alone. Lines are told in docs/headless.md, events in
// docs/formats.md; other programs read both, so their form is part of the interface.
#include "engine/ConsoleDialog.h"
#include "engine/report/Report.h"
#include "engine/RunUi.h"

class ConsoleUi : public RunUi {
  public:
    Answer RunMainDialog() override;
    Answer Ask(const QString& caption, const QString& text, Buttons buttons) override;
    void OpenStatus(int fileCount) override;
    void ShowFile(const QString& path, int limit) override;
    void StepFileTime() override {}
    void Alarm() override;
    void Flash(bool) override {}
    void ShowFileStatus(std::uint32_t entry, const QString& path, const QString& status) override;
    void CloseStatus() override;
    bool IsStepThroughVisible() const override { return false; }
    void CloseStepThrough() override {}
    void OpenStepThrough() override;

  private:
    int fileCount = 0;
    int fileNumber = 0;
    QString currentFile;
    StartAnswers startAnswers;
};

/// Whether a prompt would be answered by the user: neither a script nor LISP is running.
bool KeyboardAnswers();
