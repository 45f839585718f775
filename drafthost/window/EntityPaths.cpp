// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/EntityPaths.h"

#include "drafthost/drawing/Blocks.h"

#include <cmath>
#include <numbers>
#include <vector>

namespace drafthost {
namespace {

QPointF flat(const Point& point) {
    return {point.x, point.y};
}

double degrees(double angle) {
    return angle * std::numbers::pi / 180;
}

/// Angles in radians, counter-clockwise.
void addArc(QPainterPath& path, const QPointF& center, double radius, double from, double to) {
    if (to <= from) {
        to += 2 * std::numbers::pi;
    }
    const int steps = std::max(2, int(std::ceil((to - from) / (std::numbers::pi / 32))));
    for (int i = 0; i <= steps; ++i) {
        const double angle = from + (to - from) * i / steps;
        const QPointF at = center + QPointF(std::cos(angle), std::sin(angle)) * radius;
        i == 0 ? path.moveTo(at) : path.lineTo(at);
    }
}

QPainterPath ellipse(const Record& record) {
    const QPointF center = flat(record.pointOr(10, {}));
    const QPointF major = flat(record.pointOr(11, {1, 0, 0}));
    const double ratio = record.realOr(40, 1);
    const QPointF minor(-major.y() * ratio, major.x() * ratio);
    const double from = record.realOr(41, 0);
    double to = record.realOr(42, 2 * std::numbers::pi);
    if (to <= from) {
        to += 2 * std::numbers::pi;
    }
    QPainterPath path;
    constexpr int Steps = 64;
    for (int i = 0; i <= Steps; ++i) {
        const double t = from + (to - from) * i / Steps;
        const QPointF at = center + major * std::cos(t) + minor * std::sin(t);
        i == 0 ? path.moveTo(at) : path.lineTo(at);
    }
    return path;
}

/// A point of a B-spline by de Boor's algorithm; knots and control points as the entity gives them.
QPointF splinePoint(const std::vector<QPointF>& control, const std::vector<double>& knots, int degree,
                    std::size_t span, double t) {
    std::vector<QPointF> work(control.begin() + std::ptrdiff_t(span) - degree,
                              control.begin() + std::ptrdiff_t(span) + 1);
    for (int level = 1; level <= degree; ++level) {
        for (int j = degree; j >= level; --j) {
            const auto left = std::size_t(j) + span - std::size_t(degree);
            const double width = knots[left + std::size_t(degree - level) + 1] - knots[left];
            const double part = width > 0 ? (t - knots[left]) / width : 0;
            work[std::size_t(j)] = work[std::size_t(j) - 1] * (1 - part) + work[std::size_t(j)] * part;
        }
    }
    return work[std::size_t(degree)];
}

QPainterPath spline(const Record& record) {
    std::vector<QPointF> control;
    std::vector<QPointF> fit;
    std::vector<double> knots;
    for (std::size_t i = 0; i < record.xdata(); ++i) {
        if (record.code(i) == 10) {
            control.push_back(flat(record.point(i)));
        } else if (record.code(i) == 11) {
            fit.push_back(flat(record.point(i)));
        } else if (record.code(i) == 40) {
            knots.push_back(record.real(i));
        }
    }
    QPainterPath path;
    const int degree = int(record.integerOr(71, 3));
    const bool whole = degree >= 1 && degree < 20 && control.size() > std::size_t(degree) &&
                       knots.size() >= control.size() + std::size_t(degree) + 1;
    if (!whole) {
        const std::vector<QPointF>& through = fit.empty() ? control : fit;
        for (std::size_t i = 0; i < through.size(); ++i) {
            i == 0 ? path.moveTo(through[i]) : path.lineTo(through[i]);
        }
        return path;
    }
    path.moveTo(control.front());
    for (auto span = std::size_t(degree); span < control.size(); ++span) {
        if (knots[span + 1] <= knots[span]) {
            continue;
        }
        for (int step = 0; step <= 12; ++step) {
            const double t = knots[span] + (knots[span + 1] - knots[span]) * step / 12;
            const QPointF at = splinePoint(control, knots, degree, span, t);
            path.elementCount() == 1 && step == 0 ? path.moveTo(at) : path.lineTo(at);
        }
    }
    return path;
}

struct Vertex {
    QPointF at;
    double bulge;
};

QPainterPath throughVertices(const std::vector<Vertex>& vertices, bool closed) {
    QPainterPath path;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        i == 0 ? path.moveTo(vertices[0].at) : bulgeTo(path, vertices[i].at, vertices[i - 1].bulge);
    }
    if (closed && vertices.size() > 1) {
        bulgeTo(path, vertices.front().at, vertices.back().bulge);
    }
    return path;
}

QPainterPath lightPolyline(const Record& record) {
    std::vector<Vertex> vertices;
    for (std::size_t i = 0; i < record.xdata(); ++i) {
        if (record.code(i) == 10) {
            vertices.push_back({flat(record.point(i)), 0});
        } else if (record.code(i) == 42 && !vertices.empty()) {
            vertices.back().bulge = record.real(i);
        }
    }
    return throughVertices(vertices, (record.integerOr(70, 0) & 1) != 0);
}

/// Meshes (16: rows and columns, 64: faces) show their edges, all others a curve through their vertices.
QPainterPath oldPolyline(const Drawing& drawing, RecordId entity) {
    const Record record = drawing.record(entity);
    const auto flags = record.integerOr(70, 0);
    std::vector<Vertex> vertices;
    QPainterPath faces;
    for (RecordId id = drawing.next(entity); id != NoRecord && drawing.type(id) == "VERTEX";
         id = drawing.next(id)) {
        const Record vertex = drawing.record(id);
        const auto kind = vertex.integerOr(70, 0);
        if ((flags & 64) != 0 && (kind & 64) == 0) {
            QPolygonF face;
            for (int code = 71; code <= 74; ++code) {
                const auto number = std::size_t(std::abs(vertex.integerOr(code, 0)));
                if (number >= 1 && number <= vertices.size()) {
                    face << vertices[number - 1].at;
                }
            }
            faces.addPolygon(face);
            faces.closeSubpath();
            continue;
        }
        // Control points of a fitted curve are not part of it.
        if ((kind & 16) == 0) {
            vertices.push_back({flat(vertex.pointOr(10, {})), vertex.realOr(42, 0)});
        }
    }
    if ((flags & 64) != 0) {
        return faces;
    }
    if ((flags & 16) != 0) {
        const auto columns = std::size_t(std::max<std::int64_t>(1, record.integerOr(72, 1)));
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            if (i % columns != 0) {
                faces.moveTo(vertices[i - 1].at);
                faces.lineTo(vertices[i].at);
            }
            if (i >= columns) {
                faces.moveTo(vertices[i - columns].at);
                faces.lineTo(vertices[i].at);
            }
        }
        return faces;
    }
    return throughVertices(vertices, (flags & 1) != 0);
}

