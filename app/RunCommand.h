// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// `tarnel run` from its options to its exit status.
#include "app/ExitStatus.h"
#include "app/RunOptions.h"

ExitStatus RunDrawings(const RunOptions& options);
