// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/PickSet.h"

#include <charconv>

namespace drafthost::automation {
namespace {

std::uint32_t nextSetNumber() {
    static std::uint32_t number = 0;
    return ++number;
}

}  // namespace

PickSet::PickSet(const std::vector<EntityName>& members) : number_(nextSetNumber()) {
    order_.reserve(members.size());
    index_.reserve(members.size());
    for (const EntityName e : members) {
        add(e);
    }
}

bool PickSet::add(EntityName e) {
    if (!index_.insert(e).second) {
        return false;
    }
    order_.push_back(e);
    return true;
}

bool PickSet::remove(EntityName e) {
    if (index_.erase(e) == 0) {
        return false;
    }
    std::erase(order_, e);
    return true;
}

std::string PickSet::shown() const {
    constexpr int Hex = 16;
    char digits[8];
    const auto end = std::to_chars(digits, digits + sizeof digits, number_, Hex).ptr;
    return "<Selection set: " + std::string(digits, end) + ">";
}

Value makePickSet(const std::vector<EntityName>& members) {
    return Value::adopt(new PickSet(members));
}

PickSet* pickSetOf(const Value& value) {
    return value.isForeign() ? dynamic_cast<PickSet*>(&value.toForeign()) : nullptr;
}

PickSet& pickSetArg(const Value& value) {
    PickSet* set = pickSetOf(value);
    if (set == nullptr) {
        failType("lselsetp", value);
    }
    return *set;
}

}  // namespace drafthost::automation
