// SPDX-License-Identifier: GPL-3.0-or-later
// What every record has, and the entities that are more than a line: dimensions, leaders, images,
// viewports.

#include <cmath>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/ExtensionData.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/automation/EntityNames.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost::activex {
namespace {

/// A number for a record that holds for as long as its drawing is open.
std::int64_t idOf(const Drawing& drawing, RecordId id) {
    constexpr std::int64_t First = 0x10000000;
    const std::uint64_t handle = drawing.handle(id);
    return handle != 0 && handle < 0x60000000 ? First + static_cast<std::int64_t>(handle)
                                              : First + static_cast<std::int64_t>(id);
}

Result getHandle(Call& call) {
    return Result::text(formatHandle(call.drawing().handle(call.id())));
}
Result objectName(Call& call) {
    return Result::text(call.self.cls->objectName);
}
Result objectId(Call& call) {
    return Result::integer(idOf(call.drawing(), call.id()));
}
RecordId ownerOf(const Call& call) {
    const Drawing& drawing = call.drawing();
    const RecordId named = drawing.findHandle(call.record().handleOr(330, 0));
    if (named != NoRecord) {
        return named;
    }
    const Layout* layout = layoutOf(drawing, call.id());
    return layout == nullptr ? NoRecord : layout->blockRecord;
}
Result ownerId(Call& call) {
    const RecordId owner = ownerOf(call);
    return Result::integer(owner == NoRecord ? 0 : idOf(call.drawing(), owner));
}
Result getDocument(Call& call) {
    return singleObject(call.e, documentClass());
}
Result getApplication(Call& call) {
    return singleObject(call.e, applicationClass());
}
Result getDatabase(Call& call) {
    return call.self.database->own == nullptr ? singleObject(call.e, databaseClass())
                                              : makeObject(databaseClass(), call.self.database);
}
Result hasExtension(Call& call) {
    return Result::boolean(extensionDictionary(call.drawing(), call.id()) != NoRecord);
}
Result getExtension(Call& call) {
    Drawing& drawing = call.drawing();
    RecordId found = extensionDictionary(drawing, call.id());
    if (found == NoRecord) {
        found = makeExtensionDictionary(drawing, call.id());
        if (found == NoRecord) {
            failAutomation("Not applicable");
        }
        call.changed();
    }
    return call.object(found);
}
Result getExtendedData(Call& call) {
    readExtendedData(call);
    return {};
}
Result setExtendedData(Call& call) {
    checkUnlocked(call);
    writeExtendedData(call);
    call.changed();
    return {};
}

void putDimensionStyle(Call& call, const Value& value) {
    checkUnlocked(call);
    const RecordId style = findEntry(call.drawing(), Table::Dimstyle, textOf(value));
    if (style == NoRecord) {
        failAutomation("Key not found");
    }
    setGroup(call.drawing(), call.id(), 3, entryName(call.drawing(), style));
    call.changed();
}
Result measurement(Call& call) {
    const auto i = groupTag(call.record(), 42, "");
    const bool angular =
        (call.record().integerOr(70, 0) & 7) == 2 || (call.record().integerOr(70, 0) & 7) == 5;
    return Result::real(i ? call.record().real(*i) * (angular ? RadiansPerDegree : 1) : 0);
}

Result leaderPoints(Call& call) {
    std::vector<double> all;
    const Record r = call.record();
    for (std::size_t i = 1; i < r.xdata(); ++i) {
        if (r.code(i) == 10) {
            const Point p = r.point(i);
            all.insert(all.end(), {p.x, p.y, p.z});
        }
    }
    return Result::reals(all);
}

Result imageFile(Call& call) {
    const RecordId definition = call.drawing().findHandle(call.record().handleOr(340, 0));
    return Result::text(definition == NoRecord ? "" : call.drawing().record(definition).textOr(1, ""));
}
void putImageFile(Call& call, const Value& value) {
    const RecordId definition = call.drawing().findHandle(call.record().handleOr(340, 0));
    if (definition == NoRecord) {
        failAutomation("Not applicable");
    }
    call.drawing().put(definition, 1, textOf(value));
    call.changed();
}

constexpr std::int64_t LockedView = 0x4000;
constexpr std::int64_t ViewportOff = 0x20000;

Result viewportOn(Call& call) {
    return Result::boolean((call.record().integerOr(90, 0) & ViewportOff) == 0 &&
                           call.record().integerOr(68, 1) != 0);
}
void putViewportOn(Call& call, const Value& value) {
    checkUnlocked(call);
    const std::int64_t bits = call.record().integerOr(90, 0);
    setGroup(call.drawing(), call.id(), 90, booleanOf(value) ? bits & ~ViewportOff : bits | ViewportOff);
    call.changed();
}
Result display(Call& call) {
    putViewportOn(call, call.arg(0));
    return {};
}
Result customScale(Call& call) {
    const Record r = call.record();
    const double height = groupReal(r, 45, 0);
    return Result::real(height == 0 ? 1 : groupReal(r, 41, 0) / height);
}
void putCustomScale(Call& call, const Value& value) {
    checkUnlocked(call);
    const double scale = realOf(value);
    if (!(scale > 0)) {
        failAutomation("Invalid input");
    }
    setGroup(call.drawing(), call.id(), 45, groupReal(call.record(), 41, 0) / scale);
    call.changed();
}
/// The numbers of the fixed scales.
constexpr std::pair<int, double> FixedScales[] = {
    {2, 1},        {3, 0.5},  {4, 0.25},      {5, 0.2},    {6, 0.125}, {7, 0.1},
    {8, 1.0 / 16}, {9, 0.05}, {10, 1.0 / 30}, {11, 0.025}, {12, 0.02}, {13, 0.01},
    {14, 2},       {15, 4},   {16, 8},        {17, 10},    {18, 100}};
constexpr int CustomScale = 1;

Result standardScale(Call& call) {
    const double held = customScale(call).value.toReal();
    for (const auto& [number, scale] : FixedScales) {
        if (std::abs(held - scale) <= 1e-9 * scale) {
            return Result::integer(number);
        }
    }
    return Result::integer(CustomScale);
}
void putStandardScale(Call& call, const Value& value) {
    const int wanted = integerOf(value);
    for (const auto& [number, scale] : FixedScales) {
        if (number == wanted) {
            putCustomScale(call, Value::real(scale));
            return;
        }
    }
    // The scale itself is put after this.
    if (wanted != CustomScale) {
        failAutomation("Invalid input");
    }
}

constexpr Property Every[] = {
    {"Handle", Access::Custom, 5, 0, getHandle},
    {"ObjectName", Access::Custom, 0, 0, objectName},
    {"ObjectID", Access::Custom, 0, 0, objectId},
    {"OwnerID", Access::Custom, 0, 0, ownerId},
    {"Document", Access::Custom, 0, 0, getDocument},
    {"Application", Access::Custom, 0, 0, getApplication},
    {"Database", Access::Custom, 0, 0, getDatabase},
    {"HasExtensionDictionary", Access::Custom, 0, 0, hasExtension},
};
constexpr Method EveryMethod[] = {
    {"GetExtensionDictionary", 0, 0, getExtension},
    {"GetXData", 3, 3, getExtendedData},
    {"SetXData", 2, 2, setExtendedData},
};
constexpr Property Dimension[] = {
    {"TextOverride", Access::Text, 1},
    {"Measurement", Access::Custom, 42, 0, measurement},
    {"TextPosition", Access::OcsPoint, 11},
    {"TextRotation", Access::Angle, 53, 0},
    {"StyleName", Access::Text, 3, 0, nullptr, putDimensionStyle, false, "Standard"},
    {"Rotation", Access::Angle, 50, 0},
    {"ExtLine1Point", Access::Point, 13},
    {"ExtLine2Point", Access::Point, 14},
};
constexpr Property Leader[] = {
    {"Coordinates", Access::Custom, 10, 0, leaderPoints},
    {"StyleName", Access::Text, 3, 0, nullptr, putDimensionStyle, false, "Standard"},
    {"Type", Access::Integer, 72, 0, nullptr, nullptr, true},
};
constexpr Property Image[] = {
    {"ImageFile", Access::Custom, 0, 0, imageFile, putImageFile},
    {"Origin", Access::Point, 10},
    {"Brightness", Access::Integer, 281, 50},
    {"Contrast", Access::Integer, 282, 50},
    {"Fade", Access::Integer, 283, 0},
    {"ClippingEnabled", Access::Bool, 280, 0},
};
constexpr Property Viewport[] = {
    {"Center", Access::Point, 10},
    {"Width", Access::Real, 40, 1},
    {"Height", Access::Real, 41, 1},
    {"Target", Access::Point, 17},
    {"Direction", Access::Point, 16},
    {"TwistAngle", Access::Angle, 51, 0},
    {"LensLength", Access::Real, 42, 50},
    {"CustomScale", Access::Custom, 45, 0, customScale, putCustomScale},
    {"StandardScale", Access::Custom, 0, 0, standardScale, putStandardScale},
    {"DisplayLocked", Access::Flag, 90, LockedView},
    {"ViewportOn", Access::Custom, 90, 0, viewportOn, putViewportOn},
    {"Clipped", Access::Flag, 90, 0x10000, nullptr, nullptr, true},
};

}  // namespace

Properties recordProperties() {
    return Every;
}
Methods recordMethods() {
    return EveryMethod;
}
Properties dimensionProperties() {
    return Dimension;
}
Properties leaderProperties() {
    return Leader;
}
Properties imageProperties() {
    return Image;
}
Properties viewportProperties() {
    return Viewport;
}
Methods viewportMethods() {
    static constexpr Method Methods[] = {{"Display", 1, 1, display}};
    return Methods;
}

}  // namespace drafthost::activex
