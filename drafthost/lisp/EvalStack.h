// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The stack that evaluations run on: large enough for programs that recurse twenty thousand deep, which the
// stack of a thread is not, in any build. Its memory is only taken as it is used and given back afterwards.
// There is one for the process, since everything runs on the main thread: an evaluation from within another
// goes on where that one stands.

#include <cstddef>
#include <cstdint>
#include <functional>

namespace drafthost::lisp {

class EvalStack {
  public:
    /// Runs the work, which must not throw. Throws std::bad_alloc when no stack can be had.
    static void run(const std::function<void()>& work);
    /// What is left for deeper calls, below the caller's frame; to be asked inside run() only.
    static std::size_t left();
};

}  // namespace drafthost::lisp
