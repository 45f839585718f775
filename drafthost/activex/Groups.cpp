// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/activex/Groups.h"

#include "drafthost/automation/EntityEdit.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost::activex {
namespace {

/// The tags of a subclass: [first, second).
std::pair<std::size_t, std::size_t> sectionOf(const Record& record, std::string_view subclass) {
    const std::size_t end = record.xdata();
    if (subclass.empty()) {
        return {1, end};
    }
    const std::size_t begin = record.subclass(subclass);
    if (begin == record.size()) {
        // Drawings before R13 have no markers.
        return {1, end};
    }
    std::size_t i = begin + 1;
    while (i < end && record.code(i) != 100) {
        ++i;
    }
    return {begin + 1, i};
}

bool isCommonCode(int code) {
    return code == 6 || code == 62 || code == 48 || code == 60 || code == 370 || code == 420 || code == 430 ||
           code == 440;
}

drafthost::Value tagValue(const Property& property, const Value& value) {
    switch (property.access) {
        case Access::Real:
            return realOf(value);
        case Access::Angle:
            return degreesOf(realOf(value));
        case Access::Text:
            return textOf(value);
        default:
            return std::int64_t{integerOf(value)};
    }
}

}  // namespace

std::optional<std::size_t> groupTag(const Record& record, int code, std::string_view subclass) {
    const auto [begin, end] = sectionOf(record, subclass);
    bool inGroup = false;
    for (std::size_t i = begin; i < end; ++i) {
        const int found = record.code(i);
        if (found == 102) {
            inGroup = record.raw(i).find('{') != std::string_view::npos;
        } else if (found == code && !inGroup) {
            return i;
        }
    }
    return std::nullopt;
}

double groupReal(const Record& record, int code, double otherwise, std::string_view subclass) {
    const auto i = groupTag(record, code, subclass);
    return i ? record.real(*i) : otherwise;
}

Transform ocsOf(const Record& record) {
    const auto i = groupTag(record, 210, "");
    return i ? Transform::ofExtrusion(record.point(*i)) : Transform();
}

Point intoOcs(const Transform& ocs, const Point& p) {
    const auto dot = [&](const Point& axis) { return axis.x * p.x + axis.y * p.y + axis.z * p.z; };
    return {dot(ocs.x), dot(ocs.y), dot(ocs.z)};
}

Result getGroup(Call& call, const Property& property) {
    const Record record = call.record();
    const auto i = groupTag(record, property.code, property.subclass);
    switch (property.access) {
        case Access::Real:
            return Result::real(i ? record.real(*i) : property.initial);
        case Access::Angle:
            return Result::real((i ? record.real(*i) : property.initial) * RadiansPerDegree);
        case Access::Integer:
            return Result::integer(i ? record.integer(*i) : static_cast<std::int64_t>(property.initial));
        case Access::Text:
            return Result::text(i ? record.text(*i) : property.text);
        case Access::Point:
            return Result::point(i ? record.point(*i) : Point{});
        case Access::OcsPoint:
            return Result::point(i ? ocsOf(record)(record.point(*i)) : Point{});
        case Access::Flag:
        case Access::NotFlag: {
            const std::int64_t bits = i ? record.integer(*i) : 0;
            const bool set = (bits & static_cast<std::int64_t>(property.initial)) != 0;
            return Result::boolean(set == (property.access == Access::Flag));
        }
        case Access::Bool:
            return Result::boolean((i ? record.integer(*i) : static_cast<std::int64_t>(property.initial)) !=
                                   0);
        case Access::Custom:
            break;
    }
    return {};
}

void setGroup(Drawing& drawing, RecordId id, int code, const drafthost::Value& value,
              std::string_view subclass) {
    const Record record = drawing.record(id);
    if (const auto i = groupTag(record, code, subclass)) {
        drawing.setTag(id, *i, value);
    } else if (isCommonCode(code) && record.find(8)) {
        drawing.put(id, code, value, {8});
    } else {
        drawing.insertTag(id, sectionOf(record, subclass).second, code, value);
    }
}

void setGroupPoint(Drawing& drawing, RecordId id, int code, const Point& point, std::string_view subclass) {
    const Record record = drawing.record(id);
    auto i = groupTag(record, code, subclass);
    if (!i) {
        i = sectionOf(record, subclass).second;
        drawing.insertTag(id, *i, code, point.x);
        drawing.insertTag(id, *i + 1, code + 10, point.y);
        drawing.insertTag(id, *i + 2, code + 20, point.z);
        return;
    }
    drawing.setTag(id, *i, point.x);
    drawing.setTag(id, *i + 1, point.y);
    if (*i + 2 < drawing.record(id).size() && drawing.record(id).code(*i + 2) == code + 20) {
        drawing.setTag(id, *i + 2, point.z);
    } else if (point.z != 0) {
        drawing.insertTag(id, *i + 2, code + 20, point.z);
    }
}

void removeGroup(Drawing& drawing, RecordId id, int code) {
    if (const auto i = groupTag(drawing.record(id), code, "")) {
        drawing.removeTag(id, *i);
    }
}

void putGroup(Call& call, const Property& property, const Value& value) {
    Drawing& drawing = call.drawing();
    const RecordId id = call.id();
    switch (property.access) {
        case Access::Point:
            setGroupPoint(drawing, id, property.code, pointOf(value), property.subclass);
            break;
        case Access::OcsPoint:
            setGroupPoint(drawing, id, property.code, intoOcs(ocsOf(drawing.record(id)), pointOf(value)),
                          property.subclass);
            break;
        case Access::Flag:
        case Access::NotFlag: {
            const auto i = groupTag(drawing.record(id), property.code, property.subclass);
            const std::int64_t bits = i ? drawing.record(id).integer(*i) : 0;
            const auto bit = static_cast<std::int64_t>(property.initial);
            const bool set = booleanOf(value) == (property.access == Access::Flag);
            setGroup(drawing, id, property.code, set ? bits | bit : bits & ~bit, property.subclass);
            break;
        }
        case Access::Bool:
            setGroup(drawing, id, property.code, std::int64_t{booleanOf(value)}, property.subclass);
            break;
        default:
            setGroup(drawing, id, property.code, tagValue(property, value), property.subclass);
            break;
    }
    call.changed(tableOf(drawing.type(id)).has_value());
}

void checkUnlocked(const Call& call) {
    if (call.self.record != NoRecord && automation::isLocked(call.drawing(), call.self.record)) {
        failAutomation("On locked layer");
    }
}

}  // namespace drafthost::activex
