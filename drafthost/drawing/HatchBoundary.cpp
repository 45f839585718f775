// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/HatchBoundary.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

#include "drafthost/drawing/Chains.h"
#include "drafthost/drawing/Curve.h"

namespace drafthost {

namespace {

constexpr double Fuzz = 1e-6;
constexpr int StepsPerTurn = 64;

double enclosed(const std::vector<Point>& outline) {
    double twice = 0;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const Point& a = outline[i];
        const Point& b = outline[(i + 1) % outline.size()];
        twice += a.x * b.y - b.x * a.y;
    }
    return std::fabs(twice) / 2;
}

void addCorners(HatchLoop& loop, const std::vector<CurvePiece>& pieces) {
    for (const CurvePiece& piece : pieces) {
        const int steps = piece.kind == CurvePiece::Kind::Line ? 1 : StepsPerTurn;
        for (int i = 0; i < steps; ++i) {
            loop.outline.push_back(piece.at(piece.from + (piece.to - piece.from) * i / steps));
        }
    }
    loop.area = enclosed(loop.outline);
}

HatchLoop loopOfRun(const Run& run) {
    HatchLoop loop;
    loop.elevation = run.vertices.front().place.z;
    const bool bulges = std::ranges::any_of(run.vertices, [](const WideVertex& v) { return v.bulge != 0; });
    loop.groups = {{72, bulges ? 1 : 0}, {73, 1}, {93, static_cast<double>(run.vertices.size())}};
    std::vector<CurvePiece> pieces;
    for (std::size_t i = 0; i < run.vertices.size(); ++i) {
        const WideVertex& here = run.vertices[i];
        const WideVertex& next = run.vertices[(i + 1) % run.vertices.size()];
        loop.groups.insert(loop.groups.end(), {{10, here.place.x}, {20, here.place.y}});
        if (bulges) {
            loop.groups.emplace_back(42, here.bulge);
        }
        pieces.push_back(pieceBetween({here.place, here.bulge}, {next.place, 0}, {}));
    }
    addCorners(loop, pieces);
    return loop;
}

std::optional<HatchLoop> loopOfSpline(const Record& record) {
    HatchLoop loop;
    loop.polyline = false;
    std::vector<double> knots;
    std::vector<double> weights;
    std::vector<Point> controls;
    for (std::size_t i = 0; i < record.xdata(); ++i) {
        if (record.code(i) == 40) {
            knots.push_back(record.real(i));
        } else if (record.code(i) == 41) {
            weights.push_back(record.real(i));
        } else if (record.code(i) == 10) {
            controls.push_back(record.point(i));
        }
    }
    if (controls.empty()) {
        return std::nullopt;
    }
    const bool rational = weights.size() == controls.size();
    loop.groups = {{93, 1},
                   {72, 4},
                   {94, static_cast<double>(record.integerOr(71, 3))},
                   {73, rational ? 1 : 0},
                   {74, 0},
                   {95, static_cast<double>(knots.size())},
                   {96, static_cast<double>(controls.size())}};
    for (const double knot : knots) {
        loop.groups.emplace_back(40, knot);
    }
    for (std::size_t i = 0; i < controls.size(); ++i) {
        loop.groups.insert(loop.groups.end(), {{10, controls[i].x}, {20, controls[i].y}});
        if (rational) {
            loop.groups.emplace_back(42, weights[i]);
        }
    }
    return loop;
}

std::optional<HatchLoop> loopOfCurve(const Drawing& drawing, RecordId id) {
    const Record record = drawing.record(id);
    const auto curve = Curve::of(drawing, id);
    if (!curve || !curve->isClosed() || !curve->isPlanar() || record.pointOr(210, {0, 0, 1}).z < 1 - Fuzz) {
        return std::nullopt;
    }
    const std::string_view type = record.type();
    const Point center = record.pointOr(10, {});
    std::optional<HatchLoop> loop;
    if (type == "CIRCLE") {
        const double radius = record.realOr(40, 0);
        Run run;
        run.vertices = {{{center.x + radius, center.y, center.z}, 1, 0, 0},
                        {{center.x - radius, center.y, center.z}, 1, 0, 0}};
        return loopOfRun(run);
    }
    if (type == "ELLIPSE") {
        const Point axis = record.pointOr(11, {1, 0, 0});
        loop.emplace();
        loop->polyline = false;
        loop->groups = {{93, 1},
                        {72, 3},
                        {10, center.x},
                        {20, center.y},
                        {11, axis.x},
                        {21, axis.y},
                        {40, record.realOr(40, 1)},
                        {50, 0},
                        {51, 360},
                        {73, 1}};
        loop->elevation = center.z;
    } else if (type == "SPLINE") {
        loop = loopOfSpline(record);
    }
    if (loop) {
        addCorners(*loop, curve->pieces());
    }
    return loop;
}

/// Numbers of pieces that hang together by their ends.
std::vector<std::vector<std::size_t>> linkedPieces(const std::vector<Run>& pieces, double fuzz) {
    const double cell = 2 * fuzz;
    std::map<std::pair<std::int64_t, std::int64_t>, std::vector<std::size_t>> atCell;
    const auto cellOf = [&](const Point& p) {
        return std::pair{std::llround(p.x / cell), std::llround(p.y / cell)};
    };
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        for (const WideVertex* end : {&pieces[i].vertices.front(), &pieces[i].vertices.back()}) {
            atCell[cellOf(end->place)].push_back(i);
        }
    }
    std::vector<bool> seen(pieces.size());
    std::vector<std::vector<std::size_t>> groups;
    for (std::size_t first = 0; first < pieces.size(); ++first) {
        if (seen[first]) {
            continue;
        }
        std::vector<std::size_t> group{first};
        seen[first] = true;
        for (std::size_t at = 0; at < group.size(); ++at) {
            const Run& piece = pieces[group[at]];
            for (const WideVertex* end : {&piece.vertices.front(), &piece.vertices.back()}) {
                const auto [column, row] = cellOf(end->place);
                for (std::int64_t dx = -1; dx <= 1; ++dx) {
                    for (std::int64_t dy = -1; dy <= 1; ++dy) {
                        const auto near = atCell.find({column + dx, row + dy});
                        if (near == atCell.end()) {
                            continue;
                        }
                        for (const std::size_t other : near->second) {
                            if (!seen[other]) {
                                seen[other] = true;
                                group.push_back(other);
                            }
                        }
                    }
                }
            }
        }
        groups.push_back(std::move(group));
    }
    return groups;
}

