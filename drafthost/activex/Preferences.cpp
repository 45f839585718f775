// SPDX-License-Identifier: GPL-3.0-or-later
// Preferences, the drawing's properties for people, and the helpers that programs find beside the drawing.

#include <algorithm>
#include <array>
#include <cmath>

#include "drafthost/activex/Application.h"
#include "drafthost/activex/Classes.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/activex/ModelState.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::activex {
namespace {

constexpr std::array<std::string_view, 9> PreferenceGroups = {
    "DISPLAY", "DRAFTING", "FILES", "OPENSAVE", "OUTPUT", "PROFILES", "SELECTION", "SYSTEM", "USER"};

struct Standard {
    std::string_view name;
    enum { Text, Number, Logical, Color } kind;
    std::string_view value = "0";
};

constexpr std::array<Standard, 34> Standards = {{
    {"ACTIVEPROFILE", Standard::Text, "<<Unnamed Profile>>"},
    {"SUPPORTPATH", Standard::Text, ""},
    {"TEMPLATEDWGPATH", Standard::Text, ""},
    {"PRINTERCONFIGPATH", Standard::Text, ""},
    {"PRINTERSTYLESHEETPATH", Standard::Text, ""},
    {"PRINTERDESCPATH", Standard::Text, ""},
    {"QNEWTEMPLATEFILE", Standard::Text, ""},
    {"DRIVERSPATH", Standard::Text, ""},
    {"CUSTOMICONPATH", Standard::Text, ""},
    {"DEFAULTINTERNETURL", Standard::Text, ""},
    {"TEMPFILEPATH", Standard::Text, "/tmp"},
    {"DEFAULTOUTPUTDEVICE", Standard::Text, "None"},
    {"DEFAULTPLOTSTYLETABLE", Standard::Text, ""},
    {"GRAPHICSWINMODELBACKGRNDCOLOR", Standard::Color, "0"},
    {"GRAPHICSWINLAYOUTBACKGRNDCOLOR", Standard::Color, "16777215"},
    {"MODELCROSSHAIRCOLOR", Standard::Color, "16777215"},
    {"LAYOUTCROSSHAIRCOLOR", Standard::Color, "0"},
    {"AUTOTRACKINGVECCOLOR", Standard::Color, "0"},
    {"TEXTWINBACKGRNDCOLOR", Standard::Color, "16777215"},
    {"TEXTWINTEXTCOLOR", Standard::Color, "0"},
    {"AUTOSNAPMARKERCOLOR", Standard::Number, "3"},
    {"CURSORSIZE", Standard::Number, "5"},
    {"SAVEASTYPE", Standard::Number, "61"},
    {"AUTOSAVEINTERVAL", Standard::Number, "10"},
    {"INCREMENTALSAVEPERCENT", Standard::Number, "50"},
    {"LOGFILEON", Standard::Logical, "0"},
    {"LAYOUTDISPLAYMARGINS", Standard::Logical, "1"},
    {"PICKFIRST", Standard::Logical, "1"},
    {"DISPLAYGRIPS", Standard::Logical, "1"},
    {"LINEWEIGHTDISPLAY", Standard::Logical, "0"},
    {"SOLIDFILL", Standard::Logical, "1"},
    {"TEXTFRAMEDISPLAY", Standard::Logical, "0"},
    {"XREFLAYERVISIBILITY", Standard::Logical, "1"},
    {"XREFEDIT", Standard::Logical, "1"},
}};

Result standardOf(const std::string& name) {
    for (const Standard& standard : Standards) {
        if (standard.name != name) {
            continue;
        }
        switch (standard.kind) {
            case Standard::Text:
                return Result::text(std::string(standard.value));
            case Standard::Number:
                return Result::integer(parseInteger(standard.value));
            case Standard::Logical:
                return Result::boolean(standard.value == "1");
            case Standard::Color:
                return {Shape::Variant,
                        Value::integer(static_cast<std::int32_t>(parseInteger(standard.value)))};
        }
    }
    fail("ActiveX Server returned the error: unknown name: " + name);
}

// --- the properties of a drawing for people ---

constexpr std::array<std::pair<const char*, const char*>, 8> SummaryNames = {
    {{"TITLE", "$TITLE"},
     {"SUBJECT", "$SUBJECT"},
     {"AUTHOR", "$AUTHOR"},
     {"KEYWORDS", "$KEYWORDS"},
     {"COMMENTS", "$COMMENTS"},
     {"LASTSAVEDBY", "$LASTSAVEDBY"},
     {"REVISIONNUMBER", "$REVISIONNUMBER"},
     {"HYPERLINKBASE", "$HYPERLINKBASE"}}};

template <std::size_t which>
Result getSummary(Call& call) {
    return Result::text(headerText(call.drawing(), SummaryNames[which].second, ""));
}
template <std::size_t which>
void putSummary(Call& call, const Value& value) {
    setHeader(call.drawing(), SummaryNames[which].second, 1, textOf(value));
    call.changed();
}

struct Custom {
    std::string key;
    std::string value;
    std::size_t tag = 0;  ///< the value's tag behind $CUSTOMPROPERTY
    std::size_t first = 0;
};

/// Pairs of header variables of the same two names, one behind the other.
std::vector<Custom> customs(const Drawing& drawing, RecordId& header) {
    std::vector<Custom> all;
    header = NoRecord;
    for (RecordId id = drawing.first(); id != NoRecord; id = drawing.next(id)) {
        if (drawing.type(id) == "SECTION" && drawing.record(id).textOr(2, "") == "HEADER") {
            header = id;
            break;
        }
    }
    if (header == NoRecord) {
        return all;
    }
    const Record r = drawing.record(header);
    for (std::size_t i = 0; i + 3 < r.size(); ++i) {
        if (r.code(i) == 9 && r.text(i) == "$CUSTOMPROPERTYTAG" && r.code(i + 2) == 9) {
            all.push_back({r.text(i + 1), r.text(i + 3), i + 3, i});
        }
    }
    return all;
}
const Custom* customNamed(const std::vector<Custom>& all, const std::string& key) {
    for (const Custom& one : all) {
        if (foldCase(one.key) == foldCase(key)) {
            return &one;
        }
    }
    return nullptr;
}
const Custom& customAt(const std::vector<Custom>& all, int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= all.size()) {
        failAutomation("Invalid index");
    }
    return all[static_cast<std::size_t>(index)];
}

