// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/Memory.h"

#include <new>

#include "drafthost/base/MemoryLimit.h"

namespace drafthost::lisp {
namespace {

constexpr std::size_t BetweenChecks = std::size_t{16} << 20;

}

void Memory::check(std::size_t taken) {
    const bool fits = programHasMemoryFor(taken);
    // The program that failed may have put all of it into a variable. What comes next still needs a little,
    // to let go of it or to leave the drawing.
    if (fits || hasMemoryFor(BetweenChecks)) {
        checkAt_ = used_ + BetweenChecks;
    }
    if (!fits) {
        used_ -= taken;
        throw std::bad_alloc();
    }
}

void Memory::require(std::size_t bytes) {
    if (bytes > BetweenChecks && !programHasMemoryFor(bytes)) {
        throw std::bad_alloc();
    }
}

}  // namespace drafthost::lisp
