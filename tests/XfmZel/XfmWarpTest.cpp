// Warping through the inverse transform and footprint (area) sampling.
#include <gtest/gtest.h>

#include "ImageXfmZel.h"
#include "XfmTestImages.h"

namespace {

// Zoom by s about the centre, as the lens plug-in sets it up.
void setZoom(ImageXfmZel& xfm, int mode, int w, int h, double s) {
    xfm.reset();
    xfm.sampleMode(mode);
    xfm.translate(w * 0.5, h * 0.5);
    xfm.scale(s, s);
    xfm.translate(-w * 0.5, -h * 0.5);
    xfm.set_transform(1);
}

}  // namespace

TEST(XfmWarp, IdentityReproducesAndEmptyRangeWritesNothing) {
    ImagePtr src = makeCoded(5, 4);
    ImageXfmZel xfm;
    for (int arith : {XFM_ARITH_DOUBLE, XFM_ARITH_FIXED}) {
        ImagePtr dst = makeUniform(5, 4, 1, 2, 3, 4);
        setZoom(xfm, XFM_MODE_CUBIC, 5, 4, 1.0);
        xfm.set_arithmetic(arith);
        xfm.apply(*src, *dst, 0, 3);
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 5; ++x) EXPECT_TRUE(samePixel(dst->rows[y][x], src->rows[y][x]));
    }
    ImagePtr dst = makeUniform(5, 4, 1, 2, 3, 4);
    xfm.apply(src.get(), dst.get(), 2, 1);
    xfm.apply(src.get(), dst.get(), 1, 1);  // one row only
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            EXPECT_TRUE(
                samePixel(dst->rows[y][x], y == 1 ? src->rows[1][x] : makePixel(1, 2, 3, 4)));
}

TEST(XfmWarp, HalfZoomUsesTheTentAreaFilterInModesTwoToSix) {
    // red = 100 x^2 + 10 y, so the tent of radius 2 is visible along x:
    // (p[1] + 2 p[2] + p[3]) / 4 = 100 * 18 / 4 = 450 at x = 2.
    ImagePtr src = makeImage(
        8, 8, [](int x, int y) { return makePixel(100 * x * x + 10 * y, 5000, 20000, 32000); });
    ImageXfmZel xfm;
    ImagePtr first = makeUniform(8, 8, 0, 0, 0, 0);
    setZoom(xfm, XFM_MODE_LINEAR, 8, 8, 0.5);
    xfm.apply(src.get(), first.get(), 0, 7);
    // Destination (3, 3) reads the source around (2, 2).
    EXPECT_EQ(first->rows[3][3].red, 470);
    EXPECT_EQ(first->rows[3][3].alpha, 32000);
    for (int m = 3; m <= 6; ++m) {
        ImagePtr dst = makeUniform(8, 8, 0, 0, 0, 0);
        setZoom(xfm, m, 8, 8, 0.5);
        xfm.apply(src.get(), dst.get(), 0, 7);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                ASSERT_TRUE(samePixel(dst->rows[y][x], first->rows[y][x])) << "mode " << m;
    }
    // Mode 1: the nearest pixel of source position 2 x - 4.
    ImagePtr nearest = makeUniform(8, 8, 9, 9, 9, 9);
    setZoom(xfm, XFM_MODE_NEAREST, 8, 8, 0.5);
    xfm.apply(src.get(), nearest.get(), 0, 7);
    EXPECT_TRUE(samePixel(nearest->rows[3][5], src->rows[2][6]));
    EXPECT_TRUE(samePixel(nearest->rows[2][2], src->rows[0][0]));
    EXPECT_TRUE(isBlack(nearest->rows[1][3]));
}

TEST(XfmWarp, AreaSamplerNormalisation) {
    ImagePtr flat = makeUniform(6, 6, 20000, 100, 0, 32000);
    ImageXfmZel xfm;
    xfm.sampleMode(XFM_MODE_LINEAR);
    // Interior: weights sum to 1.
    PixelZel inside = xfm.triangle_sample_down(flat.get(), 2.5, 2.5, 2.0, 2.0);
    EXPECT_EQ(inside.red, 20000);
    EXPECT_EQ(inside.alpha, 32000);
    // Corner: 0.75 of the tent area per axis lies inside, 0.5625 in all.
    PixelZel corner = xfm.triangle_sample_down(flat.get(), 0, 0, 2.0, 2.0);
    EXPECT_EQ(corner.red, 11250);
    EXPECT_EQ(corner.green, 56);  // 56.25
    EXPECT_EQ(corner.alpha, 18000);
    EXPECT_TRUE(isBlack(xfm.triangle_sample_down(flat.get(), -4, 2, 2.0, 2.0)));

    // Shrinking along x only keeps Ry = 1: rows do not mix.
    ImagePtr coded = makeImage(
        8, 5, [](int x, int y) { return makePixel(100 * x * x + 1000 * y * y, 0, 0, 0); });
    // (100 + 2 * 400 + 900) / 4 + 1000 * 4 = 450 + 4000
    EXPECT_EQ(xfm.sample_image(coded.get(), 2, 2, 2.0, 1.0).red, 4450);
}

TEST(XfmWarp, PathChoiceByRadiiAndMode) {
    ImagePtr src = makeCoded(5, 4);
    ImageXfmZel xfm;
    xfm.sampleMode(XFM_MODE_CUBIC);
    // Radii of exactly 1 take the point path.
    EXPECT_TRUE(samePixel(xfm.sample_image(*src, 1.5, 2, 1.0, 1.0), xfm.sample(src.get(), 1.5, 2)));
    EXPECT_TRUE(samePixel(xfm.sample_image(*src, 1.5, 2, 1.5, 1.0),
                          xfm.triangle_sample_down(src.get(), 1.5, 2, 1.5, 1.0)));
    // Unknown mode: black on the point path, nearest pixel when shrinking.
    xfm.sampleMode(0);
    EXPECT_TRUE(isBlack(xfm.sample_image(src.get(), 2, 1, 0.5, 0.5)));
    EXPECT_TRUE(samePixel(xfm.sample_image(src.get(), 2.2, 1, 3.0, 3.0), src->rows[1][2]));
    // sample_down in mode 1 is the nearest pixel whatever the radii.
    xfm.sampleMode(XFM_MODE_NEAREST);
    EXPECT_TRUE(samePixel(xfm.sample_down(src.get(), 3.4, 2.6, 40.0, 40.0), src->rows[3][3]));
    xfm.sampleMode(XFM_MODE_LINEAR);
    EXPECT_TRUE(samePixel(xfm.sample_down(src.get(), 2, 1, 0.5, 0.5),
                          xfm.triangle_sample_down(src.get(), 2, 1, 0.5, 0.5)));
}
