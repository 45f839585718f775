// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The host's list of typed values, chained through rbnext.
#include "achar.h"
#include "adscodes.h"

using ads_real = double;
using ads_point = ads_real[3];
using ads_name = Adesk::IntPtr[2];

struct ads_binary {
    short clen;
    char* buf;
};

union ads_u_val {
    ads_real rreal;
    ads_real rpoint[3];
    short rint;
    ACHAR* rstring;
    Adesk::IntPtr rlname[2];
    Adesk::Int32 rlong;
    Adesk::Int64 mnInt64;
    ads_binary rbinary;
    unsigned char ihandle[8];
};

/// One value. A string belongs to its node: acutRelRb frees it together with the chain.
struct resbuf {
    resbuf* rbnext;
    short restype;
    ads_u_val resval;
};

/// One node of the type with a zero value. Free with acutRelRb.
ARX_EXPORT resbuf* acutNewRb(int type);
/// A chain of type and value pairs, ended by RTNONE or 0; RTLB, RTLE, RTDOTE, RTNIL, RTT and RTVOID stand
/// alone. Strings are copied; group code 0 is given as RTDXF0. Null for an unknown type.
ARX_EXPORT resbuf* acutBuildList(int type, ...);
/// Frees a chain and its strings; null is harmless. Always RTNORM.
ARX_EXPORT int acutRelRb(resbuf* chain);
