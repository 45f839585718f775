// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Paths of single entities, in the coordinates of the entity itself. Geometry by the group codes of the
// published DXF reference.
#include "drafthost/drawing/Drawing.h"

#include <optional>
#include <QPainterPath>
#include <QTransform>

namespace drafthost {

/// Path of a curve or outline; nothing for types that have none (text, inserts, unknown ones). POLYLINE takes
/// its vertices from the records behind it.
std::optional<QPainterPath> entityPath(const Drawing& drawing, RecordId entity);

/// Object coordinates of a planar entity, by its extrusion direction (210), as seen from above.
QTransform extrusionTransform(const Record& record);

/// Appends an arc from where the path stands to a point, by bulge (tangent of a quarter of its angle).
void bulgeTo(QPainterPath& path, const QPointF& to, double bulge);

}  // namespace drafthost
