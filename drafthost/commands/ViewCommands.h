// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Views, for the commands that change how the drawing is looked at.

#include "drafthost/drawing/Transform.h"
#include "drafthost/drawing/View.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

/// Shows a view; the one before can be had back by ZOOM Previous.
void showView(Document& document, const View& view);
/// Looks straight down on the plane of a system, its x axis to the right, and fits everything in.
void lookFrom(Document& document, const Transform& ucs);
/// A system that lies in the plane of the display, with the origin of the current one.
Transform viewSystem(const Drawing& drawing);

}  // namespace drafthost::commands
