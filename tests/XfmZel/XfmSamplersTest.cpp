// Kernel tables and point samplers: table entries, sampling at pixel centres,
// zero padding and truncation at the border, clamping, and agreement of the
// interior fast path with the bounds-checked path.
#include <gtest/gtest.h>

#include "ImageXfmZel.h"
#include "XfmTestImages.h"

TEST(XfmKernels, TableEntriesAndFixedPointRounding) {
    ImageXfmZel xfm;
    xfm.sampleMode(XFM_MODE_CUBIC);  // a = -0.5
    EXPECT_EQ(xfm.kernelTaps, 5);
    EXPECT_EQ(xfm.kernelRadius, 2);
    EXPECT_EQ(xfm.kernel[0], 1.0);
    EXPECT_EQ(xfm.kernelFixed[0], 8192);
    EXPECT_EQ(xfm.kernelFixed[512], 0);
    EXPECT_EQ(xfm.kernelFixed[1024], 0);
    EXPECT_EQ(xfm.kernelFixed[256], 4608);  // w(0.5) = 0.5625
    // w(1.5) = -0.0625: -512 + 0.5 truncates toward zero to -511.
    EXPECT_DOUBLE_EQ(xfm.kernel[768], -0.0625);
    EXPECT_EQ(xfm.kernelFixed[768], -511);

    xfm.sampleMode(XFM_MODE_SHARP_CUBIC);  // a = -1: w(0.5) = 0.625, w(1.5) = -0.125
    EXPECT_EQ(xfm.kernelFixed[256], 5120);
    EXPECT_EQ(xfm.kernelFixed[768], -1023);

    xfm.sampleMode(XFM_MODE_BSPLINE);  // 4/6 and 1/6
    EXPECT_NEAR(xfm.kernel[0], 2.0 / 3.0, 1e-15);
    EXPECT_EQ(xfm.kernelFixed[0], 5461);
    EXPECT_EQ(xfm.kernelFixed[512], 1365);
    EXPECT_EQ(xfm.kernelFixed[1024], 0);

    xfm.sampleMode(XFM_MODE_LANCZOS);
    // sinc(0.5) sinc(0.25) = (2/pi) (sin(pi/4) / (pi/4)); sinc(1.5) sinc(0.75) < 0.
    EXPECT_NEAR(xfm.kernel[256], 0.5731591682507563, 1e-12);
    EXPECT_NEAR(xfm.kernel[768], -0.0636843520278618, 1e-12);
    EXPECT_EQ(xfm.kernelFixed[0], 8192);
    EXPECT_EQ(xfm.kernelFixed[768], -521);

    // The tent fills 0..512 and leaves the Lanczos tail in place.
    xfm.sampleMode(XFM_MODE_LINEAR);
    EXPECT_EQ(xfm.kernelTaps, 3);
    EXPECT_EQ(xfm.kernelRadius, 1);
    EXPECT_EQ(xfm.kernelFixed[256], 4096);
    EXPECT_EQ(xfm.kernelFixed[512], 0);
    EXPECT_EQ(xfm.kernelFixed[768], -521);

    // Same mode again: nothing is rebuilt.
    xfm.kernelFixed[100] = 12345;
    xfm.kernel[100] = -3.0;
    xfm.sampleMode(XFM_MODE_LINEAR);
    EXPECT_EQ(xfm.kernelFixed[100], 12345);
    EXPECT_EQ(xfm.kernel[100], -3.0);
}

TEST(XfmSamplers, PixelCentresReturnThePixelInEveryInterpolatingMode) {
    ImagePtr img = makeCoded(5, 4);
    ImageXfmZel xfm;
    const int modes[] = {1, 2, 3, 4, 6};
    for (int arith : {XFM_ARITH_DOUBLE, XFM_ARITH_FIXED}) {
        xfm.set_arithmetic(arith);
        for (int m : modes) {
            xfm.sampleMode(m);
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < 5; ++x)
                    EXPECT_TRUE(samePixel(xfm.sample(img.get(), x, y), img->rows[y][x]))
                        << "mode " << m << " arithmetic " << arith << " at " << x << "," << y;
        }
    }
    xfm.sampleMode(7);
    EXPECT_TRUE(isBlack(xfm.sample(img.get(), 2, 2)));
}

