// SPDX-License-Identifier: GPL-3.0-or-later
// -INSERT and MINSERT: references to blocks of the drawing and of files.

#include <cmath>
#include <filesystem>
#include <map>

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/commands/BlockQuestions.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/drawing/BlockEdit.h"
#include "drafthost/drawing/EntityTransform.h"
#include "drafthost/drawing/Explode.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/CommandMemory.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

/// What is known of the reference so far.
struct Placing {
    std::string block;
    bool explode = false;
    Point place;
    std::optional<Point> base;
    std::array<std::optional<double>, 3> scale;
    std::optional<double> rotation;
    bool hasScale() const { return scale[0] || scale[1] || scale[2]; }
};

Task<double> askFactor(CommandContext& context, const char* prompt, std::string standard) {
    for (;;) {
        auto factor = co_await context.real(prompt, {.defaultText = standard});
        if (factor.real != 0) {
            co_return factor.real;
        }
        context.complain("Value must be nonzero.");
    }
}

constexpr const char* PlaceWords = "Basepoint Scale X Y Z Rotate Explode REpeat PScale PX PY PZ PRotate";

/// The point, with whatever is fixed before it.
Task<bool> askPlace(CommandContext& context, Placing& placing) {
    for (;;) {
        auto answer = co_await context.point("Specify insertion point or [Basepoint/Scale/X/Y/Z/Rotate]",
                                             {.keywords = PlaceWords, .noEmpty = true, .bareText = true});
        if (answer.hasValue()) {
            placing.place = answer.point;
            co_return true;
        }
        if (answer.isKeyword("Basepoint")) {
            auto base = co_await context.point("Specify base point", {.noEmpty = true});
            placing.base = base.point;
        } else if (answer.isKeyword("Rotate") || answer.isKeyword("PRotate")) {
            auto angle =
                co_await context.angle("Specify rotation angle", {.defaultText = "0", .base = Point{}});
            if (answer.isKeyword("Rotate")) {
                placing.rotation = angle.real;
            }
        } else if (answer.isKeyword("Explode")) {
            placing.explode = co_await askYesNo(context, "Explode block into its parts?", false);
        } else if (answer.isKeyword("REpeat")) {
            co_await askYesNo(context, "Repeat the insertion?", false);
        } else {
            const bool all = answer.isKeyword("Scale") || answer.isKeyword("PScale");
            double factor = co_await askFactor(
                context, all ? "Specify scale factor for XYZ axes" : "Specify scale factor", "1");
            if (answer.isKeyword("Scale")) {
                placing.scale = {factor, factor, factor};
            } else if (answer.keyword.size() == 1) {
                placing.scale[static_cast<std::size_t>(answer.keyword[0] - 'X')] = factor;
            }
        }
    }
}

Task<bool> askEachAxis(CommandContext& context, Placing& placing) {
    placing.scale[0] = co_await askFactor(context, "Enter X scale factor", "1");
    const std::string same = formatReal(*placing.scale[0]);
    placing.scale[1] = co_await askFactor(context, "Specify Y scale factor", same);
    placing.scale[2] = co_await askFactor(context, "Specify Z scale factor", same);
    co_return true;
}

void scaleByCorner(Placing& placing, const Point& corner) {
    const double x = corner.x - placing.place.x;
    const double y = corner.y - placing.place.y;
    placing.scale = {x != 0 ? x : 1, y != 0 ? y : 1, x != 0 ? x : 1};
}

/// The point that a free answer is, for the question of the first factor.
std::optional<Point> cornerOf(CommandContext& context, const Answer& answer) {
    return answer.value.isNil()
               ? automation::readPoint(answer.text, automation::readingRules(context.document().lisp()))
               : lisp::toPoint(answer.value);
}

Task<bool> askScale(CommandContext& context, Placing& placing) {
    for (;;) {
        auto answer =
            co_await context.input("Enter X scale factor, specify opposite corner, or [Corner/XYZ] <1>",
                                   {.keywords = "Corner XYZ", .bareText = true});
        if (answer.isKeyword("Corner")) {
            auto corner =
                co_await context.point("Specify opposite corner", {.noEmpty = true, .base = placing.place});
            scaleByCorner(placing, corner.point);
            co_return true;
        }
        if (answer.isKeyword("XYZ")) {
            co_return co_await askEachAxis(context, placing);
        }
        const auto number = answer.value.isNumber() ? std::optional(answer.value.toDouble())
                                                    : automation::readNumber(answer.text);
        if (!answer.isEnter() && !number) {
            if (const auto corner = cornerOf(context, answer)) {
                scaleByCorner(placing, *corner);
                co_return true;
            }
        }
        const double x = answer.isEnter() ? 1 : number.value_or(0);
        if (x == 0) {
            context.complain("A scale factor other than 0 is needed here, not " + inQuotes(answer.text) +
                             ".");
            continue;
        }
        placing.scale[0] = x;
        auto y = co_await context.real("Enter Y scale factor <use X scale factor>");
        placing.scale[1] = y.isEnter() || y.real == 0 ? x : y.real;
        placing.scale[2] = x;
        co_return true;
    }
}

/// One factor for blocks that are only scaled alike along all axes.
bool scalesAlike(const Drawing& drawing, const std::string& name) {
    const Block* block = findBlock(drawing, name);
    return block != nullptr && block->blockRecord != NoRecord &&
           drawing.record(block->blockRecord).integerOr(281, 0) != 0;
}

