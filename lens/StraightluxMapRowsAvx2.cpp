// The AVX2 forms of the address-map row fillers: four pixels of a row at once
// in doubles (Remove) or eight in floats (Add). Every lane runs exactly the
// operations of the plain form in the same order (no fused multiply-adds), so
// each entry and each correction count is bit for bit the plain one; a lane
// that has finished is masked out while the others go on.
#include "StraightluxMapRows.h"

#if ZEL_AVX2_FORMS

#include <immintrin.h>

#include <cstddef>

namespace {

constexpr size_t kFloatsPerEntry = 2;
constexpr int kRemoveLanes = 4;
constexpr int kRemoveGroups = 4;  // groups of four pixels solved together
constexpr int kAddLanes = 8;

ZEL_TARGET_AVX2 inline __m256d absolute(__m256d v) {
    return _mm256_andnot_pd(_mm256_set1_pd(-0.0), v);
}

ZEL_TARGET_AVX2 inline __m256d negated(__m256d v) { return _mm256_xor_pd(_mm256_set1_pd(-0.0), v); }

ZEL_TARGET_AVX2 inline __m256d add(__m256d a, __m256d b) { return _mm256_add_pd(a, b); }
ZEL_TARGET_AVX2 inline __m256d sub(__m256d a, __m256d b) { return _mm256_sub_pd(a, b); }
ZEL_TARGET_AVX2 inline __m256d mul(__m256d a, __m256d b) { return _mm256_mul_pd(a, b); }
ZEL_TARGET_AVX2 inline __m256d all(double v) { return _mm256_set1_pd(v); }

// The state of four pixels of a Remove-mode row under Newton's method.
struct Four {
    __m256d u, pu, pv;
    __m256d active, converged;  // lane masks: still solving; result to be written
};

// Pixels (i .. i + 3, j): the target and the seed (seedInverse).
ZEL_TARGET_AVX2 inline Four seedFour(const StraightluxModel::InversePlan& c, int32_t i,
                                     __m256d vv) {
    const __m256d one = all(1.0);
    const __m256d x =
        _mm256_cvtepi32_pd(_mm_add_epi32(_mm_set1_epi32(i), _mm_setr_epi32(0, 1, 2, 3)));
    Four f;
    f.u = mul(sub(x, all(c.centreX)), all(c.inverseR));
    const __m256d u2 = mul(f.u, f.u);
    const __m256d v2 = mul(vv, vv);
    const __m256d u4 = mul(u2, u2);
    const __m256d v4 = mul(v2, v2);
    const __m256d u2v2 = mul(u2, v2);
    f.pu =
        mul(f.u,
            add(add(add(sub(sub(one, mul(all(c.k1), u2)), mul(all(c.A), v2)), mul(all(c.puU4), u4)),
                    mul(all(c.puU2V2), u2v2)),
                mul(all(c.puV4), v4)));
    f.pv = mul(
        vv, add(add(add(sub(sub(one, mul(all(c.a), u2)), mul(all(c.B), v2)), mul(all(c.pvU4), u4)),
                    mul(all(c.pvU2V2), u2v2)),
                mul(all(c.pvV4), v4)));
    f.active = _mm256_castsi256_pd(_mm256_set1_epi64x(-1));
    f.converged = _mm256_setzero_pd();
    return f;
}

// One Newton step of the still-active lanes after n corrections: the forward
// polynomial (evaluateForward), the inverse Jacobian (invertJacobian) and the
// correction. Returns the corrections of the lanes that stopped here.
ZEL_TARGET_AVX2 inline int64_t stepFour(const StraightluxModel::InversePlan& c, __m256d vv,
                                        int32_t n, Four& f) {
    const __m256d one = all(1.0);
    const __m256d pu = f.pu, pv = f.pv;
    const __m256d p2 = mul(pu, pu);
    const __m256d q2 = mul(pv, pv);
    const __m256d r2 = add(p2, q2);
    const __m256d r4 = mul(r2, r2);
    const __m256d fx =
        add(pu, mul(add(add(mul(all(c.k1), p2), mul(all(c.A), q2)), mul(all(c.k2), r4)), pu));
    const __m256d fy =
        add(pv, mul(add(add(mul(all(c.a), p2), mul(all(c.B), q2)), mul(all(c.b), r4)), pv));

    const __m256d p4 = mul(p2, p2);
    const __m256d q4 = mul(q2, q2);
    const __m256d p2q2 = mul(p2, q2);
    const __m256d mixed = add(mul(mul(p2, pu), pv), mul(mul(pu, q2), pv));
    const __m256d jxx = add(add(add(one, mul(all(c.jxxP2), p2)), mul(all(c.A), q2)),
                            mul(all(c.k2), add(add(mul(all(5.0), p4), mul(all(6.0), p2q2)), q4)));
    const __m256d jxy = add(mul(mul(all(c.jxyPQ), pu), pv), mul(all(c.jxyMixed), mixed));
    const __m256d jyx = add(mul(mul(all(c.jyxPQ), pu), pv), mul(all(c.jyxMixed), mixed));
    const __m256d jyy = add(add(add(one, mul(all(c.a), p2)), mul(all(c.jyyQ2), q2)),
                            mul(all(c.b), add(add(p4, mul(all(6.0), p2q2)), mul(all(5.0), q4))));
    const __m256d det = sub(mul(jxx, jyy), mul(jxy, jyx));
    const __m256d singular = _mm256_and_pd(
        _mm256_cmp_pd(absolute(det), all(StraightluxModel::kSingularDeterminant), _CMP_LT_OQ),
        f.active);

    const __m256d inverseDet = _mm256_div_pd(one, det);
    const __m256d i00 = mul(jyy, inverseDet);
    const __m256d i01 = mul(negated(jxy), inverseDet);
    const __m256d i10 = mul(negated(jyx), inverseDet);
    const __m256d i11 = mul(jxx, inverseDet);
    const __m256d ex = sub(fx, f.u);
    const __m256d ey = sub(fy, vv);
    const __m256d dx = add(mul(i00, ex), mul(i01, ey));
    const __m256d dy = add(mul(i10, ex), mul(i11, ey));
    const __m256d tolerance = all(StraightluxModel::kConvergenceTolerance);
    const __m256d small = _mm256_and_pd(_mm256_cmp_pd(absolute(dx), tolerance, _CMP_LT_OQ),
                                        _mm256_cmp_pd(absolute(dy), tolerance, _CMP_LT_OQ));
    const __m256d done = _mm256_andnot_pd(singular, _mm256_and_pd(small, f.active));
    const __m256d stop = _mm256_or_pd(singular, done);

    // A lane that stops here made n corrections; the others correct once more.
    f.converged = _mm256_or_pd(f.converged, done);
    f.active = _mm256_andnot_pd(stop, f.active);
    f.pu = _mm256_blendv_pd(pu, sub(pu, dx), f.active);
    f.pv = _mm256_blendv_pd(pv, sub(pv, dy), f.active);
    return static_cast<int64_t>(n) * __builtin_popcount(_mm256_movemask_pd(stop));
}

// X = R·pu + centreX, Y = R·pv + centreY, to single precision; (0, 0) where
// the solve failed.
ZEL_TARGET_AVX2 inline void storeFour(const StraightluxModel::InversePlan& c, const Four& f,
                                      float* entry) {
    const __m128 xs =
        _mm256_cvtpd_ps(_mm256_and_pd(f.converged, add(mul(all(c.R), f.pu), all(c.centreX))));
    const __m128 ys =
        _mm256_cvtpd_ps(_mm256_and_pd(f.converged, add(mul(all(c.R), f.pv), all(c.centreY))));
    _mm_storeu_ps(entry, _mm_unpacklo_ps(xs, ys));
    _mm_storeu_ps(entry + 4, _mm_unpackhi_ps(xs, ys));
}

// Pixels (i .. i + 4 * Groups - 1, j), solved together so that the groups'
// independent chains of operations overlap; returns their corrections.
template <int Groups>
ZEL_TARGET_AVX2 int64_t removeGroups(const StraightluxModel::InversePlan& c, int32_t i, double v,
                                     float* entry) {
    const __m256d vv = all(v);
    Four f[Groups];
    for (int g = 0; g < Groups; ++g) f[g] = seedFour(c, i + g * kRemoveLanes, vv);
    int64_t total = 0;
    for (int32_t n = 0;; ++n) {
        int going = 0;
        for (int g = 0; g < Groups; ++g) {
            total += stepFour(c, vv, n, f[g]);
            going |= _mm256_movemask_pd(f[g].active);
        }
        if (going == 0) break;
        if (n + 1 == StraightluxModel::kMaxCorrections) {
            // Not converged: counted in full, and the map takes (0, 0).
            for (int g = 0; g < Groups; ++g)
                total += static_cast<int64_t>(StraightluxModel::kMaxCorrections) *
                         __builtin_popcount(_mm256_movemask_pd(f[g].active));
            break;
        }
    }
    for (int g = 0; g < Groups; ++g) storeFour(c, f[g], entry + g * kRemoveLanes * kFloatsPerEntry);
    return total;
}

}  // namespace

