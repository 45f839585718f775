// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Decides which drawing of the queue is next and how it is opened. It looks from the top each time, so a run
// needs no cursor: a drawing is next because it is the first that still waits.
#include <QString>

/// True: path is the drawing, and the record's CurrentFile and OpenReadOnly are set for it. False: none
/// waits, and CurrentFile is -1. Drawings that somebody else holds become Locked on the way, unless read-only
/// ones are processed too.
bool GetNextFile(QString& path);
