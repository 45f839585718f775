// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/EvalStack.h"

#include <sys/mman.h>
#include <ucontext.h>
#include <algorithm>
#include <new>

#include "drafthost/base/MemoryLimit.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__ 1
#include <sanitizer/common_interface_defs.h>
#endif
#endif

namespace drafthost::lisp {
namespace {

// Some four kilobytes a level is what a function takes whose call stands a few forms deep in its body. More
// than this would only make it take longer until a recursion without end is told.
#if defined(__SANITIZE_ADDRESS__)
// AddressSanitizer tidies no more than this up when an exception passes, and reports nonsense afterwards.
constexpr std::size_t Largest = std::size_t{64} << 20;
#else
constexpr std::size_t Largest = std::size_t{192} << 20;
#endif
constexpr std::size_t Smallest = std::size_t{4} << 20;
constexpr std::size_t Guard = std::size_t{64} << 10;
/// Left as it is between evaluations, so that small ones cost no page faults.
constexpr std::size_t Kept = std::size_t{256} << 10;

struct Stack {
    char* base = nullptr;
    std::size_t size = 0;
    bool active = false;
    std::uintptr_t deepest = 0;
    const std::function<void()>* work = nullptr;
    ucontext_t outside{};
    ucontext_t inside{};
};
Stack stack;

/// Tells AddressSanitizer, where there is one, that the stack is changed.
class SwitchNote {
  public:
#if defined(__SANITIZE_ADDRESS__)
    void leaving(const void* bottom, std::size_t size) {
        __sanitizer_start_switch_fiber(&fake_, bottom, size);
    }
    void back() { __sanitizer_finish_switch_fiber(fake_, nullptr, nullptr); }
    static void arrived(const void** bottom, std::size_t* size) {
        __sanitizer_finish_switch_fiber(nullptr, bottom, size);
    }
    static void ending(const void* bottom, std::size_t size) {
        __sanitizer_start_switch_fiber(nullptr, bottom, size);
    }

  private:
    void* fake_ = nullptr;
#else
    void leaving(const void*, std::size_t) {}
    void back() {}
    static void arrived(const void**, std::size_t*) {}
    static void ending(const void*, std::size_t) {}
#endif
};

void enter() {
    const void* bottom = nullptr;
    std::size_t size = 0;
    SwitchNote::arrived(&bottom, &size);
    (*stack.work)();
    SwitchNote::ending(bottom, size);
}

/// A machine that limits address space gets a smaller one.
void reserve() {
    for (std::size_t size = Largest; size >= Smallest; size /= 2) {
        void* base = ::mmap(nullptr, size, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
        if (base == MAP_FAILED) {
            continue;
        }
        // What runs over the end must fall into nothing.
        ::mprotect(base, Guard, PROT_NONE);
        stack.base = static_cast<char*>(base);
        stack.size = size;
        return;
    }
    throw std::bad_alloc();
}

std::uintptr_t here() {
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
}

}  // namespace

void EvalStack::run(const std::function<void()>& work) {
    if (stack.active) {
        work();
        return;
    }
    if (stack.base == nullptr) {
        reserve();
    }
    ::getcontext(&stack.inside);
    stack.inside.uc_stack.ss_sp = stack.base;
    stack.inside.uc_stack.ss_size = stack.size;
    stack.inside.uc_link = &stack.outside;
    ::makecontext(&stack.inside, enter, 0);
    stack.work = &work;
    stack.deepest = reinterpret_cast<std::uintptr_t>(stack.base) + stack.size;
    stack.active = true;
    SwitchNote note;
    note.leaving(stack.base, stack.size);
    ::swapcontext(&stack.outside, &stack.inside);
    note.back();
    stack.active = false;
    const std::size_t used = reinterpret_cast<std::uintptr_t>(stack.base) + stack.size - stack.deepest;
    if (used > Kept) {
        ::madvise(stack.base + Guard, stack.size - Kept - Guard, MADV_DONTNEED);
    }
}

std::size_t EvalStack::left() {
    const std::uintptr_t at = here();
    stack.deepest = std::min(stack.deepest, at);
    const std::uintptr_t top = reinterpret_cast<std::uintptr_t>(stack.base) + stack.size;
    // A host with little memory does not spend it on its stack.
    const std::size_t most = std::clamp(memoryLimit() / 4, Smallest, stack.size - Guard);
    const std::size_t used = top - at;
    return used < most ? most - used : 0;
}

}  // namespace drafthost::lisp
