// SPDX-License-Identifier: GPL-3.0-or-later
// Functions that sort, filter and search lists by a function of the caller's.

#include <algorithm>
#include <numeric>

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/Compare.h"
#include "drafthost/lisp/Evaluator.h"
#include "drafthost/lisp/Symbol.h"

namespace drafthost::lisp {
namespace {

bool holds(Evaluator& e, const Value& function, const Value& item) {
    Value argument = item;
    return static_cast<bool>(e.apply(function, Args(&argument, 1)));
}

// Merges by hand: the caller's function may contradict itself, which std::sort does not survive.
std::vector<std::size_t> sortedIndexes(Evaluator& e, const std::vector<Value>& items, const Value& function) {
    std::vector<std::size_t> order(items.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::vector<std::size_t> merged(items.size());
    const auto before = [&](std::size_t a, std::size_t b) {
        Value pair[] = {items[a], items[b]};
        return static_cast<bool>(e.apply(function, pair));
    };
    for (std::size_t width = 1; width < items.size(); width *= 2) {
        for (std::size_t low = 0; low < items.size(); low += 2 * width) {
            const std::size_t middle = std::min(low + width, items.size());
            const std::size_t high = std::min(low + 2 * width, items.size());
            std::size_t left = low;
            std::size_t right = middle;
            for (std::size_t k = low; k < high; ++k) {
                const bool takeRight = left >= middle || (right < high && before(order[right], order[left]));
                merged[k] = takeRight ? order[right++] : order[left++];
            }
        }
        order.swap(merged);
    }
    return order;
}

Value sort(Evaluator& e, Args args) {
    const std::vector<Value> items = listArg(args[0]).items();
    ListBuilder result;
    for (const std::size_t i : sortedIndexes(e, items, e.function(args[1]))) {
        result.add(items[i]);
    }
    return result.take();
}

Value sortIndexes(Evaluator& e, Args args) {
    const std::vector<Value> items = listArg(args[0]).items();
    ListBuilder result;
    for (const std::size_t i : sortedIndexes(e, items, e.function(args[1]))) {
        result.add(Value::integer(static_cast<std::int32_t>(i)));
    }
    return result.take();
}

Value sortStrings(Evaluator&, Args args) {
    std::vector<std::pair<std::string, Value>> keyed;
    for (const Value& item : listArg(args[0]).items()) {
        keyed.emplace_back(upperCase(stringArg(item)), item);
    }
    std::ranges::stable_sort(keyed, {}, [](const auto& k) -> const std::string& { return k.first; });
    ListBuilder result;
    for (auto& [key, item] : keyed) {
        result.add(std::move(item));
    }
    return result.take();
}

Value position(Evaluator&, Args args) {
    std::int32_t index = 0;
    for (const Value* rest = &listArg(args[1]); rest->isCons(); rest = &rest->cdr(), ++index) {
        if (equalValues(rest->car(), args[0])) {
            return Value::integer(index);
        }
    }
    return {};
}

Value removeItem(Evaluator&, Args args) {
    ListBuilder result;
    for (const Value* rest = &listArg(args[1]); rest->isCons(); rest = &rest->cdr()) {
        if (!equalValues(rest->car(), args[0])) {
            result.add(rest->car());
        }
    }
    return result.take();
}

Value filter(Evaluator& e, Args args, bool keep) {
    const Value function = e.function(args[0]);
    ListBuilder result;
    for (const Value* rest = &listArg(args[1]); rest->isCons(); rest = &rest->cdr()) {
        if (holds(e, function, rest->car()) == keep) {
            result.add(rest->car());
        }
    }
    return result.take();
}

Value removeIf(Evaluator& e, Args args) {
    return filter(e, args, false);
}
Value removeIfNot(Evaluator& e, Args args) {
    return filter(e, args, true);
}

Value memberWhere(Evaluator& e, Args args, bool wanted) {
    const Value function = e.function(args[0]);
    for (const Value* rest = &listArg(args[1]); rest->isCons(); rest = &rest->cdr()) {
        if (holds(e, function, rest->car()) == wanted) {
            return *rest;
        }
    }
    return {};
}

Value memberIf(Evaluator& e, Args args) {
    return memberWhere(e, args, true);
}
Value memberIfNot(Evaluator& e, Args args) {
    return memberWhere(e, args, false);
}

/// Calls the function over the lists in step until a result is as wanted; gives that result.
std::optional<Value> firstResult(Evaluator& e, Args args, bool wanted) {
    const Value function = e.function(args[0]);
    std::vector<const Value*> lists;
    for (const Value& list : args.subspan(1)) {
        lists.push_back(&listArg(list));
    }
    std::vector<Value> call(lists.size());
    while (std::ranges::all_of(lists, [](const Value* l) { return l->isCons(); })) {
        for (std::size_t i = 0; i < lists.size(); ++i) {
            call[i] = lists[i]->car();
            lists[i] = &lists[i]->cdr();
        }
        Value result = e.apply(function, call);
        if (static_cast<bool>(result) == wanted) {
            return result;
        }
    }
    return std::nullopt;
}

Value some(Evaluator& e, Args args) {
    return firstResult(e, args, true).value_or(Value());
}
Value every(Evaluator& e, Args args) {
    return Value::boolean(!firstResult(e, args, false));
}

constexpr Subr Functions[] = {
    {"VL-SORT", 2, 2, sort},
    {"VL-SORT-I", 2, 2, sortIndexes},
    {"ACAD_STRLSORT", 1, 1, sortStrings},
    {"VL-POSITION", 2, 2, position},
    {"VL-REMOVE", 2, 2, removeItem},
    {"VL-REMOVE-IF", 2, 2, removeIf},
    {"VL-REMOVE-IF-NOT", 2, 2, removeIfNot},
    {"VL-MEMBER-IF", 2, 2, memberIf},
    {"VL-MEMBER-IF-NOT", 2, 2, memberIfNot},
    {"VL-SOME", 2, Subr::Any, some},
    {"VL-EVERY", 2, Subr::Any, every},
};

}  // namespace

std::span<const Subr> listSearchFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp
