// The AVX2 forms of the fixed-point samplers for runs of positions. Four
// positions are placed at once (floor, table indices, interior test, all in
// the doubles the plain samplers use); each interior sample is then summed
// in vector registers with exactly the plain sampler's integer arithmetic,
// and any other position (near or past the border, or where the fifth tap
// would count) goes to the plain sampler. Integer sums are exact and wrap
// alike in any order, so every result is bit for bit the plain one.
#include "XfmPointRuns.h"

#if ZEL_AVX2_FORMS

#include <immintrin.h>

namespace {

constexpr int kLanes = 4;
constexpr int kMid = kXfmKernelSteps;
constexpr int kFar = 2 * kXfmKernelSteps;
constexpr int kBilinearBits = 13;
constexpr double kBilinearOne = 1 << kBilinearBits;

struct Placed {
    alignas(16) int32_t x0[kLanes];
    alignas(16) int32_t y0[kLanes];
    alignas(16) int32_t fx[kLanes];
    alignas(16) int32_t fy[kLanes];
    int inside;  // one bit per lane: the sampler's whole neighbourhood lies in the image
};

// Four positions: integer parts, fractions times `steps` truncated, and the
// lanes whose integer parts lie in [low, high) on both axes, where the
// sampler's whole neighbourhood is inside the image.
ZEL_TARGET_AVX2 inline Placed place(const double* xs, const double* ys, double steps, double low,
                                    double highX, double highY) {
    const __m256d x = _mm256_loadu_pd(xs);
    const __m256d y = _mm256_loadu_pd(ys);
    const __m256d xf = _mm256_floor_pd(x);
    const __m256d yf = _mm256_floor_pd(y);
    // Ordered comparisons: a NaN position is never inside.
    const __m256d inX = _mm256_and_pd(_mm256_cmp_pd(xf, _mm256_set1_pd(low), _CMP_GE_OQ),
                                      _mm256_cmp_pd(xf, _mm256_set1_pd(highX), _CMP_LT_OQ));
    const __m256d inY = _mm256_and_pd(_mm256_cmp_pd(yf, _mm256_set1_pd(low), _CMP_GE_OQ),
                                      _mm256_cmp_pd(yf, _mm256_set1_pd(highY), _CMP_LT_OQ));
    Placed at;
    at.inside = _mm256_movemask_pd(_mm256_and_pd(inX, inY));
    if (at.inside == 0) return at;
    const __m256d scale = _mm256_set1_pd(steps);
    _mm_store_si128(reinterpret_cast<__m128i*>(at.x0), _mm256_cvttpd_epi32(xf));
    _mm_store_si128(reinterpret_cast<__m128i*>(at.y0), _mm256_cvttpd_epi32(yf));
    _mm_store_si128(reinterpret_cast<__m128i*>(at.fx),
                    _mm256_cvttpd_epi32(_mm256_mul_pd(_mm256_sub_pd(x, xf), scale)));
    _mm_store_si128(reinterpret_cast<__m128i*>(at.fy),
                    _mm256_cvttpd_epi32(_mm256_mul_pd(_mm256_sub_pd(y, yf), scale)));
    return at;
}

// One interior 5-point sample from the four taps -1..+2 along each axis (the
// fifth, at -2, weighs 0 here). Per row: H = (sum of pixel * weight) >> 13,
// then V = (sum of H * row weight) >> 13, clamped to 0..32767. The row sum is
// taken with 16-bit products: channel - 32768 times the weight, plus 32768
// times the weights' sum.
ZEL_TARGET_AVX2 inline void fivePoint(const ImageZel* img, const int32_t* K,
                                      const XfmFivePointTable& table, int x0, int y0, int fx,
                                      int fy, PixelZel* out) {
    const __m256i pairUp = _mm256_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15, 0,
                                            1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
    const __m256i offset = _mm256_set1_epi16(static_cast<int16_t>(0x8000));
    const __m256i weights = _mm256_load_si256(reinterpret_cast<const __m256i*>(table.pairs[fx]));
    const __m128i offsetSum = _mm_set1_epi32(static_cast<int32_t>(table.offsetSum[fx]));
    const int32_t rowWeight[4] = {K[kMid + fy], K[fy], K[kMid - fy], K[kFar - fy]};
    __m128i sum = _mm_setzero_si128();
    for (int r = 0; r < 4; ++r) {
        const PixelZel* taps = img->rows[y0 - 1 + r] + (x0 - 1);
        __m256i p = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(taps));
        p = _mm256_shuffle_epi8(_mm256_xor_si256(p, offset), pairUp);
        const __m256i products = _mm256_madd_epi16(p, weights);
        __m128i h =
            _mm_add_epi32(_mm256_castsi256_si128(products), _mm256_extracti128_si256(products, 1));
        h = _mm_srai_epi32(_mm_add_epi32(h, offsetSum), kXfmFixedBits);
        sum = _mm_add_epi32(sum, _mm_mullo_epi32(h, _mm_set1_epi32(rowWeight[r])));
    }
    __m128i v = _mm_srai_epi32(sum, kXfmFixedBits);
    v = _mm_min_epi32(_mm_max_epi32(v, _mm_setzero_si128()), _mm_set1_epi32(kZelFull15));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi32(v, v));
}

