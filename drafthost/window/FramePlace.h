// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Where the frame stands: it opens where it was closed, or in the middle, and always inside a screen that is
// there. Kept in the host's registry, as the rest of what a user has set.
#include <QRect>

class QDockWidget;
class QMainWindow;

namespace drafthost {

class RegistryFile;

/// Sizes and places the frame. Call before it is shown.
void restorePlace(QMainWindow& frame, const RegistryFile& registry);
void keepPlace(const QMainWindow& frame, RegistryFile& registry);
/// The places of docking tools that come and go with a module: the dock widgets whose object names are
/// identifiers in braces.
void keepTools(const QMainWindow& frame, RegistryFile& registry);
/// Docks a tool where it stood; false, and nothing done, when nothing is known of it.
bool restoreTool(QMainWindow& frame, QDockWidget& tool, const RegistryFile& registry);
/// The rectangle moved, and made smaller where it has to be, so that all of it lies inside.
QRect placedInside(QRect place, const QRect& available);

}  // namespace drafthost