TEST(XfmSamplers, BSplineSmoothsAtPixelCentres) {
    // An impulse of 3600: per axis (p[-1] + 4 p[0] + p[1]) / 6.
    ImagePtr img = makeImage(5, 5, [](int x, int y) {
        return x == 2 && y == 2 ? makePixel(3600, 0, 0, 3600) : PixelZel();
    });
    ImageXfmZel xfm;
    xfm.sampleMode(XFM_MODE_BSPLINE);
    struct Case {
        int x, y, want;
    } cases[] = {{2, 2, 1600}, {1, 2, 400}, {2, 3, 400}, {1, 1, 100}, {0, 2, 0}};
    for (int arith : {XFM_ARITH_DOUBLE, XFM_ARITH_FIXED}) {
        xfm.set_arithmetic(arith);
        const int tolerance = arith == XFM_ARITH_DOUBLE ? 0 : 2;  // 13-bit weights
        for (const Case& c : cases) {
            PixelZel p = xfm.sample(img.get(), c.x, c.y);
            EXPECT_NEAR(p.red, c.want, tolerance) << c.x << "," << c.y;
            EXPECT_NEAR(p.alpha, c.want, tolerance);
        }
    }
}

TEST(XfmSamplers, NearestTruncatesAndBilinearFadesAtTheBorder) {
    ImagePtr img = makeCoded(5, 4);
    ImageXfmZel xfm;
    xfm.sampleMode(XFM_MODE_NEAREST);
    EXPECT_TRUE(samePixel(xfm.sample(img.get(), -0.75, 1), img->rows[1][0]));
    EXPECT_TRUE(samePixel(xfm.sample(img.get(), 1, -0.75), img->rows[0][1]));
    EXPECT_TRUE(isBlack(xfm.sample(img.get(), -1.5, 1)));
    EXPECT_TRUE(samePixel(xfm.sample(img.get(), 2.49, 1.5), img->rows[2][2]));
    EXPECT_TRUE(samePixel(xfm.sample(img.get(), 4.49, 3.2), img->rows[3][4]));
    EXPECT_TRUE(isBlack(xfm.sample(img.get(), 4.5, 1)));

    // Half way past the last column: half the value and half the alpha.
    xfm.sampleMode(XFM_MODE_LINEAR);
    for (int arith : {XFM_ARITH_DOUBLE, XFM_ARITH_FIXED}) {
        xfm.set_arithmetic(arith);
        PixelZel p = xfm.sample(img.get(), 4.5, 1);
        EXPECT_EQ(p.red, 700);
        EXPECT_EQ(p.blue, 10000);
        EXPECT_EQ(p.alpha, 16000);
        // Interior: red is linear in position, 100 * (1.25 + 10 * 2.5).
        EXPECT_EQ(xfm.sample(img.get(), 1.25, 2.5).red, 2625);
        EXPECT_TRUE(isBlack(xfm.sample(img.get(), 5.0, 1)));
        EXPECT_TRUE(isBlack(xfm.sample(img.get(), -1.01, 1)));
    }
}

TEST(XfmSamplers, ResultsAreClampedTo15Bits) {
    // Step edge: a = -1 weights at half-pixel phase are -0.125, 0.625, 0.625, -0.125.
    auto edge = [](int level) {
        return makeImage(8, 5, [=](int x, int) {
            int v = x >= 4 ? level : 0;
            return makePixel(v, v, v, v);
        });
    };
    ImagePtr full = edge(32767), mid = edge(20000);
    ImageXfmZel xfm;
    xfm.sampleMode(XFM_MODE_SHARP_CUBIC);
    for (int arith : {XFM_ARITH_DOUBLE, XFM_ARITH_FIXED}) {
        xfm.set_arithmetic(arith);
        EXPECT_EQ(xfm.sample(full.get(), 2.5, 2).red, 0);      // -0.125 * 32767
        EXPECT_EQ(xfm.sample(full.get(), 4.5, 2).red, 32767);  // 1.125 * 32767
    }
    // Unclamped overshoot: 1.125 * 20000 in doubles; with the fixed weights
    // 5120, 5120 and -1023: (20000 * 9217) >> 13 = 22502.
    xfm.set_arithmetic(XFM_ARITH_DOUBLE);
    EXPECT_EQ(xfm.sample(mid.get(), 4.5, 2).red, 22500);
    xfm.set_arithmetic(XFM_ARITH_FIXED);
    EXPECT_EQ(xfm.sample(mid.get(), 4.5, 2).red, 22502);
    // Bilinear clamps above only (it cannot go below 0).
    ImagePtr hot = makeUniform(3, 2, 40000, 100, 100, 100);
    xfm.sampleMode(XFM_MODE_LINEAR);
    for (int arith : {XFM_ARITH_DOUBLE, XFM_ARITH_FIXED}) {
        xfm.set_arithmetic(arith);
        PixelZel p = xfm.sample(hot.get(), 0.5, 0.5);
        EXPECT_EQ(p.red, 32767);
        EXPECT_EQ(p.green, 100);
    }
}

