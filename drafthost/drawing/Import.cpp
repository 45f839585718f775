// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Import.h"

#include <algorithm>
#include <array>

#include "drafthost/drawing/Header.h"

namespace drafthost {

namespace {

bool isSpecial(const std::string& folded) {
    return folded.empty() || folded == foldCase("ByLayer") || folded == foldCase("ByBlock");
}

bool canCome(std::string_view type) {
    static constexpr std::array<std::string_view, 11> Bound = {
        "IMAGE",       "ACAD_TABLE",  "MULTILEADER", "ACAD_PROXY_ENTITY",
        "VIEWPORT",    "PDFUNDERLAY", "DWFUNDERLAY", "WIPEOUT",
        "DGNUNDERLAY", "MLINE",       "OLE2FRAME"};
    return std::find(Bound.begin(), Bound.end(), type) == Bound.end();
}

bool namesText(std::string_view type) {
    return type == "TEXT" || type == "MTEXT" || type == "ATTRIB" || type == "ATTDEF";
}
bool namesDimension(std::string_view type) {
    return type == "DIMENSION" || type == "LEADER" || type == "TOLERANCE" || type == "ARC_DIMENSION";
}

}  // namespace

RecordId Importer::entry(Table table, const std::string& name) {
    if (const RecordId known = findEntry(to_, table, name); known != NoRecord) {
        return known;
    }
    const RecordId source = findEntry(from_, table, name);
    if (source == NoRecord) {
        return NoRecord;
    }
    const RecordId made = addEntry(to_, table, entryName(from_, source));
    if (made == NoRecord) {
        return NoRecord;
    }
    // The defaults of a new entry give way to what the other drawing says.
    for (std::size_t i = to_.record(made).xdata(); i-- > 1;) {
        const int code = to_.record(made).code(i);
        if (code != 5 && code != 105 && code != 330 && code != 100 && code != 2) {
            to_.removeTag(made, i);
        }
    }
    appendBody(source, made);
    return made;
}

bool Importer::appendPointer(RecordId made, int code, std::uint64_t handle) {
    const RecordId target = from_.findHandle(handle);
    const auto table = target == NoRecord ? std::nullopt : tableOf(from_.type(target));
    if (!table) {
        return false;
    }
    const std::string name = entryName(from_, target);
    RecordId there = NoRecord;
    if (*table == Table::BlockRecord) {
        there = block(name) ? findEntry(to_, *table, name) : NoRecord;
    } else {
        there = entry(*table, name);
    }
    if (there == NoRecord) {
        return false;
    }
    to_.appendTag(made, code, formatHandle(to_.handle(there)));
    return true;
}

void Importer::need(const Record& record, int code, std::size_t i) {
    const std::string_view type = record.type();
    const auto bring = [&](Table table) {
        const std::string name = record.text(i);
        if (!isSpecial(foldCase(name))) {
            entry(table, name);
        }
    };
    if (code == 8) {
        bring(Table::Layer);
    } else if (code == 6) {
        bring(Table::Ltype);
    } else if (code == 7 && namesText(type)) {
        bring(Table::Style);
    } else if (code == 3 && namesDimension(type)) {
        bring(Table::Dimstyle);
    } else if (code == 2 && (type == "INSERT" || type == "DIMENSION")) {
        block(record.text(i));
    } else if (code == 1001) {
        bring(Table::Appid);
    }
}

void Importer::appendBody(RecordId source, RecordId made) {
    const Record record = from_.record(source);
    const std::string_view type = record.type();
    const bool tableEntry = tableOf(type).has_value();
    bool inGroup = false;
    bool head = true;
    for (std::size_t i = 1; i < record.size(); ++i) {
        const int code = record.code(i);
        if (code == 102) {
            inGroup = record.raw(i).find('{') != std::string_view::npos;
            continue;
        }
        if (code == 100 && record.text(i) != "AcDbEntity" && record.text(i) != "AcDbSymbolTableRecord") {
            head = false;
        }
        const bool fixed = code == 5 || code == 105 || code == 999 || code == 67 || code == 410 ||
                           (tableEntry && (code == 2 || code == 100)) || (code == 330) || code == 360;
        if (inGroup || fixed || (head && code == 100 && record.text(i) == "AcDbEntity")) {
            continue;
        }
        if (code == 100 && to_.versionNumber() < 1012) {
            continue;
        }
        need(record, code, i);
        const bool pointer = kindOf(code) == ValueKind::Handle && code != 1005;
        if (pointer) {
            appendPointer(made, code, record.handle(i));
        } else if (code == 97 && type == "HATCH") {
            // The objects that a boundary follows stay behind.
            const bool counts = i + 1 >= record.size() || record.code(i + 1) == 330 || record.integer(i) == 0;
            to_.appendTag(made, 97, counts ? std::int64_t{0} : record.integer(i));
        } else if (code != 1005) {
            to_.appendTag(made, code, record.value(i));
        }
    }
}

RecordId Importer::entity(RecordId id, const BlockTarget& target) {
    const std::string type(from_.type(id));
    if (!canCome(type)) {
        ++left_;
        return NoRecord;
    }
    std::string picture;
    const RecordId made = addEntityTo(to_, target, type, from_.record(id).textOr(8, "0"));
    if (made == NoRecord) {
        return NoRecord;
    }
    to_.removeTag(made, *to_.record(made).find(8));
    appendBody(id, made);
    if (type == "DIMENSION") {
        // Its picture has a number that may be taken here.
        const std::string name = from_.record(id).textOr(2, "");
        const Block* source = findBlock(from_, name);
        picture = anonymousName(to_, 'D');
        if (source != nullptr && addBlock(to_, picture, {})) {
            for (const RecordId part : entitiesOf(from_, *source)) {
                entity(part, {picture});
            }
            to_.put(made, 2, picture);
        }
    }
    RecordId behind = made;
    if (type != "INSERT" && type != "POLYLINE") {
        return made;
    }
    for (RecordId sub = from_.next(id); sub != NoRecord && isSubEntity(from_, sub); sub = from_.next(sub)) {
        const RecordId copy = to_.insertRecord(behind, std::string(from_.type(sub)));
        if (to_.hasHandles()) {
            to_.appendTag(copy, 5, formatHandle(to_.allocateHandle()));
        }
        if (to_.versionNumber() >= 1015) {
            to_.appendTag(copy, 330, formatHandle(to_.handle(made)));
        }
        if (to_.versionNumber() >= 1012) {
            to_.appendTag(copy, 100, "AcDbEntity");
        }
        if (target.block.size() > 1 && foldCase(target.block) == foldCase("*Paper_Space")) {
            to_.appendTag(copy, 67, std::int64_t{1});
        }
        appendBody(sub, copy);
        behind = copy;
        if (from_.type(sub) == "SEQEND") {
            break;
        }
    }
    return made;
}

bool Importer::block(const std::string& name) {
    const std::string folded = foldCase(name);
    const bool dimension = name.starts_with("*D") || name.starts_with("*d");
    if (dimension || std::find(open_.begin(), open_.end(), folded) != open_.end()) {
        return true;
    }
    if (findBlock(to_, name) != nullptr) {
        return true;
    }
    const Block* source = findBlock(from_, name);
    if (source == nullptr) {
        return false;
    }
    const Record begin = from_.record(source->begin);
    if (!addBlock(to_, source->name, begin.pointOr(10, {}))) {
        return false;
    }
    to_.put(findBlock(to_, source->name)->begin, 70, begin.integerOr(70, 0), {2});
    open_.push_back(folded);
    for (const RecordId id : entitiesOf(from_, *source)) {
        entity(id, {source->name});
    }
    open_.pop_back();
    return true;
}

bool Importer::drawingAsBlock(const std::string& name) {
    const Block* model = findBlock(from_, "*Model_Space");
    if (findBlock(to_, name) != nullptr || !addBlock(to_, name, headerPoint(from_, "$INSBASE", {}))) {
        return false;
    }
    std::vector<RecordId> contents;
    if (model != nullptr) {
        contents = entitiesOf(from_, *model);
    } else {
        for (RecordId id = firstEntity(from_); id != NoRecord; id = nextEntity(from_, id, false)) {
            if (from_.record(id).integerOr(67, 0) == 0) {
                contents.push_back(id);
            }
        }
    }
    open_.push_back(foldCase(name));
    for (const RecordId id : contents) {
        entity(id, {name});
    }
    open_.pop_back();
    return true;
}

}  // namespace drafthost
