// SPDX-License-Identifier: GPL-3.0-or-later
// PEDIT and JOIN: lines, arcs and polylines made one.

#include <algorithm>
#include <cmath>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/drawing/Chains.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

constexpr std::int64_t LinetypeAlong = 128;

bool isPolyline(const Drawing& drawing, RecordId id) {
    const std::string_view type = drawing.type(id);
    return type == "LWPOLYLINE" || type == "POLYLINE";
}

/// A polyline in the place of a line or arc.
RecordId madePolyline(CommandContext& context, RecordId id) {
    Drawing& drawing = context.document().drawing();
    const auto run = runOf(drawing, id);
    if (!run) {
        return NoRecord;
    }
    ChangeWatch watch(context.document(), ModifiedObjects);
    const RecordId made =
        addPolyline(drawing, targetOf(drawing, id), run->vertices, run->closed, run->extrusion);
    takeLooks(drawing, id, made);
    eraseEntity(context, id);
    return made;
}

/// Hangs the other objects on a polyline; the number of segments that came.
std::size_t joinTo(CommandContext& context, RecordId polyline, const std::vector<RecordId>& others,
                   double fuzz) {
    Drawing& drawing = context.document().drawing();
    auto run = runOf(drawing, polyline);
    if (!run) {
        return 0;
    }
    std::vector<RecordId> candidates;
    std::vector<std::optional<Run>> pieces;
    for (const RecordId id : others) {
        if (id != polyline && drawing.isAlive(id)) {
            candidates.push_back(id);
            pieces.push_back(runOf(drawing, id));
        }
    }
    const std::size_t before = run->vertices.size();
    const auto taken = joinRuns(*run, pieces, fuzz);
    if (taken.empty()) {
        return 0;
    }
    ChangeWatch watch(context.document(), ModifiedObjects);
    setVertices(drawing, polyline, run->vertices, run->closed);
    for (const std::size_t i : taken) {
        eraseEntity(context, candidates[i]);
    }
    return run->vertices.size() - before + (run->closed ? 1 : 0);
}

void setWidth(Drawing& drawing, RecordId id, double width) {
    auto run = runOf(drawing, id);
    if (run) {
        for (WideVertex& vertex : run->vertices) {
            vertex.startWidth = width;
            vertex.endWidth = width;
        }
        setVertices(drawing, id, run->vertices, run->closed);
    }
}

void change(CommandContext& context, const std::vector<RecordId>& polylines, const std::string& option) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    ChangeWatch watch(document, ModifiedObjects);
    for (const RecordId id : polylines) {
        auto run = runOf(drawing, id);
        if (!run) {
            continue;
        }
        if (option == "Reverse") {
            reverse(*run);
        } else if (option == "Decurve") {
            for (WideVertex& vertex : run->vertices) {
                vertex.bulge = 0;
            }
        } else {
            run->closed = option == "Close";
        }
        setVertices(drawing, id, run->vertices, run->closed);
    }
}

void setLinetypeAlong(Document& document, const std::vector<RecordId>& polylines, bool on) {
    ChangeWatch watch(document, ModifiedObjects);
    for (const RecordId id : polylines) {
        const std::int64_t flags = document.drawing().record(id).integerOr(70, 0);
        document.drawing().put(id, 70, on ? flags | LinetypeAlong : flags & ~LinetypeAlong, {90, 66, 100});
    }
}

Task<double> askFuzz(CommandContext& context) {
    for (;;) {
        auto answer = co_await context.distance(
            "Enter fuzz distance",
            {.keywords = "Jointype", .defaultText = "0", .minimum = 0, .base = Point{}});
        if (!answer.isKeyword()) {
            co_return answer.real;
        }
        co_await context.keyword("Enter join type", "Extend Add Both", "Extend");
    }
}

