// SPDX-License-Identifier: GPL-3.0-or-later
// A hatch holds its boundary as a list of numbers whose meaning depends on what came before.

#include <cmath>
#include <optional>

#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/EntityTransform.h"

namespace drafthost {

namespace {

constexpr std::int64_t PolylinePath = 2;

/// Walks over the tags of a hatch and changes what it passes.
class HatchWalk {
  public:
    HatchWalk(Drawing& drawing, RecordId id, const Transform& flat, bool mirrored, double scale)
        : drawing_(drawing), id_(id), flat_(flat), mirrored_(mirrored), scale_(scale) {}

    void run() {
        elevation();
        const auto paths = record().find(91);
        if (!paths) {
            return;
        }
        at_ = *paths + 1;
        for (std::int64_t path = record().integer(*paths); path > 0 && seek(92); --path) {
            const bool polyline = (record().integer(at_) & PolylinePath) != 0;
            ++at_;
            polyline ? polylinePath() : edgePath();
        }
        pattern();
    }

  private:
    Record record() const { return drawing_.record(id_); }

    /// Goes to the next tag with that code; false when there is none.
    bool seek(int code) {
        const std::size_t end = record().xdata();
        while (at_ < end && record().code(at_) != code) {
            ++at_;
        }
        return at_ < end;
    }
    double realAt(std::size_t i) const { return record().real(i); }
    void set(std::size_t i, double value) {
        if (record().real(i) != value) {
            drawing_.setTag(id_, i, value);
        }
    }
    void point(std::size_t i) { put(i, flat_({realAt(i), realAt(i + 1), elevation_})); }
    void vector(std::size_t i) { put(i, flat_.vector({realAt(i), realAt(i + 1), 0})); }
    void put(std::size_t i, const Point& p) {
        set(i, p.x);
        set(i + 1, p.y);
    }
    double turned(double degrees) const {
        const Point v =
            flat_.vector({std::cos(degrees * RadiansPerDegree), std::sin(degrees * RadiansPerDegree), 0});
        return directionInDegrees(std::atan2(v.y, v.x));
    }

    void elevation() {
        const auto i = record().find(10);
        if (!i || *i + 2 >= record().size() || record().code(*i + 2) != 30) {
            return;
        }
        elevation_ = realAt(*i + 2);
        set(*i + 2, flat_({0, 0, elevation_}).z);
    }

    void polylinePath() {
        if (!seek(93)) {
            return;
        }
        std::int64_t count = record().integer(at_++);
        for (; count > 0 && seek(10); --count) {
            point(at_);
            at_ += 2;
            if (mirrored_ && at_ < record().size() && record().code(at_) == 42) {
                set(at_, -realAt(at_));
            }
        }
    }

    /// Arcs are kept as angles that count in the direction of the edge.
    void arc(bool ellipse) {
        const auto next = [&](int code) {
            return seek(code) ? std::optional<std::size_t>(at_) : std::nullopt;
        };
        if (const auto center = next(10)) {
            point(*center);
        }
        if (ellipse) {
            if (const auto axis = next(11)) {
                vector(*axis);
            }
        } else if (const auto radius = next(40)) {
            set(*radius, realAt(*radius) * scale_);
        }
        const auto from = next(50);
        const auto to = next(51);
        const auto forwards = next(73);
        if (!from || !to || !forwards) {
            return;
        }
        const bool counter = record().integer(*forwards) != 0;
        if (!ellipse) {
            const double sign = counter ? 1 : -1;
            const double sweep = realAt(*to) - realAt(*from);
            const double start = turned(sign * realAt(*from));
            // Written in the direction in which the edge runs after the map.
            const double first = mirrored_ == counter ? -start : start;
            const double begin = first < 0 ? first + 360 : first;
            set(*from, begin);
            set(*to, begin + sweep);
        }
        if (mirrored_) {
            drawing_.setTag(id_, *forwards, std::int64_t{counter ? 0 : 1});
        }
    }

    void spline() {
        std::int64_t controls = 0;
        for (; at_ < record().xdata(); ++at_) {
            const int code = record().code(at_);
            if (code == 96) {
                controls = record().integer(at_);
            } else if (code == 10 && controls > 0) {
                point(at_);
                --controls;
            } else if (code == 11) {
                point(at_);
            } else if (code == 12 || code == 13) {
                vector(at_);
            } else if (code == 72 || code == 97 || code == 92 || code == 75) {
                if (code == 97 && controls == 0 && at_ + 1 < record().size() &&
                    record().code(at_ + 1) == 11) {
                    continue;
                }
                return;
            }
        }
    }

    void edgePath() {
        if (!seek(93)) {
            return;
        }
        std::int64_t edges = record().integer(at_++);
        for (; edges > 0 && seek(72); --edges) {
            const std::int64_t kind = record().integer(at_++);
            if (kind == 1) {
                if (seek(10)) {
                    point(at_);
                }
                if (seek(11)) {
                    point(at_);
                }
            } else if (kind == 2 || kind == 3) {
                arc(kind == 3);
            } else if (kind == 4) {
                spline();
            }
        }
    }

    /// Angle and scale of the pattern, its lines, and the seeds.
    void pattern() {
        for (; at_ < record().xdata(); ++at_) {
            switch (record().code(at_)) {
                case 52:
                case 53:
                    set(at_, turned(realAt(at_)));
                    break;
                case 41:
                case 47:
                case 49:
                    set(at_, realAt(at_) * scale_);
                    break;
                case 43:
                    put(at_, flat_({realAt(at_), realAt(at_ + 1), 0}));
                    break;
                case 45:
                    put(at_, flat_.vector({realAt(at_), realAt(at_ + 1), 0}));
                    break;
                case 10:
                    point(at_);
                    break;
                default:
                    break;
            }
        }
    }

    Drawing& drawing_;
    RecordId id_;
    Transform flat_;
    bool mirrored_;
    double scale_;
    double elevation_ = 0;
    std::size_t at_ = 0;
};

}  // namespace

void transformHatch(Drawing& drawing, RecordId hatch, const Transform& flat, bool mirrored, double scale) {
    HatchWalk(drawing, hatch, flat, mirrored, scale).run();
}

}  // namespace drafthost
