// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What is to become of unsaved changes, asked in a box over the frame: save, discard, or leave all as it is.
#include "drafthost/editor/Host.h"

#include <QString>

class QWidget;

namespace drafthost {

/// A drawing without a name is asked for one; a path that was not given is Keep.
ChangesAnswer askChanges(QWidget* parent, Document& document);

/// Asks for the file that a drawing is to be saved in, beginning at its own name; empty when none was given.
QString askSavePath(QWidget* parent, const Document& document);

}  // namespace drafthost