/// Closes pieces to boundaries, each piece in one of them at most.
void addJoined(const std::vector<Run>& pieces, const std::vector<RecordId>& sources, double fuzz,
               std::vector<HatchLoop>& loops) {
    // Joining takes as many steps as there are pairs; what hangs together by the thousand is a net of lines
    // that does not close from many starts.
    constexpr std::size_t MostSteps = 4'000'000;
    for (const std::vector<std::size_t>& group : linkedPieces(pieces, fuzz)) {
        std::vector<std::optional<Run>> rest;
        rest.reserve(group.size());
        for (const std::size_t number : group) {
            rest.emplace_back(pieces[number]);
        }
        std::size_t steps = 0;
        for (std::size_t i = 0; i < rest.size() && steps < MostSteps; ++i) {
            if (!rest[i]) {
                continue;
            }
            steps += rest.size() * rest.size();
            Run run = *rest[i];
            std::vector<std::optional<Run>> others = rest;
            others[i].reset();
            std::vector<std::size_t> taken = joinRuns(run, others, fuzz);
            if (!run.closed) {
                continue;
            }
            taken.push_back(i);
            HatchLoop& loop = loops.emplace_back(loopOfRun(run));
            for (const std::size_t number : taken) {
                rest[number].reset();
                loop.sources.push_back(sources[group[number]]);
            }
        }
    }
}

}  // namespace

std::vector<HatchLoop> hatchLoops(const Drawing& drawing, const std::vector<RecordId>& entities,
                                  double fuzz) {
    std::vector<HatchLoop> loops;
    std::vector<Run> open;
    std::vector<RecordId> sources;
    for (const RecordId id : entities) {
        const std::optional<Run> run = runOf(drawing, id);
        if (run && run->extrusion.z > 1 - Fuzz && !run->vertices.empty()) {
            if (run->closed) {
                loops.push_back(loopOfRun(*run));
                loops.back().sources = {id};
            } else {
                open.push_back(*run);
                sources.push_back(id);
            }
        } else if (auto loop = loopOfCurve(drawing, id)) {
            loop->sources = {id};
            loops.push_back(std::move(*loop));
        }
    }
    addJoined(open, sources, std::max(fuzz, Fuzz), loops);
    std::erase_if(loops, [](const HatchLoop& loop) { return !(loop.area > 0); });
    return loops;
}