TEST(XfmSamplers, FivePointInteriorPathMatchesBorderPath) {
    // The same picture inside a zero frame of 4 pixels: sampling the frame's
    // interior (fast path) must equal sampling the small image with its
    // zero padding (checked path).
    auto value = [](int x, int y) {
        int v = (x * 7919 + y * 104729) % 30011;
        return makePixel(v, 30000 - v, (v * 3) % 32768, 1000 + 100 * x);
    };
    const int w = 5, h = 4, pad = 4;
    ImagePtr img = makeImage(w, h, value);
    ImagePtr framed = makeImage(w + 2 * pad, h + 2 * pad, [&](int x, int y) {
        int sx = x - pad, sy = y - pad;
        return sx >= 0 && sx < w && sy >= 0 && sy < h ? value(sx, sy) : PixelZel();
    });
    ImageXfmZel xfm;
    for (int m : {3, 4, 5, 6}) {
        xfm.sampleMode(m);
        for (int arith : {XFM_ARITH_DOUBLE, XFM_ARITH_FIXED}) {
            xfm.set_arithmetic(arith);
            // Dyadic steps keep x and x + pad with the same fraction.
            for (double y = -2.5; y < h + 1.5; y += 0.4375)
                for (double x = -2.5; x < w + 1.5; x += 0.359375) {
                    PixelZel a = xfm.sample(img.get(), x, y);
                    PixelZel b = xfm.sample(framed.get(), x + pad, y + pad);
                    ASSERT_TRUE(samePixel(a, b)) << "mode " << m << " at " << x << "," << y;
                }
            for (int y = -1; y <= h; ++y)
                for (int x = -1; x <= w; ++x)
                    ASSERT_TRUE(samePixel(xfm.sample(img.get(), x, y),
                                          xfm.sample(framed.get(), x + pad, y + pad)));
        }
    }
    // The cubic reproduces a linear ramp exactly in doubles: 100 * (2.5 + 10 * 1.5).
    ImagePtr ramp = makeCoded(5, 4);
    xfm.sampleMode(XFM_MODE_CUBIC);
    xfm.set_arithmetic(XFM_ARITH_DOUBLE);
    EXPECT_EQ(xfm.sample(ramp.get(), 2.5, 1.5).red, 1750);
    xfm.set_arithmetic(XFM_ARITH_FIXED);
    // Row sums with weights -511, 4608, 4608, -511 shift to 250, 1250, 2250, 3250.
    EXPECT_EQ(xfm.sample(ramp.get(), 2.5, 1.5).red, 1750);
}

// 0.3 is not a dyadic fraction: 0.3 * 512 = 153.6 and 0.3 * 8192 = 2457.6, so
// a table index that were rounded instead of truncated would show.
TEST(XfmSamplers, FractionsTruncateToTheTableIndex) {
    constexpr int kValue = 32767;
    // One lit pixel at column 6 of a dark row; the sample at x = 5.3 takes it
    // with the weight of distance 0.7, table entry 512 - 153 = 359.
    ImagePtr img = makeImage(12, 7, [](int x, int y) {
        return x == 6 && y == 3 ? makePixel(kValue, kValue, kValue, kValue) : PixelZel();
    });
    ImageXfmZel xfm;
    xfm.sampleMode(XFM_MODE_CUBIC);
    xfm.set_arithmetic(XFM_ARITH_DOUBLE);
    const PixelZel cubic = xfm.sample(img.get(), 5.3, 3.0);
    EXPECT_EQ(cubic.red, static_cast<unsigned short>(kValue * xfm.kernel[359] + 0.5));
    EXPECT_NE(cubic.red, static_cast<unsigned short>(kValue * xfm.kernel[358] + 0.5));

    xfm.set_arithmetic(XFM_ARITH_FIXED);
    const PixelZel fixed = xfm.sample(img.get(), 5.3, 3.0);
    EXPECT_EQ(fixed.red, ((kValue * xfm.kernelFixed[359]) >> 13) * 8192 >> 13);

    // Bilinear at 5.3 between columns 5 (dark) and 6 (lit): weight 2457 / 8192.
    xfm.sampleMode(XFM_MODE_LINEAR);
    const PixelZel linear = xfm.sample(img.get(), 5.3, 3.0);
    EXPECT_EQ(linear.red, (kValue * 2457) >> 13);  // 9827; a rounded index gives 9831
}
