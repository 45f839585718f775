// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Audit.h"

#include "drafthost/drawing/AuditWork.h"
#include "drafthost/drawing/Blocks.h"

namespace drafthost {

AuditWork::AuditWork(Drawing& drawing, bool fix, AuditReport& report)
    : drawing_(drawing), fix_(fix), report_(report) {
    for (std::size_t table = 0; table < std::size(names_); ++table) {
        for (const RecordId id : tableEntries(drawing, static_cast<Table>(table))) {
            added(static_cast<Table>(table), entryName(drawing, id));
        }
    }
    refreshBlocks();
}

void AuditWork::refreshBlocks() {
    blocks_.clear();
    for (const Block& block : blocks(drawing_)) {
        blocks_.insert(foldCase(block.name));
    }
}

bool AuditWork::has(Table table, const std::string& name) const {
    return names_[static_cast<std::size_t>(table)].contains(foldCase(name));
}

void AuditWork::added(Table table, const std::string& name) {
    names_[static_cast<std::size_t>(table)].insert(foldCase(name));
}

bool AuditWork::hasBlock(const std::string& name) const {
    return blocks_.contains(foldCase(name));
}

void AuditWork::error(RecordId id, const std::string& what, const std::string& remedy,
                      const std::function<void()>& mend) {
    ++report_.found;
    std::string line;
    if (id != NoRecord) {
        const std::uint64_t handle = drawing_.handle(id);
        line = std::string(drawing_.type(id)) + (handle != 0 ? "(" + formatHandle(handle) + ")" : "") + "  ";
    }
    report_.lines.push_back(line + what + "  " + (fix_ ? remedy : "would be: " + remedy));
    if (fix_) {
        mend();
        ++report_.fixed;
        if (id != NoRecord && (report_.mended.empty() || report_.mended.back() != id)) {
            report_.mended.push_back(id);
        }
    }
}

void AuditWork::erase(RecordId entity, const std::string& what) {
    error(entity, what, "erased", [&] {
        deleteEntity(drawing_, entity);
        ++report_.erased;
    });
}

AuditReport audit(Drawing& drawing, bool fix) {
    AuditReport report;
    AuditWork work(drawing, fix, report);
    auditHandles(work);
    auditTables(work);
    auditHeader(work);
    auditBlocks(work);
    auditEntities(work);
    auditObjects(work);
    std::erase_if(report.mended,
                  [&](RecordId id) { return !drawing.isAlive(id) || layoutOf(drawing, id) == nullptr; });
    return report;
}

}  // namespace drafthost
