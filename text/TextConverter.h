// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Converts between any two encodings by name. Narrow encodings meet in UTF-16, in which all text here lives;
// UTF-32 is done by hand between UTF-16 and UTF-8.
#include <QString>

/// One conversion. Units are bytes for narrow encodings, 2 bytes for UTF-16 and 4 bytes for UTF-32, in the
/// machine's order.
struct TextConverter {
    QString TargetEncoding;
    QString SourceEncoding;
    const void* Source = nullptr;
    qsizetype SourceLength = 0;
    qsizetype TargetCapacity = 0;
    /// Set when a character had no equivalent in the target.
    bool Lossy = false;
    /// Set when nobody has a table for one of the encodings; nothing is converted then.
    bool Unavailable = false;
};

/// Converts into target (up to its capacity), or only counts when that is null. A target encoding given here
/// replaces that of the converter. The number of target units; what does not fit is left out.
qsizetype Convert(TextConverter& converter, void* target, const QString* targetEncoding = nullptr);