Task<bool> askForm(CommandContext& context, Placing& placing) {
    if (!placing.hasScale()) {
        const bool alike = scalesAlike(context.document().drawing(), placing.block);
        if (placing.explode || alike) {
            double factor = co_await askFactor(
                context, alike ? "Specify scale factor" : "Specify scale factor for XYZ axes", "1");
            placing.scale = {factor, factor, factor};
        } else {
            co_await askScale(context, placing);
        }
    }
    if (!placing.rotation) {
        auto angle =
            co_await context.angle("Specify rotation angle", {.defaultText = "0", .base = placing.place});
        placing.rotation = angle.real;
    }
    const double x = placing.scale[0].value_or(1);
    placing.scale[0] = x;
    placing.scale[1] = placing.scale[1].value_or(x);
    placing.scale[2] = placing.scale[2].value_or(x);
    co_return true;
}

using Values = std::map<RecordId, std::string>;

/// One question for each attribute, and again for those that are to be verified.
Task<Values> askAttributes(CommandContext& context, std::string name) {
    constexpr std::int64_t Verify = 4;
    constexpr std::int64_t Preset = 8;
    Values values;
    const Drawing& drawing = context.document().drawing();
    const Block* block = findBlock(drawing, name);
    const std::vector<RecordId> definitions = attributeDefinitions(drawing, *block);
    if (definitions.empty() || context.host().variables().integer("ATTREQ", 1) == 0) {
        co_return values;
    }
    context.printLine("Enter attribute values");
    for (const bool again : {false, true}) {
        bool told = false;
        for (const RecordId id : definitions) {
            const Record record = drawing.record(id);
            const std::int64_t flags = record.integerOr(70, 0);
            if ((flags & Preset) != 0 || (again && (flags & Verify) == 0)) {
                continue;
            }
            if (again && !told) {
                context.printLine("Verify attribute values");
                told = true;
            }
            const std::string prompt =
                record.textOr(3, "").empty() ? record.textOr(2, "") : record.textOr(3, "");
            const std::string standard = again ? values[id] : record.textOr(1, "");
            auto value = co_await context.text(prompt, standard);
            values[id] = value.isEnter() ? standard : value.text;
        }
    }
    co_return values;
}

struct Grid {
    int rows = 1;
    int columns = 1;
    double rowDistance = 0;
    double columnDistance = 0;
};

Task<Grid> askGrid(CommandContext& context) {
    Grid grid;
    auto rows = co_await context.integer("Enter number of rows (---)",
                                         {.defaultText = "1", .minimum = 1, .maximum = 32767});
    auto columns = co_await context.integer("Enter number of columns (|||)",
                                            {.defaultText = "1", .minimum = 1, .maximum = 32767});
    grid.rows = rows.integer;
    grid.columns = columns.integer;
    if (grid.rows > 1) {
        auto distance =
            co_await context.distance("Enter distance between rows", {.noEmpty = true, .base = Point{}});
        grid.rowDistance = distance.real;
    }
    if (grid.columns > 1) {
        auto distance =
            co_await context.distance("Specify distance between columns", {.noEmpty = true, .base = Point{}});
        grid.columnDistance = distance.real;
    }
    co_return grid;
}

void putGrid(Drawing& drawing, RecordId insert, const Grid& grid) {
    if (grid.columns > 1 || grid.rows > 1) {
        const std::size_t at = *drawing.record(insert).find(30) + 1;
        drawing.insertTag(insert, at, 70, std::int64_t{grid.columns});
        drawing.insertTag(insert, at + 1, 71, std::int64_t{grid.rows});
        drawing.insertTag(insert, at + 2, 44, grid.columnDistance);
        drawing.insertTag(insert, at + 3, 45, grid.rowDistance);
    }
}

/// The reference, or its parts where they were asked for.
void place(CommandContext& context, const Placing& placing, const Values& values, const Grid& grid) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    ChangeWatch watch(document, ModifiedObjects | ModifiedTables);
    const double units = unitFactor(drawing, placing.block);
    InsertRequest request;
    request.target = currentTarget(drawing);
    request.block = placing.block;
    request.rotation = *placing.rotation;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        request.scale[axis] = *placing.scale[axis] * units;
    }
    request.place = placing.place;
    if (placing.base) {
        const Point own = drawing.record(findBlock(drawing, placing.block)->begin).pointOr(10, {});
        const Point off = *placing.base - own;
        request.place = request.place -
                        Transform::rotation(request.rotation)(
                            {off.x * request.scale[0], off.y * request.scale[1], off.z * request.scale[2]});
    }
    const AttributeValue value = [&](RecordId definition) {
        const auto found = values.find(definition);
        return found != values.end() ? found->second : drawing.record(definition).textOr(1, "");
    };
    const RecordId insert = insertBlockReference(drawing, request, value);
    putGrid(drawing, insert, grid);
    std::string error;
    const Transform ucs = ucsTransform(drawing);
    if (!(ucs == Transform()) && !transformEntity(drawing, insert, ucs, {.mirrorText = true}, error)) {
        context.complain(error);
    }
    if (!placing.explode) {
        return;
    }
    if (explodeEntity(drawing, insert, error)) {
        deleteEntity(drawing, insert);
    } else {
        context.complain(error);
    }
}

CommandTask insertBlock(CommandContext& context, bool grid) {
    Placing placing;
    auto chosen = co_await askBlockToInsert(context);
    if (chosen.block.empty()) {
        co_return;
    }
    placing.block = chosen.block;
    placing.explode = chosen.explode;
    context.document().memory().insertedBlock = placing.block;
    co_await askPlace(context, placing);
    co_await askForm(context, placing);
    Grid spread;
    if (grid) {
        spread = co_await askGrid(context);
    }
    Values values;
    if (!placing.explode) {
        values = co_await askAttributes(context, placing.block);
    }
    place(context, placing, values, spread);
}

}  // namespace

CommandTask insertCommand(CommandContext& context) {
    return insertBlock(context, false);
}

CommandTask minsertCommand(CommandContext& context) {
    return insertBlock(context, true);
}

}  // namespace drafthost::commands
