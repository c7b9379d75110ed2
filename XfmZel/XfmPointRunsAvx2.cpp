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
// Positions ahead whose source rows are fetched into the cache early: the
// rows of a sample are apart in memory, and the map tells where they are.
constexpr int kPrefetchAhead = 32;
constexpr int kBilinearBits = 13;
constexpr double kBilinearOne = 1 << kBilinearBits;

// Address-map positions: four entries at once, widened to doubles exactly.
struct MapSource {
    const float* xy;
    ZEL_TARGET_AVX2 void four(int k, __m256d& x, __m256d& y) const {
        // x0 y0 x1 y1 x2 y2 x3 y3 -> x0 x1 x2 x3 | y0 y1 y2 y3
        const __m256 split = _mm256_permutevar8x32_ps(_mm256_loadu_ps(xy + 2 * k),
                                                      _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
        x = _mm256_cvtps_pd(_mm256_castps256_ps128(split));
        y = _mm256_cvtps_pd(_mm256_extractf128_ps(split, 1));
    }
    double x(int k) const { return xy[2 * k]; }
    double y(int k) const { return xy[2 * k + 1]; }
};

// Warp positions: (a·k + c·y + e)·r and (b·k + d·y + f)·r, in that order of
// operations, four columns at once.
struct AffineSource {
    explicit AffineSource(const XfmAffinePositions& at) : p(at), cy(at.c * at.y), dy(at.d * at.y) {}
    XfmAffinePositions p;
    double cy, dy;  // c·y and d·y: the same products in every column
    ZEL_TARGET_AVX2 void four(int k, __m256d& x, __m256d& y) const {
        const __m256d column =
            _mm256_cvtepi32_pd(_mm_add_epi32(_mm_set1_epi32(k), _mm_setr_epi32(0, 1, 2, 3)));
        const __m256d r = _mm256_set1_pd(p.r);
        x = _mm256_mul_pd(_mm256_add_pd(_mm256_add_pd(_mm256_mul_pd(_mm256_set1_pd(p.a), column),
                                                      _mm256_set1_pd(cy)),
                                        _mm256_set1_pd(p.e)),
                          r);
        y = _mm256_mul_pd(_mm256_add_pd(_mm256_add_pd(_mm256_mul_pd(_mm256_set1_pd(p.b), column),
                                                      _mm256_set1_pd(dy)),
                                        _mm256_set1_pd(p.f)),
                          r);
    }
    double x(int k) const { return (p.a * k + cy + p.e) * p.r; }
    double y(int k) const { return (p.b * k + dy + p.f) * p.r; }
};

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
ZEL_TARGET_AVX2 inline Placed place(__m256d x, __m256d y, double steps, double low, double highX,
                                    double highY) {
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

ZEL_TARGET_AVX2 inline __m128i load2(const PixelZel* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// Two rows' horizontal sums of one 5-point sample, rows in the two halves:
// H = (sum of pixel * weight over taps -1..+2) >> 13. The sums are taken with
// 16-bit products, channel - 32768 times the weight, plus 32768 times the
// weights' sum; the four taps of a row sit in two halves of two registers.
ZEL_TARGET_AVX2 inline __m256i rowPair(const PixelZel* upper, const PixelZel* lower, __m256i left,
                                       __m256i right, __m256i offsetSum) {
    const __m256i pairUp = _mm256_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15, 0,
                                            1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
    const __m256i offset = _mm256_set1_epi16(static_cast<int16_t>(0x8000));
    __m256i near = _mm256_inserti128_si256(_mm256_castsi128_si256(load2(upper)), load2(lower), 1);
    __m256i far =
        _mm256_inserti128_si256(_mm256_castsi128_si256(load2(upper + 2)), load2(lower + 2), 1);
    near = _mm256_shuffle_epi8(_mm256_xor_si256(near, offset), pairUp);
    far = _mm256_shuffle_epi8(_mm256_xor_si256(far, offset), pairUp);
    const __m256i sum = _mm256_add_epi32(
        _mm256_add_epi32(_mm256_madd_epi16(near, left), _mm256_madd_epi16(far, right)), offsetSum);
    return _mm256_srai_epi32(sum, kXfmFixedBits);
}

// One interior 5-point sample from the four taps -1..+2 along each axis (the
// fifth, at -2, weighs 0 here): V = (sum of H * row weight) >> 13, clamped to
// 0..32767.
ZEL_TARGET_AVX2 inline void fivePoint(const ImageZel* img, const XfmFivePointTable& table, int x0,
                                      int y0, int fx, int fy, PixelZel* out) {
    const XfmFivePointTable::Entry& across = table.across[fx];
    const __m256i left = _mm256_set1_epi32(static_cast<int32_t>(across.leftPair));
    const __m256i right = _mm256_set1_epi32(static_cast<int32_t>(across.rightPair));
    const __m256i offsetSum = _mm256_set1_epi32(static_cast<int32_t>(across.offsetSum));
    const __m256i down =
        _mm256_castsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(table.down[fy])));
    const __m256i downTop =
        _mm256_permutevar8x32_epi32(down, _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1));
    const __m256i downBottom =
        _mm256_permutevar8x32_epi32(down, _mm256_setr_epi32(2, 2, 2, 2, 3, 3, 3, 3));
    PixelZel* const* rows = img->rows;
    const int x = x0 - 1;
    const __m256i top = rowPair(rows[y0 - 1] + x, rows[y0] + x, left, right, offsetSum);
    const __m256i bottom = rowPair(rows[y0 + 1] + x, rows[y0 + 2] + x, left, right, offsetSum);
    const __m256i sum =
        _mm256_add_epi32(_mm256_mullo_epi32(top, downTop), _mm256_mullo_epi32(bottom, downBottom));
    __m128i v = _mm_add_epi32(_mm256_castsi256_si128(sum), _mm256_extracti128_si256(sum, 1));
    v = _mm_srai_epi32(v, kXfmFixedBits);
    v = _mm_min_epi32(_mm_max_epi32(v, _mm_setzero_si128()), _mm_set1_epi32(kZelFull15));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi32(v, v));
}

