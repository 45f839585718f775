// SPDX-License-Identifier: GPL-3.0-or-later
// Audit of entities and objects.

#include <algorithm>
#include <cmath>

#include "drafthost/drawing/AuditWork.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/Structure.h"

namespace drafthost {

namespace {

constexpr double Wildest = 1e100;

bool isStyled(std::string_view type) {
    return type == "TEXT" || type == "ATTRIB" || type == "ATTDEF" || type == "MTEXT";
}

bool isSequence(const Record& record) {
    return (record.type() == "POLYLINE" || record.type() == "INSERT") && (record.integerOr(66, 0) & 1) != 0;
}

class EntityAudit {
  public:
    EntityAudit(AuditWork& work, const Block& block)
        : work_(work),
          drawing_(work.drawing()),
          block_(block.name),
          owner_(block.blockRecord == NoRecord ? 0 : drawing_.handle(block.blockRecord)) {}

    void check(RecordId id) {
        ++work_.report().objects;
        if (hasWildNumbers(id)) {
            work_.erase(id, "Coordinates are no numbers");
            return;
        }
        if (drawing_.type(id) == "INSERT" && isBroken(id)) {
            return;
        }
        checkRecord(id, owner_);
        if (isSequence(drawing_.record(id)) || drawing_.type(id) == "POLYLINE") {
            checkSequence(id);
        }
    }

  private:
    void checkRecord(RecordId id, std::uint64_t owner) {
        checkOwner(id, owner);
        checkNames(id);
        checkLooks(id);
        checkExtrusion(id);
        checkExtendedData(id);
    }

    bool hasWildNumbers(RecordId id) const {
        const Record record = drawing_.record(id);
        for (std::size_t i = 1; i < record.xdata(); ++i) {
            const int code = record.code(i);
            if (code < 10 || code > 59) {
                continue;
            }
            const double value = record.real(i);
            const std::string_view raw = drawing_.isBinary() ? std::string_view() : record.raw(i);
            // What begins like no number at all (nan, inf, -1.#IND) reads as something else.
            const bool words = raw.find_first_of("nN#") != std::string_view::npos;
            if (!(std::fabs(value) < Wildest) || words) {
                return true;
            }
        }
        return false;
    }

    /// An insertion of a block that is not there, or of the block itself that it stands in.
    bool isBroken(RecordId id) {
        const std::string name = drawing_.record(id).textOr(2, "");
        if (!work_.hasBlock(name)) {
            work_.erase(id, "Block \"" + name + "\" is not there");
            return true;
        }
        if (foldCase(name) == foldCase(block_) || reaches(name, 0)) {
            work_.erase(id, "Block \"" + block_ + "\" holds itself");
            return true;
        }
        return false;
    }

    /// Whether what a block holds leads to the one being looked at.
    bool reaches(const std::string& name, int depth) {
        constexpr int Deepest = 64;
        const std::string folded = foldCase(name);
        if (depth > Deepest) {
            return false;
        }
        const auto known = leads_.find(folded);
        if (known != leads_.end()) {
            return known->second;
        }
        leads_[folded] = false;
        const Block* block = findBlock(drawing_, name);
        bool found = false;
        if (block != nullptr) {
            for (const RecordId id : entitiesOf(drawing_, *block)) {
                if (drawing_.type(id) == "INSERT") {
                    const std::string inner = drawing_.record(id).textOr(2, "");
                    found = found || foldCase(inner) == foldCase(block_) || reaches(inner, depth + 1);
                }
            }
        }
        leads_[folded] = found;
        return found;
    }

    void checkOwner(RecordId id, std::uint64_t owner) {
        if (owner == 0 || drawing_.versionNumber() < 1015) {
            return;
        }
        const Record record = drawing_.record(id);
        bool group = false;
        for (std::size_t i = 1; i < record.size() && record.code(i) != 100; ++i) {
            if (record.code(i) == 102) {
                group = record.raw(i).starts_with('{');
            } else if (record.code(i) == 330 && !group && record.handle(i) != owner) {
                work_.error(id, "Owner " + formatHandle(record.handle(i)) + " is wrong",
                            "set to " + formatHandle(owner),
                            [&] { drawing_.setTag(id, i, formatHandle(owner)); });
                return;
            }
        }
    }

    void checkNames(RecordId id) {
        const std::string layer = drawing_.record(id).textOr(8, "0");
        if (layer.find_first_not_of(' ') == std::string::npos) {
            // No layer can have such a name, so none is added.
            work_.error(id, "Layer name is blank", "set to 0", [&] {
                drawing_.put(id, 8, std::string("0"), {67, 100, 330, 5});
            });
        } else if (layer != "0" && !work_.has(Table::Layer, layer)) {
            work_.error(id, "Layer \"" + layer + "\" is not there", "added",
                        [&] { addEntry(drawing_, Table::Layer, layer); });
            work_.added(Table::Layer, layer);
        }
        const std::string linetype = foldCase(drawing_.record(id).textOr(6, "ByLayer"));
        if (linetype != foldCase("ByLayer") && linetype != foldCase("ByBlock") &&
            linetype != foldCase("Continuous") && !work_.has(Table::Ltype, linetype)) {
            work_.error(id, "Linetype \"" + drawing_.record(id).textOr(6, "") + "\" is not there",
                        "set to ByLayer", [&] { drawing_.removeTag(id, *drawing_.record(id).find(6)); });
        }
        const std::string_view type = drawing_.type(id);
        if (isStyled(type)) {
            checkEntry(id, 7, Table::Style, "Text style");
        } else if (type == "DIMENSION" || type == "LEADER" || type == "TOLERANCE") {
            checkEntry(id, 3, Table::Dimstyle, "Dimension style");
        }
    }

