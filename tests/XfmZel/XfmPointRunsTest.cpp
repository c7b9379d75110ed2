// Runs of point samples (the address-map resample and the warp's point path)
// against the one-point sampler that defines them: every mode, both
// arithmetics, the AVX2 forms and the plain ones, positions inside, across
// the border, outside, at integer and half positions and not finite, and
// channel values up to 65535. Also the kernels the AVX2 form must hand back
// to the plain sampler: a fifth tap that weighs something, a weight beyond 16
// bits.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "ImageXfmZel.h"
#include "XfmTestImages.h"
#include "ZelCpu.h"

namespace {

// Channels from a hash of the position, over the whole 16-bit range in red
// and alpha (values above 32767 occur in frames: 12-bit proxy alpha is 65535).
PixelZel hashed(int x, int y) {
    const uint32_t h = static_cast<uint32_t>(x) * 2654435761u ^ static_cast<uint32_t>(y) * 40503u;
    return makePixel(static_cast<int>(h & 0xFFFF), static_cast<int>((h >> 7) & 0x7FFF),
                     static_cast<int>((h >> 3) % 32768), static_cast<int>((h >> 16) & 0xFFFF));
}

// Positions: a grid of fractions over and beyond the image, exact pixel
// centres and halves, and a few that are not finite or far away.
std::vector<float> positions(int w, int h) {
    std::vector<float> xy;
    auto add = [&xy](double x, double y) {
        xy.push_back(static_cast<float>(x));
        xy.push_back(static_cast<float>(y));
    };
    for (double y = -3.2; y < h + 3; y += 0.73)
        for (double x = -3.4; x < w + 3; x += 0.61) add(x, y);
    for (int y = -1; y <= h; ++y)
        for (int x = -2; x <= w + 1; ++x) {
            add(x, y);
            add(x + 0.5, y + 0.5);
            add(x + 0.3, y);
            add(x, y + 0.7);
        }
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (double odd : {nan, inf, -inf, 1e30, -1e30, 3e9})
        for (double ok : {2.5, 0.0}) {
            add(odd, ok);
            add(ok, odd);
        }
    // Pad to a whole number of rows of the map image below.
    while (xy.size() % (2 * 16) != 0) add(1.25, 1.75);
    return xy;
}

// The map resampled into a 16-wide image, one map row per image row.
ImagePtr resampleRun(ImageXfmZel& xfm, ImageZel* src, const std::vector<float>& map) {
    const int rows = static_cast<int>(map.size() / 32);
    ImagePtr out(new ImageZel(16, rows, 1.0f, nullptr, nullptr));
    xfm.sample_map(src, map.data(), out.get(), 0, rows - 1);
    return out;
}

void expectRunMatchesPointSampler(ImageXfmZel& xfm, ImageZel* src, const std::vector<float>& map,
                                  const char* what) {
    const ImagePtr run = resampleRun(xfm, src, map);
    for (int j = 0; j < run->height; ++j)
        for (int i = 0; i < 16; ++i) {
            const float* entry = &map[2 * (j * 16 + i)];
            const PixelZel want = xfm.sample(src, entry[0], entry[1]);
            ASSERT_TRUE(samePixel(run->rows[j][i], want))
                << what << " mode " << xfm.mode << " arithmetic " << xfm.arithmetic << " at "
                << entry[0] << "," << entry[1];
        }
}

class XfmPointRuns : public testing::Test {
  protected:
    void TearDown() override { zelForcePlainCpu(false); }
};

}  // namespace

TEST_F(XfmPointRuns, MapResampleEqualsTheOnePointSamplerInEveryForm) {
    const ImagePtr src = makeImage(23, 17, hashed);
    const std::vector<float> map = positions(23, 17);
    for (bool plain : {false, true}) {
        zelForcePlainCpu(plain);
        ImageXfmZel xfm;
        for (int arith : {XFM_ARITH_FIXED, XFM_ARITH_DOUBLE}) {
            for (int mode = 0; mode <= 7; ++mode) {
                xfm.reset();
                xfm.sampleMode(mode);
                xfm.set_arithmetic(arith);
                expectRunMatchesPointSampler(xfm, src.get(), map, plain ? "plain" : "avx2");
            }
        }
    }
}

TEST_F(XfmPointRuns, KernelsTheFastFormCannotTakeGoToThePlainSampler) {
    const ImagePtr src = makeImage(19, 14, hashed);
    const std::vector<float> map = positions(19, 14);
    ImageXfmZel xfm;
    xfm.sampleMode(XFM_MODE_SHARP_CUBIC);
    // The fifth tap (distance 2, integer positions only) made to weigh something.
    xfm.kernelFixed[2 * kXfmKernelSteps] = 300;
    expectRunMatchesPointSampler(xfm, src.get(), map, "fifth tap");
    // A weight beyond 16 bits.
    xfm.kernelFixed[2 * kXfmKernelSteps] = 0;
    xfm.kernelFixed[7] = 40000;
    expectRunMatchesPointSampler(xfm, src.get(), map, "wide weight");
    // Negative extremes that still fit.
    xfm.kernelFixed[7] = -32768;
    xfm.kernelFixed[519] = 32767;
    expectRunMatchesPointSampler(xfm, src.get(), map, "extreme weights");
}

TEST_F(XfmPointRuns, WarpPointPathGivesTheSameBytesInBothForms) {
    const ImagePtr src = makeImage(41, 29, hashed);
    for (double zoom : {1.3, 1.0, 2.7}) {
        for (int mode = 1; mode <= 6; ++mode) {
            ImagePtr results[2];
            for (int plain = 0; plain < 2; ++plain) {
                zelForcePlainCpu(plain == 1);
                ImageXfmZel xfm;
                xfm.sampleMode(mode);
                xfm.translate(20.5, 14.25);
                xfm.scale(zoom, zoom * 1.1);
                xfm.rotate(3.0);
                xfm.translate(-20.5, -14.25);
                xfm.set_transform(1);
                results[plain].reset(new ImageZel(41, 29, 1.0f, nullptr, nullptr));
                xfm.apply(src.get(), results[plain].get(), 0, 28);
                // The point path is the one-point sampler at the inverse-mapped position.
                const double* m = xfm.inverse;
                const double r = 1.0 / xfm.inverseW;
                for (int y = 0; y < 29; y += 7)
                    for (int x = 0; x < 41; ++x)
                        ASSERT_TRUE(
                            samePixel(results[plain]->rows[y][x],
                                      xfm.sample(src.get(), (m[0] * x + m[2] * y + m[4]) * r,
                                                 (m[1] * x + m[3] * y + m[5]) * r)))
                            << "zoom " << zoom << " mode " << mode << " at " << x << "," << y;
            }
            for (int y = 0; y < 29; ++y)
                for (int x = 0; x < 41; ++x)
                    ASSERT_TRUE(samePixel(results[0]->rows[y][x], results[1]->rows[y][x]))
                        << "zoom " << zoom << " mode " << mode << " at " << x << "," << y;
        }
    }
}