/// Options up to Enter; `many` when several polylines were chosen.
Task<bool> editPolylines(CommandContext& context, std::vector<RecordId> polylines, bool many) {
    Document& document = context.document();
    for (;;) {
        auto option = co_await context.keyword(
            "Enter an option", many
                                   ? "Close Open Join Width Fit Spline Decurve Ltype Reverse Undo eXit"
                                   : "Close Open Join Width Edit Fit Spline Decurve Ltype Reverse Undo eXit");
        if (option.isEnter() || option.isKeyword("eXit")) {
            co_return true;
        }
        if (option.isKeyword("Join")) {
            std::vector<RecordId> others = polylines;
            double fuzz = 0;
            if (many) {
                fuzz = co_await askFuzz(context);
            } else {
                others = co_await selectObjects(context, SelectToEdit | SelectNoPickFirst);
            }
            std::size_t added = 0;
            for (const RecordId id : polylines) {
                if (document.drawing().isAlive(id)) {
                    added += joinTo(context, id, others, fuzz);
                }
            }
            std::erase_if(polylines, [&](RecordId id) { return !document.drawing().isAlive(id); });
            context.printLine(std::to_string(added) + " segments added to polyline");
        } else if (option.isKeyword("Width")) {
            auto width = co_await context.distance("Specify new width for all segments",
                                                   {.noEmpty = true, .minimum = 0, .base = Point{}});
            ChangeWatch watch(document, ModifiedObjects);
            for (const RecordId id : polylines) {
                setWidth(document.drawing(), id, width.real);
            }
        } else if (option.isKeyword("Ltype")) {
            auto state =
                co_await context.keyword("Enter polyline linetype generation option", "ON OFF", "OFF");
            setLinetypeAlong(document, polylines, state.isKeyword("ON"));
        } else if (option.isKeyword("Undo")) {
            context.complain("A change is taken back by U when the command has ended.");
        } else if (option.isKeyword("Edit") || option.isKeyword("Fit") || option.isKeyword("Spline")) {
            context.complain("PEDIT " + option.keyword + " is not done here.");
        } else {
            change(context, polylines, option.keyword);
        }
    }
}

/// Whether what is no polyline becomes one.
Task<bool> mayConvert(CommandContext& context, const char* question) {
    if (context.host().variables().integer("PEDITACCEPT", 0) != 0) {
        co_return true;
    }
    co_return co_await askYesNo(context, question, true);
}

Task<bool> editMany(CommandContext& context) {
    auto selected = co_await selectObjects(context, SelectToEdit | SelectNoPickFirst);
    const Drawing& drawing = context.document().drawing();
    const bool others =
        std::any_of(selected.begin(), selected.end(), [&](RecordId id) { return !isPolyline(drawing, id); });
    bool convert = false;
    if (others) {
        convert = co_await mayConvert(context, "Convert Lines, Arcs and Splines to polylines?");
    }
    std::vector<RecordId> polylines;
    for (const RecordId id : selected) {
        const RecordId polyline = isPolyline(drawing, id) ? id
                                  : convert               ? madePolyline(context, id)
                                                          : NoRecord;
        if (polyline != NoRecord) {
            polylines.push_back(polyline);
        }
    }
    if (polylines.empty()) {
        co_return false;
    }
    co_return co_await editPolylines(context, polylines, true);
}

}  // namespace

CommandTask peditCommand(CommandContext& context) {
    Document& document = context.document();
    for (;;) {
        auto picked = co_await pickObject(context, "Select polyline", "Multiple");
        if (picked.keyword == "Multiple") {
            co_await editMany(context);
            co_return;
        }
        if (picked.entity == NoRecord) {
            co_return;
        }
        RecordId polyline = picked.entity;
        if (!isPolyline(document.drawing(), polyline)) {
            if (!runOf(document.drawing(), polyline)) {
                context.complain("A " + std::string(document.drawing().type(polyline)) +
                                 " cannot become a polyline here.");
                continue;
            }
            context.printLine("Object selected is not a polyline");
            bool convert = co_await mayConvert(context, "Do you want to turn it into one?");
            if (!convert) {
                co_return;
            }
            polyline = madePolyline(context, polyline);
        }
        std::vector<RecordId> one{polyline};
        co_await editPolylines(context, one, false);
        co_return;
    }
}

