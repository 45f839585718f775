// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Lists of type and value pairs as C passes them.

#include <cstdarg>

#include "resbuf.h"

namespace drafthost {

/// Keeps a list of arguments in one object, so that whoever reads from it moves the same list on.
struct Arguments {
    va_list list;
};

/// The chain that type and the arguments behind it stand for, up to RTNONE or 0; null for an unknown type.
resbuf* buildList(int type, Arguments& arguments);

}  // namespace drafthost
