// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Numbers as they stand in files that people may edit: what is no number counts as 0 and never fails.
#include <QStringView>

/// Optional white space, sign and digits at the start of a text; the rest is ignored. Values past the range
/// of 32 bits become its end.
inline int ParseNumber(QStringView text) {
    qsizetype at = 0;
    while (at < text.size() && (text[at] == u' ' || (text[at] >= u'\t' && text[at] <= u'\r'))) {
        ++at;
    }
    bool negative = false;
    if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) {
        negative = text[at++] == u'-';
    }
    long long value = 0;
    for (; at < text.size() && text[at] >= u'0' && text[at] <= u'9'; ++at) {
        value = value > 0x7fffffffLL ? value : value * 10 + (text[at].unicode() - u'0');
    }
    if (negative) {
        value = -value;
    }
    if (value > 0x7fffffffLL) {
        value = 0x7fffffffLL;
    }
    return static_cast<int>(value < -0x80000000LL ? -0x80000000LL : value);
}
