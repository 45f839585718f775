// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/Selection.h"

#include <algorithm>
#include <unordered_set>

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/EntityEdit.h"
#include "drafthost/automation/SelectionAnswer.h"
#include "drafthost/commands/UserSystem.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/EntityGroups.h"
#include "drafthost/drawing/Region.h"
#include "drafthost/drawing/View.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"

namespace drafthost::commands {

namespace {

constexpr const char* Words =
    "ALL Last Previous Window Crossing BOX WPolygon CPolygon Fence Group Add Remove Multiple Undo AUto "
    "SIngle";
constexpr const char* Expected =
    "Expects a point or Window/Last/Crossing/BOX/ALL/Fence/WPolygon/CPolygon/Group/Add/Remove/Multiple/"
    "Previous/Undo/AUto/SIngle";

std::vector<RecordId> fromNames(const Drawing& drawing, const std::vector<automation::EntityName>& names) {
    std::vector<RecordId> result;
    for (automation::EntityName name : names) {
        if (auto record = automation::aliveRecord(drawing, name)) {
            result.push_back(*record);
        }
    }
    return result;
}

template <class Test>
std::vector<RecordId> visibleThat(const Drawing& drawing, Test test) {
    return fromNames(drawing, automation::entitiesThat(drawing, [&](RecordId id) {
                         return automation::isVisibleHere(drawing, id) && test(id);
                     }));
}

/// The newest object that a small box around the point touches, as a pointer would pick it.
std::vector<RecordId> objectAt(const Drawing& drawing, const Point& ucs) {
    constexpr double PickBoxShare = 1.0 / 200;
    const Point p = worldFromUcs(drawing, ucs);
    const double half = currentView(drawing).height * PickBoxShare;
    const auto box = rectangle({p.x - half, p.y - half, 0}, {p.x + half, p.y + half, 0});
    auto found = visibleThat(drawing, [&](RecordId id) { return meets(drawing, id, box); });
    if (found.size() > 1) {
        found.erase(found.begin(), found.end() - 1);
    }
    return found;
}

std::string plural(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + (count == 1 ? one : many);
}

/// Takes out what the command must not get, and tells how many were.
void keepUsable(CommandContext& context, std::vector<RecordId>& found, unsigned flags) {
    const Drawing& drawing = context.document().drawing();
    if (!(flags & SelectAnySpace)) {
        const std::size_t all = found.size();
        std::erase_if(found, [&](RecordId id) { return !automation::isInCurrentSpace(drawing, id); });
        if (found.size() < all) {
            context.printLine(
                plural(all - found.size(), " was not in current space.", " were not in current space."));
        }
    }
    if (flags & SelectToEdit) {
        const std::size_t all = found.size();
        std::erase_if(found, [&](RecordId id) { return automation::isLocked(drawing, id); });
        if (found.size() < all) {
            context.printLine(
                plural(all - found.size(), " was on a locked layer.", " were on a locked layer."));
        }
    }
}

/// The objects chosen so far, and how the next answer changes them.
class Chosen {
  public:
    explicit Chosen(CommandContext& context) : context_(context) {}

    void take(const std::vector<RecordId>& found) {
        last_.clear();
        std::size_t known = 0;
        for (const RecordId id : found) {
            if (removing ? in_.erase(id) != 0 : in_.insert(id).second) {
                last_.push_back(id);
                removing ? (void)std::erase(order_, id) : order_.push_back(id);
            } else {
                ++known;
            }
        }
        tell(found.size(), known);
    }
    void undoLast() {
        for (const RecordId id : last_) {
            in_.erase(id);
            std::erase(order_, id);
        }
        last_.clear();
    }
    const std::vector<RecordId>& all() const { return order_; }
    bool removing = false;

