// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Usage.h"

#include "drafthost/drawing/Header.h"

namespace drafthost {

namespace {

/// Pointers that keep what they point at. Owners, reactors and entries of dictionaries do not.
bool isHardPointer(int code) {
    return (code >= 340 && code <= 349) || (code >= 390 && code <= 399) || code == 480 || code == 481;
}

bool isDimension(std::string_view type) {
    return type == "DIMENSION" || type == "ARC_DIMENSION" || type == "LARGE_RADIAL_DIMENSION" ||
           type == "LEADER" || type == "TOLERANCE";
}

bool isText(std::string_view type) {
    return type == "TEXT" || type == "ATTRIB" || type == "ATTDEF" || type == "MTEXT" ||
           type == "ACAD_TABLE" || type == "ARCALIGNEDTEXT" || type == "RTEXT";
}

}  // namespace

Usage::Usage(const Drawing& drawing) {
    bool entities = false;
    std::string_view section;
    std::string held;
    for (RecordId id = drawing.first(); id != NoRecord; id = drawing.next(id)) {
        const Record record = drawing.record(id);
        const std::string_view type = record.type();
        if (type == "SECTION") {
            held = record.textOr(2, "");
            section = held;
            entities = section == "ENTITIES" || section == "BLOCKS";
            continue;
        }
        if (section == "CLASSES") {
            continue;
        }
        for (std::size_t i = record.xdata(); i < record.size(); ++i) {
            if (record.code(i) == 1001) {
                applications.insert(foldCase(record.text(i)));
            } else if (record.code(i) == 1005) {
                // Overrides of a dimension name arrows and styles so.
                handles.insert(record.handle(i));
            } else if (record.code(i) == 1003) {
                layers.insert(foldCase(record.text(i)));
            }
        }
        addHandles(record, type);
        if (entities) {
            addEntity(record, type);
        } else {
            addRecord(drawing, id);
        }
    }
    addHeader(drawing);
}

void Usage::addHandles(const Record& record, std::string_view type) {
    // A group keeps nothing but entities, and a table of draw orders likewise.
    if (type == "GROUP" || type == "SORTENTSTABLE") {
        return;
    }
    const bool viewport = type == "VIEWPORT";
    for (std::size_t i = 1; i < record.xdata(); ++i) {
        const int code = record.code(i);
        // Of a viewport these are layers that are frozen in it.
        if (isHardPointer(code) || (viewport && code == 331)) {
            handles.insert(record.handle(i));
        }
    }
}

void Usage::addEntity(const Record& record, std::string_view type) {
    const bool insert = type == "INSERT" || type == "ACAD_TABLE" || isDimension(type);
    for (std::size_t i = 1; i < record.xdata(); ++i) {
        switch (record.code(i)) {
            case 8:
                layers.insert(foldCase(record.text(i)));
                break;
            case 6:
                linetypes.insert(foldCase(record.text(i)));
                break;
            case 7:
                if (isText(type) || isDimension(type)) {
                    styles.insert(foldCase(record.text(i)));
                }
                break;
            case 2:
                if (insert) {
                    blocks.insert(foldCase(record.text(i)));
                } else if (type == "MLINE") {
                    mlineStyles.insert(foldCase(record.text(i)));
                }
                break;
            case 3:
                if (isDimension(type)) {
                    dimstyles.insert(foldCase(record.text(i)));
                }
                break;
            default:
                break;
        }
    }
    // What leaves its style out has the standard one.
    if (isText(type) && !record.find(7)) {
        styles.insert(foldCase("Standard"));
    }
}

void Usage::addRecord(const Drawing& drawing, RecordId id) {
    const Record record = drawing.record(id);
    const std::string_view type = record.type();
    if (type == "LAYER") {
        linetypes.insert(foldCase(record.textOr(6, "")));
    } else if (type == "DIMSTYLE") {
        // Before 2000 arrows are named.
        for (const int code : {5, 6, 7}) {
            for (std::size_t i = 1; drawing.versionNumber() < 1015 && i < record.xdata(); ++i) {
                if (record.code(i) == code) {
                    blocks.insert(foldCase(record.text(i)));
                }
            }
        }
        for (const int code : {342, 343, 344, 341}) {
            if (const auto i = record.find(code)) {
                handles.insert(record.handle(*i));
            }
        }
    } else if (type == "MLINESTYLE") {
        for (std::size_t i = 1; i < record.xdata(); ++i) {
            if (record.code(i) == 6) {
                linetypes.insert(foldCase(record.text(i)));
            }
        }
    } else if (type == "TABLESTYLE" || type == "CELLSTYLEMAP") {
        for (std::size_t i = 1; i < record.xdata(); ++i) {
            if (record.code(i) == 7) {
                styles.insert(foldCase(record.text(i)));
            }
        }
    }
}

void Usage::addHeader(const Drawing& drawing) {
    const auto text = [&](const char* name) { return foldCase(headerText(drawing, name, "")); };
    layers.insert(text("$CLAYER"));
    linetypes.insert(text("$CELTYPE"));
    styles.insert(text("$TEXTSTYLE"));
    styles.insert(text("$DIMTXSTY"));
    dimstyles.insert(text("$DIMSTYLE"));
    mlineStyles.insert(text("$CMLSTYLE"));
    for (const char* name : {"$DIMBLK", "$DIMBLK1", "$DIMBLK2", "$DIMLDRBLK"}) {
        const std::string block = text(name);
        blocks.insert(block);
        if (!block.empty() && block.front() != '_') {
            blocks.insert("_" + block);
        }
    }
    for (const char* name : {"$DIMLTYPE", "$DIMLTEX1", "$DIMLTEX2"}) {
        linetypes.insert(text(name));
    }
    for (const char* name : {"$CMATERIAL"}) {
        if (const auto found = headerVariable(drawing, name)) {
            if (const auto* handle = std::get_if<std::string>(&found->value)) {
                handles.insert(parseHandle(*handle));
            }
        }
    }
}

}  // namespace drafthost
