// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/SystemVariables.h"

#include <algorithm>
#include <cmath>

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/HostObserver.h"
#include "drafthost/editor/RegistryFile.h"
#include "drafthost/lisp/Printer.h"
#include "drafthost/lisp/Symbol.h"

namespace drafthost {
namespace {

/// Integers of LISP and of modules end in 16 bits here, as the variables themselves do.
constexpr int IntegerLimit = 32767;

std::optional<VariableValue> headerValue(const Drawing& drawing, const VariableEntry& entry) {
    auto variable = headerVariable(drawing, entry.header);
    if (!variable) {
        return std::nullopt;
    }
    switch (entry.defaultValue.index()) {
        case 0:
            return int(headerInteger(drawing, entry.header, std::get<int>(entry.defaultValue)));
        case 1:
            return headerReal(drawing, entry.header, std::get<double>(entry.defaultValue));
        case 2:
            return headerText(drawing, entry.header, std::get<std::string>(entry.defaultValue));
        case 3:
            return Point2{variable->point.x, variable->point.y};
        default:
            return variable->point;
    }
}

/// The group code a text variable stands under when the header does not have it yet.
int textCode(std::string_view header) {
    if (header == "$CLAYER") {
        return 8;
    }
    if (header == "$TEXTSTYLE") {
        return 7;
    }
    if (header == "$CELTYPE") {
        return 6;
    }
    return header == "$DIMSTYLE" ? 2 : 1;
}

void setHeaderValue(Drawing& drawing, const VariableEntry& entry, const VariableValue& value) {
    switch (value.index()) {
        case 0:
            setHeader(drawing, entry.header, 70, std::int64_t(std::get<int>(value)));
            break;
        case 1:
            setHeader(drawing, entry.header, 40, std::get<double>(value));
            break;
        case 2:
            setHeader(drawing, entry.header, textCode(entry.header), std::get<std::string>(value));
            break;
        case 3: {
            const Point2& point = std::get<Point2>(value);
            setHeaderPoint(drawing, entry.header, {point[0], point[1], 0}, 2);
            break;
        }
        default:
            setHeaderPoint(drawing, entry.header, std::get<Point>(value), 3);
            break;
    }
}

/// The value in the type of the variable; nothing when it does not fit that.
std::optional<VariableValue> convert(const VariableValue& value, const VariableValue& like) {
    if (value.index() == like.index()) {
        return value;
    }
    if (std::holds_alternative<double>(like) && std::holds_alternative<int>(value)) {
        return double(std::get<int>(value));
    }
    if (std::holds_alternative<Point>(like) && std::holds_alternative<Point2>(value)) {
        const Point2& point = std::get<Point2>(value);
        return Point{point[0], point[1], 0};
    }
    if (std::holds_alternative<Point2>(like) && std::holds_alternative<Point>(value)) {
        const Point& point = std::get<Point>(value);
        return Point2{point.x, point.y};
    }
    return std::nullopt;
}

std::string shown(double number) {
    return lisp::formatReal(number);
}

bool inRange(const VariableEntry& entry, const VariableValue& value) {
    double number = 0;
    if (const int* integer = std::get_if<int>(&value)) {
        number = *integer;
        if (std::abs(*integer) > IntegerLimit + (*integer < 0)) {
            return false;
        }
    } else if (const double* real = std::get_if<double>(&value)) {
        number = *real;
        if (!std::isfinite(number)) {
            return false;
        }
    } else {
        return true;
    }
    return (!entry.minimum || number >= *entry.minimum) && (!entry.maximum || number <= *entry.maximum);
}

std::string rangeText(const VariableEntry& entry) {
    const bool integer = std::holds_alternative<int>(entry.defaultValue);
    auto text = [&](double number) { return integer ? std::to_string(long(number)) : shown(number); };
    if (entry.minimum && entry.maximum) {
        return "between " + text(*entry.minimum) + " and " + text(*entry.maximum);
    }
    if (entry.minimum) {
        return "no less than " + text(*entry.minimum);
    }
    if (entry.maximum) {
        return "no more than " + text(*entry.maximum);
    }
    return "between -32768 and 32767";
}

const char* typeText(const VariableValue& like) {
    static constexpr const char* Names[] = {"an integer", "a number", "text", "a point", "a point"};
    return Names[like.index()];
}

/// The form in the registry file.
std::string stored(const VariableValue& value) {
    if (const double* real = std::get_if<double>(&value)) {
        return formatReal(*real);
    }
    return std::holds_alternative<std::string>(value) ? std::get<std::string>(value) : toText(value);
}

std::optional<VariableValue> readText(std::string_view text, const VariableValue& like) {
    switch (like.index()) {
        case 0: {
            auto value = automation::readInteger(text);
            return value ? std::optional<VariableValue>(*value) : std::nullopt;
        }
        case 1: {
            auto value = automation::readNumber(text);
            return value ? std::optional<VariableValue>(*value) : std::nullopt;
        }
        case 2:
            return std::string(text);
        default: {
            auto value = automation::readPoint(text);
            return value ? convert(*value, like) : std::nullopt;
        }
    }
}

}  // namespace

void SystemVariables::add(VariableEntry entry) {
    entries_[entry.name] = std::move(entry);
}

const VariableEntry* SystemVariables::find(std::string_view name) const {
    auto found = entries_.find(lisp::upperCase(name));
    return found == entries_.end() ? nullptr : &found->second;
}

std::vector<std::string> SystemVariables::names() const {
    std::vector<std::string> names;
    for (const auto& [name, entry] : entries_) {
        names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::optional<VariableValue> SystemVariables::get(std::string_view name, Document* document) const {
    const VariableEntry* entry = find(name);
    if (!entry) {
        return std::nullopt;
    }
    if (!document) {
        document = host_.current();
    }
    if (entry->get) {
        return entry->get(host_, document);
    }
    std::optional<VariableValue> value;
    switch (entry->storage) {
        case VariableStorage::Header:
            if (document) {
                value = headerValue(document->drawing(), *entry);
            }
            break;
        case VariableStorage::Document:
            if (document) {
                auto found = document->variables().find(entry->name);
                if (found != document->variables().end()) {
                    value = found->second;
                }
            }
            break;
        case VariableStorage::Profile:
        case VariableStorage::Session:
        case VariableStorage::Computed: {
            auto found = session_.find(entry->name);
            if (found != session_.end()) {
                value = found->second;
            } else if (entry->storage == VariableStorage::Profile) {
                auto text = host_.registry().profileValue(entry->name);
                value = text ? readText(*text, entry->defaultValue) : std::nullopt;
                if (value && !inRange(*entry, *value)) {
                    value.reset();
                }
            }
            break;
        }
    }
    return value.value_or(entry->defaultValue);
}

VariableStatus SystemVariables::set(std::string_view name, const VariableValue& given, std::string& reason,
                                    Document* document) {
    const VariableEntry* entry = find(name);
    if (!entry) {
        reason = "There is no system variable " + lisp::upperCase(name) + ".";
        return VariableStatus::Unknown;
    }
    auto refuse = [&](VariableStatus status, std::string text) {
        reason = std::move(text);
        host_.notify([&](HostObserver& observer) { observer.variableChanged(entry->name, false); });
        return status;
    };
    if (entry->readOnly) {
        return refuse(VariableStatus::ReadOnly, entry->name + " is read-only.");
    }
    auto value = convert(given, entry->defaultValue);
    if (!value) {
        return refuse(VariableStatus::WrongType,
                      entry->name + " takes " + typeText(entry->defaultValue) + ".");
    }
    if (!inRange(*entry, *value)) {
        return refuse(VariableStatus::OutOfRange, entry->name + " must be " + rangeText(*entry) + ".");
    }
    if (!document) {
        document = host_.current();
    }
    std::string why;
    if (entry->set && !entry->set(host_, document, *value, why)) {
        return refuse(VariableStatus::Rejected, why);
    }
    VariableStatus status = store(*entry, *value, document);
    if (status != VariableStatus::Ok) {
        return refuse(status, "No drawing is open to set " + entry->name + " in.");
    }
    host_.notify([&](HostObserver& observer) { observer.variableChanged(entry->name, true); });
    return VariableStatus::Ok;
}

VariableStatus SystemVariables::store(const VariableEntry& entry, const VariableValue& value,
                                      Document* document) {
    switch (entry.storage) {
        case VariableStorage::Computed:
            break;
        case VariableStorage::Session:
            session_[entry.name] = value;
            break;
        case VariableStorage::Profile:
            session_[entry.name] = value;
            // Without a window nobody sits there to set his own profile: what a script sets ends with it.
            if (host_.hasFrame()) {
                host_.registry().setProfileValue(entry.name, stored(value));
            }
            break;
        case VariableStorage::Document:
            if (!document) {
                return VariableStatus::Rejected;
            }
            document->variables()[entry.name] = value;
            break;
        case VariableStorage::Header:
            if (!document) {
                return VariableStatus::Rejected;
            }
            setHeaderValue(document->drawing(), entry, value);
            document->setModified(ModifiedVariables);
            return VariableStatus::Ok;
    }
    if (entry.modifiesDrawing && document) {
        document->setModified(ModifiedVariables);
    }
    return VariableStatus::Ok;
}

VariableStatus SystemVariables::setFromText(std::string_view name, std::string_view text, std::string& reason,
                                            Document* document) {
    const VariableEntry* entry = find(name);
    if (!entry) {
        reason = "There is no system variable " + lisp::upperCase(name) + ".";
        return VariableStatus::Unknown;
    }
    auto value = readText(text, entry->defaultValue);
    if (!value) {
        reason =
            entry->name + " takes " + typeText(entry->defaultValue) + ", not \"" + std::string(text) + "\".";
        return entry->readOnly ? VariableStatus::ReadOnly : VariableStatus::WrongType;
    }
    return set(name, *value, reason, document);
}

int SystemVariables::integer(std::string_view name, int fallback) const {
    auto value = get(name);
    const int* integer = value ? std::get_if<int>(&*value) : nullptr;
    return integer ? *integer : fallback;
}

std::string SystemVariables::string(std::string_view name, std::string_view fallback) const {
    auto value = get(name);
    const std::string* text = value ? std::get_if<std::string>(&*value) : nullptr;
    return text ? *text : std::string(fallback);
}

std::string toText(const VariableValue& value) {
    switch (value.index()) {
        case 0:
            return std::to_string(std::get<int>(value));
        case 1:
            return shown(std::get<double>(value));
        case 2:
            return "\"" + std::get<std::string>(value) + "\"";
        case 3: {
            const Point2& point = std::get<Point2>(value);
            return shown(point[0]) + "," + shown(point[1]);
        }
        default: {
            const Point& point = std::get<Point>(value);
            return shown(point.x) + "," + shown(point.y) + "," + shown(point.z);
        }
    }
}

}  // namespace drafthost
