// SPDX-License-Identifier: GPL-3.0-or-later
// Curves of the drawing, measured.

#include "drafthost/activex/Functions.h"
#include "drafthost/activex/Model.h"
#include "drafthost/activex/ModelState.h"
#include "drafthost/automation/DxfList.h"
#include "drafthost/drawing/Curve.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::activex {
namespace {

Curve curveArg(Evaluator& e, const Value& v) {
    const Drawing* drawing = nullptr;
    RecordId id = NoRecord;
    if (v.isEname()) {
        drawing = automation::sessionOf(e).host.drawing();
        id = automation::aliveRecord(*drawing, v.toEname()).value_or(NoRecord);
    } else {
        const Object& object = objectOf(v);
        checkUsable(object);
        drawing = object.database->drawing;
        id = object.record;
    }
    auto curve = id == NoRecord ? std::nullopt : Curve::of(*drawing, id);
    if (!curve) {
        fail("bad argument type: curve-p " + lisp::prin1(v));
    }
    return std::move(*curve);
}

Value pointOrNil(const std::optional<Point>& p) {
    return p ? Value::point(*p) : Value();
}
Value realOrNil(const std::optional<double>& r) {
    return r ? Value::real(*r) : Value();
}

Value startPoint(Evaluator& e, Args args) {
    const Curve curve = curveArg(e, args[0]);
    return pointOrNil(curve.at(curve.start()));
}
Value endPoint(Evaluator& e, Args args) {
    const Curve curve = curveArg(e, args[0]);
    return curve.isEndless() ? Value() : pointOrNil(curve.at(curve.end()));
}
Value startParam(Evaluator& e, Args args) {
    return Value::real(curveArg(e, args[0]).start());
}
Value endParam(Evaluator& e, Args args) {
    const Curve curve = curveArg(e, args[0]);
    return curve.isEndless() ? Value() : Value::real(curve.end());
}
Value pointAtParam(Evaluator& e, Args args) {
    return pointOrNil(curveArg(e, args[0]).at(realArg(args[1])));
}
Value paramAtPoint(Evaluator& e, Args args) {
    return realOrNil(curveArg(e, args[0]).parameterAt(pointOf(args[1])));
}
Value distAtParam(Evaluator& e, Args args) {
    return realOrNil(curveArg(e, args[0]).distanceAt(realArg(args[1])));
}
Value distAtPoint(Evaluator& e, Args args) {
    const Curve curve = curveArg(e, args[0]);
    const auto t = curve.parameterAt(pointOf(args[1]));
    return t ? realOrNil(curve.distanceAt(*t)) : Value();
}
Value pointAtDist(Evaluator& e, Args args) {
    const Curve curve = curveArg(e, args[0]);
    const auto t = curve.parameterAtDistance(realArg(args[1]));
    return t ? pointOrNil(curve.at(*t)) : Value();
}
Value paramAtDist(Evaluator& e, Args args) {
    return realOrNil(curveArg(e, args[0]).parameterAtDistance(realArg(args[1])));
}
Value firstDerivative(Evaluator& e, Args args) {
    return pointOrNil(curveArg(e, args[0]).first(realArg(args[1])));
}
Value secondDerivative(Evaluator& e, Args args) {
    return pointOrNil(curveArg(e, args[0]).second(realArg(args[1])));
}
Value closestPoint(Evaluator& e, Args args) {
    return Value::point(curveArg(e, args[0]).closest(pointOf(args[1]), static_cast<bool>(optional(args, 2))));
}
Value closestProjected(Evaluator& e, Args args) {
    // Seen from above, which is what all plans are drawn for.
    return Value::point(curveArg(e, args[0]).closest(pointOf(args[1]), static_cast<bool>(optional(args, 3))));
}
Value area(Evaluator& e, Args args) {
    return Value::real(curveArg(e, args[0]).area());
}
Value isClosed(Evaluator& e, Args args) {
    return Value::boolean(curveArg(e, args[0]).isClosed());
}
Value isPeriodic(Evaluator& e, Args args) {
    return Value::boolean(curveArg(e, args[0]).isPeriodic());
}
Value isPlanar(Evaluator& e, Args args) {
    return Value::boolean(curveArg(e, args[0]).isPlanar());
}

constexpr Subr Functions[] = {
    {"VLAX-CURVE-GETSTARTPOINT", 1, 1, startPoint},
    {"VLAX-CURVE-GETENDPOINT", 1, 1, endPoint},
    {"VLAX-CURVE-GETSTARTPARAM", 1, 1, startParam},
    {"VLAX-CURVE-GETENDPARAM", 1, 1, endParam},
    {"VLAX-CURVE-GETPOINTATPARAM", 2, 2, pointAtParam},
    {"VLAX-CURVE-GETPARAMATPOINT", 2, 2, paramAtPoint},
    {"VLAX-CURVE-GETDISTATPARAM", 2, 2, distAtParam},
    {"VLAX-CURVE-GETDISTATPOINT", 2, 2, distAtPoint},
    {"VLAX-CURVE-GETPOINTATDIST", 2, 2, pointAtDist},
    {"VLAX-CURVE-GETPARAMATDIST", 2, 2, paramAtDist},
    {"VLAX-CURVE-GETFIRSTDERIV", 2, 2, firstDerivative},
    {"VLAX-CURVE-GETSECONDDERIV", 2, 2, secondDerivative},
    {"VLAX-CURVE-GETCLOSESTPOINTTO", 2, 3, closestPoint},
    {"VLAX-CURVE-GETCLOSESTPOINTTOPROJECTION", 3, 4, closestProjected},
    {"VLAX-CURVE-GETAREA", 1, 1, area},
    {"VLAX-CURVE-ISCLOSED", 1, 1, isClosed},
    {"VLAX-CURVE-ISPERIODIC", 1, 1, isPeriodic},
    {"VLAX-CURVE-ISPLANAR", 1, 1, isPlanar},
};

}  // namespace

std::span<const Subr> curveFunctions() {
    return Functions;
}

}  // namespace drafthost::activex
