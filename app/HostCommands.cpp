// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/HostCommands.h"

std::string RunCommands(bool recover) {
    return std::string(recover ? "(Tarnel_SetRecoverMode T)\n" : "") + "TARNEL\nRun\n";
}
