// SPDX-License-Identifier: GPL-3.0-or-later
#include <charconv>
#include <cstdlib>
#include <numbers>

#include "drafthost/commands/VariableActions.h"
#include "drafthost/commands/VariableRows.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/View.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/SystemVariables.h"

namespace drafthost::commands {

namespace {

constexpr double Degree = std::numbers::pi / 180.0;

std::string headerName(const VariableRow& row) {
    return "$" + std::string(row.name);
}

short headerCode(const VariableRow& row) {
    if (row.code != 0) {
        return row.code;
    }
    switch (row.kind) {
        case RowKind::Integer:
            return 70;
        case RowKind::Real:
            return 40;
        case RowKind::String:
            return 1;
        default:
            return 10;
    }
}

/// The header variable that stands for the row in the space that is current.
std::optional<HeaderVariable> lookUp(const VariableRow& row, const Drawing& drawing) {
    if (!row.paperName.empty() && !modelSpaceIsCurrent(drawing)) {
        if (auto found = headerVariable(drawing, row.paperName)) {
            return found;
        }
    }
    return headerVariable(drawing, headerName(row));
}

std::string colorWord(std::int64_t index) {
    return index == 256 ? "BYLAYER" : index == 0 ? "BYBLOCK" : std::to_string(index);
}

std::int64_t colorIndex(const std::string& word) {
    return word == "BYLAYER" ? 256 : word == "BYBLOCK" ? 0 : std::stoll(word);
}

double number(const Value& value) {
    if (auto real = std::get_if<double>(&value)) {
        return *real;
    }
    if (auto integer = std::get_if<std::int64_t>(&value)) {
        return static_cast<double>(*integer);
    }
    return parseReal(std::get<std::string>(value));
}

VariableValue fromHeader(const VariableRow& row, const HeaderVariable& variable) {
    // Angles stand in degrees in the file and are radians for everybody else.
    double unit = headerCode(row) == 50 ? Degree : 1.0;
    switch (row.kind) {
        case RowKind::Integer:
            return static_cast<int>(number(variable.value));
        case RowKind::Real:
            return number(variable.value) * unit;
        case RowKind::String:
            if (auto text = std::get_if<std::string>(&variable.value)) {
                return *text;
            }
            return colorWord(static_cast<std::int64_t>(number(variable.value)));
        case RowKind::Point2:
            return Point2{variable.point.x, variable.point.y};
        default:
            return variable.point;
    }
}

Value toHeader(const VariableRow& row, const VariableValue& value, int code) {
    if (auto integer = std::get_if<int>(&value)) {
        return std::int64_t{*integer};
    }
    if (auto real = std::get_if<double>(&value)) {
        return code == 50 ? *real / Degree : *real;
    }
    const std::string& text = std::get<std::string>(value);
    return row.name == "CECOLOR" ? Value(colorIndex(text)) : Value(text);
}

/// Where logs go unless the user says otherwise: the folder that the desktop keeps for such files.
std::string logFolder() {
    const char* state = std::getenv("XDG_STATE_HOME");
    if (state && *state == '/') {
        return std::string(state) + "/drafthost/";
    }
    const char* home = std::getenv("HOME");
    return home && *home == '/' ? std::string(home) + "/.local/state/drafthost/" : std::string("/tmp/");
}

VariableEntry entryOf(const VariableRow& row) {
    VariableEntry entry;
    entry.name = row.name;
    entry.readOnly = row.readOnly;
    entry.defaultValue = rowValue(row, row.initial);
    if (row.name == "LOGFILEPATH") {
        entry.defaultValue = logFolder();
    } else if (row.name == "SAVEFILEPATH") {
        entry.defaultValue = std::string("/tmp/");
    }
    if (row.low <= row.high) {
        entry.minimum = row.low;
        if (row.high < 1e99) {
            entry.maximum = row.high;
        }
    }
    switch (row.home) {
        case RowHome::Profile:
            entry.storage = VariableStorage::Profile;
            break;
        case RowHome::Session:
            entry.storage = VariableStorage::Session;
            break;
        case RowHome::Document:
            entry.storage = VariableStorage::Document;
            break;
        case RowHome::Header:
            // The table says under which code and since which version, so reading and writing is done here.
            entry.storage = VariableStorage::Computed;
            entry.header = headerName(row);
            break;
        case RowHome::Computed:
            entry.storage = VariableStorage::Computed;
            break;
    }
    return entry;
}

void addHeaderAction(VariableEntry& entry, const VariableRow& row) {
    entry.get = [&row](Host&, Document* document) { return headerValue(row, document); };
    entry.set = [&row, check = checkOf(row.name)](Host& host, Document* document, const VariableValue& value,
                                                  std::string& reason) {
        if (!document) {
            reason = std::string(row.name) + " needs an open drawing.";
            return false;
        }
        VariableValue checked = value;
        if (check && !check(host, document, checked, reason)) {
            return false;
        }
        storeHeaderValue(row, *document, checked);
        return true;
    };
}

}  // namespace

VariableValue rowValue(const VariableRow& row, std::string_view text) {
    std::array<double, 3> numbers{};
    if (row.kind != RowKind::String) {
        for (double& value : numbers) {
            size_t comma = std::min(text.find(','), text.size());
            std::from_chars(text.data(), text.data() + comma, value);
            text.remove_prefix(std::min(text.size(), comma + 1));
        }
    }
    switch (row.kind) {
        case RowKind::Integer:
            return static_cast<int>(numbers[0]);
        case RowKind::Real:
            return numbers[0];
        case RowKind::String:
            return std::string(text);
        case RowKind::Point2:
            return Point2{numbers[0], numbers[1]};
        default:
            return Point{numbers[0], numbers[1], numbers[2]};
    }
}

VariableValue headerValue(const VariableRow& row, Document* document) {
    if (document) {
        if (auto found = lookUp(row, document->drawing())) {
            return fromHeader(row, *found);
        }
        auto kept = document->variables().find(std::string(row.name));
        if (kept != document->variables().end()) {
            return kept->second;
        }
    }
    return rowValue(row, row.initial);
}

void storeHeaderValue(const VariableRow& row, Document& document, const VariableValue& value) {
    Drawing& drawing = document.drawing();
    auto found = lookUp(row, drawing);
    if (found ? fromHeader(row, *found) == value : headerValue(row, &document) == value) {
        return;
    }
    if (!found && drawing.versionNumber() < row.since) {
        document.variables()[std::string(row.name)] = value;
        return;
    }
    std::string name = found ? found->name : headerName(row);
    int code = found ? found->code : headerCode(row);
    if (auto flat = std::get_if<Point2>(&value)) {
        setHeaderPoint(drawing, name, {(*flat)[0], (*flat)[1], 0}, 2);
    } else if (auto point = std::get_if<Point>(&value)) {
        setHeaderPoint(drawing, name, *point, found ? found->reals : 3);
    } else {
        setHeader(drawing, name, code, toHeader(row, value, code));
    }
    document.setModified(ModifiedVariables);
}

}  // namespace drafthost::commands

namespace drafthost {

void registerSystemVariables(SystemVariables& variables) {
    using namespace commands;
    for (const VariableRow& row : variableRows()) {
        VariableEntry entry = entryOf(row);
        if (row.home == RowHome::Header) {
            addHeaderAction(entry, row);
        } else {
            addComputedAction(entry, row);
            if (VariableCheck check = checkOf(row.name); check && !entry.set) {
                entry.set = [check](Host& host, Document* document, const VariableValue& value,
                                    std::string& reason) {
                    VariableValue checked = value;
                    return check(host, document, checked, reason);
                };
            }
        }
        variables.add(std::move(entry));
    }
}

}  // namespace drafthost