Result customCount(Call& call) {
    RecordId header = NoRecord;
    return Result::integer(static_cast<std::int64_t>(customs(call.drawing(), header).size()));
}
Result addCustom(Call& call) {
    RecordId header = NoRecord;
    const auto all = customs(call.drawing(), header);
    if (customNamed(all, call.text(0)) != nullptr) {
        failAutomation("Duplicate key");
    }
    if (header == NoRecord || call.drawing().versionNumber() < 1018) {
        failAutomation("The drawing's version keeps no properties.");
    }
    Drawing& drawing = call.drawing();
    drawing.appendTag(header, 9, "$CUSTOMPROPERTYTAG");
    drawing.appendTag(header, 1, call.text(0));
    drawing.appendTag(header, 9, "$CUSTOMPROPERTY");
    drawing.appendTag(header, 1, call.text(1));
    call.changed();
    return {};
}
Result getByKey(Call& call) {
    RecordId header = NoRecord;
    const auto all = customs(call.drawing(), header);
    const Custom* found = customNamed(all, call.text(0));
    if (found == nullptr) {
        failAutomation("Key not found");
    }
    call.put(1, Value::string(found->value));
    return {};
}
Result getByIndex(Call& call) {
    RecordId header = NoRecord;
    const auto all = customs(call.drawing(), header);
    const Custom& found = customAt(all, call.integer(0));
    call.put(1, Value::string(found.key));
    call.put(2, Value::string(found.value));
    return {};
}
Result setByKey(Call& call) {
    RecordId header = NoRecord;
    const auto all = customs(call.drawing(), header);
    const Custom* found = customNamed(all, call.text(0));
    if (found == nullptr) {
        failAutomation("Key not found");
    }
    call.drawing().setTag(header, found->tag, call.text(1));
    call.changed();
    return {};
}
Result setByIndex(Call& call) {
    RecordId header = NoRecord;
    const auto all = customs(call.drawing(), header);
    const Custom& found = customAt(all, call.integer(0));
    call.drawing().setTag(header, found.first + 1, call.text(1));
    call.drawing().setTag(header, found.tag, call.text(2));
    call.changed();
    return {};
}
void removeCustom(Call& call, RecordId header, const Custom& one) {
    for (std::size_t i = one.tag + 1; i-- > one.first;) {
        call.drawing().removeTag(header, i);
    }
    call.changed();
}
Result removeByKey(Call& call) {
    RecordId header = NoRecord;
    const auto all = customs(call.drawing(), header);
    const Custom* found = customNamed(all, call.text(0));
    if (found == nullptr) {
        failAutomation("Key not found");
    }
    removeCustom(call, header, *found);
    return {};
}
Result removeByIndex(Call& call) {
    RecordId header = NoRecord;
    const auto all = customs(call.drawing(), header);
    removeCustom(call, header, customAt(all, call.integer(0)));
    return {};
}

constexpr Property Summary[] = {
    {"Title", Access::Custom, 0, 0, getSummary<0>, putSummary<0>},
    {"Subject", Access::Custom, 0, 0, getSummary<1>, putSummary<1>},
    {"Author", Access::Custom, 0, 0, getSummary<2>, putSummary<2>},
    {"Keywords", Access::Custom, 0, 0, getSummary<3>, putSummary<3>},
    {"Comments", Access::Custom, 0, 0, getSummary<4>, putSummary<4>},
    {"LastSavedBy", Access::Custom, 0, 0, getSummary<5>, putSummary<5>},
    {"RevisionNumber", Access::Custom, 0, 0, getSummary<6>, putSummary<6>},
    {"HyperlinkBase", Access::Custom, 0, 0, getSummary<7>, putSummary<7>},
};
constexpr Method SummaryMethod[] = {
    {"NumCustomInfo", 0, 0, customCount},     {"AddCustomInfo", 2, 2, addCustom},
    {"GetCustomByKey", 2, 2, getByKey},       {"GetCustomByIndex", 3, 3, getByIndex},
    {"SetCustomByKey", 2, 2, setByKey},       {"SetCustomByIndex", 3, 3, setByIndex},
    {"RemoveCustomByKey", 1, 1, removeByKey}, {"RemoveCustomByIndex", 1, 1, removeByIndex},
};

