// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "drafthost/drawing/Drawing.h"

namespace drafthost::activex {

/// A layout of that name behind all others, with an empty sheet; the name must not be there yet. NoRecord
/// when the drawing keeps no layouts.
RecordId makeLayout(Drawing& drawing, const std::string& name);

}  // namespace drafthost::activex