// One interior bilinear sample: top = p00 + ((p10 - p00) * fx >> 13), bottom
// likewise, v = top + ((bottom - top) * fy >> 13), then 32767 if v >= 32768.
ZEL_TARGET_AVX2 inline void bilinear(const ImageZel* img, int x0, int y0, int fx, int fy,
                                     PixelZel* out) {
    const __m256i upper = _mm256_cvtepu16_epi32(load2(img->rows[y0] + x0));
    const __m256i lower = _mm256_cvtepu16_epi32(load2(img->rows[y0 + 1] + x0));
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

// Asks for the four source rows of an interior 5-point sample at position k.
template <class Source>
ZEL_TARGET_AVX2 inline void prefetchRows(const ImageZel* img, const Source& source, int k,
                                         double highX, double highY) {
    const double x = source.x(k), y = source.y(k);
    if (!(x >= 2.0 && x < highX && y >= 2.0 && y < highY)) return;
    const int left = static_cast<int>(x) - 1, top = static_cast<int>(y) - 1;
    for (int r = 0; r < 4; ++r) {
        // As an instruction of its own: GCC drops __builtin_prefetch in this loop.
        const PixelZel* taps = img->rows[top + r] + left;
        asm volatile("prefetcht0 %0" : : "m"(*taps));
    }
}

template <class Source>
ZEL_TARGET_AVX2 void fivePointRun(ImageXfmZel& xfm, const XfmFivePointTable& table, ImageZel* img,
                                  const Source& source, int count, PixelZel* out) {
    // Inside: x0 - 2 >= 0 and x0 + 2 < width, likewise for rows.
    const double highX = img->width - 2.0, highY = img->height - 2.0;
    int k = 0;
    for (; k + kLanes <= count; k += kLanes) {
        __m256d x, y;
        source.four(k, x, y);
        const Placed at = place(x, y, kXfmKernelSteps, 2.0, highX, highY);
        if (k + kPrefetchAhead < count) prefetchRows(img, source, k + kPrefetchAhead, highX, highY);
        for (int lane = 0; lane < kLanes; ++lane) {
            const bool fast = (at.inside >> lane & 1) != 0 &&
                              (table.farTapZero || (at.fx[lane] != 0 && at.fy[lane] != 0));
            if (fast) {
                fivePoint(img, table, at.x0[lane], at.y0[lane], at.fx[lane], at.fy[lane],
                          out + k + lane);
            } else {
                out[k + lane] =
                    xfm.general_5_point_sample_integer(img, source.x(k + lane), source.y(k + lane));
            }
        }
    }
    for (; k < count; ++k)
        out[k] = xfm.general_5_point_sample_integer(img, source.x(k), source.y(k));
}

template <class Source>
ZEL_TARGET_AVX2 void bilinearRun(ImageXfmZel& xfm, ImageZel* img, const Source& source, int count,
                                 PixelZel* out) {
    // Inside: x0 >= 0 and x0 + 1 < width, likewise for rows.
    const double highX = img->width - 1.0, highY = img->height - 1.0;
    int k = 0;
    for (; k + kLanes <= count; k += kLanes) {
        __m256d x, y;
        source.four(k, x, y);
        const Placed at = place(x, y, kBilinearOne, 0.0, highX, highY);
        for (int lane = 0; lane < kLanes; ++lane) {
            if ((at.inside >> lane & 1) != 0) {
                bilinear(img, at.x0[lane], at.y0[lane], at.fx[lane], at.fy[lane], out + k + lane);
            } else {
                out[k + lane] =
                    xfm.bilinear_sample_integer(img, source.x(k + lane), source.y(k + lane));
            }
        }
    }
    for (; k < count; ++k) out[k] = xfm.bilinear_sample_integer(img, source.x(k), source.y(k));
}

}  // namespace

ZEL_TARGET_AVX2 void xfmFivePointRunAvx2(ImageXfmZel& xfm, const XfmFivePointTable& table,
                                         ImageZel* img, const XfmMapPositions& at, int count,
                                         PixelZel* out) {
    fivePointRun(xfm, table, img, MapSource{at.xy}, count, out);
}

ZEL_TARGET_AVX2 void xfmFivePointRunAvx2(ImageXfmZel& xfm, const XfmFivePointTable& table,
                                         ImageZel* img, const XfmAffinePositions& at, int count,
                                         PixelZel* out) {
    fivePointRun(xfm, table, img, AffineSource(at), count, out);
}

ZEL_TARGET_AVX2 void xfmBilinearRunAvx2(ImageXfmZel& xfm, ImageZel* img, const XfmMapPositions& at,
                                        int count, PixelZel* out) {
    bilinearRun(xfm, img, MapSource{at.xy}, count, out);
}

ZEL_TARGET_AVX2 void xfmBilinearRunAvx2(ImageXfmZel& xfm, ImageZel* img,
                                        const XfmAffinePositions& at, int count, PixelZel* out) {
    bilinearRun(xfm, img, AffineSource(at), count, out);
}

#endif
