// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Turns what arrives at a prompt of LISP into what the prompt asks for, within the bounds that (initget) set.

#include <optional>
#include <string>

#include "drafthost/automation/AnswerReader.h"

namespace drafthost::automation {

/// Either a value (nil for Enter) or the reason why the answer does not fit.
struct PromptReading {
    std::optional<Value> value;
    std::string reason;
};

/// Bits of (initget).
enum InitGetBits { kNoEnter = 1, kNoZero = 2, kNoNegative = 4, kPlaneDistance = 64, kArbitrary = 128 };

PromptReading readAnswer(const PromptRequest& request, const PromptAnswer& answer, const ReadingRules& rules);

}  // namespace drafthost::automation
