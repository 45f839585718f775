// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A module that was started in the recording host, with a data folder of its own and a user who answers from
// a list.
#include "engine/record/TarnelData.h"
#include "engine/RunUi.h"
#include "tests/recording/RecordingHost.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <deque>

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

/// Notes what the user is shown among the host's calls.
class RecordingUi : public RunUi {
  public:
    std::deque<Answer> DialogAnswers;
    /// What the user does in the main dialog before the answer.
    std::function<void()> InDialog = [] {};
    std::deque<Answer> QuestionAnswers;
    bool StepThroughVisible = false;

    Answer RunMainDialog() override;
    Answer Ask(const QString& caption, const QString& text, Buttons buttons) override;
    void OpenStatus(int fileCount) override;
    void ShowFile(const QString& path, int limit) override;
    void StepFileTime() override { note(QStringLiteral("second")); }
    void Alarm() override { note(QStringLiteral("alarm")); }
    void Flash(bool on) override { note(on ? QStringLiteral("flash on") : QStringLiteral("flash off")); }
    void ShowFileStatus(std::uint32_t entry, const QString& path, const QString& status) override;
    void CloseStatus() override { note(QStringLiteral("close")); }
    bool IsStepThroughVisible() const override { return StepThroughVisible; }
    void CloseStepThrough() override { StepThroughVisible = false; }
    void OpenStepThrough() override { note(QStringLiteral("step-through")); }

  private:
    static void note(const QString& text);
};

class RunTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// A file with a byte of content in the test's folder; its path.
    QString MakeFile(const QString& name);
    QString Folder() const { return dir.path(); }
    QString DataPath(const QString& name) const;
    static QByteArray Content(const QString& path);
    /// The queue and the script, saved as the state.
    void SetQueue(const QStringList& paths, const QByteArray& script = "zoom e\n");
    /// The statuses as they stand in the state file, read without the module's help: "1 0 5".
    QString SavedStatuses() const;
    /// The command, answered with Ok, and what the host then reads.
    void StartRun();
    /// The lines of the trace log since the mark.
    QStringList TraceLines() const;
    void MarkTrace();
    void Command(const char* name);

    QTemporaryDir dir;
    RecordingUi ui;
    RecordingHost& host = RecordingHost::Get();

  private:
    qsizetype traceMark = 0;
};
