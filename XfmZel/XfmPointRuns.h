// Runs of point samples: many positions of one image sampled with the
// transformer's current mode and arithmetic, each result exactly what
// ImageXfmZel::sample gives at that position. The address-map resample and
// the point path of the warp go through here so that the per-call set-up (the
// fixed-point weight tables) is done once per band instead of per pixel, and
// so that the AVX2 forms of the fixed-point samplers can be used when the
// processor has them. Positions are in source pixels, pixel centres at
// integer positions; channels are 15-bit.
#pragma once

#include <cstdint>

#include "ImageXfmZel.h"
#include "ZelCpu.h"

// Positions of an address-map row: entry k is (xy[2k], xy[2k + 1]).
struct XfmMapPositions {
    const float* xy;
};

// Positions of a warp's destination row y through the inverse (a .. f) and
// its divisor's reciprocal r: column k is ((a·k + c·y + e)·r, (b·k + d·y + f)·r).
struct XfmAffinePositions {
    double a, b, c, d, e, f, r;
    int y;
};

// The fixed-point 5-point sampler's weights per table index f (0..511) for
// the AVX2 form: along x, taps -1 and 0 as a pair of 16-bit weights, taps +1
// and +2 likewise, and 32768 times the four weights' sum (which undoes the
// offset that turns unsigned channels into signed 16-bit ones); along y the
// four row weights.
struct XfmFivePointTable {
    struct Entry {
        uint32_t leftPair;   // taps -1 and 0, low half first
        uint32_t rightPair;  // taps +1 and +2
        uint32_t offsetSum;  // wraps as the plain sampler's 32-bit sums do
        uint32_t unused;
    };
    alignas(16) Entry across[kXfmKernelSteps];
    alignas(16) int32_t down[kXfmKernelSteps][4];  // rows -1, 0, +1, +2
    bool usable;                                   // every kernel entry fits in 16 bits
    bool farTapZero;  // the fifth tap (distance 2, integer positions only) weighs 0
};

class XfmPointRun {
  public:
    // The transformer and the image must not change while the run is used.
    XfmPointRun(ImageXfmZel& xfm, ImageZel* img);
    void sample(const XfmMapPositions& at, int count, PixelZel* out);
    void sample(const XfmAffinePositions& at, int count, PixelZel* out);

  private:
    ImageXfmZel& xfm_;
    ImageZel* img_;
    int path_;  // which sampler form serves the run
    XfmFivePointTable table_;
};

#if ZEL_AVX2_FORMS
void xfmFivePointRunAvx2(ImageXfmZel& xfm, const XfmFivePointTable& table, ImageZel* img,
                         const XfmMapPositions& at, int count, PixelZel* out);
void xfmFivePointRunAvx2(ImageXfmZel& xfm, const XfmFivePointTable& table, ImageZel* img,
                         const XfmAffinePositions& at, int count, PixelZel* out);
void xfmBilinearRunAvx2(ImageXfmZel& xfm, ImageZel* img, const XfmMapPositions& at, int count,
                        PixelZel* out);
void xfmBilinearRunAvx2(ImageXfmZel& xfm, ImageZel* img, const XfmAffinePositions& at, int count,
                        PixelZel* out);
#endif
