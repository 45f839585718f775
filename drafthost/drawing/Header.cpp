// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Header.h"

#include "drafthost/drawing/Structure.h"

namespace drafthost {

namespace {

bool sameName(std::string_view raw, std::string_view name) {
    raw = raw.substr(0, raw.find_last_not_of(" \t") + 1);
    if (raw.size() != name.size()) {
        return false;
    }
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; };
        if (upper(raw[i]) != upper(name[i])) {
            return false;
        }
    }
    return true;
}

// Index of the value behind the name.
std::optional<std::size_t> findVariable(const Record& header, std::string_view name) {
    for (std::size_t i = 0; i + 1 < header.size(); ++i) {
        if (header.code(i) != 9 || !sameName(header.raw(i), name)) {
            continue;
        }
        std::size_t value = i + 1;
        while (value < header.size() && header.code(value) == 999) {
            ++value;
        }
        if (value < header.size() && header.code(value) != 9) {
            return value;
        }
    }
    return std::nullopt;
}

HeaderVariable read(const Record& header, std::string name, std::size_t tag) {
    HeaderVariable variable;
    variable.name = std::move(name);
    variable.code = header.code(tag);
    variable.value = header.value(tag);
    if (variable.code >= 10 && variable.code < 20) {
        variable.point = header.point(tag);
        while (variable.reals < 3 && tag + variable.reals < header.size() &&
               header.code(tag + variable.reals) == variable.code + 10 * variable.reals) {
            ++variable.reals;
        }
    }
    return variable;
}

// The HEADER record; a drawing without one gets its section in front of all others.
RecordId headerForWriting(Drawing& drawing) {
    const RecordId header = drawing.structure().header;
    if (header != NoRecord) {
        return header;
    }
    // A section can only be added behind a record, so the old first SECTION becomes the header's and its own
    // name moves to a new one behind it.
    const RecordId front =
        drawing.type(drawing.first()).empty() ? drawing.next(drawing.first()) : drawing.first();
    if (drawing.type(front) == "EOF") {
        return NoRecord;
    }
    const RecordId end = drawing.insertRecord(front, "ENDSEC");
    const RecordId moved = drawing.insertRecord(end, "SECTION");
    while (drawing.record(front).size() > 1) {
        const Record record = drawing.record(front);
        const int code = record.code(1);
        const Value value = record.value(1);
        drawing.appendTag(moved, code, value);
        drawing.removeTag(front, 1);
    }
    drawing.appendTag(front, 2, "HEADER");
    return front;
}

}  // namespace

std::optional<HeaderVariable> headerVariable(const Drawing& drawing, std::string_view name) {
    const RecordId id = drawing.structure().header;
    if (id == NoRecord) {
        return std::nullopt;
    }
    const Record header = drawing.record(id);
    const auto tag = findVariable(header, name);
    if (!tag) {
        return std::nullopt;
    }
    return read(header, std::string(name), *tag);
}

std::vector<HeaderVariable> headerVariables(const Drawing& drawing) {
    std::vector<HeaderVariable> variables;
    const RecordId id = drawing.structure().header;
    if (id == NoRecord) {
        return variables;
    }
    const Record header = drawing.record(id);
    for (std::size_t i = 0; i + 1 < header.size(); ++i) {
        if (header.code(i) == 9 && header.code(i + 1) != 9) {
            variables.push_back(read(header, header.text(i), i + 1));
        }
    }
    return variables;
}

std::string headerText(const Drawing& drawing, std::string_view name, std::string_view otherwise) {
    const auto variable = headerVariable(drawing, name);
    const auto* text = variable ? std::get_if<std::string>(&variable->value) : nullptr;
    return text != nullptr ? *text : std::string(otherwise);
}

double headerReal(const Drawing& drawing, std::string_view name, double otherwise) {
    const auto variable = headerVariable(drawing, name);
    if (!variable) {
        return otherwise;
    }
    if (const auto* whole = std::get_if<std::int64_t>(&variable->value)) {
        return static_cast<double>(*whole);
    }
    const auto* real = std::get_if<double>(&variable->value);
    return real != nullptr ? *real : otherwise;
}

std::int64_t headerInteger(const Drawing& drawing, std::string_view name, std::int64_t otherwise) {
    const auto variable = headerVariable(drawing, name);
    const auto* whole = variable ? std::get_if<std::int64_t>(&variable->value) : nullptr;
    return whole != nullptr ? *whole : otherwise;
}

Point headerPoint(const Drawing& drawing, std::string_view name, const Point& otherwise) {
    const auto variable = headerVariable(drawing, name);
    return variable && variable->code >= 10 && variable->code < 20 ? variable->point : otherwise;
}

void setHeader(Drawing& drawing, std::string_view name, int code, const Value& value) {
    const RecordId id = headerForWriting(drawing);
    if (id == NoRecord) {
        return;
    }
    if (const auto tag = findVariable(drawing.record(id), name)) {
        drawing.setTag(id, *tag, value);
        return;
    }
    drawing.appendTag(id, 9, std::string(name));
    drawing.appendTag(id, code, value);
}

void setHeaderPoint(Drawing& drawing, std::string_view name, const Point& point, int reals) {
    const double values[] = {point.x, point.y, point.z};
    setHeader(drawing, name, 10, point.x);
    const RecordId id = drawing.structure().header;
    if (id == NoRecord) {
        return;
    }
    const auto tag = findVariable(drawing.record(id), name);
    for (int part = 1; tag && part < reals; ++part) {
        const Record header = drawing.record(id);
        const std::size_t place = *tag + static_cast<std::size_t>(part);
        if (place < header.size() && header.code(place) == 10 + 10 * part) {
            drawing.setTag(id, place, values[part]);
        } else {
            drawing.insertTag(id, place, 10 + 10 * part, values[part]);
        }
    }
}

}  // namespace drafthost
