// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The flow of a run: the command with its main dialog, the start, the step from one drawing to the next, the
// end. None of it is a loop. A run is a chain of short calls from the host into the module, each of which
// sets up the next one and returns, so nothing is kept on the stack: all of it is in the record.

/// The command: the main dialog, and the start of a run when it ends with Ok. During a run it ends the run.
void DoBatch();
/// Starts a run, or goes on with one. False when the user refused; the run then counts as begun, and the
/// next command tidies up.
bool DoStartBatch();
/// Picks the next drawing and starts its script. False: none was left and the run has ended.
bool DoNextFile();
/// Ends a run and brings the main dialog back.
void Cleanup();
/// The user broke the run off. Drawings that wait stay ToDo.
void DoCancelBatch();
/// The host's window goes in the middle of a run: the file in work is Canceled and the state is saved. No
/// dialog comes back and no drawing is opened any more. Without a run it does nothing.
void LeaveRun();
