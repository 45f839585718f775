// SPDX-License-Identifier: GPL-3.0-or-later
// Selection sets.

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/EntityEdit.h"
#include "drafthost/automation/Functions.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/automation/PickSet.h"
#include "drafthost/automation/Prompts.h"
#include "drafthost/automation/SelectionAnswer.h"
#include "drafthost/automation/SelectionFilter.h"
#include "drafthost/automation/Session.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Extents.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::automation {
namespace {

using Names = std::vector<EntityName>;

Names everything(const Drawing& drawing) {
    return entitiesThat(drawing, [](RecordId) { return true; });
}

/// Entities of the current space by their boxes: wholly inside, or touched by the window as well.
Names inWindow(const Drawing& drawing, const std::vector<Point>& corners, bool crossing) {
    double low[2] = {corners[0][0], corners[0][1]};
    double high[2] = {corners[0][0], corners[0][1]};
    for (const Point& p : corners) {
        for (int k = 0; k < 2; ++k) {
            low[k] = std::min(low[k], p[k]);
            high[k] = std::max(high[k], p[k]);
        }
    }
    return entitiesThat(drawing, [&](RecordId id) {
        if (!isVisibleHere(drawing, id)) {
            return false;
        }
        const Extents box = computeExtents(drawing, std::vector<RecordId>{id});
        if (box.empty()) {
            return false;
        }
        return crossing ? box.min.x <= high[0] && box.max.x >= low[0] && box.min.y <= high[1] &&
                              box.max.y >= low[1]
                        : box.min.x >= low[0] && box.max.x <= high[0] && box.min.y >= low[1] &&
                              box.max.y <= high[1];
    });
}

/// Names of what is still there.
Names alive(const Drawing& drawing, const Names& names) {
    Names result;
    for (const EntityName name : names) {
        if (aliveRecord(drawing, name)) {
            result.push_back(name);
        }
    }
    return result;
}

Value askCorner(Evaluator& e, const char* message) {
    return askUser(e, {.kind = PromptKind::Point, .message = message});
}

/// What one answer at "Select objects:" adds; nothing when it is refused, and why.
std::optional<Names> answered(Evaluator& e, const Drawing& drawing, const Value& answer,
                              std::string& reason) {
    const std::string text = answer.isString() ? answer.toString() : lisp::prin1(answer);
    const std::string word = matchKeyword(text, SelectionWords).value_or("");
    if (word == "ALL") {
        return allSelectable(drawing);
    }
    if (word == "Last") {
        return lastVisible(drawing);
    }
    if (word == "Previous") {
        return alive(drawing, sessionOf(e).previousSelection);
    }
    if (word == "Window" || word == "Crossing") {
        const auto first = toPoint(askCorner(e, "Specify first corner: "));
        const auto second = first ? toPoint(askCorner(e, "Specify opposite corner: ")) : std::nullopt;
        return second ? inWindow(drawing, {*first, *second}, word == "Crossing") : Names();
    }
    if (!word.empty()) {
        reason = needsPicking(word);
        return std::nullopt;
    }
    const auto p = answer.isString() ? readPoint(text, readingRules(sessionOf(e).host)) : toPoint(answer);
    if (p) {
        return inWindow(drawing, {*p, *p}, true);
    }
    auto named = namedObjects(drawing, answer);
    if (!named) {
        reason = namesNothing(text);
    }
    return named;
}

Names selectByUser(Evaluator& e, const Drawing& drawing) {
    const PromptRequest request{.kind = PromptKind::Selection, .message = "Select objects: "};
    Names chosen;
    for (;;) {
        const Value answer = askUser(e, request);
        if (answer.isNil() || (answer.isString() && answer.toString().empty())) {
            return chosen;
        }
        std::string reason;
        if (const auto more = answered(e, drawing, answer, reason)) {
            chosen.insert(chosen.end(), more->begin(), more->end());
            continue;
        }
        const bool again = sessionOf(e).host.askAgain(request, reason);
        e.checkDocument();
        if (!again) {
            e.failCancelled();
        }
    }
}

bool isFilter(const Value& v) {
    return v.isCons() && v.car().isCons() && v.car().car().isInt() && !toPoint(v.car());
}

std::string modeArg(const std::string& given) {
    std::string mode = lisp::upperCase(given);
    while (!mode.empty() && (mode[0] == '_' || mode[0] == '+' || mode[0] == '-' || mode[0] == '.')) {
        mode.erase(0, 1);
    }
    // Modifiers such as ":S" tell how the user may select, which a host without pointer need not know.
    return mode.substr(0, mode.find(':'));
}

std::vector<Point> pointsOf(const std::vector<Value>& values) {
    std::vector<Point> points;
    for (const Value& v : values) {
        if (const auto p = toPoint(v)) {
            points.push_back(*p);
            continue;
        }
        for (const Value& item : listArg(v).items()) {
            points.push_back(pointArg(item));
        }
    }
    return points;
}

Names select(Evaluator& e, const Drawing& drawing, const std::string* given, const std::vector<Value>& rest) {
    if (given == nullptr && !rest.empty()) {
        const std::vector<Point> points = pointsOf(rest);
        return points.empty() ? Names() : inWindow(drawing, points, true);
    }
    const std::string mode = given == nullptr ? "" : modeArg(*given);
    if (mode.empty()) {
        return selectByUser(e, drawing);
    }
    if (mode == "X") {
        return everything(drawing);
    }
    if (mode == "A") {
        return allSelectable(drawing);
    }
    if (mode == "L") {
        return lastVisible(drawing);
    }
    if (mode == "P") {
        return alive(drawing, sessionOf(e).previousSelection);
    }
    if (mode == "I") {
        return alive(drawing, sessionOf(e).pickFirst);
    }
    if (mode == "W" || mode == "C" || mode == "WP" || mode == "CP" || mode == "F") {
        const std::vector<Point> points = pointsOf(rest);
        if (points.size() < 2) {
            fail("bad point argument");
        }
        return inWindow(drawing, points, mode[0] != 'W');
    }
    fail("bad SSGET mode string: " + lisp::prin1(Value::string(*given)));
}

Value get(Evaluator& e, Args args) {
    const Drawing& drawing = drawingOf(e);
    const std::string* mode = nullptr;
    std::vector<Value> rest(args.begin(), args.end());
    SelectionFilter filter;
    if (!rest.empty() && isFilter(rest.back())) {
        filter = SelectionFilter(rest.back());
        rest.pop_back();
    } else if (rest.size() > 1 && rest.back().isNil()) {
        rest.pop_back();
    } else if (!rest.empty() && rest.back().isCons() && !toPoint(rest.back()) &&
               !(rest.back().car().isCons() && toPoint(rest.back().car()))) {
        fail("bad SSGET list: " + lisp::prin1(rest.back()));
    }
    if (!args.empty() && args[0].isString()) {
        mode = &args[0].toString();
        rest.erase(rest.begin());
    } else if (rest.size() == 1 && rest[0].isEname()) {
        const Names one = alive(drawing, {rest[0].toEname()});
        return one.empty() ? Value() : makePickSet(one);
    }
    std::erase_if(rest, [](const Value& v) { return v.isNil(); });
    Names chosen = select(e, drawing, mode, rest);
    std::erase_if(chosen, [&](EntityName name) {
        const auto id = aliveRecord(drawing, name);
        return !id || !filter.accepts(drawing, *id);
    });
    if (chosen.empty()) {
        return {};
    }
    Value set = makePickSet(chosen);
    sessionOf(e).previousSelection = pickSetArg(set).members();
    return set;
}

Value add(Evaluator& e, Args args) {
    if (args.empty()) {
        return makePickSet({});
    }
    const EntityName name = enameArg(args[0]);
    if (!aliveRecord(drawingOf(e), name)) {
        failType("lentityp", args[0]);
    }
    if (!optional(args, 1)) {
        return makePickSet({name});
    }
    pickSetArg(args[1]).add(name);
    return args[1];
}

Value removeMember(Evaluator&, Args args) {
    return pickSetArg(args[1]).remove(enameArg(args[0])) ? args[1] : Value();
}

Value isMember(Evaluator&, Args args) {
    return pickSetArg(args[1]).contains(enameArg(args[0])) ? args[0] : Value();
}

Value length(Evaluator&, Args args) {
    return Value::integer(static_cast<std::int32_t>(pickSetArg(args[0]).members().size()));
}

Value member(Evaluator&, Args args) {
    const Names& members = pickSetArg(args[0]).members();
    const double index = realArg(args[1]);
    return index >= 0 && index < static_cast<double>(members.size())
               ? Value::ename(members[static_cast<std::size_t>(index)])
               : Value();
}

/// How each member was selected; without a pointer always "by other means" (0).
Value memberList(Evaluator&, Args args) {
    const Names& members = pickSetArg(args[0]).members();
    const std::int32_t only = optional(args, 1) ? intArg(args[1]) : -1;
    ListBuilder result;
    for (std::size_t i = 0; i < members.size(); ++i) {
        if (only < 0 || static_cast<std::size_t>(only) == i) {
            result.add(Value::list({Value::integer(0), Value::ename(members[i]), Value::integer(0)}));
        }
    }
    return result.take();
}

Value setFirst(Evaluator& e, Args args) {
    const Value& picked = args.size() == 2 ? args[1] : args[0];
    sessionOf(e).pickFirst = picked ? pickSetArg(picked).members() : Names();
    return Value::list(args);
}

Value getFirst(Evaluator& e, Args) {
    const Names members = alive(drawingOf(e), sessionOf(e).pickFirst);
    return Value::list({Value(), members.empty() ? Value() : makePickSet(members)});
}

constexpr Subr Functions[] = {
    {"SSGET", 0, 4, get},          {"SSADD", 0, 2, add},           {"SSDEL", 2, 2, removeMember},
    {"SSMEMB", 2, 2, isMember},    {"SSLENGTH", 1, 1, length},     {"SSNAME", 2, 2, member},
    {"SSNAMEX", 1, 2, memberList}, {"SSSETFIRST", 1, 2, setFirst}, {"SSGETFIRST", 0, 0, getFirst},
};

}  // namespace

std::span<const Subr> selectionFunctions() {
    return Functions;
}

}  // namespace drafthost::automation
