// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Signals.h"

#include <sys/signalfd.h>
#include <unistd.h>
#include <csignal>

namespace {

sigset_t watchedSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGHUP);
    return set;
}

}  // namespace

Signals::Signals() {
    const sigset_t watched = watchedSignals();
    sigprocmask(SIG_BLOCK, &watched, nullptr);
    // A host that dies while it is written to must not take the front along.
    std::signal(SIGPIPE, SIG_IGN);
    descriptor = signalfd(-1, &watched, SFD_NONBLOCK | SFD_CLOEXEC);
}

Signals::~Signals() {
    close(descriptor);
    const sigset_t watched = watchedSignals();
    sigprocmask(SIG_UNBLOCK, &watched, nullptr);
}

int Signals::Take() {
    int count = 0;
    for (signalfd_siginfo info; read(descriptor, &info, sizeof info) == sizeof info; ++count) {
    }
    return count;
}
