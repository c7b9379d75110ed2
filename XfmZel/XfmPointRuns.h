// Runs of point samples: many positions of one image sampled with the
// transformer's current mode and arithmetic, each result exactly what
// ImageXfmZel::sample gives at that position. The address-map resample and
// the point path of the warp go through here so that the per-call set-up (the
// fixed-point weight table) is done once per band instead of per pixel, and
// so that the AVX2 forms of the fixed-point samplers can be used when the
// processor has them. Positions are in source pixels, pixel centres at
// integer positions; channels are 15-bit.
#pragma once

#include <cstdint>

#include "ImageXfmZel.h"
#include "ZelCpu.h"

// Positions sampled per call of XfmPointRun::sample by its callers' chunking.
constexpr int kXfmRunChunk = 256;

// The fixed-point 5-point sampler's horizontal weights per table index f
// (0..511), for the AVX2 form: taps -1 and 0 as 16-bit pairs four times, then
// taps +1 and +2 likewise, and 32768 times the sum of the four, which undoes
// the offset that turns unsigned channels into signed 16-bit ones.
struct XfmFivePointTable {
    alignas(32) int16_t pairs[kXfmKernelSteps][16];
    uint32_t offsetSum[kXfmKernelSteps];
    bool usable;      // every kernel entry fits in 16 bits
    bool farTapZero;  // the fifth tap (distance 2, integer positions only) weighs 0
};

class XfmPointRun {
  public:
    // The transformer and the image must not change while the run is used.
    XfmPointRun(ImageXfmZel& xfm, ImageZel* img);
    void sample(const double* xs, const double* ys, int count, PixelZel* out);

  private:
    ImageXfmZel& xfm_;
    ImageZel* img_;
    int path_;  // which sampler form serves the run
    XfmFivePointTable table_;
};

#if ZEL_AVX2_FORMS
void xfmFivePointRunAvx2(ImageXfmZel& xfm, const XfmFivePointTable& table, ImageZel* img,
                         const double* xs, const double* ys, int count, PixelZel* out);
void xfmBilinearRunAvx2(ImageXfmZel& xfm, ImageZel* img, const double* xs, const double* ys,
                        int count, PixelZel* out);
#endif
