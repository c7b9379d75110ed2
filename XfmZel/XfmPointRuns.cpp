#include "XfmPointRuns.h"

namespace {

enum RunPath { kPlain, kFivePointAvx2, kBilinearAvx2 };

constexpr int kMid = kXfmKernelSteps;      // table index of distance 1
constexpr int kFar = 2 * kXfmKernelSteps;  // table index of distance 2
constexpr int32_t kInt16Min = -32768;
constexpr int32_t kInt16Max = 32767;
constexpr uint32_t kChannelOffset = 32768;  // unsigned channel - this = signed 16-bit channel
constexpr uint32_t kLowHalf = 0xFFFF;
constexpr int kHalfBits = 16;

bool fitsInt16(int32_t w) { return w >= kInt16Min && w <= kInt16Max; }

uint32_t pair(int32_t low, int32_t high) {
    return (static_cast<uint32_t>(low) & kLowHalf) | (static_cast<uint32_t>(high) << kHalfBits);
}

// False when some kernel entry does not fit in 16 bits: the AVX2 form cannot take it.
bool fillFivePointTable(const int32_t* K, XfmFivePointTable& table) {
    for (int i = 0; i < kXfmKernelSize; ++i)
        if (!fitsInt16(K[i])) return false;
    table.farTapZero = K[kFar] == 0;
    for (int f = 0; f < kXfmKernelSteps; ++f) {
        // Taps -1, 0, +1, +2 of the plain sampler's tapWeights.
        const int32_t w[4] = {K[kMid + f], K[f], K[kMid - f], K[kFar - f]};
        XfmFivePointTable::Entry& e = table.across[f];
        e.leftPair = pair(w[0], w[1]);
        e.rightPair = pair(w[2], w[3]);
        e.offsetSum = kChannelOffset * (static_cast<uint32_t>(w[0]) + static_cast<uint32_t>(w[1]) +
                                        static_cast<uint32_t>(w[2]) + static_cast<uint32_t>(w[3]));
        e.unused = 0;
        for (int r = 0; r < 4; ++r) table.down[f][r] = w[r];
    }
    return true;
}

bool fivePointMode(int mode) { return mode >= XFM_MODE_CUBIC && mode <= XFM_MODE_LANCZOS; }

}  // namespace

XfmPointRun::XfmPointRun(ImageXfmZel& xfm, ImageZel* img) : xfm_(xfm), img_(img), path_(kPlain) {
    table_.usable = false;
    table_.farTapZero = false;
#if ZEL_AVX2_FORMS
    if (img == nullptr || xfm.arithmetic != XFM_ARITH_FIXED || !zelUseAvx2()) return;
    if (fivePointMode(xfm.mode)) {
        table_.usable = fillFivePointTable(xfm.kernelFixed, table_);
        if (table_.usable) path_ = kFivePointAvx2;
    } else if (xfm.mode == XFM_MODE_LINEAR) {
        path_ = kBilinearAvx2;
    }
#endif
}

void XfmPointRun::sample(const XfmMapPositions& at, int count, PixelZel* out) {
#if ZEL_AVX2_FORMS
    if (path_ == kFivePointAvx2) return xfmFivePointRunAvx2(xfm_, table_, img_, at, count, out);
    if (path_ == kBilinearAvx2) return xfmBilinearRunAvx2(xfm_, img_, at, count, out);
#endif
    for (int k = 0; k < count; ++k) out[k] = xfm_.sample(img_, at.xy[2 * k], at.xy[2 * k + 1]);
}

void XfmPointRun::sample(const XfmAffinePositions& at, int count, PixelZel* out) {
#if ZEL_AVX2_FORMS
    if (path_ == kFivePointAvx2) return xfmFivePointRunAvx2(xfm_, table_, img_, at, count, out);
    if (path_ == kBilinearAvx2) return xfmBilinearRunAvx2(xfm_, img_, at, count, out);
#endif
    const int y = at.y;
    for (int x = 0; x < count; ++x) {
        out[x] = xfm_.sample(img_, (at.a * x + at.c * y + at.e) * at.r,
                             (at.b * x + at.d * y + at.f) * at.r);
    }
}
