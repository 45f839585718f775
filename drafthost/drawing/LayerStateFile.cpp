// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/LayerStateFile.h"

#include <algorithm>

#include "drafthost/drawing/FileBytes.h"

namespace drafthost {

namespace {

std::string_view nextLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(text.size(), end + 1));
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) {
        line.remove_suffix(1);
    }
    return line;
}

void takeGroup(std::vector<LayerState>& states, int code, std::string_view value) {
    const auto whole = [&] { return static_cast<int>(parseInteger(value)); };
    if (code == 0) {
        if (value == "LAYERSTATE") {
            LayerState& state = states.emplace_back();
            state.mask = RestoreAll;
        }
        return;
    }
    if (states.empty()) {
        return;
    }
    LayerState& state = states.back();
    if (code == 8) {
        LayerLook look;
        look.layer = value;
        state.layers.push_back(look);
    } else if (state.layers.empty()) {
        if (code == 1) {
            state.name = value;
        } else if (code == 91) {
            state.mask = whole();
        } else if (code == 301) {
            state.description = value;
        } else if (code == 302) {
            state.current = value;
        }
        return;
    }
    LayerLook& look = state.layers.back();
    if (code == 90) {
        look.flags = whole();
    } else if (code == 62) {
        look.color = whole();
    } else if (code == 370) {
        look.lineweight = whole();
    } else if (code == 6) {
        look.linetype = value;
    } else if (code == 1 || code == 2) {
        look.plotStyle = value;
    } else if (code == 440) {
        look.transparency = parseInteger(value);
    } else if (code == 92) {
        look.rgb = static_cast<int>(parseInteger(value) & 0xFFFFFF);
    }
}

bool isWhole(std::string_view text) {
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(' ')));
    if (text.starts_with('-')) {
        text.remove_prefix(1);
    }
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}
bool isWholeGroup(int code) {
    return (code >= 60 && code < 100) || code == 290 || code == 370 || code == 440;
}

bool isLayerStateFile(std::string_view text) {
    if (text.starts_with("\xEF\xBB\xBF")) {
        text.remove_prefix(3);
    }
    const std::string_view code = nextLine(text);
    return code.find_first_not_of(' ') != std::string_view::npos &&
           code.substr(code.find_first_not_of(' ')) == "0" && nextLine(text) == "LAYERSTATEDICTIONARY";
}

}  // namespace

std::string layerStateFileText(const LayerState& state) {
    std::string text;
    const auto group = [&](int code, const std::string& value) {
        text += std::to_string(code) + "\r\n" + value + "\r\n";
    };
    group(0, "LAYERSTATEDICTIONARY");
    group(0, "LAYERSTATE");
    group(1, state.name);
    group(91, std::to_string(state.mask));
    group(301, state.description);
    group(290, "0");
    group(302, state.current);
    for (const LayerLook& look : state.layers) {
        group(8, look.layer);
        group(90, std::to_string(look.flags));
        group(62, std::to_string(look.color));
        group(370, std::to_string(look.lineweight));
        group(6, look.linetype);
        group(2, look.plotStyle);
        group(440, std::to_string(look.transparency));
        if (look.rgb) {
            group(92,
                  std::to_string(static_cast<std::int32_t>(0xC2000000u | static_cast<unsigned>(*look.rgb))));
        }
    }
    return text;
}

std::vector<LayerState> readLayerStateFile(std::string_view text) {
    std::vector<LayerState> states;
    if (!isLayerStateFile(text)) {
        return states;
    }
    while (!text.empty()) {
        const std::string_view code = nextLine(text);
        const std::string_view value = nextLine(text);
        if (!isWhole(code) || (isWholeGroup(static_cast<int>(parseInteger(code))) && !isWhole(value))) {
            return {};
        }
        takeGroup(states, static_cast<int>(parseInteger(code)), value);
    }
    std::erase_if(states, [](const LayerState& state) { return state.name.empty(); });
    return states;
}

std::vector<std::string> importLayerStates(Drawing& drawing, const std::string& path, std::string_view name,
                                           std::string& error) {
    std::vector<LayerState> states;
    std::string bytes;
    if (!readFile(path, bytes, error)) {
        return {};
    }
    if (isLayerStateFile(bytes)) {
        states = readLayerStateFile(bytes);
    } else {
        const auto other = Drawing::open(path, error);
        if (other == nullptr) {
            return {};
        }
        for (const std::string& known : layerStateNames(*other)) {
            if (auto state = findLayerState(*other, known)) {
                states.push_back(std::move(*state));
            }
        }
    }
    std::vector<std::string> taken;
    for (const LayerState& state : states) {
        if (name != "*" && foldCase(name) != foldCase(state.name)) {
            continue;
        }
        provideLayers(drawing, state);
        if (!putLayerState(drawing, state)) {
            error = "A drawing of version " + drawing.version() + " keeps no layer states.";
            return {};
        }
        taken.push_back(state.name);
    }
    if (taken.empty()) {
        error = name == "*" ? path + " holds no layer state."
                            : path + " holds no layer state \"" + std::string(name) + "\".";
    }
    return taken;
}

bool exportLayerState(const Drawing& drawing, std::string_view name, const std::string& path,
                      std::string& error) {
    const auto state = findLayerState(drawing, name);
    if (!state) {
        error = "Cannot find layer state \"" + std::string(name) + "\".";
        return false;
    }
    const std::string text = layerStateFileText(*state);
    return replaceFile(path, {text}, error);
}

}  // namespace drafthost
