// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <unordered_set>

#include "drafthost/drawing/Audit.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost {

// What the passes of an audit share: the drawing, the report, and the names that there are.
class AuditWork {
  public:
    AuditWork(Drawing& drawing, bool fix, AuditReport& report);

    Drawing& drawing() { return drawing_; }
    AuditReport& report() { return report_; }
    bool fixing() const { return fix_; }

    /// Notes an error of a record and mends it when that is wanted.
    void error(RecordId id, const std::string& what, const std::string& remedy,
               const std::function<void()>& mend);
    /// The same for one that only erasing the entity can mend.
    void erase(RecordId entity, const std::string& what);

    bool has(Table table, const std::string& name) const;
    /// A name came into being.
    void added(Table table, const std::string& name);
    bool hasBlock(const std::string& name) const;
    void refreshBlocks();

  private:
    Drawing& drawing_;
    bool fix_;
    AuditReport& report_;
    std::unordered_set<std::string> names_[9];
    std::unordered_set<std::string> blocks_;
};

// The passes, in the order in which they are made.
void auditHandles(AuditWork& work);
void auditHeader(AuditWork& work);
void auditTables(AuditWork& work);
void auditBlocks(AuditWork& work);
void auditEntities(AuditWork& work);
void auditObjects(AuditWork& work);

}  // namespace drafthost
