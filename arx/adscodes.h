// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Result types and result codes of the host's calls. Group codes of drawing data stay below 2000 and
// result types above 5000, so that one list can never be mistaken for the other.

constexpr int RTNONE = 5000;
constexpr int RTREAL = 5001;
constexpr int RTPOINT = 5002;
constexpr int RTSHORT = 5003;
constexpr int RTANG = 5004;
constexpr int RTSTR = 5005;
constexpr int RTENAME = 5006;
constexpr int RTPICKS = 5007;
constexpr int RTORINT = 5008;
constexpr int RT3DPOINT = 5009;
constexpr int RTLONG = 5010;
constexpr int RTVOID = 5014;
constexpr int RTLB = 5016;
constexpr int RTLE = 5017;
constexpr int RTDOTE = 5018;
constexpr int RTNIL = 5019;
constexpr int RTDXF0 = 5020;
constexpr int RTT = 5021;
constexpr int RTRESBUF = 5023;
constexpr int RTMODELESS = 5027;
constexpr int RTINT64 = 5031;

constexpr int RTNORM = 5100;
constexpr int RTERROR = -5001;
constexpr int RTCAN = -5002;
constexpr int RTREJ = -5003;
constexpr int RTFAIL = -5004;
constexpr int RTKWORD = -5005;

/// What a function bound with acedRegFunc returns.
constexpr int RSRSLT = 1;
constexpr int RSERR = -1;
