// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Intersect.h"

#include <algorithm>
#include <cmath>

#include "drafthost/drawing/EntityCopy.h"

namespace drafthost {

namespace {

constexpr double Pi = 3.14159265358979323846;
constexpr double Near = 1e-9;

double dot(const Point& a, const Point& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

bool isRound(const CurvePiece& piece) {
    return piece.kind == CurvePiece::Kind::Arc &&
           std::abs(length(piece.u) - length(piece.v)) <= Near * length(piece.u);
}

/// Collects points that lie on both pieces.
class Crossing {
  public:
    Crossing(const CurvePiece& a, const CurvePiece& b, bool extendA, bool extendB, std::vector<Point>& found)
        : a_(a), b_(b), extendA_(extendA), extendB_(extendB), found_(found) {}

    void run() {
        const bool lineA = a_.kind == CurvePiece::Kind::Line;
        const bool lineB = b_.kind == CurvePiece::Kind::Line;
        if (lineA && lineB) {
            lines();
        } else if (lineA && isRound(b_)) {
            lineAndArc(a_, b_);
        } else if (lineB && isRound(a_)) {
            lineAndArc(b_, a_);
        } else if (isRound(a_) && isRound(b_)) {
            arcs();
        } else {
            chords();
        }
    }

  private:
    bool isOn(const CurvePiece& piece, bool extend, const Point& p) const {
        const double slack = 1e-8 * std::max(1.0, length(piece.u));
        if (piece.kind == CurvePiece::Kind::Line) {
            const double square = dot(piece.u, piece.u);
            const double share = square == 0 ? 0 : dot(p - piece.center, piece.u) / square;
            const double end = square == 0 ? 0 : slack / std::sqrt(square);
            return (extend || (share >= -end && share <= 1 + end)) &&
                   length(piece.center + piece.u * share - p) <= slack;
        }
        const Point d = p - piece.center;
        const double square = dot(piece.u, piece.u);
        if (std::abs(length(d) - std::sqrt(square)) > slack) {
            return false;
        }
        if (extend) {
            return true;
        }
        double angle = std::atan2(dot(d, piece.v), dot(d, piece.u));
        const double low = std::min(piece.fromAngle, piece.toAngle);
        const double high = std::max(piece.fromAngle, piece.toAngle);
        const double more = 1e-9;
        angle = low + std::fmod(std::fmod(angle - low, 2 * Pi) + 2 * Pi, 2 * Pi);
        return angle <= high + more || angle - 2 * Pi >= low - more;
    }

    void add(const Point& p) {
        if (!isOn(a_, extendA_, p) || !isOn(b_, extendB_, p)) {
            return;
        }
        insert(p);
    }
    void insert(const Point& p) {
        const bool known =
            std::any_of(found_.begin(), found_.end(), [&](const Point& q) { return length(p - q) < 1e-7; });
        if (!known) {
            found_.push_back(p);
        }
    }

    void lines() {
        const Point n = cross(a_.u, b_.u);
        const double square = dot(n, n);
        if (square <= 1e-24 * dot(a_.u, a_.u) * dot(b_.u, b_.u)) {
            return;
        }
        add(a_.center + a_.u * (dot(cross(b_.center - a_.center, b_.u), n) / square));
    }

    void lineAndArc(const CurvePiece& line, const CurvePiece& arc) {
        const Point d = line.center - arc.center;
        const double a = dot(line.u, line.u);
        const double half = dot(line.u, d);
        const double r = length(arc.u);
        const double root = half * half - a * (dot(d, d) - r * r);
        if (a == 0 || root < -Near * a * r * r) {
            return;
        }
        const double q = std::sqrt(std::max(0.0, root));
        add(line.center + line.u * ((-half - q) / a));
        add(line.center + line.u * ((-half + q) / a));
    }

    void arcs() {
        const double r = length(a_.u);
        const double s = length(b_.u);
        const Point d = b_.center - a_.center;
        const double distance = length(d);
        if (distance == 0 || distance > (r + s) * (1 + Near) || distance < std::abs(r - s) * (1 - Near)) {
            return;
        }
        const double along = (distance * distance + r * r - s * s) / (2 * distance);
        const double up = std::sqrt(std::max(0.0, r * r - along * along));
        const Point e = d * (1 / distance);
        const Point n = normalised(cross(cross(a_.u, a_.v), e));
        add(a_.center + e * along + n * up);
        add(a_.center + e * along - n * up);
    }

    /// Ellipses and splines: chords that cross, then made better.
    void chords() {
        constexpr int Steps = 256;
        const auto parameter = [](const CurvePiece& piece, int i) {
            return piece.from + (piece.to - piece.from) * i / Steps;
        };
        for (int i = 0; i < Steps; ++i) {
            for (int k = 0; k < (b_.kind == CurvePiece::Kind::Line ? 1 : Steps); ++k) {
                const bool whole = b_.kind == CurvePiece::Kind::Line;
                double t = (parameter(a_, i) + parameter(a_, i + 1)) / 2;
                double u = whole ? (b_.from + b_.to) / 2 : (parameter(b_, k) + parameter(b_, k + 1)) / 2;
                const double reach =
                    length(a_.at(parameter(a_, i)) - a_.at(parameter(a_, i + 1))) +
                    (whole ? 0 : length(b_.at(parameter(b_, k)) - b_.at(parameter(b_, k + 1))));
                if (!whole && length(a_.at(t) - b_.at(u)) > reach) {
                    continue;
                }
                refine(t, u);
            }
        }
    }

    void refine(double t, double u) {
        for (int i = 0; i < 30; ++i) {
            const Point d = a_.at(t) - b_.at(u);
            const Point da = a_.first(t);
            const Point db = b_.first(u);
            const double aa = dot(da, da);
            const double bb = dot(db, db);
            const double ab = dot(da, db);
            const double determinant = aa * bb - ab * ab;
            if (std::abs(determinant) < 1e-20) {
                return;
            }
            const double ra = -dot(da, d);
            const double rb = dot(db, d);
            t += (ra * bb + rb * ab) / determinant;
            u += (rb * aa + ra * ab) / determinant;
            if (length(d) < 1e-11) {
                break;
            }
        }
        const double more = 1e-9;
        const auto within = [&](const CurvePiece& piece, bool extend, double p) {
            return (extend && piece.kind == CurvePiece::Kind::Line) ||
                   (p >= piece.from - more && p <= piece.to + more);
        };
        if (within(a_, extendA_, t) && within(b_, extendB_, u) && length(a_.at(t) - b_.at(u)) < 1e-7) {
            insert(a_.at(t));
        }
    }

    const CurvePiece& a_;
    const CurvePiece& b_;
    bool extendA_;
    bool extendB_;
    std::vector<Point>& found_;
};

}  // namespace

std::vector<Point> intersections(const Curve& a, const Curve& b, bool extendA, bool extendB) {
    std::vector<Point> found;
    for (const CurvePiece& first : a.pieces()) {
        for (const CurvePiece& second : b.pieces()) {
            const bool endsA = &first == &a.pieces().front() || &first == &a.pieces().back();
            const bool endsB = &second == &b.pieces().front() || &second == &b.pieces().back();
            Crossing(first, second, a.isEndless() || (extendA && endsA && a.pieces().size() == 1),
                     b.isEndless() || (extendB && endsB && b.pieces().size() == 1), found)
                .run();
        }
    }
    return found;
}

namespace {

/// The corner of two parallels, or of the one where both run alike.
Point cornerOf(const Point& a, const Point& alongA, const Point& b, const Point& alongB) {
    const double n = alongA.x * alongB.y - alongA.y * alongB.x;
    if (std::abs(n) < 1e-12) {
        return b;
    }
    const Point d = b - a;
    return a + alongA * ((d.x * alongB.y - d.y * alongB.x) / n);
}

RecordId offsetPolyline(Drawing& drawing, RecordId entity, double distance) {
    const std::vector<PolylineVertex> v = polylineVertices(drawing, entity);
    const bool closed = (drawing.record(entity).integerOr(70, 0) & 1) != 0;
    const bool bent =
        std::any_of(v.begin(), v.end(), [](const PolylineVertex& one) { return one.bulge != 0; });
    const std::size_t segments = v.size() < 2 ? 0 : v.size() - (closed ? 0 : 1);
    if (segments == 0 || bent) {
        return NoRecord;
    }
    std::vector<std::pair<Point, Point>> sides;  // a point and a direction
    for (std::size_t i = 0; i < segments; ++i) {
        const Point step = v[(i + 1) % v.size()].place - v[i].place;
        if (length(step) == 0) {
            return NoRecord;
        }
        const Point along = normalised(step);
        sides.push_back({v[i].place + Point{along.y, -along.x, 0} * distance, along});
    }
    std::vector<Point> corners;
    for (std::size_t i = 0; i < v.size(); ++i) {
        const bool first = !closed && i == 0;
        const bool last = !closed && i + 1 == v.size();
        const auto& before = sides[(i + segments - 1) % segments];
        if (first) {
            corners.push_back(sides[0].first);
        } else if (last) {
            corners.push_back(before.first + before.second * length(v[i].place - v[i - 1].place));
        } else {
            corners.push_back(cornerOf(before.first, before.second, sides[i].first, sides[i].second));
        }
    }
    for (std::size_t i = 0; i < segments; ++i) {
        const Point d = corners[(i + 1) % v.size()] - corners[i];
        if (dot(d, sides[i].second) <= 0) {
            return NoRecord;
        }
    }
    const RecordId made = copyEntity(drawing, entity, targetOf(drawing, entity));
    std::size_t k = 0;
    for (std::size_t i = 1; made != NoRecord && i < drawing.record(made).xdata(); ++i) {
        if (drawing.record(made).code(i) == 10) {
            drawing.setTag(made, i, corners[k].x);
            drawing.setTag(made, i + 1, corners[k++].y);
        }
    }
    return made;
}

}  // namespace

std::vector<RecordId> offsetEntity(Drawing& drawing, RecordId entity, double distance) {
    const std::string type(drawing.type(entity));
    if (distance == 0) {
        return {};
    }
    if (type == "LWPOLYLINE") {
        const RecordId made = offsetPolyline(drawing, entity, distance);
        return made == NoRecord ? std::vector<RecordId>() : std::vector<RecordId>{made};
    }
    const double radius = drawing.record(entity).realOr(40, 0) + distance;
    if (type != "LINE" && ((type != "CIRCLE" && type != "ARC") || radius <= 0)) {
        return {};
    }
    const RecordId made = copyEntity(drawing, entity, targetOf(drawing, entity));
    if (made == NoRecord) {
        return {};
    }
    if (type != "LINE") {
        drawing.put(made, 40, radius);
        return {made};
    }
    const Record line = drawing.record(made);
    const Point from = line.pointOr(10, {});
    const Point to = line.pointOr(11, {});
    const Point along = normalised(Point{to.x - from.x, to.y - from.y, 0});
    const Point by = Point{along.y, -along.x, 0} * distance;
    drawing.putPoint(made, 10, from + by, true);
    drawing.putPoint(made, 11, to + by, true);
    return {made};
}

}  // namespace drafthost
