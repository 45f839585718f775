// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A clean record in a folder of its own, and what the tests of dialogs need again and again.
#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "engine/RunState.h"
#include "tests/recording/RecordingHost.h"

#include <gtest/gtest.h>
#include <functional>
#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

class UiFixture : public ::testing::Test {
  protected:
    void SetUp() override {
        RecordingHost::Get().Reset();
        CTarnelData& data = TarnelData();
        data.FileNames.clear();
        data.FileDirs.clear();
        data.FileStatus.clear();
        data.FileOrder.clear();
        data.DataDir = folder.path();
        data.ModuleDir = folder.path() + QStringLiteral("/module/");
        data.MainWindow = {};
        data.WasMaximized = 0;
        data.LastTab = 0;
        data.PreviousDirectories = {folder.path().toUtf8()};
        data.Script = "zoom e\r\nqsave\r\n";
        data.LastScriptFile.clear();
        data.SetScriptModified(false);
        data.WarnNoSave = data.WarnDialogCommand = data.WarnDialogCmdReplacement = true;
        data.MaxTime = 60;
        data.AlarmTime = 40;
        ::Run().Scheduled = false;
    }
    void addFile(const QString& path, FileStatusValue status = ToDo) {
        AppendEntry(TarnelData(), path);
        TarnelData().FileStatus[TarnelData().FileStatus.size() - 1] = status;
    }
    /// Answers the message box that comes up next, and keeps its text.
    void answerNext(QMessageBox::StandardButton button) {
        QTimer::singleShot(0, qApp, [this, button] { answer(button); });
    }

    QTemporaryDir folder;
    QStringList questions;

  private:
    void answer(QMessageBox::StandardButton button) {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr) {
            QTimer::singleShot(5, qApp, [this, button] { answer(button); });
            return;
        }
        questions << box->text();
        box->button(button)->click();
    }
};
