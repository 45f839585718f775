// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The filter lists of (ssget): pairs of group codes and values that an entity must have, joined by AND
// unless (-4 . "<OR") and its like say otherwise. Read once, then asked for every entity.

#include <memory>
#include <string>
#include <vector>

#include "drafthost/automation/Lisp.h"
#include "drafthost/drawing/Drawing.h"

namespace drafthost::automation {

class SelectionFilter {
  public:
    SelectionFilter() = default;
    /// Fails with the host's error when the list is malformed.
    explicit SelectionFilter(const Value& list);
    bool accepts(const Drawing& drawing, RecordId id) const;

  private:
    enum class Kind { And, Or, Xor, Not, Group, Application };
    struct Test {
        Kind kind = Kind::And;
        int code = 0;
        Value value;
        bool pattern = false;                ///< the text holds wildcards
        std::string folded;                  ///< the text without regard to case
        std::vector<std::string> operators;  ///< one, or one per coordinate
        std::vector<std::string> applications;
        std::vector<Test> parts;
    };

    static std::vector<Test> read(const std::vector<Value>& items, std::size_t& i, const std::string& closing,
                                  const Value& whole);
    static bool holds(const Test& test, const Drawing& drawing, const Record& record);
    static bool holdsGroup(const Test& test, const Drawing& drawing, const Record& record);
    static bool compare(const Test& test, const Value& actual);

    std::vector<Test> tests_;
};

}  // namespace drafthost::automation
