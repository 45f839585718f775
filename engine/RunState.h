// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What a run keeps outside the record: decisions that live from the start of a run to its end and are never
// written to the state file. One struct, so that a module that is loaded again starts from known values.
#include "engine/record/TarnelData.h"

#include <QString>

struct RunState {
    /// The run was started by a timer: nobody is asked anything.
    bool Scheduled = false;
    /// The first sibling module was unloaded for the run and must come back.
    bool SiblingsUnloaded = false;
    QString QrmModuleName = QStringLiteral("QRM19-64.ARX");
    QString ZenbrixModuleName = QStringLiteral("ZENBRIX19-64.ARX");
    /// Full paths, taken just before unloading.
    QString QrmModulePath;
    QString ZenbrixModulePath;
    /// The time limit of the file in work is over.
    bool TimeIsOver = false;
    /// The file in work was picked when the script of the one before had settled that, and its own script
    /// has not begun. What that script still says is not about this file.
    bool AwaitsItsScript = false;
    /// Why the drawing that was passed over last is Locked, with its path.
    QString WhyLocked;
    /// Why the last save failed; empty when it did not.
    QString Unsaved;
    /// A drawing that its script leaves changed and not saved is no drawing Done. The program that has
    /// started this host says so in TARNEL_MUST_SAVE.
    bool MustSave = false;
    /// A run has begun in this host.
    bool HasBegun = false;
};

/// The one instance.
RunState& Run();
/// Everything of a run back to its first values: the record, this struct, the watch and the run log.
void ResetRun();

/// Loads the state file, whose name is worked out first when that was not done yet. A file that is there but
/// holds no state is told on the command line and kept under another name, so that no save can destroy it.
/// The file in work stays the same, at its new place in the order. False when it cannot be read; during a run
/// the record in memory then stays, since it knows more than any file.
bool LoadRunState();
/// Saves the state file. A failure is told on the command line in one line, once until a save works again.
/// During a run it is tried again for some seconds, so that a disk that is full for a moment costs nothing.
/// False when the state is not on disk.
bool SaveRunState();
/// A run may not begin with the state as it was loaded, or must not go on: one line for the user. Empty when
/// all is well. A program that has started this host for one run names it in TARNEL_RUN, and nothing else may
/// be run then.
QString RunFault();
/// Tells that no run begins; a host that was started for one ends.
void RefuseRun(const QString& cause);
/// This host was started by a program for one run.
bool IsHostOfOneRun();

/// Sets the status of the file in work and saves the state at once; nothing without one.
void SetCurrentFileStatus(FileStatusValue status);
