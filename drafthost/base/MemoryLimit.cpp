// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/base/MemoryLimit.h"

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>
#include <cstdlib>

namespace drafthost {
namespace {

std::size_t limit = DefaultMemoryLimit;

/// What the process holds in memory, without what is only mapped from files. 0 when the system does not say.
std::size_t memoryHeld() {
    static const int fd = ::open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    static const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    char text[128];
    const ssize_t count = fd < 0 ? -1 : ::pread(fd, text, sizeof text - 1, 0);
    if (count <= 0) {
        return 0;
    }
    text[count] = 0;
    char* at = text;
    std::strtoull(at, &at, 10);
    const std::size_t resident = std::strtoull(at, &at, 10);
    const std::size_t ofFiles = std::strtoull(at, &at, 10);
    return (resident - ofFiles) * page;
}

bool fits(std::size_t more, std::size_t most) {
    const auto fitsNow = [&] {
        const std::size_t held = memoryHeld();
        return held <= most && more <= most - held;
    };
    if (fitsNow()) {
        return true;
    }
    releaseFreedMemory();
    return fitsNow();
}

}  // namespace

void setMemoryLimit(std::size_t bytes) {
    limit = bytes;
}

std::size_t memoryLimit() {
    return limit;
}

bool hasMemoryFor(std::size_t more) {
    return fits(more, limit);
}

bool programHasMemoryFor(std::size_t more) {
    return fits(more, limit / 4 * 3);
}

void releaseFreedMemory() {
    ::malloc_trim(0);
}

}  // namespace drafthost
