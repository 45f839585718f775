// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/DxfList.h"

#include <algorithm>
#include <cmath>

#include "drafthost/automation/DefaultList.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/automation/Session.h"
#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/lisp/Compare.h"
#include "drafthost/lisp/Printer.h"
#include "drafthost/lisp/WildcardMatch.h"

namespace drafthost::automation {
namespace {

// Marks the name of an object that the drawing lacks; the rest is the handle, so that it is not lost.
constexpr EntityName Missing = EntityName{1} << 63;

bool isPointCode(int code) {
    return (code >= 10 && code <= 18) || code == 110 || code == 111 || code == 112 || code == 210 ||
           (code >= 1010 && code <= 1013);
}

/// Angles are degrees in the file and radians for programs.
bool isAngleCode(int code) {
    return code >= 50 && code <= 58;
}

bool isReference(int code) {
    return kindOf(code) == ValueKind::Handle && code != 5 && code != 105 && code != 1005;
}

Value pair(int code, Value value) {
    return Value::cons(Value::integer(code), std::move(value));
}

/// Index of the group that names the owner: the first 330 outside of {…} groups.
std::optional<std::size_t> ownerTag(const Record& record) {
    bool inGroup = false;
    const std::size_t end = record.xdata();
    for (std::size_t i = 1; i < end; ++i) {
        const int code = record.code(i);
        if (code == 102) {
            inGroup = record.raw(i).find('{') != std::string_view::npos;
        } else if (code == 330 && !inGroup) {
            return i;
        } else if (code == 100) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

bool isWanted(const std::string& application, const Applications& wanted) {
    for (const std::string& pattern : wanted) {
        if (lisp::wildcardMatch(application, pattern, true)) {
            return true;
        }
    }
    return false;
}

Value extendedData(const Drawing& drawing, const Record& record, const Applications& wanted) {
    ListBuilder all;
    for (std::size_t i = record.xdata(); i < record.size();) {
        const std::string application = record.text(i);
        const bool shown = record.code(i) == 1001 && isWanted(application, wanted);
        ListBuilder one;
        one.add(Value::string(application));
        for (++i; i < record.size() && record.code(i) != 1001;) {
            const std::size_t width = groupWidth(record, i);
            if (record.code(i) >= 1000) {
                one.add(pair(record.code(i), groupValue(drawing, record, i)));
            }
            i += width;
        }
        if (shown) {
            all.add(one.take());
        }
    }
    return all.take();
}

}  // namespace

std::optional<RecordId> aliveRecord(const Drawing& drawing, EntityName name) {
    const auto id = recordOf(name);
    if (!id) {
        return std::nullopt;
    }
    const RecordId now = drawing.placeNow(*id);
    return drawing.isAlive(now) ? std::optional(now) : std::nullopt;
}

Drawing& drawingOf(Evaluator& e) {
    Drawing* drawing = sessionOf(e).host.drawing();
    if (drawing == nullptr) {
        fail("no drawing database");
    }
    return *drawing;
}

std::size_t groupWidth(const Record& record, std::size_t i) {
    const int code = record.code(i);
    if (!isPointCode(code) || i + 1 >= record.size() || record.code(i + 1) != code + 10) {
        return 1;
    }
    return i + 2 < record.size() && record.code(i + 2) == code + 20 ? 3 : 2;
}

Value groupValue(const Drawing& drawing, const Record& record, std::size_t i) {
    const int code = record.code(i);
    const std::size_t width = groupWidth(record, i);
    if (width > 1) {
        const Point p = record.point(i);
        return width == 3 ? Value::point({p.x, p.y, p.z}) : Value::point2d(p.x, p.y);
    }
    switch (kindOf(code)) {
        case ValueKind::Real:
            return Value::real(isAngleCode(code) ? record.real(i) * RadiansPerDegree : record.real(i));
        case ValueKind::Int16:
        case ValueKind::Int32:
        case ValueKind::Int64:
        case ValueKind::Bool: {
            const std::int64_t n = record.integer(i);
            const auto small = static_cast<std::int32_t>(n);
            return small == n ? Value::integer(small) : Value::real(static_cast<double>(n));
        }
        default:
            break;
    }
    if (isReference(code)) {
        const std::uint64_t handle = record.handle(i);
        const RecordId target = drawing.findHandle(handle);
        return Value::ename(target != NoRecord ? nameOf(target) : handle == 0 ? 0 : Missing | handle);
    }
    return Value::string(record.text(i));
}

Value recordList(const Drawing& drawing, RecordId id, const Applications& applications) {
    const Record record = drawing.record(id);
    const Layout* layout = layoutOf(drawing, id);
    const auto owner = ownerTag(record);
    const std::size_t end = record.xdata();
    std::vector<Value> list;
    list.push_back(pair(-1, Value::ename(nameOf(id))));
    list.push_back(pair(0, Value::string(std::string(record.type()))));
    if (owner) {
        list.push_back(pair(330, groupValue(drawing, record, *owner)));
    }
    bool spaceShown = layout == nullptr;
    const auto showSpace = [&] {
        list.push_back(pair(67, Value::integer(layout->model ? 0 : 1)));
        list.push_back(pair(410, Value::string(layout->name)));
        spaceShown = true;
    };
    for (std::size_t i = 1; i < end;) {
        const int code = record.code(i);
        const std::size_t width = groupWidth(record, i);
        const bool derived = layout != nullptr && (code == 67 || code == 410);
        if (code == 8 && !spaceShown) {
            showSpace();
        }
        if (i != owner && !derived && code != 999) {
            list.push_back(pair(code, groupValue(drawing, record, i)));
        }
        i += width;
    }
    if (!spaceShown) {
        showSpace();
    }
    addDefaults(record, list);
    if (!applications.empty()) {
        if (Value data = extendedData(drawing, record, applications)) {
            list.push_back(pair(-3, std::move(data)));
        }
    }
    return Value::list(list);
}

Value tableList(const Drawing& drawing, RecordId id) {
    const Record record = drawing.record(id);
    const bool layer = record.type() == "LAYER";
    ListBuilder list;
    list.add(pair(0, Value::string(std::string(record.type()))));
    bool inGroup = false;
    const std::size_t end = record.xdata();
    for (std::size_t i = 1; i < end;) {
        const int code = record.code(i);
        const std::size_t width = groupWidth(record, i);
        if (code == 102) {
            inGroup = record.raw(i).find('{') != std::string_view::npos;
        }
        const bool hidden = inGroup || code == 102 || code == 5 || code == 105 || code == 100 ||
                            code == 999 || isReference(code) ||
                            (layer && code != 2 && code != 70 && code != 62 && code != 6);
        if (!hidden) {
            list.add(pair(code, groupValue(drawing, record, i)));
        }
        i += width;
    }
    return list.take();
}

bool fitsGroup(int code, const Value& v) {
    if (isPointCode(code)) {
        return v.isNumber() || toPoint(v);
    }
    switch (kindOf(code)) {
        case ValueKind::Real:
        case ValueKind::Int16:
        case ValueKind::Int32:
        case ValueKind::Bool:
        case ValueKind::Int64:
            return v.isNumber();
        case ValueKind::Handle:
            return v.isEname() || v.isString();
        default:
            return v.isString();
    }
}

void checkGroups(const Value& list) {
    for (const Value& item : listArg(list).items()) {
        if (!item.isCons() || !item.car().isInt()) {
            fail("bad association list: " + lisp::prin1(list));
        }
        const int code = item.car().toInt();
        const Value& value = item.cdr();
        const bool fits = code == -1 || code == -2 ? value.isEname()
                          : code == -3             ? value.isList()
                          : code >= 0              ? fitsGroup(code, value)
                                                   : false;
        if (!fits) {
            fail("bad DXF group: " + lisp::prin1(item));
        }
    }
}

const Value* groupOf(const Value& list, int code) {
    for (const Value* rest = &list; rest->isCons(); rest = &rest->cdr()) {
        const Value& item = rest->car();
        if (item.isCons() && item.car().isInt() && item.car().toInt() == code) {
            return &item.cdr();
        }
    }
    return nullptr;
}

namespace {

drafthost::Value toTag(const Drawing& drawing, int code, const Value& v) {
    if (v.isEname()) {
        if ((v.toEname() & Missing) != 0) {
            return formatHandle(v.toEname() & ~Missing);
        }
        const auto target = recordOf(v.toEname());
        return formatHandle(target ? drawing.handle(*target) : 0);
    }
    if (v.isString()) {
        return v.toString();
    }
    if (isPointCode(code) || kindOf(code) == ValueKind::Real) {
        return isAngleCode(code) ? degreesOf(v.toDouble()) : v.toDouble();
    }
    return v.isInt() ? std::int64_t{v.toInt()} : static_cast<std::int64_t>(std::llround(v.toReal()));
}

bool sameTag(const Record& record, std::size_t i, int code, const drafthost::Value& value) {
    if (std::holds_alternative<double>(value)) {
        return record.real(i) == std::get<double>(value);
    }
    if (std::holds_alternative<std::int64_t>(value)) {
        return record.integer(i) == std::get<std::int64_t>(value);
    }
    return kindOf(code) == ValueKind::Handle ? record.handle(i) == parseHandle(std::get<std::string>(value))
                                             : record.text(i) == std::get<std::string>(value);
}

void setIfChanged(Drawing& drawing, RecordId id, std::size_t i, int code, const drafthost::Value& value) {
    if (!sameTag(drawing.record(id), i, code, value)) {
        drawing.setTag(id, i, value);
    }
}

}  // namespace

void setGroup(Drawing& drawing, RecordId id, std::size_t i, int code, const Value& value) {
    // An angle that was only read and given back stays as it was typed.
    if (isAngleCode(code) && lisp::equalValues(groupValue(drawing, drawing.record(id), i), value)) {
        return;
    }
    const std::size_t width = groupWidth(drawing.record(id), i);
    const auto point = toPoint(value);
    if (width == 1 || !point) {
        setIfChanged(drawing, id, i, code, toTag(drawing, code, value));
        return;
    }
    for (std::size_t k = 0; k < width; ++k) {
        setIfChanged(drawing, id, i + k, code, (*point)[k]);
    }
    if (width == 2 && (*point)[2] != 0 && value.cdr().cdr().isCons() && drawing.type(id) != "LWPOLYLINE") {
        drawing.insertTag(id, i + 2, code + 20, (*point)[2]);
    }
}

namespace {

/// At the end of the part in which the group belongs, in front of extended data where that is not known.
std::size_t placeOfGroup(const Record& record, int code) {
    if (record.type() == "LWPOLYLINE" && (code == 43 || code == 38 || code == 39)) {
        return record.find(10).value_or(record.xdata());
    }
    for (const DefaultGroup& group : defaultGroups(record.type())) {
        const std::size_t begin = group.code == code ? record.subclass(group.subclass) : record.size();
        if (begin < record.size()) {
            std::size_t end = begin + 1;
            while (end < record.xdata() && record.code(end) != 100) {
                ++end;
            }
            return end;
        }
    }
    return record.xdata();
}

}  // namespace

void addGroup(Drawing& drawing, RecordId id, int code, const Value& value) {
    // Properties that every entity may have stand together behind the layer; the rest goes to the end.
    switch (code) {
        case 6:
        case 62:
        case 370:
        case 48:
        case 60:
        case 420:
        case 430:
        case 440:
            if (drawing.record(id).find(8)) {
                drawing.put(id, code, toTag(drawing, code, value), {8});
                return;
            }
            break;
        default:
            break;
    }
    const std::size_t before = placeOfGroup(drawing.record(id), code);
    const auto point = isPointCode(code) ? toPoint(value) : std::nullopt;
    if (!point) {
        drawing.insertTag(id, before, code, toTag(drawing, code, value));
        return;
    }
    const bool space = value.cdr().cdr().isCons() && drawing.type(id) != "LWPOLYLINE";
    for (std::size_t k = 0; k < (space ? 3U : 2U); ++k) {
        drawing.insertTag(id, before + k, code + static_cast<int>(10 * k), (*point)[k]);
    }
}

void appendGroup(Drawing& drawing, RecordId id, int code, const Value& value) {
    const auto point = isPointCode(code) ? toPoint(value) : std::nullopt;
    if (!point) {
        drawing.appendTag(id, code, toTag(drawing, code, value));
        return;
    }
    const bool space = value.cdr().cdr().isCons() && drawing.type(id) != "LWPOLYLINE";
    for (std::size_t k = 0; k < (space ? 3U : 2U); ++k) {
        drawing.appendTag(id, code + static_cast<int>(10 * k), (*point)[k]);
    }
}

void setExtendedData(Drawing& drawing, RecordId id, const Value& applications) {
    for (const Value& application : applications.items()) {
        if (!application.isCons() || !application.car().isString()) {
            fail("bad DXF group: " + lisp::prin1(pair(-3, applications)));
        }
        checkGroups(application.cdr());
        const std::string wanted = foldCase(application.car().toString());
        const std::vector<Value> present = extendedData(drawing, drawing.record(id), {"*"}).items();
        if (std::ranges::any_of(present, [&](const Value& old) {
                return foldCase(old.car().toString()) == wanted &&
                       lisp::equalValues(old.cdr(), application.cdr());
            })) {
            continue;
        }
        std::size_t i = drawing.record(id).xdata();
        while (i < drawing.record(id).size()) {
            if (drawing.record(id).code(i) != 1001 || foldCase(drawing.record(id).text(i)) != wanted) {
                ++i;
                continue;
            }
            do {
                drawing.removeTag(id, i);
            } while (i < drawing.record(id).size() && drawing.record(id).code(i) != 1001);
        }
        if (application.cdr().isNil()) {
            continue;
        }
        drawing.appendTag(id, 1001, application.car().toString());
        for (const Value& item : application.cdr().items()) {
            appendGroup(drawing, id, item.car().toInt(), item.cdr());
        }
    }
}

}  // namespace drafthost::automation
