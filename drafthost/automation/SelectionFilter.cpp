// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/SelectionFilter.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/lisp/EvalStack.h"
#include "drafthost/lisp/Printer.h"
#include "drafthost/lisp/WildcardMatch.h"

namespace drafthost::automation {
namespace {

constexpr double SamePoint = 1e-8;

bool isOperator(std::string_view op) {
    static constexpr std::string_view Operators[] = {"*",  "=", "!=", "/=", "<>", "<",
                                                     "<=", ">", ">=", "&",  "&="};
    return std::ranges::find(Operators, op) != std::end(Operators);
}

std::vector<std::string> splitOperators(const std::string& text) {
    std::vector<std::string> result;
    for (std::size_t pos = 0; pos <= text.size();) {
        const std::size_t comma = std::min(text.find(',', pos), text.size());
        result.push_back(text.substr(pos, comma - pos));
        pos = comma + 1;
    }
    return result;
}

bool compareNumbers(const std::string& op, double actual, double wanted) {
    if (op == "*") {
        return true;
    }
    if (op == "=") {
        return actual == wanted;
    }
    if (op == "!=" || op == "/=" || op == "<>") {
        return actual != wanted;
    }
    if (op == "<") {
        return actual < wanted;
    }
    if (op == "<=") {
        return actual <= wanted;
    }
    if (op == ">") {
        return actual > wanted;
    }
    if (op == ">=") {
        return actual >= wanted;
    }
    const auto a = static_cast<std::int64_t>(actual);
    const auto b = static_cast<std::int64_t>(wanted);
    return op == "&" ? (a & b) != 0 : (a & b) == b;
}

/// What an entity counts as having when its record leaves the group out.
std::optional<Value> defaultOf(int code) {
    switch (code) {
        case 6:
            return Value::string("BYLAYER");
        case 8:
            return Value::string("0");
        case 62:
            return Value::integer(256);
        case 60:
        case 66:
            return Value::integer(0);
        case 370:
            return Value::integer(-1);
        case 39:
            return Value::real(0);
        case 48:
            return Value::real(1);
        default:
            return std::nullopt;
    }
}

[[noreturn]] void failList(const Value& whole) {
    fail("bad SSGET list: " + lisp::prin1(whole));
}

}  // namespace

std::vector<SelectionFilter::Test> SelectionFilter::read(const std::vector<Value>& items, std::size_t& i,
                                                         const std::string& closing, const Value& whole) {
    // What tests and frees the groups afterwards nests as deep and takes less.
    constexpr std::size_t Reserve = std::size_t{2} << 20;
    if (lisp::EvalStack::left() < Reserve) {
        fail(std::string(lisp::StackLimitText));
    }
    std::vector<Test> tests;
    std::string op;
    while (i < items.size()) {
        const Value& item = items[i++];
        if (!item.isCons() || !item.car().isInt()) {
            failList(whole);
        }
        Test test;
        test.code = item.car().toInt();
        test.value = item.cdr();
        if (test.code == -4) {
            if (!test.value.isString() || !op.empty()) {
                failList(whole);
            }
            const std::string word = lisp::upperCase(test.value.toString());
            if (!closing.empty() && word == closing) {
                return tests;
            }
            if (word == "<AND" || word == "<OR" || word == "<XOR" || word == "<NOT") {
                const std::string name = word.substr(1);
                test.kind = name == "AND"   ? Kind::And
                            : name == "OR"  ? Kind::Or
                            : name == "XOR" ? Kind::Xor
                                            : Kind::Not;
                test.parts = read(items, i, name + ">", whole);
                const std::size_t count = test.parts.size();
                if (count == 0 || (test.kind == Kind::Xor && count != 2) ||
                    (test.kind == Kind::Not && count != 1)) {
                    failList(whole);
                }
                tests.push_back(std::move(test));
                continue;
            }
            op = test.value.toString();
            if (!std::ranges::all_of(splitOperators(op), isOperator)) {
                failList(whole);
            }
            continue;
        }
        if (test.code == -3) {
            test.kind = Kind::Application;
            for (const Value& application : listArg(test.value).items()) {
                const Value& name = application.isCons() ? application.car() : application;
                if (!name.isString()) {
                    failList(whole);
                }
                test.applications.push_back(name.toString());
            }
        } else {
            test.kind = Kind::Group;
            const bool fits =
                test.code == -1 ? test.value.isEname() : test.code >= 0 && fitsGroup(test.code, test.value);
            if (!fits) {
                fail("bad SSGET list value: " + lisp::prin1(item));
            }
            if (test.value.isString()) {
                const std::string& text = test.value.toString();
                test.pattern = lisp::hasWildcards(text);
                test.folded = foldCase(text);
            }
            test.operators = splitOperators(op.empty() ? "=" : op);
        }
        op.clear();
        tests.push_back(std::move(test));
    }
    if (!closing.empty() || !op.empty()) {
        failList(whole);
    }
    return tests;
}

SelectionFilter::SelectionFilter(const Value& list) {
    std::size_t i = 0;
    tests_ = read(listArg(list).items(), i, "", list);
}

bool SelectionFilter::accepts(const Drawing& drawing, RecordId id) const {
    if (tests_.empty()) {
        return true;
    }
    const Record record = drawing.record(id);
    return std::ranges::all_of(tests_, [&](const Test& t) { return holds(t, drawing, record); });
}

bool SelectionFilter::holds(const Test& test, const Drawing& drawing, const Record& record) {
    const auto part = [&](const Test& t) { return holds(t, drawing, record); };
    switch (test.kind) {
        case Kind::And:
            return std::ranges::all_of(test.parts, part);
        case Kind::Or:
            return std::ranges::any_of(test.parts, part);
        case Kind::Xor:
            return part(test.parts[0]) != part(test.parts[1]);
        case Kind::Not:
            return !part(test.parts[0]);
        case Kind::Application:
            return std::ranges::all_of(test.applications, [&](const std::string& name) {
                for (std::size_t i = record.xdata(); i < record.size(); ++i) {
                    if (record.code(i) == 1001 && lisp::wildcardMatch(record.text(i), name, true)) {
                        return true;
                    }
                }
                return false;
            });
        case Kind::Group:
            return holdsGroup(test, drawing, record);
    }
    return false;
}

bool SelectionFilter::holdsGroup(const Test& test, const Drawing& drawing, const Record& record) {
    const int code = test.code;
    if (code == -1) {
        return test.value.toEname() == nameOf(record.id());
    }
    if (code == 0) {
        return compare(test, Value::string(std::string(record.type())));
    }
    if (code == 67 || code == 410) {
        const Layout* layout = layoutOf(drawing, record.id());
        if (layout == nullptr) {
            return false;
        }
        return compare(test,
                       code == 67 ? Value::integer(layout->model ? 0 : 1) : Value::string(layout->name));
    }
    bool found = false;
    const std::size_t end = record.xdata();
    for (std::size_t i = 1; i < end; ++i) {
        if (record.code(i) == code) {
            found = true;
            if (compare(test, groupValue(drawing, record, i))) {
                return true;
            }
        }
    }
    if (found) {
        return false;
    }
    const auto otherwise = defaultOf(code);
    return otherwise && compare(test, *otherwise);
}

bool SelectionFilter::compare(const Test& test, const Value& actual) {
    const std::string& op = test.operators[0];
    if (op == "*" && test.operators.size() == 1) {
        return true;
    }
    if (test.value.isString() && actual.isString()) {
        const bool same = test.pattern ? lisp::wildcardMatch(actual.toString(), test.value.toString(), true)
                                       : foldCase(actual.toString()) == test.folded;
        return (op == "!=" || op == "/=" || op == "<>") ? !same : same;
    }
    if (test.value.isNumber() && actual.isNumber()) {
        return compareNumbers(op, actual.toDouble(), test.value.toDouble());
    }
    if (test.value.isEname()) {
        return actual.isEname() && actual.toEname() == test.value.toEname();
    }
    const auto wanted = toPoint(test.value);
    const auto point = toPoint(actual);
    if (!wanted || !point) {
        return false;
    }
    const std::size_t count = test.value.cdr().cdr().isCons() ? 3 : 2;
    for (std::size_t k = 0; k < count; ++k) {
        // With fewer operators than coordinates one operator counts for all, of several the rest is free.
        if (test.operators.size() > 1 && k >= test.operators.size()) {
            break;
        }
        const std::string& each = test.operators.size() == 1 ? op : test.operators[k];
        const double near =
            each == "=" && std::abs((*point)[k] - (*wanted)[k]) < SamePoint ? (*wanted)[k] : (*point)[k];
        if (!compareNumbers(each, near, (*wanted)[k])) {
            return false;
        }
    }
    return true;
}

}  // namespace drafthost::automation
