// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The dialogs of the module, made only where the host has a frame: the same module serves a host without one.
#include "engine/RunUi.h"

#include <memory>

/// The dialogs, null in a host without a frame.
std::unique_ptr<RunUi> MakeWindowUi();
