// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Small services of the host that need no drawing.
#include "resbuf.h"

/// Writes to the command line of the current document, without adding a line end. Understands the
/// conversions of printf; %s takes a const ACHAR*. Returns RTNORM.
ARX_EXPORT int acutPrintf(const ACHAR* format, ...);
/// Wildcard match with regard to case: RTNORM or RTERROR.
ARX_EXPORT int acutWcMatch(const ACHAR* text, const ACHAR* pattern);
/// Wildcard match; true when it fits.
ARX_EXPORT bool acutWcMatchEx(const ACHAR* text, const ACHAR* pattern, bool ignoreCase);
