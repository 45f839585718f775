// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Colours of the rows by status. They are those that users know, on a dark desktop the same hues made light
// enough to read.
#include <cstdint>
#include <QColor>
#include <QPalette>

/// Colour of a row's text; invalid for a status that has none, which leaves the list's own.
QColor StatusColor(std::uint32_t status, const QPalette& palette);
/// Colour of a link to a folder among the files.
QColor LinkColor(const QPalette& palette);
