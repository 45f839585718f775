// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Which files count as drawings, by their names alone. Case means nothing here: drawings come from systems
// on which it does not, and "PLAN.DXF" is one of them.
#include <QStringView>

/// True for the names of what a host opens: ".dwg", ".dwt", ".dxf" and ".dws", in any case of letters.
bool IsDrawingName(QStringView path);
/// True for ".dwg" and ".dxf", which a run asks for write protection and locks before it opens them.
bool IsEditableDrawingName(QStringView path);
