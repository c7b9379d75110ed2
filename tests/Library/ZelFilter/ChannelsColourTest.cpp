#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "FilterReferenceData.h"
#include "FloatImageZel.h"
#include "ImageZel.h"
#include "ZelChannels.h"
#include "ZelColour.h"
#include "ZelColourImages.h"
#include "ZelHost.h"
#include "ZelImageFilters.h"

namespace {

// Channel values say where they came from: red = x + 10 y, green 100 more,
// blue 1000 more, alpha 32767 - red.
void fillCoded(ImageZel& image) {
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            const auto v = static_cast<unsigned short>(x + 10 * y);
            image.rows[y][x] = PixelZel{v, static_cast<unsigned short>(v + 100),
                                        static_cast<unsigned short>(v + 1000),
                                        static_cast<unsigned short>(kZelFull15 - v)};
        }
}

class FilterChannels : public ::testing::Test {
  protected:
    void SetUp() override { zelHost() = ZelHost{}; }
};

}  // namespace

TEST_F(FilterChannels, FloatImageKeepsOrReplacesItsPixels) {
    FloatImageZel image(3, 2);
    ASSERT_TRUE(image.hasPixels());
    for (long i = 0; i < image.count(); ++i) EXPECT_EQ(image.data()[i], 0.0f);
    image.row(1)[2] = 7.0f;
    ASSERT_TRUE(image.resize(3, 2));  // same size: kept
    EXPECT_EQ(image.at(2, 1), 7.0f);
    ASSERT_TRUE(image.resize(2, 3));  // new size: zeroed
    EXPECT_EQ(image.at(1, 2), 0.0f);
    FloatImageZel moved(std::move(image));
    EXPECT_FALSE(image.hasPixels());
    EXPECT_EQ(moved.width(), 2);
    EXPECT_FALSE(moved.resize(0, 4));
    EXPECT_FALSE(moved.hasPixels());
}

// Extraction scales by 1/32767; storing rounds to the nearest level, limits
// to 0..32767 and leaves the other channels alone.
TEST_F(FilterChannels, ExtractStoreAndMix) {
    ImageZel image(5, 4, 1.0f, nullptr, nullptr);
    fillCoded(image);
    FloatImageZel blue;
    ASSERT_TRUE(zelExtractChannel(image, ZelChannel::kBlue, blue));
    EXPECT_FLOAT_EQ(blue.at(3, 2), (1000 + 23) / 32767.0f);

    FloatImageZel values(5, 4);
    values.fill(0.5f);
    values.row(0)[0] = -0.2f;
    values.row(0)[1] = 1.3f;
    values.row(0)[2] = 100.4f / 32767.0f;
    values.row(0)[3] = 100.6f / 32767.0f;
    ASSERT_TRUE(zelStoreChannel(values, ZelChannel::kGreen, image));
    EXPECT_EQ(image.rows[0][0].green, 0);
    EXPECT_EQ(image.rows[0][1].green, 32767);
    EXPECT_EQ(image.rows[0][2].green, 100);
    EXPECT_EQ(image.rows[0][3].green, 101);
    EXPECT_EQ(image.rows[2][3].green, 16384);  // 16383.5 rounds up
    EXPECT_EQ(image.rows[2][3].red, 23);
    EXPECT_EQ(image.rows[2][3].blue, 1023);

    fillCoded(image);
    FloatImageZel mixed;
    ZelChannelMix mix;
    mix.red = 1.0f;
    mix.blue = -1.0f;
    mix.alpha = 0.5f;
    ASSERT_TRUE(zelMixChannels(image, mix, mixed));
    EXPECT_NEAR(mixed.at(4, 3), (34 - 1034 + 0.5 * (32767 - 34)) / 32767.0, 1e-6);
    ASSERT_TRUE(zelLuminance(image, mixed));
    EXPECT_NEAR(mixed.at(1, 1), (0.2126 * 11 + 0.7152 * 111 + 0.0722 * 1011) / 32767.0, 1e-6);

    FloatImageZel wrong(4, 4);
    EXPECT_FALSE(zelStoreChannel(wrong, ZelChannel::kRed, image));
}

