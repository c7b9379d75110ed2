#include <gtest/gtest.h>

#include <vector>

#include "ImageZel.h"
#include "ImageZelTestUtil.h"

TEST(ImageZelValues, FillAndFillChannel) {
    ImageZel image(3, 2, 1.0f, nullptr, nullptr);
    image.Fill(1, 2, 3, 4);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x) {
            const PixelZel& p = image.rows[y][x];
            EXPECT_TRUE(p.red == 1 && p.green == 2 && p.blue == 3 && p.alpha == 4) << x << y;
        }

    fillCoded(image);
    image.FillChannel(7, 1);
    image.FillChannel(9, 3);
    image.FillChannel(5, 4);  // no such channel
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x) {
            const PixelZel& p = image.rows[y][x];
            EXPECT_EQ(p.red, x + 10 * y);
            EXPECT_EQ(p.green, 7);
            EXPECT_EQ(p.blue, x + 10 * y);
            EXPECT_EQ(p.alpha, 9);
        }
}

TEST(ImageZelValues, ApplyLUTUsesEachChannelsTable) {
    ImageZel image(3, 2, 1.0f, nullptr, nullptr);
    fillCoded(image);
    image.rows[1][2].red = 65535;
    std::vector<unsigned short> lr(65536), lg(65536), lb(65536), la(65536);
    for (int i = 0; i < 65536; ++i) {
        lr[i] = static_cast<unsigned short>(i + 1);
        lg[i] = static_cast<unsigned short>(2 * i);
        lb[i] = static_cast<unsigned short>(100 - i);
        la[i] = static_cast<unsigned short>(i / 2);
    }
    image.ApplyLUT(lr.data(), lg.data(), lb.data(), la.data());
    EXPECT_EQ(image.rows[0][1].red, 2);
    EXPECT_EQ(image.rows[1][1].green, 22);
    EXPECT_EQ(image.rows[1][0].blue, 90);
    EXPECT_EQ(image.rows[0][2].alpha, 501);  // (1000 + 2) / 2
    EXPECT_EQ(image.rows[1][2].red, 0);      // 65535 + 1 wraps in the table
}

TEST(ImageZelValues, CopyValues) {
    ImageZel source(3, 2, 1.0f, nullptr, nullptr);
    fillCoded(source);
    source.rows[0][0] = makePixel(40000, 50000, 65535, 40000);
    source.rows[1][2].alpha = 1001;

    // A larger destination: only the source's 3x2 corner changes.
    ImageZel dest(5, 4, 1.0f, nullptr, nullptr);
    dest.Fill(8, 8, 8, 8);
    dest.CopyValues(&source, 1.0f, 1.0f, 1.0f, 1.0f);
    EXPECT_EQ(dest.rows[0][0].red, 40000);
    EXPECT_EQ(dest.rows[0][0].blue, 65535);
    EXPECT_EQ(dest.rows[1][2].green, 12);
    EXPECT_EQ(dest.rows[0][3].red, 8);
    EXPECT_EQ(dest.rows[2][0].red, 8);

    dest.CopyValues(&source, 1.0f, 1.0f, 1.0f, 0.999f);
    EXPECT_EQ(dest.rows[0][0].red, 32767);
    EXPECT_EQ(dest.rows[0][0].green, 32767);
    EXPECT_EQ(dest.rows[0][0].alpha, 32767);
    EXPECT_EQ(dest.rows[1][2].alpha, 999);  // 1001 * 0.999 = 999.999, truncated
    EXPECT_EQ(dest.rows[1][2].red, 12);

    dest.CopyValues(&source, 0.5f, 2.0f, -1.0f, 0.0f);
    EXPECT_EQ(dest.rows[1][1].red, 5);  // 11 * 0.5
    EXPECT_EQ(dest.rows[1][1].green, 22);
    EXPECT_EQ(dest.rows[1][1].blue, 0);  // negative clamps to 0
    EXPECT_EQ(dest.rows[1][1].alpha, 0);

    dest.CopyValues(nullptr, 1.0f, 1.0f, 1.0f, 1.0f);
    EXPECT_EQ(dest.rows[1][1].green, 22);
}

TEST(ImageZelValues, InBlendTruncates) {
    ImageZel image(3, 2, 1.0f, nullptr, nullptr);
    ImageZel other(3, 2, 1.0f, nullptr, nullptr);
    image.Fill(2, 100, 40000, 0);
    other.Fill(1, 200, 0, 65535);

    image.InBlend(0.0f, &other);
    EXPECT_EQ(image.rows[1][2].red, 2);
    EXPECT_EQ(image.rows[1][2].blue, 40000);

    // 1 * 0.5 + 2 * 0.5 = 1.5 -> 1; 200 * 0.5 + 100 * 0.5 = 150; 0 + 20000;
    // alpha 65535 * 0.5 = 32767.5 -> 32767.
    image.InBlend(0.5f, &other);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x) {
            const PixelZel& p = image.rows[y][x];
            EXPECT_EQ(p.red, 1);
            EXPECT_EQ(p.green, 150);
            EXPECT_EQ(p.blue, 20000);
            EXPECT_EQ(p.alpha, 32767);
        }

    fillCoded(other, 300);
    image.InBlend(1.0f, &other);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x) {
            EXPECT_EQ(image.rows[y][x].red, 300 + x + 10 * y);
            EXPECT_EQ(image.rows[y][x].alpha, 1300 + x + 10 * y);
        }
}
