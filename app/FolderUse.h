#pragma once
// How a command takes a data folder: it locks it and clears up what an earlier run has left there, results of
// several hosts that never came back together, and logs that were set aside.
#include "app/DataFolder.h"

#include <string>

/// For a new queue. What the run before has left is dropped; a state that cannot be read is kept under
/// another name, which standard error tells. False with one line.
bool TakeForNewQueue(DataFolder* folder, std::string* error);

/// For going on with the queue on disk, and with its log too when the log is of the same run. False with one
/// line.
bool TakeToGoOn(DataFolder* folder, bool sameLog, std::string* error);
