// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/IndexedColors.h"

#include <array>
#include <limits>

namespace drafthost {

namespace {

constexpr std::uint32_t pack(int red, int green, int blue) {
    return static_cast<std::uint32_t>(red) << 16 | static_cast<std::uint32_t>(green) << 8 |
           static_cast<std::uint32_t>(blue);
}

/// The hue in degrees, at this brightness, from white (0) to full (255).
std::uint32_t ofHue(int hue, int saturation, int brightness) {
    constexpr int Sector = 60;
    const int low = brightness * (255 - saturation) / 255;
    const int within = hue % Sector;
    const int rising = low + (brightness - low) * within / Sector;
    const int falling = brightness - (brightness - low) * within / Sector;
    switch (hue / Sector) {
        case 0:
            return pack(brightness, rising, low);
        case 1:
            return pack(falling, brightness, low);
        case 2:
            return pack(low, brightness, rising);
        case 3:
            return pack(low, falling, brightness);
        case 4:
            return pack(rising, low, brightness);
        default:
            return pack(brightness, low, falling);
    }
}

}  // namespace

std::uint32_t rgbOfIndex(int index) {
    static constexpr std::array<std::uint32_t, 10> Named = {0,        0xff0000, 0xffff00, 0x00ff00, 0x00ffff,
                                                            0x0000ff, 0xff00ff, 0xffffff, 0x808080, 0xc0c0c0};
    static constexpr std::array<int, 6> Greys = {51, 91, 132, 173, 214, 255};
    static constexpr std::array<int, 5> Brightness = {255, 204, 153, 127, 76};
    if (index < 1 || index > 255) {
        return 0;
    }
    if (index < 10) {
        return Named[static_cast<std::size_t>(index)];
    }
    if (index >= 250) {
        const int grey = Greys[static_cast<std::size_t>(index) - 250];
        return pack(grey, grey, grey);
    }
    const int shade = index % 10;
    return ofHue((index - 10) / 10 * 15, shade % 2 == 0 ? 255 : 128,
                 Brightness[static_cast<std::size_t>(shade) / 2]);
}

int nearestIndex(std::uint32_t rgb) {
    int best = 7;
    long least = std::numeric_limits<long>::max();
    for (int index = 1; index < 256; ++index) {
        const std::uint32_t other = rgbOfIndex(index);
        long distance = 0;
        for (const int shift : {16, 8, 0}) {
            const long d =
                static_cast<long>((rgb >> shift) & 0xff) - static_cast<long>((other >> shift) & 0xff);
            distance += d * d;
        }
        if (distance < least) {
            least = distance;
            best = index;
        }
    }
    return best;
}

}  // namespace drafthost
