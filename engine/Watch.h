// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The watch over a run: the run log, the status that the user sees, and the time limits of each drawing. The
// timers never touch the run. They only send the host a string of cancels and a LISP call, so that every
// change of the run's state happens where the host reads commands.
#include <QString>

/// Opens the run log and the status. Nothing in it can refuse a run.
bool StartWatch();
/// The next drawing is in work: its time starts now.
void WatchNewFile(const QString& path);
/// Packs the host's logs, ends the run log and closes the status.
void CloseWatch();
/// Whether an interrupted run is to be gone on with at the module's start. No monitor takes part in a run, so
/// the answer is always no; the user goes on with the command.
bool CheckWatch();

/// The user's Cancel in the status: stops the timers and breaks the run off through the host.
void CancelRun();
/// Takes the timers down without ending a run, at the module's unload.
void StopWatch();
