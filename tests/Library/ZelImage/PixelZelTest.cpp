// PixelZel, the 15-bit pixel: HSV both ways, hand-worked and round trips
// through every hue sector, and luminance.
#include <gtest/gtest.h>

#include <cstdlib>

#include "PixelZel.h"

static PixelZel px(int r, int g, int b, int a = 0) {
    PixelZel p;
    p.red = r, p.green = g, p.blue = b, p.alpha = a;
    return p;
}

TEST(PixelZel, HSV) {
    unsigned short h = 1, s = 1, v = 1;
    px(0, 0, 0).GetHSV(h, s, v);
    EXPECT_EQ(h, 0);
    EXPECT_EQ(s, 0);
    EXPECT_EQ(v, 0);
    // Halves are 16383: saturation and value 16383 * 2.
    px(32767, 0, 0).GetHSV(h, s, v);
    EXPECT_EQ(h, 0);
    EXPECT_EQ(s, 32766);
    EXPECT_EQ(v, 32766);
    px(0, 0, 32767).GetHSV(h, s, v);
    EXPECT_EQ(h, 21844);  // (65536 / 6) * 2
    // Halves (10000, 5000, 2000): s = 8000*16383/10000 = 13106, gc = 10239, bc = 16383,
    // h = 6144 -> 2048. Back: p = 3277*10000/16383 = 2000, t = 5000 (sector 0).
    px(20000, 10000, 4000).GetHSV(h, s, v);
    EXPECT_EQ(h, 2048);
    EXPECT_EQ(s, 26212);
    EXPECT_EQ(v, 20000);
    PixelZel p = px(1, 2, 3, 777);
    p.SetHSV(2048, 26212, 20000);
    EXPECT_EQ(p.red, 20000);
    EXPECT_EQ(p.green, 10000);
    EXPECT_EQ(p.blue, 4000);
    EXPECT_EQ(p.alpha, 777);
    p.SetHSV(65535, 32766, 32766);  // sector 11: no colour
    EXPECT_EQ(p.red, 0);
    EXPECT_EQ(p.green, 0);
    EXPECT_EQ(p.blue, 0);
    EXPECT_EQ(p.alpha, 777);

    // Round trips through every sector lose a few steps at most.
    for (PixelZel c : {px(32767, 32767, 32767), px(1234, 20000, 30000), px(30000, 30000, 100),
                       px(8000, 100, 25000), px(500, 31000, 600), px(31000, 9000, 20000)}) {
        c.GetHSV(h, s, v);
        p = c;
        p.SetHSV(h, s, v);
        EXPECT_LE(std::abs(p.red - c.red) + std::abs(p.green - c.green) + std::abs(p.blue - c.blue),
                  24)
            << c.red << " " << c.green << " " << c.blue;
    }
}

TEST(PixelZel, Luminance) {
    EXPECT_EQ(px(20000, 10000, 4000).GetLuminance(), 12000);   // (100000 + 80000 + 12000) / 16
    EXPECT_EQ(px(65535, 65535, 65535).GetLuminance(), 65535);  // no 16-bit overflow
    EXPECT_EQ(px(1, 1, 0).GetLuminance(), 0);                  // 13 / 16 truncates
    PixelZel p = px(1, 2, 3, 4);
    p.SetLuminance(900);
    EXPECT_EQ(p.red, 900);
    EXPECT_EQ(p.green, 900);
    EXPECT_EQ(p.blue, 900);
    EXPECT_EQ(p.alpha, 4);
}
