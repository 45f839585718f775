// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// `tarnel bundle` from its options to its exit status.
#include "app/ExitStatus.h"

#include <string>

/// Packs what support needs of the last run in a data folder and prints where the archive lies.
ExitStatus MakeBundle(const std::string& dataDir, const char* version);
