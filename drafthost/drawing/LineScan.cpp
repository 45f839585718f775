// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/LineScan.h"

#include <bit>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace drafthost {

namespace {

// Writes the positions of the bits, eight at a time without asking how many are left: most blocks have about
// eight lines, and a loop that ends at the last bit would be guessed wrong in every block.
[[gnu::always_inline]] inline std::uint32_t* writeBits(std::uint64_t bits, unsigned count,
                                                       std::uint32_t position, std::uint32_t* ends) {
    std::uint32_t* out = ends;
    for (unsigned done = 0; done < count; done += 8, out += 8) {
        for (unsigned k = 0; k < 8; ++k) {
            out[k] = position + static_cast<std::uint32_t>(std::countr_zero(bits));
            bits &= bits - 1;
        }
    }
    return ends + count;
}

#if defined(__x86_64__)

[[gnu::target("avx2,bmi,popcnt")]] std::size_t findWithAvx2(const char* bytes, std::uint32_t position,
                                                            std::size_t blocks, char terminator,
                                                            std::uint32_t* ends, bool& nul) {
    const __m256i wanted = _mm256_set1_epi8(terminator);
    __m256i least = _mm256_set1_epi8(1);
    std::uint32_t* out = ends;
    for (; blocks > 0; --blocks, position += LineBlock) {
        const __m256i low = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes + position));
        const __m256i high = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes + position + 32));
        const auto lower = static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(low, wanted)));
        const auto upper = static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(high, wanted)));
        least = _mm256_min_epu8(least, _mm256_min_epu8(low, high));
        const std::uint64_t bits = lower | static_cast<std::uint64_t>(upper) << 32;
        out = writeBits(bits, static_cast<unsigned>(std::popcount(bits)), position, out);
    }
    nul = _mm256_movemask_epi8(_mm256_cmpeq_epi8(least, _mm256_setzero_si256())) != 0;
    return static_cast<std::size_t>(out - ends);
}

// Every processor of this kind has these instructions.
std::size_t findWithSse2(const char* bytes, std::uint32_t position, std::size_t blocks, char terminator,
                         std::uint32_t* ends, bool& nul) {
    const __m128i wanted = _mm_set1_epi8(terminator);
    __m128i least = _mm_set1_epi8(1);
    std::uint32_t* out = ends;
    for (; blocks > 0; --blocks, position += LineBlock) {
        std::uint64_t bits = 0;
        for (unsigned part = 0; part < 4; ++part) {
            const __m128i block =
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + position + std::size_t{16} * part));
            const auto found = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(block, wanted)));
            bits |= static_cast<std::uint64_t>(found) << (16 * part);
            least = _mm_min_epu8(least, block);
        }
        out = writeBits(bits, static_cast<unsigned>(std::popcount(bits)), position, out);
    }
    nul = _mm_movemask_epi8(_mm_cmpeq_epi8(least, _mm_setzero_si128())) != 0;
    return static_cast<std::size_t>(out - ends);
}

#else

std::size_t findPlain(const char* bytes, std::uint32_t position, std::size_t blocks, char terminator,
                      std::uint32_t* ends, bool& nul) {
    std::uint32_t* out = ends;
    nul = false;
    for (const std::uint32_t end = position + static_cast<std::uint32_t>(blocks) * LineBlock; position < end;
         ++position) {
        *out = position;
        out += bytes[position] == terminator ? 1 : 0;
        nul |= bytes[position] == 0;
    }
    return static_cast<std::size_t>(out - ends);
}

#endif

}  // namespace

std::size_t findLineEnds(const char* bytes, std::uint32_t position, std::size_t blocks, char terminator,
                         std::uint32_t* ends, bool& nul) {
#if defined(__x86_64__)
    static const auto find = __builtin_cpu_supports("avx2") ? findWithAvx2 : findWithSse2;
    return find(bytes, position, blocks, terminator, ends, nul);
#else
    return findPlain(bytes, position, blocks, terminator, ends, nul);
#endif
}

}  // namespace drafthost
