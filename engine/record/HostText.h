// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Text between the host and the module. The host's ACHAR and QString hold the same UTF-16 units, so text goes
// over as a pointer; only Qt's type for the unit differs.
#include "acutads.h"

#include <QString>

/// The text of a string for a host call. Valid as long as the string lives and stays unchanged.
inline const ACHAR* HostText(const QString& text) {
    return reinterpret_cast<const ACHAR*>(text.utf16());
}

/// A copy of host text; null gives an empty string.
inline QString FromHost(const ACHAR* text) {
    return text ? QString::fromUtf16(text) : QString();
}

/// Writes text to the host's command line as it stands.
inline void HostPrint(const QString& text) {
    acutPrintf(ACRX_T("%s"), HostText(text));
}
