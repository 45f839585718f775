// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A descriptor that is closed where its name ends, so that a function can return at any place. What errno
// says then stays, for callers who want the cause of what went wrong before.
#include <unistd.h>
#include <cerrno>
#include <utility>

namespace files {

class Descriptor {
  public:
    /// Takes over what open gave, -1 as well.
    explicit Descriptor(int fd) : fd(fd) {}
    ~Descriptor() {
        if (fd >= 0) {
            const int error = errno;
            ::close(fd);
            errno = error;
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool IsOpen() const { return fd >= 0; }
    int Get() const { return fd; }
    /// Leaves the descriptor to the caller.
    int Release() { return std::exchange(fd, -1); }

  private:
    int fd;
};

}  // namespace files