// HSV against Python's colorsys, and both round trips.
TEST_F(FilterChannels, HsvMatchesColorsysAndRoundTrips) {
    using namespace filterref;
    const int n = sizeof kHsv / sizeof kHsv[0] / 3;
    for (int i = 0; i < n; ++i) {
        const ZelRgb rgb{kHsvRgb[3 * i], kHsvRgb[3 * i + 1], kHsvRgb[3 * i + 2]};
        const ZelHsv hsv = zelRgbToHsv(rgb);
        EXPECT_NEAR(hsv.hue, kHsv[3 * i], 1e-6f) << i;
        EXPECT_NEAR(hsv.saturation, kHsv[3 * i + 1], 1e-6f) << i;
        EXPECT_NEAR(hsv.value, kHsv[3 * i + 2], 1e-6f) << i;
        const ZelRgb back = zelHsvToRgb(hsv);
        EXPECT_NEAR(back.red, rgb.red, 1e-6f);
        EXPECT_NEAR(back.green, rgb.green, 1e-6f);
        EXPECT_NEAR(back.blue, rgb.blue, 1e-6f);
        const ZelRgb again = zelLumaDifferencesToRgb(zelRgbToLumaDifferences(rgb));
        EXPECT_NEAR(again.red, rgb.red, 1e-6f);
        EXPECT_NEAR(again.green, rgb.green, 1e-6f);
        EXPECT_NEAR(again.blue, rgb.blue, 1e-6f);
    }
    EXPECT_NEAR(zelLuma(ZelRgb{1.0f, 1.0f, 1.0f}), 1.0f, 1e-6f);

    // Whole pictures, through 15-bit storage: within a few levels (the hue's
    // quantisation is multiplied by up to six in the sector arithmetic).
    ImageZel image(64, 16, 1.0f, nullptr, nullptr);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 64; ++x)
            image.rows[y][x] = PixelZel{static_cast<unsigned short>(x * 511),
                                        static_cast<unsigned short>(y * 2000 + 100),
                                        static_cast<unsigned short>((x * 977 + y * 3001) % 32768),
                                        static_cast<unsigned short>(x)};
    ImageZel hsv(image);
    ASSERT_TRUE(zelImageRgbToHsv(image, hsv));
    ImageZel back(hsv);
    ASSERT_TRUE(zelImageHsvToRgb(hsv, back));
    FloatImageZel y, cb, cr;
    ASSERT_TRUE(zelImageToLumaDifferences(image, y, cb, cr));
    ImageZel fromLuma(image);
    ASSERT_TRUE(zelImageFromLumaDifferences(y, cb, cr, fromLuma));
    for (int j = 0; j < 16; ++j)
        for (int i = 0; i < 64; ++i) {
            const PixelZel& a = image.rows[j][i];
            const PixelZel& b = back.rows[j][i];
            EXPECT_NEAR(a.red, b.red, 4);
            EXPECT_NEAR(a.green, b.green, 4);
            EXPECT_NEAR(a.blue, b.blue, 4);
            EXPECT_EQ(a.alpha, b.alpha);
            const PixelZel& c = fromLuma.rows[j][i];
            EXPECT_NEAR(a.red, c.red, 1);
            EXPECT_NEAR(a.green, c.green, 1);
            EXPECT_NEAR(a.blue, c.blue, 1);
        }
}

// The whole-picture filters treat every channel alike and keep a constant.
TEST_F(FilterChannels, ImageBlurAndSharpenWorkPerChannel) {
    ImageZel image(9, 7, 1.0f, nullptr, nullptr);
    image.Fill(1000, 20000, 32767, 0);
    ImageZel out(image);
    ASSERT_TRUE(zelBlurImage(image, out, 2.0f));
    ASSERT_TRUE(zelSharpenImage(out, out, 1.0f, 2.0f));
    for (int y = 0; y < 7; ++y)
        for (int x = 0; x < 9; ++x) {
            EXPECT_EQ(out.rows[y][x].red, 1000);
            EXPECT_EQ(out.rows[y][x].green, 20000);
            EXPECT_EQ(out.rows[y][x].blue, 32767);
            EXPECT_EQ(out.rows[y][x].alpha, 0);
        }
    // A bright column spreads sideways and sharpening overshoots next to it.
    image.Fill(8000, 8000, 8000, 8000);
    for (int y = 0; y < 7; ++y) image.rows[y][4].green = 24000;
    ASSERT_TRUE(zelBlurImage(image, out, 1.0f));
    EXPECT_GT(out.rows[3][3].green, 8000);
    EXPECT_LT(out.rows[3][4].green, 24000);
    EXPECT_EQ(out.rows[3][3].red, 8000);
    ASSERT_TRUE(zelSharpenImage(image, out, 1.0f, 1.0f));
    EXPECT_LT(out.rows[3][3].green, 8000);
    EXPECT_GT(out.rows[3][4].green, 24000);
    ImageZel small(3, 3, 1.0f, nullptr, nullptr);
    EXPECT_FALSE(zelBlurImage(image, small, 1.0f));
}
