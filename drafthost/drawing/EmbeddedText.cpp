// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/EmbeddedText.h"

#include <algorithm>
#include <cmath>

#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/Transform.h"

namespace drafthost {

namespace {

/// What is so already stays as it is written.
void setReal(Drawing& drawing, RecordId id, std::size_t at, double value) {
    if (drawing.record(id).real(at) != value) {
        drawing.setTag(id, at, value);
    }
}

void setPoint(Drawing& drawing, RecordId id, std::size_t at, int code, const Point& p) {
    const double parts[] = {p.x, p.y, p.z};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const Record record = drawing.record(id);
        if (at + axis < record.xdata() && record.code(at + axis) == code + 10 * static_cast<int>(axis)) {
            setReal(drawing, id, at + axis, parts[axis]);
        }
    }
}

}  // namespace

std::size_t embeddedStart(const Record& record) {
    for (std::size_t i = 1; i < record.xdata(); ++i) {
        if (record.code(i) == 101) {
            return i;
        }
    }
    return record.xdata();
}

void syncEmbeddedText(Drawing& drawing, RecordId mtext, double scale) {
    const Record record = drawing.record(mtext);
    const std::size_t start = embeddedStart(record);
    if (start == record.xdata() || record.type() != "MTEXT") {
        return;
    }
    Point along{1, 0, 0};
    for (std::size_t i = 1; i < start; ++i) {
        if (record.code(i) == 11) {
            along = record.point(i);
        } else if (record.code(i) == 50) {
            const double angle = record.real(i) * RadiansPerDegree;
            along = Transform::ofExtrusion(record.pointOr(210, {0, 0, 1}))
                        .vector({std::cos(angle), std::sin(angle), 0});
        }
    }
    const Point insertion = record.pointOr(10, {});
    const auto outerWidth = record.find(41);
    const double width = outerWidth && *outerWidth < start ? record.real(*outerWidth) : -1;
    for (std::size_t i = start + 1; i < record.xdata(); ++i) {
        const int code = drawing.record(mtext).code(i);
        if (code == 10) {
            setPoint(drawing, mtext, i, 10, normalised(along));
        } else if (code == 11) {
            setPoint(drawing, mtext, i, 11, insertion);
        } else if (code == 40 && width >= 0) {
            setReal(drawing, mtext, i, width);
        } else if (scale != 1 && code >= 41 && code <= 46) {
            setReal(drawing, mtext, i, drawing.record(mtext).real(i) * scale);
        }
    }
}

void transformEmbeddedText(Drawing& drawing, RecordId id, const Transform& map, double scale) {
    for (std::size_t i = embeddedStart(drawing.record(id)) + 1; i < drawing.record(id).xdata(); ++i) {
        const Record record = drawing.record(id);
        const int code = record.code(i);
        if (code == 10) {
            setPoint(drawing, id, i, 10, normalised(map.vector(record.point(i))));
        } else if (code == 11) {
            setPoint(drawing, id, i, 11, map(record.point(i)));
        } else if (scale != 1 && code >= 40 && code <= 46) {
            setReal(drawing, id, i, record.real(i) * scale);
        }
    }
}

}  // namespace drafthost
