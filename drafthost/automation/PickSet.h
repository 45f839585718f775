// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Selection sets as values of LISP.

#include <string>
#include <unordered_set>
#include <vector>

#include "drafthost/automation/Lisp.h"

namespace drafthost::automation {

/// A selection set: shared by all values that hold it, each member once, in order of selection.
class PickSet final : public lisp::Foreign {
  public:
    explicit PickSet(const std::vector<EntityName>& members);
    const std::vector<EntityName>& members() const { return order_; }
    bool contains(EntityName e) const { return index_.contains(e); }
    bool add(EntityName e);
    bool remove(EntityName e);

    const char* typeName() const override { return "PICKSET"; }
    std::string shown() const override;

  private:
    std::uint32_t number_;  ///< tells sets apart where they are printed
    std::vector<EntityName> order_;
    std::unordered_set<EntityName> index_;
};

Value makePickSet(const std::vector<EntityName>& members);
/// The set that a value holds; null when it holds none.
PickSet* pickSetOf(const Value& value);
PickSet& pickSetArg(const Value& value);

}  // namespace drafthost::automation
