// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/LinetypeFile.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost {

namespace {

struct Standard {
    std::string_view name;
    std::string_view picture;
    std::vector<double> dashes;
};

const std::vector<Standard>& standards() {
    static const std::vector<Standard> all = {
        {"BORDER", "__ __ . __ __ . __ __ .", {0.5, -0.25, 0.5, -0.25, 0, -0.25}},
        {"CENTER", "____ _ ____ _ ____ _", {1.25, -0.25, 0.25, -0.25}},
        {"DASHDOT", "__ . __ . __ . __ .", {0.5, -0.25, 0, -0.25}},
        {"DASHED", "__ __ __ __ __ __ __", {0.5, -0.25}},
        {"DIVIDE", "____ . . ____ . . ____", {0.5, -0.25, 0, -0.25, 0, -0.25}},
        {"DOT", ". . . . . . . . . .", {0, -0.25}},
        {"HIDDEN", "_ _ _ _ _ _ _ _ _", {0.25, -0.125}},
        {"PHANTOM", "_____ _ _ _____ _ _", {1.25, -0.25, 0.25, -0.25, 0.25, -0.25}},
    };
    return all;
}

std::string_view trimmed(std::string_view text) {
    const auto from = text.find_first_not_of(" \t\r");
    return from == std::string_view::npos ? std::string_view()
                                          : text.substr(from, text.find_last_not_of(" \t\r") - from + 1);
}

void readPattern(std::string_view line, LinetypeDefinition& definition) {
    if (line.find('[') != std::string_view::npos) {
        definition.fault = "it holds texts or shapes, which are not loaded here";
        return;
    }
    bool first = true;
    while (!line.empty()) {
        const std::size_t comma = std::min(line.find(','), line.size());
        const std::string_view part = trimmed(line.substr(0, comma));
        line.remove_prefix(std::min(line.size(), comma + 1));
        if (std::exchange(first, false)) {
            if (foldCase(part) != foldCase("A")) {
                definition.fault = "its pattern does not begin with A";
                return;
            }
        } else if (part.empty() || part.find_first_not_of("+-.0123456789eE") != std::string_view::npos) {
            definition.fault = "\"" + std::string(part) + "\" in its pattern is no number";
            return;
        } else {
            definition.dashes.push_back(parseReal(part));
        }
    }
    constexpr std::size_t Most = 12;
    if (definition.dashes.empty() || definition.dashes.size() > Most) {
        definition.fault =
            "its pattern has " + std::to_string(definition.dashes.size()) + " dashes; 1 to 12 are allowed";
    }
}

}  // namespace

std::vector<LinetypeDefinition> readLinetypes(std::string_view text) {
    std::vector<LinetypeDefinition> result;
    bool wantsPattern = false;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(text.size(), end + 1));
        if (line.empty() || line.starts_with(';')) {
            continue;
        }
        if (line.starts_with('*')) {
            const std::size_t comma = std::min(line.find(','), line.size());
            LinetypeDefinition definition;
            definition.name = trimmed(line.substr(1, comma - 1));
            definition.description =
                comma < line.size() ? trimmed(line.substr(comma + 1)) : std::string_view();
            definition.fault = "it has no pattern";
            result.push_back(std::move(definition));
            wantsPattern = true;
        } else if (std::exchange(wantsPattern, false)) {
            result.back().fault.clear();
            readPattern(line, result.back());
        }
    }
    return result;
}

std::vector<LinetypeDefinition> standardLinetypes(bool metric) {
    constexpr double MillimetresPerInch = 25.4;
    std::vector<LinetypeDefinition> result;
    for (const Standard& standard : standards()) {
        for (const auto& [suffix, words, factor] :
             {std::tuple{"", "", 1.0}, {"2", " (.5x)", 0.5}, {"X2", " (2x)", 2.0}}) {
            LinetypeDefinition definition;
            definition.name = std::string(standard.name) + suffix;
            std::string title(1, standard.name.front());
            for (const char c : standard.name.substr(1)) {
                title += static_cast<char>(c - 'A' + 'a');
            }
            definition.description = title + words + " " + std::string(standard.picture);
            for (const double dash : standard.dashes) {
                definition.dashes.push_back(dash * factor * (metric ? MillimetresPerInch : 1));
            }
            result.push_back(std::move(definition));
        }
    }
    return result;
}

RecordId loadLinetype(Drawing& drawing, const LinetypeDefinition& definition) {
    RecordId id = findEntry(drawing, Table::Ltype, definition.name);
    if (id == NoRecord) {
        id = addEntry(drawing, Table::Ltype, definition.name);
    }
    if (id == NoRecord) {
        return id;
    }
    for (std::size_t i = drawing.record(id).xdata(); i-- > 0;) {
        const int code = drawing.record(id).code(i);
        if (code == 49 || code == 74 || code == 75 || code == 340 || code == 46 || code == 44 || code == 45 ||
            code == 9 || (code == 50 && drawing.type(id) == "LTYPE")) {
            drawing.removeTag(id, i);
        }
    }
    double total = 0;
    for (const double dash : definition.dashes) {
        total += std::fabs(dash);
    }
    drawing.put(id, 3, definition.description, {70, 2});
    drawing.put(id, 72, std::int64_t{65}, {3});
    drawing.put(id, 73, static_cast<std::int64_t>(definition.dashes.size()), {72});
    drawing.put(id, 40, total, {73});
    std::size_t at = *drawing.record(id).find(40) + 1;
    for (const double dash : definition.dashes) {
        drawing.insertTag(id, at++, 49, dash);
        if (drawing.versionNumber() >= 1012) {
            drawing.insertTag(id, at++, 74, std::int64_t{0});
        }
    }
    return id;
}

RecordId provideLinetype(Drawing& drawing, std::string_view name) {
    const RecordId there = findEntry(drawing, Table::Ltype, name);
    if (there != NoRecord) {
        return there;
    }
    for (const LinetypeDefinition& definition :
         standardLinetypes(headerInteger(drawing, "$MEASUREMENT", 0) == 1)) {
        if (foldCase(definition.name) == foldCase(name)) {
            return loadLinetype(drawing, definition);
        }
    }
    return NoRecord;
}

}  // namespace drafthost