    void checkEntry(RecordId id, int code, Table table, const char* kind) {
        const auto at = drawing_.record(id).find(code);
        if (!at || work_.has(table, drawing_.record(id).text(*at))) {
            return;
        }
        work_.error(id, std::string(kind) + " \"" + drawing_.record(id).text(*at) + "\" is not there",
                    "set to Standard", [&] {
                        if (!work_.has(table, "Standard")) {
                            addEntry(drawing_, table, "Standard");
                            work_.added(table, "Standard");
                        }
                        drawing_.setTag(id, *at, std::string("Standard"));
                    });
    }

    void checkLooks(RecordId id) {
        const auto color = drawing_.record(id).find(62);
        if (color && *color < drawing_.record(id).xdata()) {
            const std::int64_t value = drawing_.record(id).integer(*color);
            if (value < 0 || value > 257) {
                work_.error(id, "Color " + std::to_string(value) + " is invalid", "set to ByLayer",
                            [&] { drawing_.removeTag(id, *color); });
            }
        }
    }

    void checkExtrusion(RecordId id) {
        const Record record = drawing_.record(id);
        const auto at = record.find(210);
        if (!at || *at >= record.xdata()) {
            return;
        }
        const Point z = record.point(*at);
        if (z.x == 0 && z.y == 0 && z.z == 0) {
            work_.error(id, "Extrusion has no length", "set to 0,0,1", [&] {
                drawing_.putPoint(id, 210, {0, 0, 1}, true);
            });
        }
    }

    void checkExtendedData(RecordId id) {
        for (std::size_t i = drawing_.record(id).xdata(); i < drawing_.record(id).size(); ++i) {
            const Record record = drawing_.record(id);
            const int code = record.code(i);
            if (code == 1001 && !work_.has(Table::Appid, record.text(i))) {
                const std::string name = record.text(i);
                work_.error(id, "Application \"" + name + "\" is not registered", "registered",
                            [&] { addEntry(drawing_, Table::Appid, name); });
                work_.added(Table::Appid, name);
            } else if (code == 1005 && record.handle(i) != 0 &&
                       drawing_.findHandle(record.handle(i)) == NoRecord) {
                work_.error(id,
                            "Extended data names " + formatHandle(record.handle(i)) + ", which is not there",
                            "set to 0", [&] { drawing_.setTag(id, i, std::string("0")); });
            }
        }
    }

    void checkSequence(RecordId main) {
        const std::uint64_t owner = drawing_.handle(main);
        const std::string_view wanted = drawing_.type(main) == "POLYLINE" ? "VERTEX" : "ATTRIB";
        RecordId last = main;
        for (RecordId part = drawing_.next(main); part != NoRecord; part = drawing_.next(part)) {
            const std::string_view type = drawing_.type(part);
            if (type != wanted && type != "SEQEND") {
                break;
            }
            checkRecord(part, type == "SEQEND" ? 0 : owner);
            last = part;
            if (type == "SEQEND") {
                return;
            }
        }
        work_.error(main, "Sequence has no end", "added",
                    [&] { addPart(drawing_, main, last, "SEQEND", drawing_.record(main).textOr(8, "0")); });
    }

    AuditWork& work_;
    Drawing& drawing_;
    std::string block_;
    std::uint64_t owner_;
    std::unordered_map<std::string, bool> leads_;
};

/// Pointers of a group to entities that are gone.
void auditGroup(AuditWork& work, RecordId id) {
    Drawing& drawing = work.drawing();
    for (std::size_t i = drawing.record(id).size(); i-- > 0;) {
        const Record record = drawing.record(id);
        if (record.code(i) == 340 && drawing.findHandle(record.handle(i)) == NoRecord) {
            work.error(id, "Group names " + formatHandle(record.handle(i)) + ", which is not there",
                       "left out", [&] { drawing.removeTag(id, i); });
        }
    }
}

void auditDictionary(AuditWork& work, RecordId id) {
    Drawing& drawing = work.drawing();
    std::vector<DictionaryEntry> entries = dictionaryEntries(drawing, id);
    std::reverse(entries.begin(), entries.end());
    for (const DictionaryEntry& entry : entries) {
        if (entry.handle == 0 || drawing.findHandle(entry.handle) == NoRecord) {
            work.error(
                id,
                "Entry \"" + entry.name + "\" names " + formatHandle(entry.handle) + ", which is not there",
                "left out", [&] {
                    if (entry.tag + 1 < drawing.record(id).size()) {
                        drawing.removeTag(id, entry.tag + 1);
                    }
                    drawing.removeTag(id, entry.tag);
                });
        }
    }
}

}  // namespace

void auditEntities(AuditWork& work) {
    Drawing& drawing = work.drawing();
    const std::vector<Block> all = blocks(drawing);
    for (const Block& block : all) {
        EntityAudit entities(work, block);
        for (const RecordId id : entitiesOf(drawing, block)) {
            if (drawing.isAlive(id)) {
                entities.check(id);
            }
        }
    }
    if (findBlock(drawing, "*Model_Space") == nullptr && findBlock(drawing, "$MODEL_SPACE") == nullptr) {
        EntityAudit entities(work, Block());
        for (RecordId id = firstEntity(drawing); id != NoRecord;) {
            const RecordId next = nextEntity(drawing, id, false);
            entities.check(id);
            id = next;
        }
    }
}

void auditObjects(AuditWork& work) {
    Drawing& drawing = work.drawing();
    for (const RecordId id : objects(drawing)) {
        const std::string_view type = drawing.type(id);
        if (type == "DICTIONARY" || type == "ACDBDICTIONARYWDFLT") {
            auditDictionary(work, id);
        } else if (type == "GROUP") {
            auditGroup(work, id);
        }
        ++work.report().objects;
    }
}

}  // namespace drafthost
