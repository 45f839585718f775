#pragma once
// The main dialog of a host without a window, as prompts on its command line.
#include "engine/RunUi.h"

/// Prints a summary of the queue. When the user can answer, prompts until the run is started (Ok) or the
/// dialog is left (Cancel); else the answer is Cancel.
RunUi::Answer RunConsoleDialog();
