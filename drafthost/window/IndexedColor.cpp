// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/IndexedColors.h"
#include "drafthost/window/DisplayList.h"

namespace drafthost {

// Colour 7 is white on a dark ground and black on a light one: none of its own.
QColor indexedColor(int index) {
    return index < 1 || index > 255 || index == 7 ? QColor() : QColor(static_cast<QRgb>(rgbOfIndex(index)));
}

}  // namespace drafthost
