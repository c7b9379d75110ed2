// The AVX2 forms of the host row kernels: sixteen samples a step, the rest
// of a row through the plain form.
#include "HostPixelsRows.h"

#if defined(__x86_64__)

#include <immintrin.h>

#define HOST_TARGET_AVX2 __attribute__((target("avx2")))

namespace {
const size_t kStep = 16;

// Sixteen 16-bit samples to two registers of eight 32-bit lanes.
HOST_TARGET_AVX2 inline void widen(const uint16_t* from, __m256i* low, __m256i* high) {
    *low = _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
    *high = _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 8)));
}

// Two registers of eight 32-bit lanes (each below 65536) back to sixteen words in order.
HOST_TARGET_AVX2 inline __m256i narrow(__m256i low, __m256i high) {
    return _mm256_permute4x64_epi64(_mm256_packus_epi32(low, high), 0xD8);
}

// clamp(f, 0, 1) with NaN as 0 (max returns its second operand for a NaN), * full + 0.5, truncated.
HOST_TARGET_AVX2 inline __m256i levels(const float* from, float full) {
    const __m256 f = _mm256_loadu_ps(from);
    const __m256 clamped =
        _mm256_min_ps(_mm256_max_ps(f, _mm256_setzero_ps()), _mm256_set1_ps(1.0f));
    const __m256 scaled =
        _mm256_add_ps(_mm256_mul_ps(clamped, _mm256_set1_ps(full)), _mm256_set1_ps(0.5f));
    return _mm256_cvttps_epi32(scaled);
}

// (v * 4095 + 32767) / 65535 = (mulhi(v, 65521) + 8) >> 4 for every 16-bit v
// (checked over all of them): sixteen samples a step in 16-bit lanes, the
// host word being that << 4, which is the sum with its low 4 bits cleared.
HOST_TARGET_AVX2 void wordsToTwelve(const uint16_t* from, size_t n, uint16_t* to) {
    const __m256i scale = _mm256_set1_epi16(static_cast<short>(65521));
    const __m256i half = _mm256_set1_epi16(8);
    const __m256i top = _mm256_set1_epi16(static_cast<short>(0xFFF0));
    size_t i = 0;
    for (; i + kStep <= n; i += kStep) {
        const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i));
        const __m256i sum = _mm256_add_epi16(_mm256_mulhi_epu16(v, scale), half);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + i), _mm256_and_si256(sum, top));
    }
    plainHostRows().wordsToTwelve(from + i, n - i, to + i);
}

HOST_TARGET_AVX2 void floatsToTwelve(const float* from, size_t n, uint16_t* to) {
    size_t i = 0;
    for (; i + kStep <= n; i += kStep) {
        const __m256i low = _mm256_slli_epi32(levels(from + i, 4095.0f), 4);
        const __m256i high = _mm256_slli_epi32(levels(from + i + 8, 4095.0f), 4);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + i), narrow(low, high));
    }
    plainHostRows().floatsToTwelve(from + i, n - i, to + i);
}

// Sixteen 16-bit lanes (each below 256) to sixteen bytes in order.
HOST_TARGET_AVX2 inline __m128i toBytes(__m256i words) {
    return _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1));
}

// (v * 255 + 32767) / 65535 = (mulhi(v, 65281) + 128) >> 8 for every 16-bit v
// (checked over all of them).
HOST_TARGET_AVX2 void wordsToEight(const uint16_t* from, size_t n, uint8_t* to) {
    const __m256i scale = _mm256_set1_epi16(static_cast<short>(65281));
    const __m256i half = _mm256_set1_epi16(128);
    size_t i = 0;
    for (; i + kStep <= n; i += kStep) {
        const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i));
        const __m256i eights =
            _mm256_srli_epi16(_mm256_add_epi16(_mm256_mulhi_epu16(v, scale), half), 8);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), toBytes(eights));
    }
    plainHostRows().wordsToEight(from + i, n - i, to + i);
}

HOST_TARGET_AVX2 void floatsToEight(const float* from, size_t n, uint8_t* to) {
    size_t i = 0;
    for (; i + kStep <= n; i += kStep) {
        const __m256i words = narrow(levels(from + i, 255.0f), levels(from + i + 8, 255.0f));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), toBytes(words));
    }
    plainHostRows().floatsToEight(from + i, n - i, to + i);
}

// 12-bit v -> (v * 65535 + 2047) / 4095 = 16 v + (15 v + 2047) / 4095, and
// x / 4095 = (x + (x >> 12) + 1) >> 12 for these x, all in 16-bit lanes.
HOST_TARGET_AVX2 void twelveToSixteen(const uint16_t* from, size_t n, uint16_t* to) {
    size_t i = 0;
    for (; i + kStep <= n; i += kStep) {
        const __m256i v =
            _mm256_srli_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i)), 4);
        const __m256i x =
            _mm256_add_epi16(_mm256_mullo_epi16(v, _mm256_set1_epi16(15)), _mm256_set1_epi16(2047));
        const __m256i q = _mm256_srli_epi16(
            _mm256_add_epi16(_mm256_add_epi16(x, _mm256_srli_epi16(x, 12)), _mm256_set1_epi16(1)),
            12);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + i),
                            _mm256_add_epi16(_mm256_slli_epi16(v, 4), q));
    }
    plainHostRows().twelveToSixteen(from + i, n - i, to + i);
}

// v / 4095 as one float division, as the plain form does it.
HOST_TARGET_AVX2 void twelveToFloats(const uint16_t* from, size_t n, float* to) {
    const __m256 full = _mm256_set1_ps(4095.0f);
    size_t i = 0;
    for (; i + kStep <= n; i += kStep) {
        __m256i low, high;
        widen(from + i, &low, &high);
        _mm256_storeu_ps(to + i,
                         _mm256_div_ps(_mm256_cvtepi32_ps(_mm256_srli_epi32(low, 4)), full));
        _mm256_storeu_ps(to + i + 8,
                         _mm256_div_ps(_mm256_cvtepi32_ps(_mm256_srli_epi32(high, 4)), full));
    }
    plainHostRows().twelveToFloats(from + i, n - i, to + i);
}
}  // namespace

const HostRowKernels& avx2HostRows() {
    static const HostRowKernels kernels = {wordsToTwelve, floatsToTwelve,  wordsToEight,
                                           floatsToEight, twelveToSixteen, twelveToFloats};
    return kernels;
}

#else

const HostRowKernels& avx2HostRows() {
    static const HostRowKernels none = {};
    return none;
}

#endif
