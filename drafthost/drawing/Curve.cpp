// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Curve.h"

#include <algorithm>
#include <cmath>

#include "drafthost/drawing/Angles.h"

namespace drafthost {

namespace {

constexpr double Pi = std::numbers::pi;
constexpr double OnCurve = 1e-6;

double dot(const Point& a, const Point& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Transform systemFor(const Record& record) {
    const auto i = record.find(210);
    return i ? Transform::ofExtrusion(record.point(*i)) : Transform();
}

CurvePiece lineFrom(const Point& a, const Point& b, double from, double to) {
    CurvePiece piece;
    piece.center = a;
    piece.u = b - a;
    piece.from = from;
    piece.to = to;
    return piece;
}

CurvePiece arcOf(const Record& record, double from, double to) {
    const Transform ocs = systemFor(record);
    const double radius = record.realOr(40, 0);
    CurvePiece piece;
    piece.kind = CurvePiece::Kind::Arc;
    piece.center = ocs(record.pointOr(10, {}));
    piece.u = ocs.x * radius;
    piece.v = ocs.y * radius;
    piece.from = piece.fromAngle = from;
    piece.to = piece.toAngle = to;
    return piece;
}

CurvePiece ellipseOf(const Record& record) {
    const auto n = record.find(210);
    CurvePiece piece;
    piece.kind = CurvePiece::Kind::Arc;
    piece.center = record.pointOr(10, {});
    piece.u = record.pointOr(11, {1, 0, 0});
    piece.v = cross(n ? normalised(record.point(*n)) : Point{0, 0, 1}, piece.u) * record.realOr(40, 1);
    piece.from = record.realOr(41, 0);
    piece.to = record.realOr(42, 2 * Pi);
    if (piece.to <= piece.from) {
        piece.to += 2 * Pi;
    }
    piece.fromAngle = piece.from;
    piece.toAngle = piece.to;
    return piece;
}

std::optional<CurvePiece> splineOf(const Record& record) {
    CurvePiece piece;
    piece.kind = CurvePiece::Kind::Nurbs;
    piece.degree = static_cast<int>(record.integerOr(71, 3));
    std::vector<Point> fit;
    for (std::size_t i = 1; i < record.xdata(); ++i) {
        switch (record.code(i)) {
            case 10:
                piece.controls.push_back(record.point(i));
                break;
            case 11:
                fit.push_back(record.point(i));
                break;
            case 40:
                piece.knots.push_back(record.real(i));
                break;
            case 41:
                piece.weights.push_back(record.real(i));
                break;
            default:
                break;
        }
    }
    const auto degree = static_cast<std::size_t>(std::max(1, piece.degree));
    if (piece.controls.size() <= degree || piece.knots.size() != piece.controls.size() + degree + 1) {
        return std::nullopt;
    }
    piece.from = piece.knots[degree];
    piece.to = piece.knots[piece.controls.size()];
    return piece;
}

}  // namespace

std::vector<PolylineVertex> polylineVertices(const Drawing& drawing, RecordId entity) {
    constexpr std::int64_t Frame = 16;
    std::vector<PolylineVertex> result;
    const Record record = drawing.record(entity);
    if (record.type() == "LWPOLYLINE") {
        const double elevation = record.realOr(38, 0);
        for (std::size_t i = 1; i < record.xdata(); ++i) {
            if (record.code(i) == 10) {
                const Point p = record.point(i);
                result.push_back({{p.x, p.y, elevation}, 0});
            } else if (record.code(i) == 42 && !result.empty()) {
                result.back().bulge = record.real(i);
            }
        }
        return result;
    }
    for (RecordId id = drawing.next(entity); id != NoRecord && drawing.type(id) == "VERTEX";
         id = drawing.next(id)) {
        const Record vertex = drawing.record(id);
        if ((vertex.integerOr(70, 0) & Frame) == 0) {
            result.push_back({vertex.pointOr(10, {}), vertex.realOr(42, 0)});
        }
    }
    return result;
}

CurvePiece pieceBetween(const PolylineVertex& a, const PolylineVertex& b, const Transform& plane) {
    const double dx = b.place.x - a.place.x;
    const double dy = b.place.y - a.place.y;
    const double chord = std::hypot(dx, dy);
    if (a.bulge == 0 || chord == 0) {
        return lineFrom(plane(a.place), plane(b.place), 0, 1);
    }
    const double turn = 4 * std::atan(a.bulge);
    const double radius = chord * (1 + a.bulge * a.bulge) / (4 * a.bulge);
    const double along = std::atan2(dy, dx);
    // From the first vertex the centre lies to the left of a counter-clockwise arc.
    const double toCenter = along + Pi / 2 - turn / 2;
    const Point center{a.place.x + radius * std::cos(toCenter), a.place.y + radius * std::sin(toCenter),
                       a.place.z};
    CurvePiece piece;
    piece.kind = CurvePiece::Kind::Arc;
    piece.center = plane(center);
    piece.u = plane.x * std::abs(radius);
    piece.v = plane.y * std::abs(radius);
    piece.fromAngle = std::atan2(a.place.y - center.y, a.place.x - center.x);
    piece.toAngle = piece.fromAngle + turn;
    piece.from = 0;
    piece.to = 1;
    return piece;
}

std::optional<Curve> Curve::of(const Drawing& drawing, RecordId entity) {
    const Record record = drawing.record(entity);
    const std::string_view type = record.type();
    Curve curve;
    if (type == "LINE") {
        const Point a = record.pointOr(10, {});
        const Point b = record.pointOr(11, {});
        curve.pieces_.push_back(lineFrom(a, b, 0, drafthost::length(b - a)));
    } else if (type == "RAY" || type == "XLINE") {
        const Point a = record.pointOr(10, {});
        curve.pieces_.push_back(lineFrom(a, a + record.pointOr(11, {1, 0, 0}), 0, 1));
        curve.endless_ = true;
    } else if (type == "CIRCLE") {
        curve.pieces_.push_back(arcOf(record, 0, 2 * Pi));
        curve.closed_ = curve.periodic_ = true;
    } else if (type == "ARC") {
        const double from = record.realOr(50, 0) * RadiansPerDegree;
        const double to = record.realOr(51, 0) * RadiansPerDegree;
        curve.pieces_.push_back(arcOf(record, from, to <= from ? to + 2 * Pi : to));
    } else if (type == "ELLIPSE") {
        curve.pieces_.push_back(ellipseOf(record));
        const CurvePiece& piece = curve.pieces_.front();
        curve.closed_ = curve.periodic_ = piece.to - piece.from > 2 * Pi - OnCurve;
    } else if (type == "SPLINE") {
        const auto piece = splineOf(record);
        if (!piece) {
            return std::nullopt;
        }
        curve.closed_ = (record.integerOr(70, 0) & 1) != 0;
        curve.periodic_ = (record.integerOr(70, 0) & 2) != 0;
        curve.pieces_.push_back(*piece);
    } else if (type == "LEADER") {
        std::vector<Point> points;
        for (std::size_t i = 1; i < record.xdata(); ++i) {
            if (record.code(i) == 10) {
                points.push_back(record.point(i));
            }
        }
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            curve.pieces_.push_back(
                lineFrom(points[i], points[i + 1], static_cast<double>(i), static_cast<double>(i + 1)));
        }
    } else if (type == "LWPOLYLINE" || type == "POLYLINE") {
        const std::int64_t flags = record.integerOr(70, 0);
        if (type == "POLYLINE" && (flags & (16 | 64)) != 0) {
            return std::nullopt;
        }
        const Transform plane = (flags & 8) != 0 && type == "POLYLINE" ? Transform() : systemFor(record);
        const std::vector<PolylineVertex> vertices = polylineVertices(drawing, entity);
        curve.closed_ = (flags & 1) != 0;
        const std::size_t count = vertices.size() < 2 ? 0 : vertices.size() - (curve.closed_ ? 0 : 1);
        for (std::size_t i = 0; i < count; ++i) {
            CurvePiece piece = pieceBetween(vertices[i], vertices[(i + 1) % vertices.size()], plane);
            piece.from = static_cast<double>(i);
            piece.to = piece.from + 1;
            curve.pieces_.push_back(piece);
        }
    }
    return curve.pieces_.empty() ? std::nullopt : std::optional(std::move(curve));
}

bool Curve::isPlanar() const {
    std::vector<Point> points;
    for (const CurvePiece& piece : pieces_) {
        points.insert(points.end(), piece.controls.begin(), piece.controls.end());
        if (piece.kind != CurvePiece::Kind::Nurbs) {
            // Three points tell the plane of an arc.
            const double middle = (piece.from + piece.to) / 2;
            points.insert(points.end(), {piece.at(piece.from), piece.at(middle), piece.at(piece.to)});
        }
    }
    Point normal;
    double size = 0;
    for (std::size_t i = 2; i < points.size(); ++i) {
        const Point n = cross(points[i - 1] - points[0], points[i] - points[0]);
        size = std::max(size, drafthost::length(points[i] - points[0]));
        normal = drafthost::length(n) > drafthost::length(normal) ? n : normal;
    }
    if (drafthost::length(normal) <= 1e-12 * size * size) {
        return true;
    }
    const Point unit = normalised(normal);
    return std::all_of(points.begin(), points.end(), [&](const Point& p) {
        return std::abs(dot(unit, p - points[0])) <= 1e-9 * std::max(1.0, size);
    });
}

const CurvePiece* Curve::pieceAt(double& t) const {
    if (endless_) {
        return &pieces_.front();
    }
    const double slack = 1e-9 * std::max(1.0, std::abs(end()));
    if (t < start() - slack || t > end() + slack) {
        return nullptr;
    }
    t = std::clamp(t, start(), end());
    for (const CurvePiece& piece : pieces_) {
        if (t <= piece.to) {
            return &piece;
        }
    }
    return &pieces_.back();
}

std::optional<Point> Curve::at(double t) const {
    const CurvePiece* piece = pieceAt(t);
    return piece == nullptr ? std::nullopt : std::optional(piece->at(t));
}
std::optional<Point> Curve::first(double t) const {
    const CurvePiece* piece = pieceAt(t);
    return piece == nullptr ? std::nullopt : std::optional(piece->first(t));
}
std::optional<Point> Curve::second(double t) const {
    const CurvePiece* piece = pieceAt(t);
    return piece == nullptr ? std::nullopt : std::optional(piece->second(t));
}

std::optional<double> Curve::distanceAt(double t) const {
    const CurvePiece* last = pieceAt(t);
    if (last == nullptr) {
        return std::nullopt;
    }
    double sum = 0;
    for (const CurvePiece& piece : pieces_) {
        if (&piece == last) {
            return sum + piece.lengthTo(t);
        }
        sum += piece.lengthTo(piece.to);
    }
    return sum;
}

std::optional<double> Curve::parameterAtDistance(double distance) const {
    if (distance < 0) {
        return std::nullopt;
    }
    for (const CurvePiece& piece : pieces_) {
        const double whole = piece.lengthTo(piece.to);
        const bool isLast = &piece == &pieces_.back();
        if (distance > whole && !(isLast && (endless_ || distance <= whole * (1 + 1e-9)))) {
            distance -= whole;
            continue;
        }
        if (piece.kind == CurvePiece::Kind::Line || whole == 0) {
            return piece.from + (whole == 0 ? 0 : distance / whole) * (piece.to - piece.from);
        }
        double low = piece.from;
        double high = piece.to;
        for (int i = 0; i < 60 && high - low > 1e-15 * std::max(1.0, std::abs(high)); ++i) {
            const double middle = (low + high) / 2;
            (piece.lengthTo(middle) < distance ? low : high) = middle;
        }
        return (low + high) / 2;
    }
    return std::nullopt;
}

double Curve::nearestOn(const CurvePiece& piece, const Point& p, bool extend, double& distance) const {
    const auto measure = [&](double t) { return drafthost::length(piece.at(t) - p); };
    if (piece.kind == CurvePiece::Kind::Line) {
        const double square = dot(piece.u, piece.u);
        double share = square == 0 ? 0 : dot(p - piece.center, piece.u) / square;
        if (!extend) {
            share = std::clamp(share, 0.0, 1.0);
        }
        const double foot = piece.from + share * (piece.to - piece.from);
        distance = measure(foot);
        return foot;
    }
    constexpr int Samples = 64;
    const double width = (piece.to - piece.from) / Samples;
    int nearest = 0;
    for (int i = 1; i <= Samples; ++i) {
        if (measure(piece.from + i * width) < measure(piece.from + nearest * width)) {
            nearest = i;
        }
    }
    double low = std::max(piece.from, piece.from + (nearest - 1) * width);
    double high = std::min(piece.to, piece.from + (nearest + 1) * width);
    for (int i = 0; i < 100; ++i) {
        const double a = low + (high - low) / 3;
        const double b = high - (high - low) / 3;
        (measure(a) < measure(b) ? high : low) = measure(a) < measure(b) ? b : a;
    }
    double best = (low + high) / 2;
    for (const double t : {piece.from, piece.to}) {
        if (measure(t) <= measure(best)) {
            best = t;
        }
    }
    distance = measure(best);
    return best;
}

std::optional<double> Curve::parameterAt(const Point& p) const {
    std::optional<double> best;
    double least = OnCurve;
    for (const CurvePiece& piece : pieces_) {
        double distance = 0;
        const double t = nearestOn(piece, p, endless_, distance);
        if (distance < least) {
            least = distance;
            best = t;
        }
    }
    return best;
}

Point Curve::closest(const Point& p, bool extend) const {
    Point best = pieces_.front().at(start());
    double least = drafthost::length(best - p);
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
        const bool atEnd = i == 0 || i + 1 == pieces_.size();
        double distance = 0;
        const double t =
            nearestOn(pieces_[i], p, endless_ || (extend && atEnd && pieces_.size() == 1), distance);
        if (distance < least) {
            least = distance;
            best = pieces_[i].at(t);
        }
    }
    return best;
}

double Curve::area() const {
    // By the theorem of Green over a fine chain of points, exactly for lines and, with their segments, for
    // arcs.
    Point normalSum{};
    const Point origin = pieces_.front().at(start());
    const auto add = [&](const Point& a, const Point& b) {
        const Point c = cross(a - origin, b - origin);
        normalSum = normalSum + c * 0.5;
    };
    for (const CurvePiece& piece : pieces_) {
        if (piece.kind == CurvePiece::Kind::Line) {
            add(piece.at(piece.from), piece.at(piece.to));
            continue;
        }
        if (piece.kind == CurvePiece::Kind::Arc) {
            const double turn = piece.toAngle - piece.fromAngle;
            add(piece.at(piece.from), piece.at(piece.to));
            normalSum = normalSum + cross(piece.u, piece.v) * ((turn - std::sin(turn)) / 2);
            continue;
        }
        constexpr int Steps = 2000;
        for (int i = 0; i < Steps; ++i) {
            const double width = (piece.to - piece.from) / Steps;
            add(piece.at(piece.from + i * width), piece.at(piece.from + (i + 1) * width));
        }
    }
    return drafthost::length(normalSum);
}

}  // namespace drafthost
