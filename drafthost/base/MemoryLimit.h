// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// How much memory the host may take for itself. A drawing or a program that wants more is refused with one
// line, instead of the whole machine being driven into its swap by one script.

#include <cstddef>

namespace drafthost {

inline constexpr std::size_t DefaultMemoryLimit = std::size_t{4} << 30;

void setMemoryLimit(std::size_t bytes);
std::size_t memoryLimit();

/// Whether `more` bytes can be had on top of what the process holds now. Memory that was freed but is still
/// held is given back to the system before the answer is no.
bool hasMemoryFor(std::size_t more);
/// The same for programs, which get three quarters: the host must still be able to open the next drawing
/// while one of them holds all that it could get.
bool programHasMemoryFor(std::size_t more);
/// Gives memory that was freed back to the system.
void releaseFreedMemory();

}  // namespace drafthost
