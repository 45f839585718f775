// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/Transform.h"

namespace drafthost {

// A curve of the drawing as something to be measured: a chain of pieces over one parameter. The parameter is
// the length along a line, the angle of a circle or arc, that of an ellipse, the number of the vertex in a
// polyline, the knots of a spline. Points are in world coordinates.

struct CurvePiece {
    enum class Kind { Line, Arc, Nurbs } kind = Kind::Line;
    double from = 0;  ///< parameters at both ends
    double to = 1;
    // A line runs from `center` along `u`, an arc is center + u cos a + v sin a.
    Point center, u, v;
    double fromAngle = 0;
    double toAngle = 1;

    Point at(double t) const;
    Point first(double t) const;
    Point second(double t) const;
    /// Length from the beginning of the piece up to a parameter.
    double lengthTo(double t) const;

    // Of a spline.
    int degree = 3;
    std::vector<double> knots;
    std::vector<Point> controls;
    std::vector<double> weights;
};

class Curve {
  public:
    /// LINE, ARC, CIRCLE, ELLIPSE, LWPOLYLINE, POLYLINE (not meshes), SPLINE, RAY, XLINE, LEADER; nothing for
    /// others.
    static std::optional<Curve> of(const Drawing& drawing, RecordId entity);

    double start() const { return pieces_.front().from; }
    double end() const { return pieces_.back().to; }
    bool isClosed() const { return closed_; }
    bool isPeriodic() const { return periodic_; }
    bool isPlanar() const;
    /// Without an end (RAY, XLINE).
    bool isEndless() const { return endless_; }

    // Nothing outside of the curve.
    std::optional<Point> at(double t) const;
    std::optional<Point> first(double t) const;
    std::optional<Point> second(double t) const;
    std::optional<double> distanceAt(double t) const;
    std::optional<double> parameterAtDistance(double distance) const;
    std::optional<double> parameterAt(const Point& p) const;
    /// The point of the curve nearest to one; lines and arcs go on beyond their ends when `extend`.
    Point closest(const Point& p, bool extend) const;
    /// Area enclosed, an open curve closed by a straight line; of what is not planar as seen from above.
    double area() const;
    const std::vector<CurvePiece>& pieces() const { return pieces_; }
    double length() const { return distanceAt(end()).value_or(0); }

  private:
    const CurvePiece* pieceAt(double& t) const;
    double nearestOn(const CurvePiece& piece, const Point& p, bool extend, double& distance) const;

    std::vector<CurvePiece> pieces_;
    bool closed_ = false;
    bool periodic_ = false;
    bool endless_ = false;
};

/// The pieces of a polyline in its own plane, or in space: one for each pair of neighbouring vertices.
struct PolylineVertex {
    Point place;
    double bulge = 0;
};
std::vector<PolylineVertex> polylineVertices(const Drawing& drawing, RecordId entity);
/// A piece from one vertex to the next in a plane.
CurvePiece pieceBetween(const PolylineVertex& from, const PolylineVertex& to, const Transform& plane);

}  // namespace drafthost
