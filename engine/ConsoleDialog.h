// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The main dialog of a host without a window, as prompts on its command line.
#include "engine/RunUi.h"

#include <optional>

/// Answers that the dialog got for questions of the start, which comes when nobody can answer any more.
struct StartAnswers {
    /// Whether the other drawings may be closed.
    std::optional<RunUi::Answer> Documents;
    /// Whether the changes of the current drawing are saved.
    std::optional<RunUi::Answer> Changes;
};

/// Prints a summary of the queue. When the user can answer, prompts until the run is started (Ok) or the
/// dialog is left (Cancel); else the answer is Cancel.
RunUi::Answer RunConsoleDialog(StartAnswers& answers);