HatchLoop polygonLoop(const std::vector<Point>& corners) {
    Run run;
    for (const Point& corner : corners) {
        run.vertices.push_back({corner, 0, 0, 0});
    }
    run.closed = true;
    return loopOfRun(run);
}

bool isInside(const HatchLoop& loop, const Point& place) {
    bool inside = false;
    const std::vector<Point>& corners = loop.outline;
    for (std::size_t i = 0, j = corners.size() - 1; i < corners.size(); j = i++) {
        const Point& a = corners[i];
        const Point& b = corners[j];
        if ((a.y > place.y) != (b.y > place.y) &&
            place.x < (b.x - a.x) * (place.y - a.y) / (b.y - a.y) + a.x) {
            inside = !inside;
        }
    }
    return inside;
}

bool encloses(const HatchLoop& outer, const HatchLoop& inner) {
    return &outer != &inner && outer.area > inner.area && isInside(outer, inner.outline.front());
}

std::vector<HatchLoop> withIslands(const std::vector<HatchLoop>& all, IslandStyle style) {
    std::vector<HatchLoop> result;
    for (const HatchLoop& loop : all) {
        const auto depth =
            std::ranges::count_if(all, [&](const HatchLoop& other) { return encloses(other, loop); });
        if (style == IslandStyle::Normal || depth <= (style == IslandStyle::Outer ? 1 : 0)) {
            result.push_back(loop);
        }
    }
    return result;
}

std::vector<HatchLoop> loopsAround(const std::vector<HatchLoop>& all, const Point& place, IslandStyle style) {
    const HatchLoop* outer = nullptr;
    for (const HatchLoop& loop : all) {
        if (isInside(loop, place) && (outer == nullptr || loop.area < outer->area)) {
            outer = &loop;
        }
    }
    if (outer == nullptr) {
        return {};
    }
    std::vector<HatchLoop> inner{*outer};
    for (const HatchLoop& island : all) {
        if (encloses(*outer, island)) {
            inner.push_back(island);
        }
    }
    return withIslands(inner, style);
}

void beginHatch(Drawing& drawing, RecordId hatch, double elevation, IslandStyle style, const Point& seed) {
    const auto whole = [&](int code, std::int64_t value) { drawing.appendTag(hatch, code, value); };
    const auto real = [&](int code, double value) { drawing.appendTag(hatch, code, value); };
    real(10, 0);
    real(20, 0);
    real(30, elevation);
    real(210, 0);
    real(220, 0);
    real(230, 1);
    drawing.appendTag(hatch, 2, std::string("SOLID"));
    whole(70, 1);
    whole(71, 0);
    whole(91, 0);
    whole(75, static_cast<int>(style));
    whole(76, 1);
    whole(98, 1);
    real(10, seed.x);
    real(20, seed.y);
}

void addHatchLoops(Drawing& drawing, RecordId hatch, const std::vector<HatchLoop>& loops) {
    constexpr std::int64_t External = 1;
    constexpr std::int64_t Polyline = 2;
    constexpr std::int64_t Outermost = 16;
    const Record record = drawing.record(hatch);
    std::size_t at = record.subclass("AcDbHatch");
    while (at < record.xdata() && record.code(at) != 75) {
        if (record.code(at) == 91) {
            const std::int64_t known = record.integer(at);
            drawing.setTag(hatch, at, known + static_cast<std::int64_t>(loops.size()));
        }
        ++at;
    }
    const auto whole = [&](int code, std::int64_t value) { drawing.insertTag(hatch, at++, code, value); };
    for (const HatchLoop& loop : loops) {
        const bool island =
            std::ranges::any_of(loops, [&](const HatchLoop& other) { return encloses(other, loop); });
        whole(92, (island ? Outermost : External) | (loop.polyline ? Polyline : 0));
        for (const auto& [code, value] : loop.groups) {
            if (kindOf(code) == ValueKind::Real) {
                drawing.insertTag(hatch, at++, code, value);
            } else {
                whole(code, static_cast<std::int64_t>(value));
            }
        }
        whole(97, 0);
    }
}

}  // namespace drafthost
