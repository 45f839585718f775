// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/HatchQuestions.h"

#include <numbers>

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/UserSystem.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/Transparency.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

constexpr double DegreesPerRadian = 180 / std::numbers::pi;

bool isMetric(const Drawing& drawing) {
    return headerInteger(drawing, "$MEASUREMENT", 0) == 1;
}

std::vector<HatchPattern> patternsFor(CommandContext& context, const std::string& name) {
    std::string error;
    auto patterns = knownPatterns(
        name, isMetric(context.document().drawing()),
        [&](const std::string& file) { return context.host().findFile(file); }, error);
    if (!error.empty()) {
        context.complain(error);
    }
    return patterns;
}

std::optional<HatchPattern> findPattern(CommandContext& context, const std::string& name) {
    auto pattern = patternNamed(patternsFor(context, name), name);
    if (!pattern) {
        context.complain("Cannot find hatch pattern " + inQuotes(name) + ".");
    }
    return pattern;
}

double realVariable(CommandContext& context, const char* name, double fallback) {
    const auto value = context.host().variables().get(name, &context.document());
    return value && std::holds_alternative<double>(*value) ? std::get<double>(*value) : fallback;
}

void keep(CommandContext& context, const char* name, const VariableValue& value) {
    std::string reason;
    if (context.host().variables().set(name, value, reason) != VariableStatus::Ok) {
        context.printLine(reason);
    }
}

std::string shortNumber(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

Point originOf(CommandContext& context) {
    const auto value = context.host().variables().get("HPORIGIN", &context.document());
    const Point2* place = value ? std::get_if<Point2>(&*value) : nullptr;
    return place == nullptr ? Point{} : Point{(*place)[0], (*place)[1], 0};
}

Task<PatternAnswer> askUserPattern(CommandContext& context) {
    const std::string angleNow = shortNumber(realVariable(context, "HPANG", 0) * DegreesPerRadian);
    const std::string spaceNow = shortNumber(realVariable(context, "HPSPACE", 1));
    PatternAnswer result;
    auto angle = co_await context.angle("Specify angle for crosshatch lines",
                                        {.defaultText = angleNow, .base = Point{}});
    result.fill.user = true;
    result.fill.angle = angle.real * DegreesPerRadian;
    for (;;) {
        auto space =
            co_await context.distance("Specify spacing between the lines", {.defaultText = spaceNow});
        result.fill.scale = space.real;
        if (result.fill.scale > 0) {
            break;
        }
        context.complain("Value must be positive and nonzero.");
    }
    bool now = context.host().variables().integer("HPDOUBLE", 0) != 0;
    result.fill.crossed = co_await askYesNo(context, "Double hatch area?", now);
    keep(context, "HPANG", angle.real);
    keep(context, "HPSPACE", result.fill.scale);
    keep(context, "HPDOUBLE", result.fill.crossed ? 1 : 0);
    keep(context, "HPNAME", std::string("_USER"));
    co_return result;
}

}  // namespace

std::optional<HatchFill> standardFill(CommandContext& context) {
    const std::string name = context.host().variables().string("HPNAME", "ANSI31");
    HatchFill fill;
    fill.angle = realVariable(context, "HPANG", 0) * DegreesPerRadian;
    fill.origin = originOf(context);
    if (sameName(name, "_USER")) {
        fill.user = true;
        fill.scale = realVariable(context, "HPSPACE", 1);
        fill.crossed = context.host().variables().integer("HPDOUBLE", 0) != 0;
        return fill;
    }
    auto pattern = findPattern(context, name);
    if (!pattern) {
        return std::nullopt;
    }
    fill.pattern = std::move(*pattern);
    fill.scale = realVariable(context, "HPSCALE", 1);
    return fill;
}

Task<std::optional<PatternAnswer>> askPattern(CommandContext& context) {
    const std::string now = context.host().variables().string("HPNAME", "ANSI31");
    PatternAnswer result;
    std::string name;
    for (;;) {
        auto answer = co_await context.word(
            "Enter a pattern name or [?/Solid/User/Gradient]",
            {.keywords = "? Solid User Gradient", .defaultText = now, .bareText = true});
        name = answer.isKeyword() ? answer.keyword : answer.text;
        if (name == "?") {
            for (const HatchPattern& pattern : patternsFor(context, {})) {
                context.printLine(pattern.name + "  " + pattern.description);
            }
            continue;
        }
        if (name == "User" || sameName(name, "_USER") || sameName(name, "U")) {
            result = co_await askUserPattern(context);
            result.fill.origin = originOf(context);
            co_return result;
        }
        if (name == "Gradient" || name.starts_with('*')) {
            context.complain(name.starts_with('*') ? "Hatches are drawn as one object here, not as lines."
                                                   : "This host draws no gradients.");
            co_return std::nullopt;
        }
        break;
    }
    const std::size_t comma = std::min(name.find(','), name.size());
    const std::string style = foldCase(name.substr(std::min(name.size(), comma + 1)));
    name.resize(comma);
    result.style = style == "n"   ? std::optional(IslandStyle::Normal)
                   : style == "o" ? std::optional(IslandStyle::Outer)
                   : style == "i" ? std::optional(IslandStyle::Ignore)
                                  : std::nullopt;
    auto pattern = findPattern(context, name);
    if (!pattern) {
        co_return std::nullopt;
    }
    result.fill.pattern = *pattern;
    result.fill.origin = originOf(context);
    keep(context, "HPNAME", pattern->name);
    if (pattern->lines.empty()) {
        co_return result;
    }
    const std::string scaleNow = shortNumber(realVariable(context, "HPSCALE", 1));
    const std::string angleNow = shortNumber(realVariable(context, "HPANG", 0) * DegreesPerRadian);
    for (;;) {
        auto scale = co_await context.real("Specify a scale for the pattern", {.defaultText = scaleNow});
        result.fill.scale = scale.real;
        if (result.fill.scale > 0) {
            break;
        }
        context.complain("Value must be positive and nonzero.");
    }
    auto angle = co_await context.angle("Specify an angle for the pattern",
                                        {.defaultText = angleNow, .base = Point{}});
    result.fill.angle = angle.real * DegreesPerRadian;
    keep(context, "HPSCALE", result.fill.scale);
    keep(context, "HPANG", angle.real);
    co_return result;
}

