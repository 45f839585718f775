// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// All that a run knows. One global record outlives every drawing, because the module stays loaded while the
// host opens and closes documents; it is written to the state file at each change of a file's status. It is
// a plain struct that every part reads directly; what announces changes lives in TarnelSignals beside it.
#include "engine/record/CheckedArray.h"

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <QByteArray>
#include <QObject>
#include <QRect>
#include <QString>

/// Status of a file of the queue, with its number in the state file. 2 and 5 are pessimistic: each is on disk
/// before the step that could go wrong.
enum FileStatusValue : std::uint32_t {
    ToDo = 0,
    Done = 1,
    FailOpen = 2,
    Timeout = 3,
    Locked = 4,
    Error = 5,
    Canceled = 6,
};

/// The word that users see for a status; empty for a number that is none.
QString FileStatusWord(std::uint32_t status);

/// Signals of the record. CollectSignal: each page writes its controls into the record. RefreshSignal: each
/// page loads them again.
class TarnelSignals : public QObject {
    Q_OBJECT
  Q_SIGNALS:
    void CollectSignal();
    void RefreshSignal();
    void ScriptModifiedChanged(bool modified);
    /// A character that was typed in the host's frame; the Enter key is 13.
    void KeyCaptured(char32_t character);
    void PauseToggled();
};

/// Rectangle of a window as the state file keeps it.
struct WindowRect {
    long Left = 0;
    long Right = 0;
    long Top = 0;
    long Bottom = 0;
};

struct CTarnelData {
    QString ProductName = QStringLiteral("Tarnel");
    QString Version = QStringLiteral("3.0.0");
    QString Build = QStringLiteral("0");
    /// Home of the state file, the generated scripts, the run log and the trace log; no trailing separator.
    QString DataDir;
    /// The script generated last.
    QString ScriptPath;
    /// Folder of the module's file, with trailing separator.
    QString ModuleDir;
    QString Filter = QStringLiteral("*.dwg");
    int Recurse = 0;
    int UseFilter = 0;
    int IncludeReadOnly = 0;
    bool ProcessReadOnly = false;

    /// The queue: entry i is the triple of FileNames[i], FileDirs[i] and FileStatus[i].
    CheckedArray<std::uint32_t> FileStatus;
    /// Position k holds the index of the entry processed k-th.
    CheckedArray<std::uint32_t> FileOrder;
    CheckedArray<QString> FileNames;
    CheckedArray<QString> FileDirs;
    /// The file browser's list; no part of a run.
    CheckedArray<std::uint32_t> BrowseIsLink;
    CheckedArray<std::uint32_t> BrowseIcons;
    CheckedArray<QString> BrowsePaths;

    bool UseScript1 = true;
    bool OpenReadOnly = false;
    /// Identifier lists of the browser's history; here the UTF-8 bytes of a path.
    std::deque<QByteArray> PreviousDirectories;
    int WasMaximized = 0;
    WindowRect MainWindow;
    WindowRect DebugWindow;
    /// Column of the browser list, then the three of the queue list.
    std::array<int, 4> ColumnWidths = {-1, 0, 0, 0};
    /// Queue sort key 0 to 6; 6 is the order of the list itself.
    int SortIdx = 0;
    int SortReverse = 0;
    int LastTab = 0;
    QString ScriptDescription;
    /// The user's script, bytes in the narrow encoding.
    QByteArray Script;
    QString LastScriptFile;
    /// Seconds; 0 is no limit.
    std::uint32_t MaxTime = 60;
    std::uint32_t AlarmTime = 40;
    QString StateFile;
    /// Path of the trace log, empty until it was begun.
    QString TraceFile;
    int ShowWhitespace = 1;
    int ShowEOL = 1;
    bool FileTabButtonText = true;
    bool DoDirRefresh = false;
    bool BatchRunning = false;
    /// The main dialog was left to step through the script, or to record keys.
    bool DebugRequested = false;
    bool CaptureActive = false;
    bool DisableScriptChain = false;
    bool RecoverMode = false;
    /// Position in FileOrder of the file in work, -1 when none.
    int CurrentFile = -1;
    bool TemporarilyLoadFromRegistry = false;
    bool UseWatcher = true;
    bool WarnNoSave = true;
    bool WarnDialogCommand = true;
    bool WarnDialogCmdReplacement = true;

    /// Values of the host's variables before the run, in the order of SysVarNames.
    std::array<std::optional<short>, 4> SavedSysVars;
    std::array<QString, 4> SysVarNames = {QStringLiteral("SDI"), QStringLiteral("CMDDIA"),
                                          QStringLiteral("FILEDIA"), QStringLiteral("CMDECHO")};
    bool SysVarsSaved = false;

    TarnelSignals Signals;

    /// The script differs from its file. Setting it announces the change.
    bool ScriptModified() const { return scriptModified; }
    void SetScriptModified(bool modified);

  private:
    bool scriptModified = false;
};

/// The one record, built at the first call. It lives from the module's load to its unload.
CTarnelData& TarnelData();
/// Takes the record down; the next call of TarnelData builds it with its first values.
void ResetTarnelData();
/// A file of the data folder.
QString DataFile(const QString& name);
