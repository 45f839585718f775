// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/ColorNames.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

namespace drafthost::commands {

namespace {

constexpr std::array<std::string_view, 8> ColorNames = {"",     "red",  "yellow",  "green",
                                                        "cyan", "blue", "magenta", "white"};
constexpr std::array<int, 24> Lineweights = {0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                                             53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};

bool sameText(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

std::optional<int> parseInteger(std::string_view text) {
    int value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

/// The colour of an index as 0xRRGGBB. 10 to 249 are 24 hues in five shades, each also half saturated; the
/// rest are the seven base colours, two greys and six greys.
int indexRgb(int index) {
    constexpr std::array<int, 10> Base = {0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                          0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
    constexpr std::array<int, 6> Greys = {0x333333, 0x505050, 0x696969, 0x828282, 0xBEBEBE, 0xFFFFFF};
    if (index < 10) {
        return Base[static_cast<size_t>(index)];
    }
    if (index >= 250) {
        return Greys[static_cast<size_t>(index - 250)];
    }
    constexpr std::array<double, 5> Shades = {1.0, 0.65, 0.5, 0.3, 0.15};
    const int step = index / 10 - 1;
    double hue = step * 15.0 / 60.0;
    double value = Shades[static_cast<size_t>(index % 10 / 2)];
    double low = index % 2 ? 0.5 : 0.0;
    auto channel = [&](double offset) {
        double distance = std::fmod(hue + offset, 6.0);
        double amount = std::clamp(std::min(distance, 4.0 - distance), 0.0, 1.0);
        return static_cast<int>(std::floor(255.0 * value * (low + (1.0 - low) * amount)));
    };
    return channel(2.0) << 16 | channel(0.0) << 8 | channel(4.0);
}

int nearestIndex(int rgb) {
    int best = 7;
    int bestDistance = std::numeric_limits<int>::max();
    for (int index = 1; index <= 255; ++index) {
        int candidate = indexRgb(index);
        int distance = 0;
        for (int shift : {0, 8, 16}) {
            int difference = (rgb >> shift & 255) - (candidate >> shift & 255);
            distance += difference * difference;
        }
        if (distance < bestDistance) {
            bestDistance = distance;
            best = index;
        }
    }
    return best;
}

}  // namespace

std::optional<int> parseColorIndex(std::string_view text, int low) {
    for (size_t i = 1; i < ColorNames.size(); ++i) {
        if (sameText(text, ColorNames[i])) {
            return static_cast<int>(i);
        }
    }
    auto number = parseInteger(text);
    return number && *number != 0 && *number >= low && *number <= 255 ? number : std::nullopt;
}

std::optional<Color> parseTrueColor(std::string_view text) {
    int rgb = 0;
    for (int part = 0; part < 3; ++part) {
        size_t comma = part < 2 ? text.find(',') : text.size();
        if (comma == std::string_view::npos) {
            return std::nullopt;
        }
        auto value = parseInteger(text.substr(0, comma));
        if (!value || *value < 0 || *value > 255) {
            return std::nullopt;
        }
        rgb = rgb << 8 | *value;
        text.remove_prefix(std::min(text.size(), comma + 1));
    }
    return Color{nearestIndex(rgb), rgb};
}

std::string colorText(int index) {
    return index >= 1 && index <= 7 ? std::string(ColorNames[static_cast<size_t>(index)])
                                    : std::to_string(index);
}

std::string colorText(const Color& color) {
    if (!color.rgb) {
        return colorText(color.index);
    }
    return std::to_string(*color.rgb >> 16 & 255) + "," + std::to_string(*color.rgb >> 8 & 255) + "," +
           std::to_string(*color.rgb & 255);
}

std::optional<int> nearestLineweight(double millimetres) {
    double hundredths = millimetres * 100.0;
    if (!(hundredths >= 0.0) || hundredths > 211.0) {
        return std::nullopt;
    }
    return *std::min_element(Lineweights.begin(), Lineweights.end(), [&](int a, int b) {
        return std::abs(a - hundredths) < std::abs(b - hundredths);
    });
}

bool isLineweight(int hundredths) {
    return (hundredths >= -3 && hundredths < 0) ||
           std::find(Lineweights.begin(), Lineweights.end(), hundredths) != Lineweights.end();
}

std::string lineweightText(int hundredths) {
    switch (hundredths) {
        case -3:
            return "Default";
        case -2:
            return "ByBlock";
        case -1:
            return "ByLayer";
        default: {
            char buffer[32];
            std::snprintf(buffer, sizeof buffer, "%.2f mm", hundredths / 100.0);
            return buffer;
        }
    }
}

}  // namespace drafthost::commands