Task<std::optional<Point>> askHatchOrigin(CommandContext& context) {
    auto answer =
        co_await context.point("Specify new origin or [Use current/Set new/Default to boundary extents]",
                               {.keywords = "Use Set Default", .noEmpty = true, .bareText = true});
    if (answer.isKeyword("Set")) {
        answer = co_await context.point("Specify origin point", {.noEmpty = true});
    }
    if (answer.isKeyword("Default")) {
        context.complain("Give the origin as a point.");
        co_return std::nullopt;
    }
    const Drawing& drawing = context.document().drawing();
    co_return answer.isKeyword() ? originOf(context) : worldFromUcs(drawing, answer.point);
}

Task<LookChange> askHatchColor(CommandContext& context) {
    LookChange change;
    for (;;) {
        auto answer = co_await context.word(
            "Specify color [Truecolor]",
            {.keywords = "Truecolor BYLayer BYBlock", .defaultText = ".", .bareText = true});
        if (answer.isKeyword("Truecolor")) {
            answer = co_await context.word("Red,Green,Blue", {.noEmpty = true});
        }
        const auto index = parseColorIndex(answer.text, 0);
        const auto rgb = parseTrueColor(answer.text);
        if (answer.isKeyword() || rgb || index) {
            change.kind = LookChange::Kind::Color;
            constexpr int ByLayer = 256;
            change.color = rgb ? *rgb : Color{index.value_or(answer.isKeyword("BYBlock") ? 0 : ByLayer)};
        }
        if (change.kind == LookChange::Kind::Color || answer.text == ".") {
            break;
        }
        context.complain(inQuotes(answer.text) + " is no color.");
    }
    auto background = co_await context.word("Specify background color", {.defaultText = "."});
    if (background.text != "." && !sameName(background.text, "none")) {
        context.complain("Hatches have no background color here.");
    }
    co_return change;
}

Task<LookChange> askHatchLayer(CommandContext& context) {
    LookChange change;
    auto answer = co_await askName(context, "Enter layer name or . for the current one", ".");
    const Drawing& drawing = context.document().drawing();
    const RecordId layer = findEntry(drawing, Table::Layer, answer.text);
    if (layer != NoRecord) {
        change.kind = LookChange::Kind::Layer;
        change.name = entryName(drawing, layer);
    } else if (answer.text != ".") {
        context.complain("Cannot find layer " + inQuotes(answer.text) + ".");
    }
    co_return change;
}

Task<LookChange> askHatchTransparency(CommandContext& context) {
    LookChange change;
    auto answer =
        co_await context.word("Specify transparency value (0-90), ByLayer, ByBlock or .",
                              {.keywords = "BYLayer BYBlock", .defaultText = ".", .bareText = true});
    const auto percent = automation::readNumber(answer.text);
    if (answer.isKeyword()) {
        change.kind = LookChange::Kind::Transparency;
        change.transparency = answer.isKeyword("BYBlock") ? std::optional(TransparencyByBlock) : std::nullopt;
    } else if (percent && *percent >= 0 && *percent <= 90) {
        change.kind = LookChange::Kind::Transparency;
        change.transparency = transparencyOf(static_cast<std::int64_t>(*percent));
    } else if (answer.text != ".") {
        context.complain(inQuotes(answer.text) + " is no transparency: give 0 to 90.");
    }
    co_return change;
}

Task<HatchOrder> askHatchOrder(CommandContext& context, HatchOrder now) {
    constexpr const char* Words[] = {"Not", "Back", "Front", "beHind", "bounDary"};
    auto answer = co_await context.keyword(
        "Enter draw order (Not assigned, to Back, to Front, beHind boundary, in front of bounDary)",
        "Not Back Front beHind bounDary", Words[static_cast<int>(now)]);
    for (int i = 0; i < 5; ++i) {
        if (answer.isKeyword(Words[i])) {
            co_return static_cast<HatchOrder>(i);
        }
    }
    co_return now;
}

void orderHatch(Drawing& drawing, RecordId hatch, const std::vector<RecordId>& boundary, HatchOrder order) {
    if (order == HatchOrder::Back || order == HatchOrder::Front) {
        changeDrawOrder(drawing, {hatch}, order == HatchOrder::Back ? OrderPlace::Back : OrderPlace::Front,
                        {});
    } else if (order != HatchOrder::AsDrawn && !boundary.empty()) {
        changeDrawOrder(drawing, {hatch},
                        order == HatchOrder::BehindBoundary ? OrderPlace::Under : OrderPlace::Above,
                        boundary);
    }
}

}  // namespace drafthost::commands
