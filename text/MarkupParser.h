// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Builds the position index of a text in one pass over its tokens with a stack of open tags.
#include "text/ElementPosition.h"

#include <QString>

/// Fills the index and adds what is wrong to the report. True when the text is well-formed: one root, and no
/// tag unended, lone or broken.
bool ParseMarkup(const QString& text, std::uint32_t documentFlags, PositionIndex& positions, QString& report);