// --- helpers ---

/// What the function of LISP of that name gives for the arguments.
Value lispCall(Call& call, const char* function, std::vector<Value> args) {
    return call.e.apply(Value::symbol(function), args);
}

Result idString(Call& call) {
    Object& object = call.objectArg(0);
    static const lisp::Symbol* const kId = lisp::Symbol::intern("OBJECTID");
    Call ask{call.e, object, {}};
    const Property* property = object.cls->property(kId);
    if (property == nullptr) {
        failMismatch();
    }
    const std::int32_t id = getProperty(ask, *property).value.toInt();
    return Result::text(call.has(1) && call.boolean(1) ? formatHandle(static_cast<std::uint64_t>(id))
                                                       : std::to_string(id));
}
Result polarPoint(Call& call) {
    const Point p = call.point(0);
    return Result::point(
        p + Point{call.real(2) * std::cos(call.real(1)), call.real(2) * std::sin(call.real(1)), 0});
}
Result angleFromX(Call& call) {
    return lispCall(call, "ANGLE", {Value::point(call.point(0)), Value::point(call.point(1))});
}
Result angleToString(Call& call) {
    return lispCall(
        call, "ANGTOS",
        {Value::real(call.real(0)), Value::integer(call.integer(1)), Value::integer(call.integer(2))});
}
Result realToString(Call& call) {
    return lispCall(
        call, "RTOS",
        {Value::real(call.real(0)), Value::integer(call.integer(1)), Value::integer(call.integer(2))});
}
Result distanceToReal(Call& call) {
    return lispCall(call, "DISTOF", {Value::string(call.text(0)), Value::integer(call.integer(1))});
}
Result angleToReal(Call& call) {
    return lispCall(call, "ANGTOF", {Value::string(call.text(0)), Value::integer(call.integer(1))});
}
Result prompt(Call& call) {
    call.session().host.print(call.text(0));
    return {};
}
Result translate(Call& call) {
    const Value moved = lispCall(call, "TRANS",
                                 {Value::point(call.point(0)), Value::integer(call.integer(1)),
                                  Value::integer(call.integer(2)), Value::boolean(call.boolean(3))});
    return {Shape::Point, moved};
}
Result getString(Call& call) {
    return lispCall(
        call, "GETSTRING",
        {Value::boolean(call.boolean(0)), call.has(1) ? Value::string(call.text(1)) : Value::string("")});
}
Result getKeyword(Call& call) {
    return lispCall(call, "GETKWORD", {call.has(0) ? Value::string(call.text(0)) : Value::string("")});
}

constexpr Method UtilityMethod[] = {
    {"GetObjectIdString", 1, 2, idString},     {"PolarPoint", 3, 3, polarPoint},
    {"AngleFromXAxis", 2, 2, angleFromX},      {"AngleToString", 3, 3, angleToString},
    {"RealToString", 3, 3, realToString},      {"DistanceToReal", 2, 2, distanceToReal},
    {"AngleToReal", 2, 2, angleToReal},        {"Prompt", 1, 1, prompt},
    {"TranslateCoordinates", 4, 5, translate}, {"GetString", 1, 2, getString},
    {"GetKeyword", 0, 1, getKeyword},
};

}  // namespace

Result getPreference(Call& call, const std::string& name) {
    if (call.self.name.empty() &&
        std::find(PreferenceGroups.begin(), PreferenceGroups.end(), name) != PreferenceGroups.end()) {
        Value& group = modelState(call.e).preferences[name];
        if (!group) {
            group = makeObject(preferencesClass(), documentDatabase(call.e));
            objectOf(group).name = name;
        }
        return group;
    }
    const auto kept = call.self.kept.find(name);
    return kept == call.self.kept.end() ? standardOf(name) : Result(kept->second);
}

void putPreference(Call& call, const std::string& name, const Value& value) {
    call.self.kept[name] = value;
}

const Class& preferencesClass() {
    static const Class kClass{"IAcadPreferences", "", {}, {}};
    return kClass;
}

const Class& summaryClass() {
    static const Class kClass{"IAcadSummaryInfo", "", {Summary}, {SummaryMethod}};
    return kClass;
}

const Class& utilityClass() {
    static const Class kClass{"IAcadUtility", "", {}, {UtilityMethod}};
    return kClass;
}

}  // namespace drafthost::activex
