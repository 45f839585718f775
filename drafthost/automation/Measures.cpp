// SPDX-License-Identifier: GPL-3.0-or-later
// How large things are, and where they can be caught: texts, extended data, viewports, snaps.

#include <cmath>

#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/Functions.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/automation/SelectionAnswer.h"
#include "drafthost/automation/Session.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Curve.h"
#include "drafthost/drawing/Extents.h"
#include "drafthost/drawing/View.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::automation {
namespace {

double numberIn(const Value& list, int code, double otherwise) {
    const Value* value = groupOf(list, code);
    return value != nullptr && value->isNumber() ? value->toDouble() : otherwise;
}

/// Corners of the box around a text that stands at the origin and is not turned. Fonts are not read, so the
/// width is that of characters on average.
Value textBox(Evaluator&, Args args) {
    const Value* words = groupOf(listArg(args[0]), 1);
    if (words == nullptr || !words->isString()) {
        return {};
    }
    const double height = numberIn(args[0], 40, 1);
    const double width = static_cast<double>(lisp::characterCount(words->toString())) * height *
                         AverageCharacterWidth * std::fabs(numberIn(args[0], 41, 1));
    return Value::list({Value::point({0, 0, 0}), Value::point({width, height, 0})});
}

/// Bytes that a value takes as the format counts them.
std::size_t bytesOf(const Value& item) {
    constexpr std::size_t Head = 3;
    const int code = item.isCons() && item.car().isInt() ? item.car().toInt() : 0;
    const Value& value = item.cdr();
    if (value.isString()) {
        return Head + value.toString().size() + (code == 1000 || code == 1001 ? 1 : 0);
    }
    if (toPoint(value)) {
        return Head - 2 + 24;
    }
    return Head - 2 + (value.isReal() ? 8 : code == 1071 ? 4 : 2);
}

Value extendedDataSize(Evaluator&, Args args) {
    std::size_t total = 0;
    for (const Value& application : listArg(args[0]).items()) {
        if (!application.isCons()) {
            fail("bad extended data list");
        }
        const std::vector<Value> items = application.items();
        for (const Value& item : items) {
            total += item.isString() ? 3 + item.toString().size() : bytesOf(item);
        }
    }
    return Value::integer(static_cast<std::int32_t>(total));
}

/// What is left of the 16 kilobytes that an entity may carry.
Value extendedDataRoom(Evaluator& e, Args args) {
    constexpr std::size_t Room = 16383;
    const Drawing& drawing = drawingOf(e);
    const auto id = aliveRecord(drawing, enameArg(args[0]));
    if (!id) {
        return {};
    }
    const Record record = drawing.record(*id);
    std::size_t used = 0;
    for (std::size_t i = record.xdata(); i < record.size(); ++i) {
        const int code = record.code(i);
        used += kindOf(code) == ValueKind::Real ? 8 + (code < 1020 ? 1 : 0)
                : isTextKind(kindOf(code))      ? 3 + record.text(i).size()
                                                : 3;
    }
    return Value::integer(static_cast<std::int32_t>(Room - std::min(Room, used)));
}

/// Number and corners of each viewport, the current one first; corners of the model tab's count from 0 to 1.
Value viewports(Evaluator& e, Args) {
    const Drawing& drawing = drawingOf(e);
    ListBuilder result;
    if (modelIsCurrent(drawing)) {
        result.add(Value::list({Value::integer(2), Value::point2d(0, 0), Value::point2d(1, 1)}));
        return result.take();
    }
    for (RecordId id = firstEntity(drawing); id != NoRecord; id = nextEntity(drawing, id, false)) {
        const Layout* layout = drawing.type(id) == "VIEWPORT" ? layoutOf(drawing, id) : nullptr;
        if (layout != nullptr && !layout->model && isActivePaper(*layout)) {
            const Record record = drawing.record(id);
            const Point center = record.pointOr(10, {});
            const double w = record.realOr(40, 0) / 2;
            const double h = record.realOr(41, 0) / 2;
            result.add(Value::list({Value::integer(static_cast<std::int32_t>(record.integerOr(69, 1))),
                                    Value::point2d(center.x - w, center.y - h),
                                    Value::point2d(center.x + w, center.y + h)}));
        }
    }
    return result.take();
}

/// Points of an entity at which a mode of snapping catches.
std::vector<Point> catches(const Drawing& drawing, RecordId id, std::string_view mode, const Point& near) {
    const Record record = drawing.record(id);
    const std::string_view type = record.type();
    std::vector<Point> points;
    if (mode == "nod" || mode == "ins") {
        const bool fits =
            mode == "nod" ? type == "POINT" : type == "INSERT" || type == "TEXT" || type == "MTEXT";
        return fits ? std::vector<Point>{record.pointOr(10, {})} : points;
    }
    const auto curve = Curve::of(drawing, id);
    if (!curve) {
        return points;
    }
    const bool round = type == "CIRCLE" || type == "ARC" || type == "ELLIPSE";
    for (const CurvePiece& piece : curve->pieces()) {
        if (mode == "end" && type != "CIRCLE") {
            points.push_back(piece.at(piece.from));
            points.push_back(piece.at(piece.to));
        } else if (mode == "mid" && type != "CIRCLE") {
            points.push_back(piece.at((piece.from + piece.to) / 2));
        } else if ((mode == "cen") && piece.kind == CurvePiece::Kind::Arc) {
            points.push_back(piece.center);
        } else if (mode == "qua" && round) {
            for (int quarter = 0; quarter < 4; ++quarter) {
                const double angle = quarter * std::acos(0.0);
                points.push_back(piece.center + piece.u * std::cos(angle) + piece.v * std::sin(angle));
            }
        }
    }
    if (mode == "nea") {
        points.push_back(curve->closest(near, false));
    }
    return points;
}

/// The point that the modes catch nearest to one, within a fiftieth of the view's height. A centre is caught
/// on its curve.
Value objectSnap(Evaluator& e, Args args) {
    constexpr double ApertureShare = 1.0 / 50;
    const Drawing& drawing = drawingOf(e);
    const Point near = pointArg(args[0]);
    std::string modes = lisp::lowerCase(stringArg(args[1]));
    double best = currentView(drawing).height * ApertureShare;
    std::optional<Point> found;
    while (!modes.empty()) {
        const std::size_t comma = std::min(modes.find(','), modes.size());
        std::string mode = modes.substr(0, comma);
        modes.erase(0, std::min(modes.size(), comma + 1));
        mode.erase(0, mode.find_first_not_of(" _"));
        mode.resize(std::min<std::size_t>(mode.size(), 3));
        for (RecordId id = firstEntity(drawing); id != NoRecord; id = nextEntity(drawing, id, false)) {
            if (!isVisibleHere(drawing, id)) {
                continue;
            }
            for (const Point& point : catches(drawing, id, mode, near)) {
                Point reached = point;
                if (mode == "cen") {
                    reached = Curve::of(drawing, id)->closest(near, false);
                }
                const double distance = std::hypot(reached.x - near.x, reached.y - near.y);
                if (distance <= best) {
                    best = distance;
                    found = point;
                }
            }
        }
    }
    return found ? Value::point(*found) : Value();
}

constexpr Subr Functions[] = {
    {"TEXTBOX", 1, 1, textBox},  {"XDSIZE", 1, 1, extendedDataSize}, {"XDROOM", 1, 1, extendedDataRoom},
    {"VPORTS", 0, 0, viewports}, {"OSNAP", 2, 2, objectSnap},
};

}  // namespace

std::span<const Subr> measureFunctions() {
    return Functions;
}

}  // namespace drafthost::automation
