// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <initializer_list>
#include <string>

#include "drafthost/activex/Model.h"

namespace drafthost::activex {

/// Runs a command that must be complete with these answers; false when it was refused or cancelled.
bool runCommand(Call& call, std::initializer_list<std::string> answers);
/// The same, failing the program when it was.
void mustRun(Call& call, std::initializer_list<std::string> answers);

}  // namespace drafthost::activex