/// The third and fourth corner of SOLID and TRACE are crossed.
QPainterPath quad(const Record& record, bool crossed) {
    const Point third = record.pointOr(12, {});
    const QPointF corners[] = {flat(record.pointOr(10, {})), flat(record.pointOr(11, {})), flat(third),
                               flat(record.pointOr(13, third))};
    QPainterPath path(corners[0]);
    path.lineTo(corners[1]);
    path.lineTo(corners[crossed ? 3 : 2]);
    path.lineTo(corners[crossed ? 2 : 3]);
    path.closeSubpath();
    return path;
}

}  // namespace

void bulgeTo(QPainterPath& path, const QPointF& to, double bulge) {
    const QPointF from = path.currentPosition();
    const QPointF chord = to - from;
    const double length = std::hypot(chord.x(), chord.y());
    if (std::abs(bulge) < 1e-9 || length == 0) {
        path.lineTo(to);
        return;
    }
    const double angle = 4 * std::atan(bulge);
    const double radius = length / (2 * std::sin(angle / 2));
    const QPointF normal(-chord.y() / length, chord.x() / length);
    const QPointF center = (from + to) / 2 + normal * (radius * std::cos(angle / 2));
    const double begin = std::atan2(from.y() - center.y(), from.x() - center.x());
    const int steps = std::max(2, int(std::ceil(std::abs(angle) / (std::numbers::pi / 32))));
    for (int i = 1; i < steps; ++i) {
        const double at = begin + angle * i / steps;
        path.lineTo(center + QPointF(std::cos(at), std::sin(at)) * std::abs(radius));
    }
    path.lineTo(to);
}

QTransform extrusionTransform(const Record& record) {
    const Point normal = record.pointOr(210, {0, 0, 1});
    // Drawings in the plane know two cases: as it is, and seen from below.
    return normal.z < 0 ? QTransform(-1, 0, 0, 1, 0, 0) : QTransform();
}

std::optional<QPainterPath> entityPath(const Drawing& drawing, RecordId entity) {
    const Record record = drawing.record(entity);
    const std::string_view type = record.type();
    QPainterPath path;
    if (type == "LINE") {
        path.moveTo(flat(record.pointOr(10, {})));
        path.lineTo(flat(record.pointOr(11, {})));
        return path;
    }
    if (type == "CIRCLE" || type == "ARC") {
        const bool arc = type == "ARC";
        addArc(path, flat(record.pointOr(10, {})), record.realOr(40, 0),
               arc ? degrees(record.realOr(50, 0)) : 0,
               arc ? degrees(record.realOr(51, 360)) : 2 * std::numbers::pi);
        return extrusionTransform(record).map(path);
    }
    if (type == "ELLIPSE") {
        return ellipse(record);
    }
    if (type == "SPLINE") {
        return spline(record);
    }
    if (type == "LWPOLYLINE") {
        return extrusionTransform(record).map(lightPolyline(record));
    }
    if (type == "POLYLINE") {
        return extrusionTransform(record).map(oldPolyline(drawing, entity));
    }
    if (type == "SOLID" || type == "TRACE") {
        return extrusionTransform(record).map(quad(record, true));
    }
    if (type == "3DFACE") {
        return quad(record, false);
    }
    return std::nullopt;
}

}  // namespace drafthost
