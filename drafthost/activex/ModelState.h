// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the object model keeps for a document.

#include <map>

#include "drafthost/activex/Model.h"

namespace drafthost::activex {

struct ModelState final : automation::SessionExtension {
    std::shared_ptr<Database> database;
    struct KeyHash {
        std::size_t operator()(const std::pair<const Database*, RecordId>& key) const {
            return std::hash<const void*>()(key.first) ^ (std::size_t{key.second} * 0x9E3779B97F4A7C15ULL);
        }
    };
    std::unordered_map<std::pair<const Database*, RecordId>, Value, KeyHash> objects;
    std::unordered_map<const Class*, Value> singles;
    std::map<std::string, Value> selectionSets;
    std::map<std::string, Value> preferences;
    bool constantsKnown = false;
};

ModelState& modelState(Evaluator& e);

}  // namespace drafthost::activex
