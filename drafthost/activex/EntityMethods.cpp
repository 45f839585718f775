// SPDX-License-Identifier: GPL-3.0-or-later
// What can be done with every entity.

#include <cmath>
#include <numbers>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/automation/EntityEdit.h"
#include "drafthost/automation/EntityNames.h"
#include "drafthost/drawing/Curve.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/EntityTransform.h"
#include "drafthost/drawing/Explode.h"
#include "drafthost/drawing/Extents.h"
#include "drafthost/drawing/Intersect.h"

namespace drafthost::activex {
namespace {

Result deleteOne(Call& call) {
    checkUnlocked(call);
    Drawing& drawing = call.drawing();
    const RecordId id = call.id();
    if (drawing.type(id) == "ATTRIB") {
        drawing.deleteRecord(id);
    } else {
        // (entdel) can give it back.
        call.session().deleted[automation::nameOf(id)] = deleteEntity(drawing, id);
    }
    call.changed();
    return {};
}

TransformOptions options(const Call& call) {
    const auto mirror = call.session().host.getVar("MIRRTEXT");
    return {.mirrorText = mirror && mirror->isInt() && mirror->toInt() != 0};
}

void apply(Call& call, RecordId id, const Transform& map) {
    std::string error;
    if (!transformEntity(call.drawing(), id, map, options(call), error)) {
        failAutomation(error);
    }
    call.changed();
}

RecordId copied(Call& call) {
    Drawing& drawing = call.drawing();
    if (isSubEntity(drawing, call.id())) {
        failAutomation("Not applicable");
    }
    const RecordId made = copyEntity(drawing, call.id(), targetOf(drawing, call.id()));
    if (made == NoRecord) {
        failAutomation("Description was not provided.");
    }
    call.changed();
    return made;
}

Result copy(Call& call) {
    return call.object(copied(call));
}

Result move(Call& call) {
    checkUnlocked(call);
    apply(call, call.id(), Transform::translation(call.point(1) - call.point(0)));
    return {};
}

Transform about(const Point& base, const Transform& map) {
    return Transform::translation(base) * map * Transform::translation(base * -1.0);
}

Result rotate(Call& call) {
    checkUnlocked(call);
    apply(call, call.id(), about(call.point(0), Transform::rotation(call.real(1))));
    return {};
}

/// A turn about an axis through the origin.
Transform turnAbout(const Point& axis, double angle) {
    const Transform system = Transform::ofExtrusion(axis);
    const Transform back{{system.x.x, system.y.x, system.z.x},
                         {system.x.y, system.y.y, system.z.y},
                         {system.x.z, system.y.z, system.z.z},
                         {}};
    return system * Transform::rotation(angle) * back;
}

Result rotate3d(Call& call) {
    checkUnlocked(call);
    apply(call, call.id(), about(call.point(0), turnAbout(call.point(1) - call.point(0), call.real(2))));
    return {};
}

Result scale(Call& call) {
    checkUnlocked(call);
    const double factor = call.real(1);
    if (!(factor > 0)) {
        failAutomation("Invalid input");
    }
    apply(call, call.id(), about(call.point(0), Transform::scale(factor, factor, factor)));
    return {};
}

/// Reflection at a plane through the origin.
Transform reflection(const Point& normal) {
    const Point n = normalised(normal);
    const auto image = [&](const Point& axis) {
        const double along = n.x * axis.x + n.y * axis.y + n.z * axis.z;
        return axis - n * (2 * along);
    };
    return {image({1, 0, 0}), image({0, 1, 0}), image({0, 0, 1}), {}};
}

Result mirror(Call& call) {
    const Point a = call.point(0);
    const Point along = call.point(1) - a;
    if (along.x == 0 && along.y == 0) {
        failAutomation("Invalid input");
    }
    const RecordId made = copied(call);
    apply(call, made, about(a, reflection({-along.y, along.x, 0})));
    return call.object(made);
}

Result mirror3d(Call& call) {
    const Point a = call.point(0);
    const Point normal = cross(call.point(1) - a, call.point(2) - a);
    if (length(normal) == 0) {
        failAutomation("Invalid input");
    }
    const RecordId made = copied(call);
    apply(call, made, about(a, reflection(normal)));
    return call.object(made);
}

Result transformBy(Call& call) {
    checkUnlocked(call);
    const std::vector<double> m = numbersOf(call.arg(0));
    if (m.size() != 16) {
        failMismatch();
    }
    if (m[12] != 0 || m[13] != 0 || m[14] != 0 || m[15] != 1) {
        fail("ActiveX Server returned an error: Invalid argument");
    }
    apply(call, call.id(),
          {{m[0], m[4], m[8]}, {m[1], m[5], m[9]}, {m[2], m[6], m[10]}, {m[3], m[7], m[11]}});
    return {};
}

constexpr int MostCopies = 100000;

Result arrayPolar(Call& call) {
    const int count = call.integer(0);
    const double sweep = call.real(1);
    if (count < 2 || count > MostCopies || sweep == 0) {
        failAutomation("Invalid input");
    }
    const Point center = call.point(2);
    const bool full = std::abs(std::abs(sweep) - 2 * std::numbers::pi) < 1e-9;
    std::vector<Value> all;
    for (int i = 1; i < count; ++i) {
        const RecordId made = copied(call);
        apply(call, made, about(center, Transform::rotation(sweep * i / (full ? count : count - 1))));
        all.push_back(call.object(made));
    }
    return Result::objects(all);
}

Result arrayRectangular(Call& call) {
    const int counts[] = {call.integer(0), call.integer(1), call.integer(2)};
    for (const int count : counts) {
        if (count < 1 || count > MostCopies) {
            failAutomation("Invalid input");
        }
    }
    std::vector<Value> all;
    for (int level = 0; level < counts[2]; ++level) {
        for (int row = 0; row < counts[0]; ++row) {
            for (int column = 0; column < counts[1]; ++column) {
                if (level == 0 && row == 0 && column == 0) {
                    continue;
                }
                const RecordId made = copied(call);
                apply(call, made,
                      Transform::translation(
                          {column * call.real(4), row * call.real(3), level * call.real(5)}));
                all.push_back(call.object(made));
            }
        }
    }
    return Result::objects(all);
}

Result boundingBox(Call& call) {
    const std::string type(call.drawing().type(call.id()));
    if (type == "RAY" || type == "XLINE") {
        failAutomation("Invalid extents");
    }
    const Extents box = computeExtents(call.drawing(), std::vector<RecordId>{call.id()});
    if (box.empty()) {
        failAutomation("Null extents");
    }
    const auto corner = [](const Point& p) {
        return makeArray(VbDouble, {Value::real(p.x), Value::real(p.y), Value::real(p.z)});
    };
    call.put(0, corner(box.min));
    call.put(1, corner(box.max));
    return {};
}

Result intersectWith(Call& call) {
    const Object& other = call.objectArg(0);
    const int extend = call.has(1) ? call.integer(1) : 0;
    const auto a = Curve::of(call.drawing(), call.id());
    const auto b = Curve::of(*other.database->drawing, other.record);
    std::vector<double> all;
    if (a && b) {
        for (const Point& p : intersections(*a, *b, (extend & 1) != 0, (extend & 2) != 0)) {
            all.insert(all.end(), {p.x, p.y, p.z});
        }
    }
    return Result::reals(all);
}

Result offset(Call& call) {
    const double distance = call.real(0);
    const std::vector<RecordId> made = offsetEntity(call.drawing(), call.id(), distance);
    if (made.empty()) {
        failAutomation("Invalid input");
    }
    call.changed();
    std::vector<Value> all;
    all.reserve(made.size());
    for (const RecordId id : made) {
        all.push_back(call.object(id));
    }
    return Result::objects(all);
}

Result explode(Call& call) {
    checkUnlocked(call);
    std::string error;
    const auto made = explodeEntity(call.drawing(), call.id(), error);
    if (!made) {
        failAutomation(error);
    }
    call.changed();
    std::vector<Value> all;
    for (const RecordId id : *made) {
        all.push_back(call.object(id));
    }
    return Result::objects(all);
}

Result nothing(Call& call) {
    checkUsable(call.self);
    return {};
}

constexpr Method EveryEntity[] = {
    {"Delete", 0, 0, deleteOne},
    {"Erase", 0, 0, deleteOne},
    {"Copy", 0, 0, copy},
    {"Move", 2, 2, move},
    {"Rotate", 2, 2, rotate},
    {"Rotate3D", 3, 3, rotate3d},
    {"ScaleEntity", 2, 2, scale},
    {"Mirror", 2, 2, mirror},
    {"Mirror3D", 3, 3, mirror3d},
    {"TransformBy", 1, 1, transformBy},
    {"ArrayPolar", 3, 3, arrayPolar},
    {"ArrayRectangular", 6, 6, arrayRectangular},
    {"GetBoundingBox", 2, 2, boundingBox},
    {"IntersectWith", 1, 2, intersectWith},
    {"Highlight", 1, 1, nothing},
    {"Update", 0, 0, nothing},
};
constexpr Method ExplodeMethod[] = {{"Explode", 0, 0, explode}};
constexpr Method CurveMethods[] = {{"Offset", 1, 1, offset}};

}  // namespace

Methods entityMethods() {
    return EveryEntity;
}
Methods explodeMethods() {
    return ExplodeMethod;
}
Methods curveMethods() {
    return CurveMethods;
}

}  // namespace drafthost::activex
