// Whole-image scaling: copies, edge replication, stretched kernel when
// shrinking, refusal of undefined ratios and banded execution.
#include <gtest/gtest.h>

#include "ImageXfmZel.h"
#include "XfmTestImages.h"

namespace {

void expectImagesEqual(const ImageZel& a, const ImageZel& b) {
    ASSERT_EQ(a.width, b.width);
    ASSERT_EQ(a.height, b.height);
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x)
            ASSERT_TRUE(samePixel(a.rows[y][x], b.rows[y][x])) << x << "," << y;
}

// Three bands, run one after another.
void threeBands(void*, ImageXfmZel::Worker worker, int count, void* argument) {
    const int per = count / 3;
    worker(argument, 0, per - 1);
    worker(argument, per, 2 * per - 1);
    worker(argument, 2 * per, count - 1);
}

}  // namespace

TEST(XfmScale, SameSizeCopiesAndTentEnlargesLinearly) {
    ImagePtr src = makeCoded(3, 2);
    ImageXfmZel xfm;
    ImagePtr same = makeUniform(3, 2, 0, 0, 0, 0);
    EXPECT_EQ(xfm.scale_image(src.get(), same.get()), 1);
    expectImagesEqual(*same, *src);

    // Ratios 2/4 and 1/2: output (k, l) sits at input (k / 2, l / 2), so
    // red = 100 * (k / 2 + 10 * l / 2).
    xfm.sampleMode(XFM_MODE_LINEAR);
    ImagePtr big = makeUniform(5, 3, 0, 0, 0, 0);
    EXPECT_EQ(xfm.scale_image(src.get(), big.get()), 1);
    for (int l = 0; l < 3; ++l)
        for (int k = 0; k < 5; ++k) {
            EXPECT_EQ(big->rows[l][k].red, 50 * k + 500 * l) << k << "," << l;
            EXPECT_EQ(big->rows[l][k].alpha, 32000);
        }
}

TEST(XfmScale, UniformStaysUniformWhenEnlarged) {
    ImagePtr src = makeUniform(5, 4, 12345, 32767, 0, 777);
    ImageXfmZel xfm;
    for (int m : {XFM_MODE_LINEAR, XFM_MODE_CUBIC, XFM_MODE_SHARP_CUBIC, XFM_MODE_BSPLINE}) {
        xfm.sampleMode(m);
        ImagePtr dst = makeUniform(9, 7, 0, 0, 0, 0);
        ASSERT_EQ(xfm.scale_image(src.get(), dst.get()), 1);
        for (int y = 0; y < 7; ++y)
            for (int x = 0; x < 9; ++x)
                ASSERT_TRUE(samePixel(dst->rows[y][x], makePixel(12345, 32767, 0, 777)))
                    << "mode " << m << " at " << x << "," << y;
    }
}

TEST(XfmScale, ShrinkStretchesTheKernelAndReplicatesEdges) {
    // Ratio 2: tent of radius 2 input pixels, weights 1/2, 1, 1/2 over their sum.
    // Row 0 = 0, 100, 200, 300, 400: k = 0 gives (0 + 0 + 50) / 2 with the
    // replicated left edge, k = 1 (50 + 200 + 150) / 2, k = 2 (150 + 400 + 200) / 2.
    ImagePtr src =
        makeImage(5, 2, [](int x, int y) { return makePixel(100 * x + 1000 * y, 0, 0, 0); });
    ImageXfmZel xfm;
    xfm.sampleMode(XFM_MODE_LINEAR);
    ImagePtr dst = makeUniform(3, 2, 9, 9, 9, 9);
    ASSERT_EQ(xfm.scale_image(src.get(), dst.get()), 1);
    const int want[3] = {25, 200, 375};
    for (int y = 0; y < 2; ++y)
        for (int k = 0; k < 3; ++k) EXPECT_EQ(dst->rows[y][k].red, want[k] + 1000 * y);

    // Banded execution gives the same pictures, in both passes and both directions.
    ImagePtr tall =
        makeImage(7, 9, [](int x, int y) { return makePixel(300 * x + 200 * y, x, y, 5); });
    xfm.sampleMode(XFM_MODE_CUBIC);
    int context = 0;
    for (int w : {4, 13}) {
        const int h = w == 4 ? 5 : 17;
        ImagePtr plain = makeUniform(w, h, 0, 0, 0, 0), banded = makeUniform(w, h, 0, 0, 0, 0);
        xfm.set_mp_exec(nullptr, nullptr);
        ASSERT_EQ(xfm.scale_image(tall.get(), plain.get()), 1);
        xfm.set_mp_exec(&context, threeBands);
        ASSERT_EQ(xfm.scale_image(tall.get(), banded.get()), 1);
        expectImagesEqual(*banded, *plain);
        if (w == 13) {
            // Enlarging maps corners onto corners at phase 0, where the cubic is exact.
            EXPECT_TRUE(samePixel(plain->rows[0][0], tall->rows[0][0]));
            EXPECT_TRUE(samePixel(plain->rows[16][12], tall->rows[8][6]));
            EXPECT_TRUE(samePixel(plain->rows[4][6], tall->rows[2][3]));
        }
    }
}

TEST(XfmScale, RefusesUndefinedRatiosAndNullImages) {
    ImageXfmZel xfm;
    ImagePtr wide = makeCoded(5, 4), column = makeCoded(1, 4), row = makeCoded(5, 1);
    ImagePtr dst3x4 = makeUniform(3, 4, 0, 0, 0, 0), tallColumn = makeUniform(1, 8, 0, 0, 0, 0);
    EXPECT_EQ(xfm.scale_image(column.get(), dst3x4.get()), 0);  // width 1 -> 3
    EXPECT_EQ(xfm.scale_image(wide.get(), column.get()), 0);    // width 5 -> 1
    EXPECT_EQ(xfm.scale_image(wide.get(), row.get()), 0);       // height 4 -> 1
    EXPECT_EQ(xfm.scale_image(nullptr, dst3x4.get()), 0);
    EXPECT_EQ(xfm.scale_image(wide.get(), nullptr), 0);
    // Width 1 kept, height scaled: the ratio is defined.
    xfm.sampleMode(XFM_MODE_LINEAR);
    EXPECT_EQ(xfm.scale_image(column.get(), tallColumn.get()), 1);
    EXPECT_EQ(tallColumn->rows[7][0].red, column->rows[3][0].red);
}
