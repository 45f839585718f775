// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/DefaultList.h"

#include <algorithm>

#include "drafthost/automation/DxfList.h"
#include "drafthost/lisp/Compare.h"

namespace drafthost::automation {
namespace {

int codeOf(const Value& pair) {
    return pair.car().toInt();
}

/// The end of a part of the list: where the next one begins.
std::vector<Value>::iterator endOfPart(std::vector<Value>& pairs, std::string_view subclass) {
    auto at = pairs.begin();
    if (!subclass.empty()) {
        at = std::find_if(pairs.begin(), pairs.end(), [&](const Value& pair) {
            return codeOf(pair) == 100 && pair.cdr().isString() && pair.cdr().toString() == subclass;
        });
        if (at == pairs.end()) {
            return at;
        }
        ++at;
        return std::find_if(at, pairs.end(), [](const Value& pair) { return codeOf(pair) == 100; });
    }
    return pairs.end();
}

bool has(const Record& record, const DefaultGroup& group) {
    const auto found = record.find(group.code);
    return found && *found < record.xdata();
}

/// Each vertex shows widths and bulge, in the order of the format.
void addVertexDefaults(const Record& record, std::vector<Value>& pairs) {
    const double constant = record.realOr(43, 0);
    std::vector<Value> result;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        result.push_back(pairs[i]);
        if (codeOf(pairs[i]) != 10) {
            continue;
        }
        double held[3] = {constant, constant, 0};
        std::vector<Value> rest;
        for (; i + 1 < pairs.size(); ++i) {
            const int code = codeOf(pairs[i + 1]);
            if (code >= 40 && code <= 42) {
                held[code - 40] = pairs[i + 1].cdr().toDouble();
            } else if (code == 91) {
                rest.push_back(pairs[i + 1]);
            } else {
                break;
            }
        }
        for (int k = 0; k < 3; ++k) {
            result.push_back(Value::cons(Value::integer(40 + k), Value::real(held[k])));
        }
        result.insert(result.end(), rest.begin(), rest.end());
    }
    pairs = std::move(result);
}

}  // namespace

Value defaultValue(const DefaultGroup& group) {
    switch (group.kind) {
        case DefaultGroup::Kind::Integer:
            return Value::integer(static_cast<std::int32_t>(group.number));
        case DefaultGroup::Kind::Text:
            return Value::string(std::string(group.text));
        case DefaultGroup::Kind::Point:
            return Value::point(group.point);
        default:
            return Value::real(group.number);
    }
}

void addDefaults(const Record& record, std::vector<Value>& pairs) {
    const std::string_view type = record.type();
    for (const DefaultGroup& group : defaultGroups(type)) {
        // Of a paragraph's two ways to give its direction the file has one.
        const bool other = type == "MTEXT" &&
                           ((group.code == 11 && record.find(50)) || (group.code == 50 && record.find(11)));
        if (!has(record, group) && !other) {
            pairs.insert(endOfPart(pairs, group.subclass),
                         Value::cons(Value::integer(group.code), defaultValue(group)));
        }
    }
    if (type == "LWPOLYLINE") {
        addVertexDefaults(record, pairs);
    }
}

bool isDefault(const Record& record, int code, const Value& value) {
    for (const DefaultGroup& group : defaultGroups(record.type())) {
        if (group.code == code) {
            return !has(record, group) && lisp::equalValues(defaultValue(group), value);
        }
    }
    return false;
}

void dropVertexDefaults(std::vector<Value>& pairs) {
    double constant = 0;
    for (const Value& pair : pairs) {
        constant = codeOf(pair) == 43 ? pair.cdr().toDouble() : constant;
    }
    std::erase_if(pairs, [&](const Value& pair) {
        const int code = codeOf(pair);
        return (code == 42 && pair.cdr().toDouble() == 0) ||
               ((code == 40 || code == 41) && pair.cdr().toDouble() == constant);
    });
}

}  // namespace drafthost::automation
