// SPDX-License-Identifier: GPL-3.0-or-later
#include <filesystem>

#include "drafthost/commands/ColorNames.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/VariableActions.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

/// Replaces a name by the way the table writes it; false when there is none of that name.
bool takeEntry(Document& document, Table table, std::string_view what, std::string& name,
               std::string& reason) {
    const Drawing& drawing = document.drawing();
    RecordId entry = findEntry(drawing, table, name);
    if (entry == NoRecord) {
        reason = "There is no " + std::string(what) + " " + inQuotes(name) + " in the drawing.";
        return false;
    }
    name = entryName(drawing, entry);
    return true;
}

bool checkLayer(Host&, Document* document, VariableValue& value, std::string& reason) {
    std::string& name = std::get<std::string>(value);
    const Drawing& drawing = document->drawing();
    RecordId entry = findEntry(drawing, Table::Layer, name);
    // Layer 0 is always there, also where an old drawing does not list it.
    if (entry == NoRecord && name == "0") {
        return true;
    }
    if (!takeEntry(*document, Table::Layer, "layer", name, reason)) {
        return false;
    }
    if (drawing.record(entry).integerOr(70, 0) & 1) {
        reason = "Layer " + inQuotes(name) + " is frozen and cannot be current.";
        return false;
    }
    if (name.find('|') != std::string::npos) {
        reason = "Layer " + inQuotes(name) + " belongs to an external reference and cannot be current.";
        return false;
    }
    return true;
}

bool checkLinetype(Host&, Document* document, VariableValue& value, std::string& reason) {
    std::string& name = std::get<std::string>(value);
    std::string folded = foldCase(name);
    for (const char* always : {"ByLayer", "ByBlock", "Continuous"}) {
        if (folded == foldCase(always)) {
            name = always;
            return true;
        }
    }
    return takeEntry(*document, Table::Ltype, "linetype", name, reason);
}

bool checkTextStyle(Host&, Document* document, VariableValue& value, std::string& reason) {
    return takeEntry(*document, Table::Style, "text style", std::get<std::string>(value), reason);
}

bool checkColor(Host&, Document*, VariableValue& value, std::string& reason) {
    std::string& word = std::get<std::string>(value);
    std::string folded = foldCase(word);
    if (folded == foldCase("BYLAYER") || folded == foldCase("256")) {
        word = "BYLAYER";
    } else if (folded == foldCase("BYBLOCK") || folded == foldCase("0")) {
        word = "BYBLOCK";
    } else if (auto index = parseColorIndex(word)) {
        word = std::to_string(*index);
    } else {
        reason = "CECOLOR is ByLayer, ByBlock, a number from 1 to 255 or the name of a colour.";
        return false;
    }
    return true;
}

bool checkLineweight(Host&, Document*, VariableValue& value, std::string& reason) {
    if (isLineweight(std::get<int>(value))) {
        return true;
    }
    reason = std::to_string(std::get<int>(value)) + " is not a lineweight.";
    return false;
}

bool checkSdi(Host& host, Document*, VariableValue& value, std::string& reason) {
    int mode = std::get<int>(value);
    if (mode > 1) {
        reason = "SDI can be set to 0 or 1; 2 and 3 are set by modules.";
        return false;
    }
    if (mode == 1 && host.documents().size() > 1) {
        reason = "SDI cannot be 1 while more than one drawing is open.";
        return false;
    }
    return true;
}

/// A folder that cannot be made now is tried again with each line of the log, which says so.
bool switchLog(Host& host, Document*, VariableValue& value, std::string&) {
    for (Document* document : host.documents()) {
        if (std::get<int>(value) == 1) {
            document->startLog();
        } else {
            document->stopLog();
        }
    }
    return true;
}

bool checkFolder(Host&, Document*, VariableValue& value, std::string& reason) {
    const std::string& folder = std::get<std::string>(value);
    std::error_code error;
    if (folder.empty() || std::filesystem::is_directory(folder, error)) {
        return true;
    }
    reason = "There is no folder " + inQuotes(folder) + ".";
    return false;
}

bool forgetViews(Host&, Document* document, VariableValue&, std::string&) {
    // The stack holds views of one space only.
    document->previousViews().clear();
    return true;
}

struct NamedCheck {
    std::string_view name;
    VariableCheck check;
};

constexpr NamedCheck Checks[] = {
    {"CECOLOR", checkColor},       {"CELTYPE", checkLinetype},  {"CELWEIGHT", checkLineweight},
    {"CLAYER", checkLayer},        {"DIMLWD", checkLineweight}, {"DIMLWE", checkLineweight},
    {"DIMTXSTY", checkTextStyle},  {"LOGFILEMODE", switchLog},  {"LOGFILEPATH", checkFolder},
    {"SAVEFILEPATH", checkFolder}, {"SDI", checkSdi},           {"TEXTSTYLE", checkTextStyle},
    {"TILEMODE", forgetViews},
};

}  // namespace

VariableCheck checkOf(std::string_view name) {
    for (const NamedCheck& entry : Checks) {
        if (entry.name == name) {
            return entry.check;
        }
    }
    return nullptr;
}

}  // namespace drafthost::commands
