// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/FileLimit.h"

#include <csignal>

namespace files {

void FailBeyondFileLimit() {
    // A handler and not SIG_IGN, which an exec would hand down.
    struct sigaction action {};
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGXFSZ, &action, nullptr);
}

}  // namespace files
