#include <gtest/gtest.h>

#include "ImageZel.h"
#include "ImageZelTestUtil.h"

namespace {

PixelZel sample(ImageZel& image, float x, float y) {
    PixelZel out = makePixel(9999, 9999, 9999, 9999);
    image.PointSampleB(x, y, out);
    return out;
}

}  // namespace

TEST(ImageZelSampling, IntegerPositionsGiveThePixel) {
    ImageZel image(3, 2, 1.0f, nullptr, nullptr);
    fillCoded(image, 400);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x) {
            const PixelZel p = sample(image, static_cast<float>(x), static_cast<float>(y));
            EXPECT_EQ(p.red, 400 + x + 10 * y);
            EXPECT_EQ(p.alpha, 1400 + x + 10 * y);
        }
}

TEST(ImageZelSampling, FractionsAndBorders) {
    ImageZel image(3, 2, 1.0f, nullptr, nullptr);
    fillCoded(image, 400);

    // Corner: each weight 8192, only (0,0) inside: 400 / 4 and 1400 / 4.
    PixelZel p = sample(image, -0.5f, -0.5f);
    EXPECT_EQ(p.red, 100);
    EXPECT_EQ(p.alpha, 350);

    // Centre of four: (400 + 401 + 410 + 411) * 8192 >> 15 = 405.5, truncated.
    EXPECT_EQ(sample(image, 0.5f, 0.5f).red, 405);
    // fx = 8192: (24576 * 400 + 8192 * 401) >> 15 = 400.25
    EXPECT_EQ(sample(image, 0.25f, 0.0f).red, 400);
    // Right border: half of column 2, nothing from column 3: 402 / 2.
    EXPECT_EQ(sample(image, 2.5f, 0.0f).red, 201);
    // Bottom border: half of row 1: 411 / 2 = 205.5.
    EXPECT_EQ(sample(image, 1.0f, 1.5f).red, 205);

    // Nothing inside.
    EXPECT_EQ(sample(image, -1.0f, 0.0f).red, 0);
    EXPECT_EQ(sample(image, -5.0f, 1.0f).alpha, 0);
    EXPECT_EQ(sample(image, 3.0f, 0.0f).red, 0);
    EXPECT_EQ(sample(image, 1.0f, 2.0f).green, 0);
    EXPECT_EQ(sample(image, 1e30f, -1e30f).red, 0);

    // Just left of column 0: x - floor(x) rounds to 1 in single precision, so
    // the whole weight moves onto column 0.
    EXPECT_EQ(sample(image, -1e-10f, 1.0f).red, 410);
}

TEST(ImageZelSampling, WeightsSumToFullScale) {
    // On a constant image any inside position must give the value back exactly.
    ImageZel image(5, 4, 1.0f, nullptr, nullptr);
    image.Fill(32767, 32767, 32767, 32767);
    for (float y = 0.0f; y <= 3.0f; y += 0.13f)
        for (float x = 0.0f; x <= 4.0f; x += 0.07f) {
            const PixelZel p = sample(image, x, y);
            ASSERT_EQ(p.red, 32767) << x << "," << y;
            ASSERT_EQ(p.alpha, 32767) << x << "," << y;
        }
}

TEST(ImageZelSampling, OtherFormsMatchTheBilinearSample) {
    ImageZel image(3, 2, 1.0f, nullptr, nullptr);
    fillCoded(image, 400);
    PixelZel d, w, a;
    image.PointSampleD(0.5f, 0.5f, d);
    image.PointSampleW(0.5f, 0.5f, w);
    EXPECT_EQ(d.red, 405);
    EXPECT_EQ(w.red, 405);

    // Area (0,0)-(2,1) is sampled at its centre (1, 0.5): (401 + 411) / 2.
    image.AreaSampleStart();
    image.AreaSampleB(0.0f, 0.0f, 2.0f, 1.0f, a);
    EXPECT_EQ(a.red, 406);
    image.AreaSampleD(0.0f, 0.0f, 2.0f, 1.0f, a);
    EXPECT_EQ(a.green, 406);
    image.AreaSampleW(0.0f, 0.0f, 2.0f, 1.0f, a);
    EXPECT_EQ(a.alpha, 1406);
    image.AreaSampleEnd();
}
