// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/Transform.h"

namespace drafthost {

/// How an entity is moved about.
struct TransformOptions {
    bool mirrorText = false;  ///< MIRRTEXT: a mirrored text is written mirrored
};

/// Maps an entity with its sub-entities. The map must be one that keeps angles, but for entities that can
/// take any (lines, points, splines, faces). False with one line of cause, and nothing changed, when the
/// entity cannot be mapped so or its kind is not known (solids, proxies).
bool transformEntity(Drawing& drawing, RecordId entity, const Transform& map, const TransformOptions& options,
                     std::string& error);

/// The boundary paths, seeds and pattern of a hatch, in its own plane: `flat` maps plane to plane.
void transformHatch(Drawing& drawing, RecordId hatch, const Transform& flat, bool mirrored, double scale);

}  // namespace drafthost
