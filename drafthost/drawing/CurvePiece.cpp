// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <cmath>

#include "drafthost/drawing/Curve.h"

namespace drafthost {

namespace {

// Nodes and weights of Gauss and Legendre for five points.
constexpr std::array<std::pair<double, double>, 5> Gauss = {{{-0.9061798459386640, 0.2369268850561891},
                                                             {-0.5384693101056831, 0.4786286704993665},
                                                             {0.0, 0.5688888888888889},
                                                             {0.5384693101056831, 0.4786286704993665},
                                                             {0.9061798459386640, 0.2369268850561891}}};

template <class Speed>
double integrate(const Speed& speed, double from, double to, int steps) {
    double sum = 0;
    const double width = (to - from) / steps;
    for (int i = 0; i < steps; ++i) {
        const double middle = from + (i + 0.5) * width;
        for (const auto& [node, weight] : Gauss) {
            sum += weight * speed(middle + node * width / 2) * width / 2;
        }
    }
    return sum;
}

/// A point with its weight, as splines are computed with.
struct Weighted {
    Point p;
    double w = 1;
};

Weighted mix(const Weighted& a, const Weighted& b, double f) {
    return {a.p * (1 - f) + b.p * f, a.w * (1 - f) + b.w * f};
}

/// The algorithm of de Boor, for a spline or for one of its derivatives.
Weighted evaluate(const std::vector<Weighted>& controls, const std::vector<double>& knots, int degree,
                  double t) {
    const int last = static_cast<int>(controls.size()) - 1;
    int span = degree;
    while (span < last && t >= knots[static_cast<std::size_t>(span) + 1]) {
        ++span;
    }
    std::vector<Weighted> d;
    for (int i = span - degree; i <= span; ++i) {
        d.push_back(controls[static_cast<std::size_t>(i)]);
    }
    for (int r = 1; r <= degree; ++r) {
        for (int i = degree; i >= r; --i) {
            const auto from = static_cast<std::ptrdiff_t>(span) - degree + i;
            const auto to = static_cast<std::ptrdiff_t>(span) + i + 1 - r;
            const double low = knots[static_cast<std::size_t>(from)];
            const double high = knots[static_cast<std::size_t>(to)];
            const double f = high > low ? (t - low) / (high - low) : 0;
            d[static_cast<std::size_t>(i)] =
                mix(d[static_cast<std::size_t>(i) - 1], d[static_cast<std::size_t>(i)], f);
        }
    }
    return d.back();
}

/// Controls of the derivative; its knots are the same without the first and last one.
std::vector<Weighted> derived(const std::vector<Weighted>& controls, const std::vector<double>& knots,
                              int degree) {
    std::vector<Weighted> result;
    for (std::size_t i = 0; i + 1 < controls.size(); ++i) {
        const double width = knots[i + static_cast<std::size_t>(degree) + 1] - knots[i + 1];
        const double f = width > 0 ? degree / width : 0;
        result.push_back({(controls[i + 1].p - controls[i].p) * f, (controls[i + 1].w - controls[i].w) * f});
    }
    return result;
}

std::vector<Weighted> weighted(const CurvePiece& piece) {
    std::vector<Weighted> result;
    for (std::size_t i = 0; i < piece.controls.size(); ++i) {
        const double w = i < piece.weights.size() ? piece.weights[i] : 1;
        result.push_back({piece.controls[i] * w, w});
    }
    return result;
}

/// Value and two derivatives of a spline.
std::array<Point, 3> spline(const CurvePiece& piece, double t, int order) {
    std::array<Weighted, 3> raw;
    std::vector<Weighted> controls = weighted(piece);
    std::vector<double> knots = piece.knots;
    int degree = piece.degree;
    for (int k = 0; k <= order && degree >= 0 && !controls.empty(); ++k) {
        raw[static_cast<std::size_t>(k)] = evaluate(controls, knots, degree, t);
        controls = derived(controls, knots, degree);
        knots = {knots.begin() + 1, knots.end() - 1};
        --degree;
    }
    for (int k = order; k >= 1 && piece.degree < k; --k) {
        raw[static_cast<std::size_t>(k)] = {{}, 0};
    }
    const double w = raw[0].w == 0 ? 1 : raw[0].w;
    std::array<Point, 3> result;
    result[0] = raw[0].p * (1 / w);
    if (order >= 1) {
        result[1] = (raw[1].p - result[0] * raw[1].w) * (1 / w);
    }
    if (order >= 2) {
        result[2] = (raw[2].p - result[1] * (2 * raw[1].w) - result[0] * raw[2].w) * (1 / w);
    }
    return result;
}

}  // namespace

Point CurvePiece::at(double t) const {
    if (kind == Kind::Nurbs) {
        return spline(*this, t, 0)[0];
    }
    const double share = to == from ? 0 : (t - from) / (to - from);
    if (kind == Kind::Line) {
        return center + u * share;
    }
    const double a = fromAngle + (toAngle - fromAngle) * share;
    return center + u * std::cos(a) + v * std::sin(a);
}

Point CurvePiece::first(double t) const {
    if (kind == Kind::Nurbs) {
        return spline(*this, t, 1)[1];
    }
    const double width = to == from ? 1 : to - from;
    if (kind == Kind::Line) {
        return u * (1 / width);
    }
    const double turn = (toAngle - fromAngle) / width;
    const double a = fromAngle + turn * (t - from);
    return (v * std::cos(a) - u * std::sin(a)) * turn;
}

Point CurvePiece::second(double t) const {
    if (kind == Kind::Nurbs) {
        return spline(*this, t, 2)[2];
    }
    if (kind == Kind::Line) {
        return {};
    }
    const double turn = (toAngle - fromAngle) / (to == from ? 1 : to - from);
    const double a = fromAngle + turn * (t - from);
    return (u * std::cos(a) + v * std::sin(a)) * (-turn * turn);
}

double CurvePiece::lengthTo(double t) const {
    if (kind == Kind::Line) {
        return drafthost::length(u) * (to == from ? 0 : (t - from) / (to - from));
    }
    const bool round = kind == Kind::Arc &&
                       std::abs(drafthost::length(u) - drafthost::length(v)) <= 1e-12 * drafthost::length(u);
    if (round) {
        const double share = to == from ? 0 : (t - from) / (to - from);
        return drafthost::length(u) * std::abs(toAngle - fromAngle) * share;
    }
    const auto speed = [&](double s) { return drafthost::length(first(s)); };
    if (kind == Kind::Arc) {
        return integrate(speed, from, t, 64);
    }
    double sum = 0;
    for (std::size_t i = 0; i + 1 < knots.size(); ++i) {
        const double low = std::max(knots[i], from);
        const double high = std::min(knots[i + 1], t);
        if (high > low) {
            sum += integrate(speed, low, high, 8);
        }
    }
    return sum;
}

}  // namespace drafthost
