// 8 x 8 blocks transposed in registers (unpack, shuffle, swap of halves).
#include "ZelStripTranspose.h"

#if ZEL_AVX2_FORMS

#include <immintrin.h>

namespace {

constexpr long kBlock = 8;

ZEL_TARGET_AVX2 inline void transpose8(__m256 r[8]) {
    const __m256 t0 = _mm256_unpacklo_ps(r[0], r[1]);
    const __m256 t1 = _mm256_unpackhi_ps(r[0], r[1]);
    const __m256 t2 = _mm256_unpacklo_ps(r[2], r[3]);
    const __m256 t3 = _mm256_unpackhi_ps(r[2], r[3]);
    const __m256 t4 = _mm256_unpacklo_ps(r[4], r[5]);
    const __m256 t5 = _mm256_unpackhi_ps(r[4], r[5]);
    const __m256 t6 = _mm256_unpacklo_ps(r[6], r[7]);
    const __m256 t7 = _mm256_unpackhi_ps(r[6], r[7]);
    const __m256 s0 = _mm256_shuffle_ps(t0, t2, 0x44);
    const __m256 s1 = _mm256_shuffle_ps(t0, t2, 0xEE);
    const __m256 s2 = _mm256_shuffle_ps(t1, t3, 0x44);
    const __m256 s3 = _mm256_shuffle_ps(t1, t3, 0xEE);
    const __m256 s4 = _mm256_shuffle_ps(t4, t6, 0x44);
    const __m256 s5 = _mm256_shuffle_ps(t4, t6, 0xEE);
    const __m256 s6 = _mm256_shuffle_ps(t5, t7, 0x44);
    const __m256 s7 = _mm256_shuffle_ps(t5, t7, 0xEE);
    r[0] = _mm256_permute2f128_ps(s0, s4, 0x20);
    r[1] = _mm256_permute2f128_ps(s1, s5, 0x20);
    r[2] = _mm256_permute2f128_ps(s2, s6, 0x20);
    r[3] = _mm256_permute2f128_ps(s3, s7, 0x20);
    r[4] = _mm256_permute2f128_ps(s0, s4, 0x31);
    r[5] = _mm256_permute2f128_ps(s1, s5, 0x31);
    r[6] = _mm256_permute2f128_ps(s2, s6, 0x31);
    r[7] = _mm256_permute2f128_ps(s3, s7, 0x31);
}

}  // namespace

ZEL_TARGET_AVX2 long zelRowsToStripAvx2(const float* const* rows, long lanes, long width,
                                        float* strip) {
    long x = 0;
    for (; x + kBlock <= width; x += kBlock)
        for (long l0 = 0; l0 < lanes; l0 += kBlock) {
            __m256 r[kBlock];
            for (long i = 0; i < kBlock; ++i) r[i] = _mm256_loadu_ps(rows[l0 + i] + x);
            transpose8(r);
            for (long i = 0; i < kBlock; ++i) _mm256_storeu_ps(strip + (x + i) * lanes + l0, r[i]);
        }
    return x;
}

ZEL_TARGET_AVX2 long zelStripToRowsAvx2(const float* strip, long lanes, long width,
                                        float* const* rows) {
    long x = 0;
    for (; x + kBlock <= width; x += kBlock)
        for (long l0 = 0; l0 < lanes; l0 += kBlock) {
            __m256 r[kBlock];
            for (long i = 0; i < kBlock; ++i) r[i] = _mm256_loadu_ps(strip + (x + i) * lanes + l0);
            transpose8(r);
            for (long i = 0; i < kBlock; ++i) _mm256_storeu_ps(rows[l0 + i] + x, r[i]);
        }
    return x;
}

#endif
