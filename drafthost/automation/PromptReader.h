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
enum InitGetBits { NoEnter = 1, NoZero = 2, NoNegative = 4, PlaneDistance = 64, Arbitrary = 128 };

PromptReading readAnswer(const PromptRequest& request, const PromptAnswer& answer, const ReadingRules& rules);

}  // namespace drafthost::automation
