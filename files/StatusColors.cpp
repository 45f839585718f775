// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/StatusColors.h"

#include "engine/record/TarnelData.h"

#include <algorithm>
#include <cmath>

namespace {

/// How bright a colour is to the eye, 0 to 1.
double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& first, const QColor& second) {
    const double a = luminance(first);
    const double b = luminance(second);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// The colour on a light ground; on a dark one the same hue, as light as it takes to be read.
QColor readable(const QColor& color, const QPalette& palette) {
    const QColor ground = palette.color(QPalette::Base);
    if (ground.lightness() >= 128) {
        return color;
    }
    constexpr double Enough = 5;
    QColor lighter = color;
    for (float light = color.lightnessF(); contrast(lighter, ground) < Enough && light < 1; light += 0.03F) {
        lighter = QColor::fromHslF(color.hslHueF(), color.hslSaturationF(), std::min(light, 1.0F));
    }
    return lighter;
}

}  // namespace

QColor StatusColor(std::uint32_t status, const QPalette& palette) {
    switch (status) {
        case ToDo:
            // Black on white: whatever the desktop's lists are written in.
            return palette.color(QPalette::Text);
        case Done:
            return readable(QColor(0, 128, 0), palette);
        case FailOpen:
        case Timeout:
        case Error:
            return readable(QColor(255, 0, 0), palette);
        case Locked:
            return readable(QColor(0, 0, 255), palette);
        case Canceled:
            return readable(QColor(255, 0, 255), palette);
        default:
            return {};
    }
}

QColor LinkColor(const QPalette& palette) {
    return readable(QColor(0, 0, 255), palette);
}