  private:
    void tell(std::size_t found, std::size_t known) {
        std::string line =
            std::to_string(removing ? found - known : found) + (removing ? " removed" : " found");
        if (known != 0 && !removing) {
            line += " (" + std::to_string(known) + " duplicate)";
        }
        if (removing || order_.size() != found) {
            line += ", " + std::to_string(order_.size()) + " total";
        }
        context_.printLine(line);
    }

    CommandContext& context_;
    std::vector<RecordId> order_;
    std::unordered_set<RecordId> in_;
    std::vector<RecordId> last_;
};

Task<std::vector<Point>> askPath(CommandContext& context, const char* first) {
    std::vector<Point> path;
    auto answer = co_await context.point(first, {.noEmpty = true});
    path.push_back(worldFromUcs(context.document().drawing(), answer.point));
    for (;;) {
        answer = co_await context.point("Specify endpoint of line", {.keywords = "Undo"});
        if (answer.isEnter()) {
            co_return path;
        }
        if (answer.isKeyword()) {
            if (path.size() > 1) {
                path.pop_back();
            }
            continue;
        }
        path.push_back(worldFromUcs(context.document().drawing(), answer.point));
    }
}

/// What the words mean that ask for points or a name.
Task<std::vector<RecordId>> selectByArea(CommandContext& context, std::string word) {
    const Drawing& drawing = context.document().drawing();
    if (word == "Group") {
        auto name = co_await context.word("Enter group name", {.noEmpty = true});
        const auto group = findGroup(drawing, name.text);
        co_return group ? group->members : std::vector<RecordId>();
    }
    if (word == "Fence") {
        auto path = co_await askPath(context, "Specify first fence point");
        co_return visibleThat(drawing, [&](RecordId id) { return crossesPath(drawing, id, path); });
    }
    if (word == "WPolygon" || word == "CPolygon") {
        auto polygon = co_await askPath(context, "First polygon point");
        co_return visibleThat(drawing, [&](RecordId id) {
            return word == "CPolygon" ? meets(drawing, id, polygon) : liesWithin(drawing, id, polygon);
        });
    }
    auto first = co_await context.point("Specify first corner", {.noEmpty = true});
    auto second = co_await context.point("Specify opposite corner", {.noEmpty = true});
    const bool crossing = word == "Crossing" || (word == "BOX" && second.point.x < first.point.x);
    std::vector<Point> window = rectangle(first.point, second.point);
    for (Point& corner : window) {
        corner = worldFromUcs(drawing, corner);
    }
    co_return visibleThat(drawing, [&](RecordId id) {
        return crossing ? meets(drawing, id, window) : liesWithin(drawing, id, window);
    });
}

bool asksForMore(const Answer& answer) {
    return answer.isKeyword("Window") || answer.isKeyword("Crossing") || answer.isKeyword("BOX") ||
           answer.isKeyword("WPolygon") || answer.isKeyword("CPolygon") || answer.isKeyword("Fence") ||
           answer.isKeyword("Group");
}

/// What an answer names that asks for nothing more; nothing when it is no selection at all.
std::optional<std::vector<RecordId>> named(CommandContext& context, const Answer& answer) {
    Document& document = context.document();
    const Drawing& drawing = document.drawing();
    if (answer.isKeyword("ALL")) {
        return fromNames(drawing, automation::allSelectable(drawing));
    }
    if (answer.isKeyword("Last")) {
        return fromNames(drawing, automation::lastVisible(drawing));
    }
    if (answer.isKeyword("Previous")) {
        return fromNames(drawing, document.lisp().session().previousSelection);
    }
    const lisp::Value given = answer.value.isNil() ? lisp::Value::string(answer.text) : answer.value;
    const auto rules = automation::readingRules(document.lisp());
    if (const auto p = given.isString() ? automation::readPoint(answer.text, rules) : lisp::toPoint(given)) {
        return objectAt(drawing, *p);
    }
    if (const auto names = automation::namedObjects(drawing, given)) {
        return fromNames(drawing, *names);
    }
    return std::nullopt;
}

void keepAsPrevious(Document& document, const std::vector<RecordId>& selected) {
    std::vector<automation::EntityName> names;
    names.reserve(selected.size());
    for (RecordId record : selected) {
        names.push_back(automation::nameOf(record));
    }
    document.lisp().session().previousSelection = std::move(names);
}

}  // namespace

Task<std::vector<RecordId>> selectObjects(CommandContext& context, unsigned flags, const char* prompt) {
    std::string word;
    co_return co_await selectObjects(context, flags, prompt, "", word);
}

Task<std::vector<RecordId>> selectObjects(CommandContext& context, unsigned flags, const char* prompt,
                                          const char* words, std::string& word) {
    const std::string keywords = std::string(words) + (*words ? " " : "") + Words;
    word.clear();
    Document& document = context.document();
    Chosen chosen(context);
    auto& pickFirst = document.lisp().session().pickFirst;
    if (!pickFirst.empty() && !(flags & SelectNoPickFirst)) {
        auto found = fromNames(document.drawing(), std::exchange(pickFirst, {}));
        keepUsable(context, found, flags);
        if (!found.empty()) {
            chosen.take(found);
            keepAsPrevious(document, chosen.all());
            co_return chosen.all();
        }
    }
    bool single = false;
    for (bool asking = true; asking;) {
        auto answer = co_await context.input(chosen.removing ? "Remove objects" : prompt,
                                             {.keywords = keywords, .bareText = true});
        if (answer.isEnter()) {
            break;
        }
        if (answer.isKeyword() &&
            std::string_view(keywords).substr(0, std::string_view(words).size()).find(answer.keyword) !=
                std::string_view::npos) {
            word = answer.keyword;
            break;
        }
        std::optional<std::vector<RecordId>> found;
        if (asksForMore(answer)) {
            found = co_await selectByArea(context, answer.keyword);
        } else if (answer.isKeyword("Add") || answer.isKeyword("Remove")) {
            chosen.removing = answer.isKeyword("Remove");
            continue;
        } else if (answer.isKeyword("Undo")) {
            chosen.undoLast();
            continue;
        } else if (answer.isKeyword("SIngle")) {
            single = true;
            continue;
        } else if (answer.isKeyword("Multiple") || answer.isKeyword("AUto")) {
            continue;
        } else {
            found = named(context, answer);
        }
        if (!found) {
            context.complain("*Invalid selection*");
            context.printLine(Expected);
            continue;
        }
        keepUsable(context, *found, flags);
        chosen.take(*found);
        asking = !single || found->empty();
    }
    if (!chosen.all().empty()) {
        keepAsPrevious(document, chosen.all());
    }
    co_return chosen.all();
}

Task<Picked> pickObject(CommandContext& context, const char* prompt, const char* keywords) {
    const std::string words = std::string("Last Previous") + (*keywords ? " " : "") + keywords;
    std::string question = prompt;
    if (*keywords) {
        std::string shown = keywords;
        std::replace(shown.begin(), shown.end(), ' ', '/');
        question += " or [" + shown + "]";
    }
    for (;;) {
        auto answer = co_await context.input(question, {.keywords = words, .bareText = true});
        Picked picked;
        if (answer.isEnter()) {
            co_return picked;
        }
        if (answer.isKeyword() && !answer.isKeyword("Last") && !answer.isKeyword("Previous")) {
            picked.keyword = answer.keyword;
            co_return picked;
        }
        const auto found = named(context, answer);
        if (found && !found->empty()) {
            picked.entity = found->front();
            const lisp::Value& value = answer.value;
            picked.place = value.isCons() && value.car().isEname() ? lisp::toPoint(value.cdr().car())
                           : value.isNil()                         ? automation::readPoint(answer.text)
                                                                   : lisp::toPoint(value);
            co_return picked;
        }
        context.complain(found ? "No object was found there." : "*Invalid selection*");
    }
}

}  // namespace drafthost::commands
