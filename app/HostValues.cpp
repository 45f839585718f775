// SPDX-License-Identifier: GPL-3.0-or-later
// The record keeps values of the host in the host's own memory. The front has no host in its process, so it
// brings what these values need: room for nodes, and a place for what they print.
#include "resbuf.h"

#include "acutads.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <QString>

resbuf* acutNewRb(int type) {
    auto* node = static_cast<resbuf*>(std::calloc(1, sizeof(resbuf)));
    if (node) {
        node->restype = static_cast<short>(type);
    }
    return node;
}

int acutRelRb(resbuf* chain) {
    while (chain) {
        resbuf* next = chain->rbnext;
        if (chain->restype == RTSTR) {
            std::free(chain->resval.rstring);
        }
        std::free(chain);
        chain = next;
    }
    return RTNORM;
}

/// All text of the module goes through "%s".
int acutPrintf(const ACHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const ACHAR* text = va_arg(arguments, const ACHAR*);
    va_end(arguments);
    std::fputs(QString::fromUtf16(text).toUtf8().constData(), stderr);
    return RTNORM;
}
