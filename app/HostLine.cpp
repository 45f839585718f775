#include "app/HostLine.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace {

constexpr std::string_view kPrefix = "Tarnel: ";
constexpr std::string_view kPrompt = "Command:";

std::string_view Trim(std::string_view text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\3'; };
    while (!text.empty() && blank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && blank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

bool TakePrefix(std::string_view* text, std::string_view prefix) {
    if (!text->starts_with(prefix)) {
        return false;
    }
    text->remove_prefix(prefix.size());
    return true;
}

/// "3 of 50: PATH" behind "file ".
bool TakePosition(std::string_view* text) {
    std::string_view rest = *text;
    const auto number = [&rest] {
        const auto end = std::find_if(rest.begin(), rest.end(), [](char c) { return c < '0' || c > '9'; });
        const auto length = static_cast<std::size_t>(end - rest.begin());
        rest.remove_prefix(length);
        return length > 0;
    };
    if (!number() || !TakePrefix(&rest, " of ") || !number() || !TakePrefix(&rest, ": ")) {
        return false;
    }
    *text = rest;
    return true;
}

HostLine ParseModuleLine(std::string_view text) {
    using Kind = HostLine::Kind;
    if (text.starts_with("run started")) {
        return {Kind::RunStarted, {}, {}};
    }
    if (text == "run ended") {
        return {Kind::RunEnded, {}, {}};
    }
    std::string_view rest = text;
    if (TakePrefix(&rest, "file ") && TakePosition(&rest)) {
        return {Kind::File, std::string(rest), {}};
    }
    rest = text;
    if (TakePrefix(&rest, "alarm: ")) {
        return {Kind::Alarm, std::string(rest), {}};
    }
    if (TakePrefix(&rest, "status ")) {
        const std::size_t end = rest.find(": ");
        DrawingStatus status;
        if (end != std::string_view::npos && StatusFromWord(std::string(rest.substr(0, end)), &status)) {
            return {Kind::Status, std::string(rest.substr(end + 2)), status};
        }
    }
    return {Kind::Message, std::string(text), {}};
}

/// Values of LISP, answered prompts ("Scale <1>: 2"), and consequences of what was told before.
bool IsNoise(std::string_view text) {
    constexpr std::array<std::string_view, 7> said = {"",
                                                      "nil",
                                                      "T",
                                                      ">>",
                                                      "*Cancel*",
                                                      "; error: Function cancelled",
                                                      "The script is suspended; RESUME goes on with it."};
    if (std::find(said.begin(), said.end(), text) != said.end()) {
        return true;
    }
    const bool number = text.find_first_not_of("0123456789+-.eE") == std::string_view::npos;
    const bool string = text.size() > 1 && text.front() == '"' && text.back() == '"';
    const bool answered =
        text.find("]: ") != std::string_view::npos || text.find(">: ") != std::string_view::npos;
    return number || string || answered;
}

}  // namespace

HostLine HostListener::Read(std::string_view line) {
    std::string_view text = line;
    if (TakePrefix(&text, kPrefix)) {
        depth = 0;
        inString = false;
        return ParseModuleLine(text);
    }
    if (depth > 0) {
        FollowLisp(text);
        return {};
    }
    text = Trim(text);
    if (TakePrefix(&text, kPrompt)) {
        text = Trim(text);
        if (text.starts_with('(')) {
            FollowLisp(text);
        }
        return {HostLine::Kind::Noise, {}, {}};
    }
    if (IsNoise(text)) {
        return {};
    }
    return {text.ends_with(':') ? HostLine::Kind::Prompt : HostLine::Kind::Talk, std::string(text), {}};
}

void HostListener::FollowLisp(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            i += c == '\\' ? 1 : 0;
            inString = c != '"';
        } else if (c == ';') {
            return;
        } else if (c == '"') {
            inString = true;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')' && --depth <= 0) {
            depth = 0;
            return;
        }
    }
}
