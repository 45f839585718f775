// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/HostEvent.h"

#include <nlohmann/json.hpp>
#include <QByteArray>
#include <string_view>
#include <unordered_map>

namespace {

using Kind = HostEvent::Kind;

std::optional<Kind> KindOf(const std::string& name) {
    static const std::unordered_map<std::string_view, Kind> kinds = {
        {"text", Kind::Talk},          {"prompt", Kind::Prompt},   {"run-started", Kind::RunStarted},
        {"file", Kind::File},          {"status", Kind::Status},   {"alarm", Kind::Alarm},
        {"run-ended", Kind::RunEnded}, {"message", Kind::Message}, {"refused", Kind::Refused},
        {"unsaved", Kind::Unsaved},    {"saved", Kind::Saved},     {"log", Kind::Log}};
    const auto found = kinds.find(name);
    return found == kinds.end() ? std::nullopt : std::optional(found->second);
}

std::string TextOf(const nlohmann::json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

std::size_t CountOf(const nlohmann::json& object, const char* name, std::size_t standard) {
    const auto found = object.find(name);
    return found != object.end() && found->is_number_unsigned() ? found->get<std::size_t>() : standard;
}

std::string Trim(const std::string& text) {
    const std::size_t from = text.find_first_not_of(" \t\r");
    return from == std::string::npos ? std::string()
                                     : text.substr(from, text.find_last_not_of(" \t\r") - from + 1);
}

}  // namespace

std::optional<HostEvent> ReadEvent(const std::string& line) {
    const nlohmann::json object = nlohmann::json::parse(line, nullptr, false);
    const auto kind = object.is_object() ? KindOf(TextOf(object, "event")) : std::nullopt;
    if (!kind) {
        return std::nullopt;
    }
    HostEvent event;
    event.What = *kind;
    const bool isTalk = kind == Kind::Talk || kind == Kind::Prompt || kind == Kind::Message ||
                        kind == Kind::Refused || kind == Kind::Unsaved;
    event.Text = isTalk ? Trim(TextOf(object, "text")) : TextOf(object, "path");
    event.Entry = CountOf(object, "entry", 0);
    event.Line = CountOf(object, "line", 0);
    if (*kind == Kind::Refused) {
        event.Script = TextOf(object, "script");
    }
    if (*kind == Kind::RunStarted) {
        event.Line = CountOf(object, "head", 2);
        event.Lines = CountOf(object, "lines", 0);
        for (const nlohmann::json& script : object.value("scripts", nlohmann::json::array())) {
            if (script.is_string()) {
                event.Scripts.push_back(script.get<std::string>());
            }
        }
    }
    event.Reason = TextOf(object, "reason");
    if (*kind == Kind::Status && !StatusFromWord(TextOf(object, "status"), &event.Status)) {
        return std::nullopt;
    }
    if (*kind == Kind::Log) {
        const std::string rest = TextOf(object, "rest");
        event.Rest = {event.Text, CountOf(object, "written", 0),
                      QByteArray::fromBase64(QByteArray::fromStdString(rest)).toStdString(),
                      object.value("whole", nlohmann::json(false)) == true, TextOf(object, "cause")};
    }
    event.Changed = object.value("changed", nlohmann::json(false)) == true;
    return event;
}
