// SPDX-License-Identifier: GPL-3.0-or-later
// Colours as objects: copies that are changed and put back.

#include <array>
#include <limits>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/drawing/IndexedColors.h"

namespace drafthost::activex {
namespace {

constexpr int ByLayer = 192;
constexpr int ByBlock = 193;
constexpr int ByRgb = 194;
constexpr int ByIndex = 195;
constexpr int LayerIndex = 256;

std::int64_t kept(const Call& call, const char* key) {
    return call.self.kept[key].toInt();
}
void keep(const Call& call, const char* key, std::int64_t value) {
    call.self.kept[key] = Value::integer(static_cast<std::int32_t>(value));
}

Result getIndex(Call& call) {
    return Result::integer(kept(call, "index"));
}
void putIndex(Call& call, const Value& value) {
    const int index = integerOf(value);
    if (index < 0 || index > LayerIndex) {
        failAutomation("Invalid input");
    }
    keep(call, "index", index);
    keep(call, "method", index == LayerIndex ? ByLayer : index == 0 ? ByBlock : ByIndex);
}
Result getMethod(Call& call) {
    return Result::integer(kept(call, "method"));
}
void putMethod(Call& call, const Value& value) {
    const int method = integerOf(value);
    if (method < ByLayer || method > ByIndex) {
        failAutomation("Invalid input");
    }
    keep(call, "method", method);
    if (method == ByLayer || method == ByBlock) {
        keep(call, "index", method == ByLayer ? LayerIndex : 0);
    }
}

std::int64_t rgbOf(const Call& call) {
    const std::int64_t method = kept(call, "method");
    return method == ByRgb     ? kept(call, "rgb")
           : method == ByIndex ? rgbOfIndex(static_cast<int>(kept(call, "index")))
                               : 0;
}
Result red(Call& call) {
    return Result::integer((rgbOf(call) >> 16) & 0xff);
}
Result green(Call& call) {
    return Result::integer((rgbOf(call) >> 8) & 0xff);
}
Result blue(Call& call) {
    return Result::integer(rgbOf(call) & 0xff);
}
Result entityColor(Call& call) {
    const std::int64_t method = kept(call, "method");
    const std::int64_t low = method == ByRgb     ? kept(call, "rgb")
                             : method == ByIndex ? kept(call, "index")
                                                 : 0;
    return Result::integer(static_cast<std::int32_t>(static_cast<std::uint32_t>((method << 24) + low)));
}
void putEntityColor(Call& call, const Value& value) {
    const auto bits = static_cast<std::uint32_t>(integerOf(value));
    keep(call, "method", bits >> 24);
    if (bits >> 24 == ByRgb) {
        keep(call, "rgb", bits & 0xffffff);
        keep(call, "index", nearestIndex(bits & 0xffffff));
    } else {
        keep(call, "index", bits >> 24 == ByLayer ? LayerIndex : bits & 0xff);
    }
}
Result setRgb(Call& call) {
    std::int64_t rgb = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const int part = call.integer(i);
        if (part < 0 || part > 255) {
            failAutomation("Invalid input");
        }
        rgb = rgb * 256 + part;
    }
    keep(call, "method", ByRgb);
    keep(call, "rgb", rgb);
    keep(call, "index", nearestIndex(static_cast<std::uint32_t>(rgb)));
    return {};
}
Result colorName(Call& call) {
    return call.self.kept["color"] ? Result(call.self.kept["color"]) : Result::text("");
}
Result bookName(Call& call) {
    return call.self.kept["book"] ? Result(call.self.kept["book"]) : Result::text("");
}
Result setNames(Call& call) {
    call.self.kept["color"] = Value::string(call.text(0));
    call.self.kept["book"] = Value::string(call.text(1));
    return {};
}
Result nothing(Call&) {
    return {};
}

constexpr Property ColorProperties[] = {
    {"ColorIndex", Access::Custom, 0, 0, getIndex, putIndex},
    {"ColorMethod", Access::Custom, 0, 0, getMethod, putMethod},
    {"EntityColor", Access::Custom, 0, 0, entityColor, putEntityColor},
    {"Red", Access::Custom, 0, 0, red},
    {"Green", Access::Custom, 0, 0, green},
    {"Blue", Access::Custom, 0, 0, blue},
    {"ColorName", Access::Custom, 0, 0, colorName},
    {"BookName", Access::Custom, 0, 0, bookName},
};
constexpr Method ColorMethods[] = {
    {"SetRGB", 3, 3, setRgb},
    {"SetNames", 2, 2, setNames},
    {"SetColorBookColor", 2, 2, setNames},
    {"Delete", 0, 0, nothing},
};

}  // namespace

const Class& colorClass() {
    static const Class kClass{"IAcadAcCmColor", "", {ColorProperties}, {ColorMethods}};
    return kClass;
}

Value makeColor(Evaluator& e, std::int64_t index, std::int64_t trueColor, const std::string& book) {
    Value made = makeObject(colorClass(), documentDatabase(e));
    auto& kept = objectOf(made).kept;
    const bool isTrue = trueColor >= 0;
    const int method = isTrue ? ByRgb : index == LayerIndex ? ByLayer : index == 0 ? ByBlock : ByIndex;
    kept["index"] = Value::integer(static_cast<std::int32_t>(index));
    kept["method"] = Value::integer(method);
    kept["rgb"] = Value::integer(static_cast<std::int32_t>(isTrue ? trueColor : 0));
    if (const std::size_t dollar = book.find('$'); dollar != std::string::npos) {
        kept["book"] = Value::string(book.substr(0, dollar));
        kept["color"] = Value::string(book.substr(dollar + 1));
    }
    return made;
}

Result getTrueColor(Call& call) {
    const Record r = call.record();
    const bool layer = r.type() == "LAYER";
    const std::int64_t index = r.integerOr(62, layer ? 7 : LayerIndex);
    return makeColor(call.e, layer ? std::abs(index) : index, r.integerOr(420, -1), r.textOr(430, ""));
}

void putTrueColor(Call& call, const Value& value) {
    checkUnlocked(call);
    Object& color = objectOf(unwrapped(value));
    if (color.cls != &colorClass()) {
        failMismatch();
    }
    Drawing& drawing = call.drawing();
    const RecordId id = call.id();
    const bool layer = drawing.type(id) == "LAYER";
    std::int64_t index = color.kept["index"].toInt();
    if (layer && (index == 0 || index == LayerIndex)) {
        failAutomation("Invalid input");
    }
    if (layer && drawing.record(id).integerOr(62, 7) < 0) {
        index = -index;
    }
    setGroup(drawing, id, 62, index);
    removeGroup(drawing, id, 430);
    if (color.kept["method"].toInt() == ByRgb) {
        setGroup(drawing, id, 420, std::int64_t{color.kept["rgb"].toInt()});
        if (color.kept["book"]) {
            setGroup(drawing, id, 430, color.kept["book"].toString() + "$" + color.kept["color"].toString());
        }
    } else {
        removeGroup(drawing, id, 420);
    }
    call.changed(layer);
}

}  // namespace drafthost::activex
