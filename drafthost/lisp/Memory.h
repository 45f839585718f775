// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Keeps count of what values take, so that a list or a string without end is stopped at the host's memory
// limit. Asking the system costs too much for each cell: it is done whenever values have grown by a good
// deal.

#include <cstddef>

namespace drafthost::lisp {

class Memory {
  public:
    /// Throws std::bad_alloc when the host may not take so much more.
    static void take(std::size_t bytes) {
        used_ += bytes;
        if (used_ > checkAt_) [[unlikely]] {
            check(bytes);
        }
    }
    static void give(std::size_t bytes) { used_ -= bytes; }
    /// Throws like take, for something big that is to be made; it is not counted here.
    static void require(std::size_t bytes);

  private:
    static void check(std::size_t taken);
    static inline std::size_t used_ = 0;
    static inline std::size_t checkAt_ = 0;
};

}  // namespace drafthost::lisp
