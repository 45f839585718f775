// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The string language of menus and status lines: "$(getvar,clayer)", "$(edtime,$(getvar,date),YYYY-MO-DD)".

#include <string>
#include <string_view>

#include "drafthost/automation/LispHost.h"

namespace drafthost::automation {

/// The text with every "$(function,arguments)" in it replaced by its value. What is wrong stands there as it
/// is published: "$?" for a parenthesis that is missing, "$(NAME,??)" for arguments that do not fit,
/// "$(NAME)??" for a function that is not known.
std::string evaluateDiesel(LispHost& host, std::string_view text);

}  // namespace drafthost::automation
