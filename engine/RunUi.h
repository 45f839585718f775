// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// How the engine reaches the user. The windows implement it, and a host without a frame gets lines on its
// command line instead; the engine knows neither.
#include <QString>

#include <cstdint>

class RunUi {
  public:
    enum Answer { Ok = 1, Cancel = 2, Yes = 6, No = 7 };
    enum Buttons { YesNo, YesNoCancel, OkOnly };

    virtual ~RunUi() = default;
    /// The main dialog, until it is left: Ok to start the run, Cancel to do nothing. Repaints the host's
    /// drawing view first, since what stands in it may be of the drawing before.
    virtual Answer RunMainDialog() = 0;
    /// A question or message with a caption.
    virtual Answer Ask(const QString& caption, const QString& text, Buttons buttons) = 0;
    /// The status of a run: shown from OpenStatus to CloseStatus.
    virtual void OpenStatus(int fileCount) = 0;
    /// Brings the opened status in front of the user.
    virtual void ShowStatus() {}
    /// The next file is in work; limit is the range of its time bar in seconds.
    virtual void ShowFile(const QString& path, int limit) = 0;
    /// One second of the file's time has gone.
    virtual void StepFileTime() = 0;
    /// The file takes too long: beep; flash then gives the phases.
    virtual void Alarm() = 0;
    virtual void Flash(bool on) = 0;
    /// A file of the queue was given a status. Two entries may have one path.
    virtual void ShowFileStatus(std::uint32_t entry, const QString& path, const QString& status) = 0;
    virtual void CloseStatus() = 0;
    virtual bool IsStepThroughVisible() const = 0;
    virtual void CloseStepThrough() = 0;
    virtual void OpenStepThrough() = 0;
    /// The user asked to record keys, so that leaving the main dialog leads to the step-through.
    virtual bool IsKeyCaptureOn() const { return false; }
    /// Sets the host's maximized drawing window anew.
    virtual void RefreshActiveWindow() {}
};

/// The implementation in force: the one that was set, else the lines on the command line.
RunUi& CurrentUi();
/// Null goes back to the command line.
void SetUi(RunUi* ui);
