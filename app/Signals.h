// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Ctrl+C and its relatives as something to poll: the run loop must finish what it does to the host's input
// before it reacts.

class Signals {
  public:
    /// Takes SIGINT, SIGTERM and SIGHUP of this process until it goes.
    Signals();
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    /// Readable when a signal has come.
    int Descriptor() const { return descriptor; }
    /// Number of signals since the last call.
    int Take();

  private:
    int descriptor = -1;
};