ZEL_TARGET_AVX2 int64_t fillRemoveRowsAvx2(const StraightluxModel::InversePlan& plan, int32_t width,
                                           float* map, long first, long last) {
    int64_t total = 0;
    for (long j = first; j <= last; ++j) {
        float* row = map + static_cast<size_t>(j) * width * kFloatsPerEntry;
        const double v = (static_cast<double>(j) - plan.centreY) * plan.inverseR;
        int32_t i = 0;
        for (; i + kRemoveGroups * kRemoveLanes <= width; i += kRemoveGroups * kRemoveLanes)
            total += removeGroups<kRemoveGroups>(plan, i, v, row + i * kFloatsPerEntry);
        for (; i + kRemoveLanes <= width; i += kRemoveLanes)
            total += removeGroups<1>(plan, i, v, row + i * kFloatsPerEntry);
        // The rest of the row one pixel at a time.
        for (; i < width; ++i) total += fillRemoveEntry(plan, i, j, row + i * kFloatsPerEntry);
    }
    return total;
}

ZEL_TARGET_AVX2 void fillAddRowsAvx2(const StraightluxModel::FloatCoefficients& c, int32_t width,
                                     float* map, long first, long last) {
    const __m256 centreX = _mm256_set1_ps(c.centreX);
    const __m256 inverseR = _mm256_set1_ps(c.inverseR);
    const __m256 R = _mm256_set1_ps(c.R);
    const __m256 k1 = _mm256_set1_ps(c.k1), k2 = _mm256_set1_ps(c.k2);
    const __m256 A = _mm256_set1_ps(c.A), a = _mm256_set1_ps(c.a);
    const __m256 B = _mm256_set1_ps(c.B), b = _mm256_set1_ps(c.b);
    for (long j = first; j <= last; ++j) {
        float* row = map + static_cast<size_t>(j) * width * kFloatsPerEntry;
        const float vs = (static_cast<float>(j) - c.centreY) * c.inverseR;
        const __m256 v = _mm256_set1_ps(vs);
        const __m256 v2 = _mm256_mul_ps(v, v);
        int32_t i = 0;
        for (; i + kAddLanes <= width; i += kAddLanes) {
            // mapUndistortedToDistortedFloat, eight pixels at once.
            const __m256 x = _mm256_cvtepi32_ps(
                _mm256_add_epi32(_mm256_set1_epi32(i), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7)));
            const __m256 u = _mm256_mul_ps(_mm256_sub_ps(x, centreX), inverseR);
            const __m256 u2 = _mm256_mul_ps(u, u);
            const __m256 r2 = _mm256_add_ps(u2, v2);
            const __m256 r4 = _mm256_mul_ps(r2, r2);
            const __m256 sx = _mm256_add_ps(
                _mm256_add_ps(_mm256_mul_ps(k1, u2), _mm256_mul_ps(A, v2)), _mm256_mul_ps(k2, r4));
            const __m256 sy = _mm256_add_ps(
                _mm256_add_ps(_mm256_mul_ps(a, u2), _mm256_mul_ps(B, v2)), _mm256_mul_ps(b, r4));
            const __m256 outX =
                _mm256_add_ps(_mm256_mul_ps(_mm256_add_ps(u, _mm256_mul_ps(sx, u)), R), centreX);
            const __m256 outY =
                _mm256_add_ps(_mm256_mul_ps(_mm256_add_ps(v, _mm256_mul_ps(sy, v)), R),
                              _mm256_set1_ps(c.centreY));
            // Interleave to (x, y) pairs in pixel order.
            const __m256 low = _mm256_unpacklo_ps(outX, outY);   // 0 1 | 4 5
            const __m256 high = _mm256_unpackhi_ps(outX, outY);  // 2 3 | 6 7
            float* entry = row + i * kFloatsPerEntry;
            _mm256_storeu_ps(entry, _mm256_permute2f128_ps(low, high, 0x20));
            _mm256_storeu_ps(entry + kAddLanes, _mm256_permute2f128_ps(low, high, 0x31));
        }
        for (; i < width; ++i) {
            StraightluxModel::mapUndistortedToDistortedFloat(
                c, static_cast<float>(i), static_cast<float>(j), row[i * kFloatsPerEntry],
                row[i * kFloatsPerEntry + 1]);
        }
    }
}

#endif
