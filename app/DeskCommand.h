// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// "tarnel desk": the host with its window, with the module loaded. It takes the place of this process, so
// that the terminal, signals and the exit status are the window's own.
#include <string>
#include <vector>

/// Does not return when the window could be started; else one line on standard error and the exit status.
int OpenDesk(const std::vector<std::string>& drawings);
