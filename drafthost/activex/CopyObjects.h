// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/activex/Model.h"

namespace drafthost::activex {

/// CopyObjects: objects, and the owner that gets the copies; of the same drawing or of another.
Result copyObjects(Call& call);

}  // namespace drafthost::activex
