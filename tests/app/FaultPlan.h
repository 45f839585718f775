// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Makes one call of the system fail, for `fault-sweep`: loaded in front of the C library (LD_PRELOAD) it
// counts what tarnel or drafthost do below one folder, each kind of call for itself, and lets the call with a
// given number fail. Calls elsewhere (libraries, /proc, pipes) are neither counted nor touched.
//
// FAULT_ROOT     the folder
// FAULT_PROGRAM  name of the program whose calls count; several processes of it count together
// FAULT_COUNTS   file of a page of zeros, through which the processes share their counts
// FAULT_KIND, FAULT_AT, FAULT_ERROR  which call fails, and with which error number; without them none does
// FAULT_MODE     once: that call; good: all of its kind from there on; file: that call and all later ones of
//                its kind at the same file; kill: the process dies before that call
// FAULT_LIST     a line for each call that counts, or only for the one that failed when FAULT_KIND is set
#include <fcntl.h>
#include <string>

namespace fault {

enum Kind { Write, Open, Rename, Fsync, Mkdir, Unlink, Link, Truncate, Attribute, KindCount };

/// Whether the path, or what the descriptor stands for, is counted in this process.
bool IsOurs(const std::string& path);
std::string PathOf(int descriptor);
std::string PathAt(int folder, const char* path);

/// Counts a call. True when it has to fail; errno then says why, and is left alone otherwise.
bool Fails(Kind kind, const std::string& path);
bool Fails(Kind kind, int descriptor);
bool FailsAt(Kind kind, int folder, const char* path);

}  // namespace fault
