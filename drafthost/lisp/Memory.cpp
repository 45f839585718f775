#include "drafthost/lisp/Memory.h"

#include <new>

#include "drafthost/drawing/MemoryLimit.h"

namespace drafthost::lisp {
namespace {

constexpr std::size_t kBetweenChecks = std::size_t{16} << 20;

}

void Memory::check(std::size_t taken) {
    if (!programHasMemoryFor(taken)) {
        used_ -= taken;
        throw std::bad_alloc();
    }
    checkAt_ = used_ + kBetweenChecks;
}

void Memory::require(std::size_t bytes) {
    if (bytes > kBetweenChecks && !programHasMemoryFor(bytes)) {
        throw std::bad_alloc();
    }
}

}  // namespace drafthost::lisp
