// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The ".dwk" file beside a drawing that somebody has open. The host that made it notes machine, process and
// the process's start in it, so that one left behind by a killed host is told from one that holds.
#include <QString>

/// True when a marker stands beside the drawing that some other program, here or elsewhere, may still mean.
/// One of this process is no lock: the host closes the drawing before it opens the next.
bool HasLockMarker(const QString& drawing);
