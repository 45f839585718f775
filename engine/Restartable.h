// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A run must survive the death of the host: the next start of the host has to bring this module along. Where
// the user has arranged that, nothing is changed; else a demand-load entry stands for the length of the run.

/// File name under which the module is known to the host.
inline constexpr char ModuleFileName[] = "tnl3-19-64.arx";

/// Makes sure that the host loads the module when it starts. Sets TemporarilyLoadFromRegistry when this run
/// made the entry.
void EnsureRestartable();
/// Turns the entry into one that loads the module only on request.
void RemoveRestartable();
