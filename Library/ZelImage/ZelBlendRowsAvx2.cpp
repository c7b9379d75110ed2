// Four pixels (sixteen channels) at a time: the channels widened to 32-bit
// integers and converted to floats exactly, the same two products and sum in
// single precision, truncated, and the low 16 bits kept.
#include "ZelBlendRows.h"

#if ZEL_AVX2_FORMS

#include <immintrin.h>

namespace {

constexpr long kPixelsPerStep = 4;

ZEL_TARGET_AVX2 inline __m256i blendTwo(const PixelZel* row, const PixelZel* other, __m256 amount,
                                        __m256 keep) {
    const __m256 t = _mm256_cvtepi32_ps(
        _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(row))));
    const __m256 o = _mm256_cvtepi32_ps(
        _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(other))));
    const __m256 v = _mm256_add_ps(_mm256_mul_ps(o, amount), _mm256_mul_ps(t, keep));
    return _mm256_and_si256(_mm256_cvttps_epi32(v), _mm256_set1_epi32(0xFFFF));
}

}  // namespace

ZEL_TARGET_AVX2 void zelBlendRowAvx2(PixelZel* row, const PixelZel* other, long count, float amount,
                                     float keep) {
    const __m256 a = _mm256_set1_ps(amount);
    const __m256 k = _mm256_set1_ps(keep);
    long x = 0;
    for (; x + kPixelsPerStep <= count; x += kPixelsPerStep) {
        const __m256i first = blendTwo(row + x, other + x, a, k);
        const __m256i second = blendTwo(row + x + 2, other + x + 2, a, k);
        // packus works within 128-bit halves: put the four pixels back in order.
        const __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi32(first, second), 0xD8);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(row + x), packed);
    }
    zelBlendRowPlain(row + x, other + x, count - x, amount, keep);
}

#endif
