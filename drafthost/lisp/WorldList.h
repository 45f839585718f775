// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the worlds of all documents share: the list of them, what was given to all, and the blackboard.

#include <unordered_map>
#include <vector>

#include "drafthost/lisp/Value.h"

namespace drafthost::lisp {

class Evaluator;

/// Every living world, oldest first.
inline std::vector<Evaluator*>& worlds() {
    static std::vector<Evaluator*> list;
    return list;
}

/// Values given to all worlds with (vl-propagate), also to those that come later.
inline std::unordered_map<const Symbol*, Value>& propagated() {
    static std::unordered_map<const Symbol*, Value> values;
    return values;
}

/// Values set with (vl-bb-set).
inline std::unordered_map<const Symbol*, Value>& blackboard() {
    static std::unordered_map<const Symbol*, Value> board;
    return board;
}

}  // namespace drafthost::lisp
