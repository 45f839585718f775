// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Asks through the host until an answer fits; shared by the (getXXX) and the selection functions.

#include "drafthost/automation/LispHost.h"

namespace drafthost::automation {

/// The answer as a value. Uses up what (initget) left; fails when cancelled or inside (command …).
Value askUser(Evaluator& e, PromptRequest request);

}  // namespace drafthost::automation
