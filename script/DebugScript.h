// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The script beside the drawing: it is handed to the host line by line, or takes up what is typed there while
// keys are recorded (CaptureActive when it is made). Its end puts the host's variables back and saves the
// state.
#include "widgets/ResizableDialog.h"

#include <memory>

namespace Ui {
class DebugScript;
}

class DebugScript : public CResizableDialog {
    Q_OBJECT
  public:
    explicit DebugScript(QWidget* parent);
    ~DebugScript() override;

    /// Types the next line of the script; or, while keys are recorded, makes the text the script.
    void OnExecute();
    void OnKeyCaptured(char32_t character);
    void OnPauseToggled();

  Q_SIGNALS:
    /// The user wants to go back to the main dialog.
    void CloseWanted();

  protected:
    void reject() override { Q_EMIT CloseWanted(); }
    void accept() override {}

  private:
    void setUpStepping();
    void setUpCapture();
    void executeLine();
    void markLine();
    void update();

    std::unique_ptr<Ui::DebugScript> ui;
    const bool isCapture;
    /// The line to execute next, from 0, and the last one: with a line end behind the script it is empty.
    int currentLine = 0;
    int lastLine = 0;
    bool paused = false;
    /// Characters that were added and not taken back.
    int capturedCount = 0;
};

/// A script without its comment lines, which begin with a semicolon, each with its line end.
QByteArray WithoutCommentLines(const QByteArray& script);
