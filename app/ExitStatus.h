// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The exit statuses are a contract with scripts and schedulers and stand in the manual.

enum ExitStatus : int {
    AllDone = 0,
    SomeNotDone = 1,
    WrongUsage = 2,
    BrokenOff = 3,
    Interrupted = 130,
};
