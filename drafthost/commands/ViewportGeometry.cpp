// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/ViewportGeometry.h"

#include <cmath>

#include "drafthost/commands/UserSystem.h"
#include "drafthost/drawing/Angles.h"

namespace drafthost::commands {

std::optional<Transform> paperFromModel(const Drawing& drawing, RecordId viewport) {
    const Record record = drawing.record(viewport);
    const Point direction = normalised(record.pointOr(16, {0, 0, 1}));
    const double viewHeight = record.realOr(45, 0);
    const double height = record.realOr(41, 0);
    if (std::fabs(direction.x) > 1e-9 || std::fabs(direction.y) > 1e-9 || direction.z < 0 ||
        !(viewHeight > 0) || !(height > 0)) {
        return std::nullopt;
    }
    const double factor = height / viewHeight;
    const double twist = record.realOr(51, 0) * RadiansPerDegree;
    const Point target = record.pointOr(17, {});
    const Point center = record.pointOr(12, {});
    const Point place = record.pointOr(10, {});
    // The centre of the view counts in the turned picture.
    return Transform::translation({place.x, place.y, 0}) * Transform::scale(factor, factor, factor) *
           Transform::translation({-center.x, -center.y, 0}) * Transform::rotation(twist) *
           Transform::translation(target * -1);
}

Transform inverseScaled(const Transform& map) {
    const double factor = length(map.x);
    const Transform rigid{map.x * (1 / factor), map.y * (1 / factor), map.z * (1 / factor), map.origin};
    return Transform::scale(1 / factor, 1 / factor, 1 / factor) * inverseOf(rigid);
}

}  // namespace drafthost::commands
