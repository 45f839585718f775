#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace drafthost {

// Line ends of 64 bytes at a time as one mask: the inner step of loading an ASCII drawing, which would
// otherwise spend its time in one search call per eight-byte line.

struct LineMask {
    std::uint64_t ends;  ///< bit i: byte i is the terminator
    bool nul;            ///< one of the bytes is NUL
};

#if defined(__SSE2__)

inline LineMask scanLines(const char* bytes, char terminator) {
    const __m128i* const source = reinterpret_cast<const __m128i*>(bytes);
    const __m128i wanted = _mm_set1_epi8(terminator);
    const __m128i a = _mm_loadu_si128(source);
    const __m128i b = _mm_loadu_si128(source + 1);
    const __m128i c = _mm_loadu_si128(source + 2);
    const __m128i d = _mm_loadu_si128(source + 3);
    const auto mask = [&](__m128i block) {
        return static_cast<std::uint64_t>(
            static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(block, wanted))));
    };
    const __m128i least = _mm_min_epu8(_mm_min_epu8(a, b), _mm_min_epu8(c, d));
    return {mask(a) | mask(b) << 16 | mask(c) << 32 | mask(d) << 48,
            _mm_movemask_epi8(_mm_cmpeq_epi8(least, _mm_setzero_si128())) != 0};
}

#else

inline LineMask scanLines(const char* bytes, char terminator) {
    LineMask result{0, false};
    for (unsigned i = 0; i < 64; ++i) {
        result.ends |= static_cast<std::uint64_t>(bytes[i] == terminator) << i;
        result.nul |= bytes[i] == 0;
    }
    return result;
}

#endif

}  // namespace drafthost