// One interior bilinear sample: top = p00 + ((p10 - p00) * fx >> 13), bottom
// likewise, v = top + ((bottom - top) * fy >> 13), then 32767 if v >= 32768.
ZEL_TARGET_AVX2 inline void bilinear(const ImageZel* img, int x0, int y0, int fx, int fy,
                                     PixelZel* out) {
    const __m256i upper = _mm256_cvtepu16_epi32(
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(img->rows[y0] + x0)));
    const __m256i lower = _mm256_cvtepu16_epi32(
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(img->rows[y0 + 1] + x0)));
    const __m256i left = _mm256_permute2x128_si256(upper, lower, 0x20);   // p00 | p01
    const __m256i right = _mm256_permute2x128_si256(upper, lower, 0x31);  // p10 | p11
    const __m256i across = _mm256_add_epi32(
        left,
        _mm256_srai_epi32(_mm256_mullo_epi32(_mm256_sub_epi32(right, left), _mm256_set1_epi32(fx)),
                          kBilinearBits));
    const __m128i top = _mm256_castsi256_si128(across);
    const __m128i bottom = _mm256_extracti128_si256(across, 1);
    __m128i v = _mm_add_epi32(
        top, _mm_srai_epi32(_mm_mullo_epi32(_mm_sub_epi32(bottom, top), _mm_set1_epi32(fy)),
                            kBilinearBits));
    // Only the top is clamped; the low 16 bits are stored as the plain cast does.
    v = _mm_and_si128(_mm_min_epi32(v, _mm_set1_epi32(kZelFull15)), _mm_set1_epi32(0xFFFF));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi32(v, v));
}

}  // namespace

ZEL_TARGET_AVX2 void xfmFivePointRunAvx2(ImageXfmZel& xfm, const XfmFivePointTable& table,
                                         ImageZel* img, const double* xs, const double* ys,
                                         int count, PixelZel* out) {
    const int32_t* K = xfm.kernelFixed;
    // Inside: x0 - 2 >= 0 and x0 + 2 < width, likewise for rows.
    const double highX = img->width - 2.0, highY = img->height - 2.0;
    int k = 0;
    for (; k + kLanes <= count; k += kLanes) {
        const Placed at = place(xs + k, ys + k, kXfmKernelSteps, 2.0, highX, highY);
        for (int lane = 0; lane < kLanes; ++lane) {
            const bool fast = (at.inside >> lane & 1) != 0 &&
                              (table.farTapZero || (at.fx[lane] != 0 && at.fy[lane] != 0));
            if (fast) {
                fivePoint(img, K, table, at.x0[lane], at.y0[lane], at.fx[lane], at.fy[lane],
                          out + k + lane);
            } else {
                out[k + lane] = xfm.general_5_point_sample_integer(img, xs[k + lane], ys[k + lane]);
            }
        }
    }
    for (; k < count; ++k) out[k] = xfm.general_5_point_sample_integer(img, xs[k], ys[k]);
}

ZEL_TARGET_AVX2 void xfmBilinearRunAvx2(ImageXfmZel& xfm, ImageZel* img, const double* xs,
                                        const double* ys, int count, PixelZel* out) {
    // Inside: x0 >= 0 and x0 + 1 < width, likewise for rows.
    const double highX = img->width - 1.0, highY = img->height - 1.0;
    int k = 0;
    for (; k + kLanes <= count; k += kLanes) {
        const Placed at = place(xs + k, ys + k, kBilinearOne, 0.0, highX, highY);
        for (int lane = 0; lane < kLanes; ++lane) {
            if ((at.inside >> lane & 1) != 0) {
                bilinear(img, at.x0[lane], at.y0[lane], at.fx[lane], at.fy[lane], out + k + lane);
            } else {
                out[k + lane] = xfm.bilinear_sample_integer(img, xs[k + lane], ys[k + lane]);
            }
        }
    }
    for (; k < count; ++k) out[k] = xfm.bilinear_sample_integer(img, xs[k], ys[k]);
}

#endif
