// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/HostEvent.h"

#include <nlohmann/json.hpp>
#include <QByteArray>
#include <string_view>
#include <unordered_map>

namespace {

using Kind = HostEvent::Kind;

std::optional<Kind> kindOf(const std::string& name) {
    static const std::unordered_map<std::string_view, Kind> kinds = {
        {"text", Kind::Talk},          {"prompt", Kind::Prompt},   {"run-started", Kind::RunStarted},
        {"file", Kind::File},          {"status", Kind::Status},   {"alarm", Kind::Alarm},
        {"run-ended", Kind::RunEnded}, {"message", Kind::Message}, {"refused", Kind::Refused},
        {"unsaved", Kind::Unsaved},    {"saved", Kind::Saved},     {"log", Kind::Log}};
    const auto found = kinds.find(name);
    return found == kinds.end() ? std::nullopt : std::optional(found->second);
}

std::string textOf(const nlohmann::json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

std::size_t countOf(const nlohmann::json& object, const char* name, std::size_t standard) {
    const auto found = object.find(name);
    return found != object.end() && found->is_number_unsigned() ? found->get<std::size_t>() : standard;
}

std::string trim(const std::string& text) {
    const std::size_t from = text.find_first_not_of(" \t\r");
    return from == std::string::npos ? std::string()
                                     : text.substr(from, text.find_last_not_of(" \t\r") - from + 1);
}

}  // namespace

std::optional<HostEvent> ReadEvent(const std::string& line) {
    const nlohmann::json object = nlohmann::json::parse(line, nullptr, false);
    const auto kind = object.is_object() ? kindOf(textOf(object, "event")) : std::nullopt;
    if (!kind) {
        return std::nullopt;
    }
    HostEvent event;
    event.What = *kind;
    const bool isTalk = kind == Kind::Talk || kind == Kind::Prompt || kind == Kind::Message ||
                        kind == Kind::Refused || kind == Kind::Unsaved;
    event.Text = isTalk ? trim(textOf(object, "text")) : textOf(object, "path");
    event.Entry = countOf(object, "entry", 0);
    event.Line = countOf(object, "line", 0);
    if (*kind == Kind::Refused) {
        event.Script = textOf(object, "script");
    }
    if (*kind == Kind::RunStarted) {
        event.Line = countOf(object, "head", 2);
        event.Lines = countOf(object, "lines", 0);
        for (const nlohmann::json& script : object.value("scripts", nlohmann::json::array())) {
            if (script.is_string()) {
                event.Scripts.push_back(script.get<std::string>());
            }
        }
    }
    event.Reason = textOf(object, "reason");
    if (*kind == Kind::Status && !StatusFromWord(textOf(object, "status"), &event.Status)) {
        return std::nullopt;
    }
    if (*kind == Kind::Log) {
        const std::string rest = textOf(object, "rest");
        event.Rest = {event.Text, countOf(object, "written", 0),
                      QByteArray::fromBase64(QByteArray::fromStdString(rest)).toStdString(),
                      object.value("whole", nlohmann::json(false)) == true, textOf(object, "cause")};
    }
    event.Changed = object.value("changed", nlohmann::json(false)) == true;
    return event;
}
