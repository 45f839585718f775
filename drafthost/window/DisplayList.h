// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What a drawing looks like, as paths in drawing units: made once from the entities of the current space and
// then painted at any zoom. Of entities that this host does not draw nothing appears; they are not lost.
#include "drafthost/drawing/Drawing.h"

#include <QColor>
#include <QPainterPath>
#include <QRectF>
#include <QString>
#include <QTransform>
#include <vector>

namespace drafthost {

/// One painted thing. Text is a single line of height 1 at the origin, put in place by the transform.
struct DisplayItem {
    QPainterPath path;
    QString text;
    QTransform place;
    QColor color;  ///< invalid: the colour of the foreground
    bool filled = false;
    bool dot = false;  ///< a POINT: the path is its place
    QRectF bounds;
};

struct DisplayList {
    std::vector<DisplayItem> items;
    QRectF bounds;
};

/// Walks the entities of model space, or of the active paper space; layers that are off or frozen are left
/// out.
DisplayList buildDisplayList(const Drawing& drawing, bool paper);

/// Colour of an index 1 to 255; invalid for 7, which is the colour of the foreground, and for others.
QColor indexedColor(int index);

}  // namespace drafthost
