// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/DisplayList.h"

namespace drafthost {

// The standard palette: nine named colours, then 24 hues in steps of 15 degrees with five brightnesses, each
// full and half saturated, then six greys.
QColor indexedColor(int index) {
    static const QColor named[] = {QColor(),
                                   QColor(255, 0, 0),
                                   QColor(255, 255, 0),
                                   QColor(0, 255, 0),
                                   QColor(0, 255, 255),
                                   QColor(0, 0, 255),
                                   QColor(255, 0, 255),
                                   QColor(),
                                   QColor(128, 128, 128),
                                   QColor(192, 192, 192)};
    if (index < 1 || index > 255) {
        return {};
    }
    if (index < 10) {
        return named[index];
    }
    if (index >= 250) {
        static constexpr int Greys[] = {51, 91, 132, 173, 214, 255};
        const int grey = Greys[index - 250];
        return {grey, grey, grey};
    }
    static constexpr int Brightness[] = {255, 204, 153, 127, 76};
    const int hue = (index - 10) / 10 * 15;
    const int shade = index % 10;
    return QColor::fromHsv(hue, shade % 2 == 0 ? 255 : 128, Brightness[shade / 2]);
}

}  // namespace drafthost