namespace {

/// Lines of one straight, made one from end to end; the number that became part of the first.
std::size_t joinLines(CommandContext& context, const std::vector<RecordId>& lines) {
    Drawing& drawing = context.document().drawing();
    const Point a = drawing.record(lines.front()).pointOr(10, {});
    const Point b = drawing.record(lines.front()).pointOr(11, {});
    const Point along = normalised(b - a);
    const auto at = [&](const Point& p) {
        const Point d = p - a;
        return d.x * along.x + d.y * along.y + d.z * along.z;
    };
    const auto isOnIt = [&](const Point& p) {
        return length(p - a - along * at(p)) <= 1e-8 * (1 + length(p - a));
    };
    double low = 0;
    double high = length(b - a);
    std::vector<RecordId> taken;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const Point p = drawing.record(lines[i]).pointOr(10, {});
        const Point q = drawing.record(lines[i]).pointOr(11, {});
        if (isOnIt(p) && isOnIt(q)) {
            low = std::min({low, at(p), at(q)});
            high = std::max({high, at(p), at(q)});
            taken.push_back(lines[i]);
        }
    }
    if (!taken.empty()) {
        drawing.putPoint(lines.front(), 10, a + along * low, true);
        drawing.putPoint(lines.front(), 11, a + along * high, true);
        for (const RecordId id : taken) {
            eraseEntity(context, id);
        }
    }
    return taken.size();
}

}  // namespace

CommandTask joinCommand(CommandContext& context) {
    auto selected = co_await selectObjects(context, SelectToEdit,
                                           "Select source object or multiple objects to join at once");
    if (selected.size() < 2) {
        co_return;
    }
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    ChangeWatch watch(document, ModifiedObjects);
    const bool lines = std::all_of(selected.begin(), selected.end(),
                                   [&](RecordId id) { return drawing.type(id) == "LINE"; });
    if (lines) {
        const std::size_t joined = joinLines(context, selected);
        if (joined + 1 == selected.size()) {
            context.printLine(std::to_string(selected.size()) + " lines joined into 1 line");
            co_return;
        }
        std::erase_if(selected, [&](RecordId id) { return !drawing.isAlive(id); });
    }
    // Runs that meet end to end become polylines; what meets nothing stays as it is.
    std::size_t joined = 0;
    std::size_t made = 0;
    for (const RecordId id : selected) {
        const auto own = drawing.isAlive(id) ? runOf(drawing, id) : std::nullopt;
        if (!own || own->closed) {
            continue;
        }
        Run run = *own;
        std::vector<RecordId> others;
        std::vector<std::optional<Run>> pieces;
        for (const RecordId other : selected) {
            if (other != id && drawing.isAlive(other)) {
                others.push_back(other);
                pieces.push_back(runOf(drawing, other));
            }
        }
        const auto taken = joinRuns(run, pieces, 0);
        if (taken.empty()) {
            continue;
        }
        if (isPolyline(drawing, id)) {
            setVertices(drawing, id, run.vertices, run.closed);
        } else {
            const RecordId polyline =
                addPolyline(drawing, targetOf(drawing, id), run.vertices, run.closed, run.extrusion);
            takeLooks(drawing, id, polyline);
            eraseEntity(context, id);
        }
        for (const std::size_t i : taken) {
            eraseEntity(context, others[i]);
        }
        joined += taken.size() + 1;
        ++made;
    }
    context.printLine(made == 0 ? "0 objects joined, " + std::to_string(selected.size()) +
                                      " objects discarded from the operation"
                                : std::to_string(joined) + " objects converted to " + std::to_string(made) +
                                      " polyline" + (made == 1 ? "" : "s"));
}

}  // namespace drafthost::commands
