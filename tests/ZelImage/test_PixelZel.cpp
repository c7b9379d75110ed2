#include <gtest/gtest.h>

#include <cstdlib>

#include "ImageZelTestUtil.h"
#include "PixelZel.h"

TEST(PixelZel, GetHSVOfPrimariesAndAMixedColour) {
    unsigned short h = 1, s = 1, v = 1;
    makePixel(0, 0, 0, 500).GetHSV(h, s, v);
    EXPECT_EQ(h, 0);
    EXPECT_EQ(s, 0);
    EXPECT_EQ(v, 0);

    // 15-bit halves are 16383: full saturation 16383 * 2, value 16383 * 2.
    makePixel(32767, 0, 0, 0).GetHSV(h, s, v);
    EXPECT_EQ(h, 0);
    EXPECT_EQ(s, 32766);
    EXPECT_EQ(v, 32766);

    // Green: h = 32768, H = (32768 / 6) * 2 = 10922.
    makePixel(0, 32767, 0, 0).GetHSV(h, s, v);
    EXPECT_EQ(h, 10922);
    EXPECT_EQ(s, 32766);
    // Blue: h = 65536, H = (65536 / 6) * 2 = 21844.
    makePixel(0, 0, 32767, 0).GetHSV(h, s, v);
    EXPECT_EQ(h, 21844);

    // (10000, 5000, 2000) halves: s = 8000*16383/10000 = 13106,
    // gc = 5000*16383/8000 = 10239, bc = 16383, h = 6144, H = 2048.
    makePixel(20000, 10000, 4000, 0).GetHSV(h, s, v);
    EXPECT_EQ(h, 2048);
    EXPECT_EQ(s, 26212);
    EXPECT_EQ(v, 20000);
}

TEST(PixelZel, SetHSVComputesSectorsAndKeepsAlpha) {
    PixelZel p = makePixel(1, 2, 3, 777);
    p.SetHSV(0, 32766, 32766);
    EXPECT_EQ(p.red, 32766);
    EXPECT_EQ(p.green, 0);
    EXPECT_EQ(p.blue, 0);
    EXPECT_EQ(p.alpha, 777);

    // h = 1024, s = 13106, v = 10000, sector 0, f = 6144:
    // p = 3277*10000/16383 = 2000, t = 10000 * (16383^2 - 10239*13106) / 16383^2 = 5000.
    p.SetHSV(2048, 26212, 20000);
    EXPECT_EQ(p.red, 20000);
    EXPECT_EQ(p.green, 10000);
    EXPECT_EQ(p.blue, 4000);

    // Hue 65535 lands in sector 11: no colour at all.
    p = makePixel(9, 9, 9, 5);
    p.SetHSV(65535, 32766, 32766);
    EXPECT_EQ(p.red, 0);
    EXPECT_EQ(p.green, 0);
    EXPECT_EQ(p.blue, 0);
    EXPECT_EQ(p.alpha, 5);
}

TEST(PixelZel, HSVRoundTripStaysClose) {
    const PixelZel colours[] = {makePixel(32767, 32767, 32767, 0), makePixel(1234, 20000, 30000, 0),
                                makePixel(30000, 30000, 100, 0),   makePixel(8000, 100, 25000, 0),
                                makePixel(16000, 16000, 16000, 0), makePixel(500, 31000, 600, 0)};
    // Halving to 15 bits and the 16383 scale lose a few steps at most.
    const int tolerance = 16;
    for (const PixelZel& c : colours) {
        unsigned short h, s, v;
        c.GetHSV(h, s, v);
        PixelZel back = c;
        back.SetHSV(h, s, v);
        EXPECT_LE(std::abs(back.red - c.red), tolerance)
            << c.red << " " << c.green << " " << c.blue;
        EXPECT_LE(std::abs(back.green - c.green), tolerance) << c.red << " " << c.green;
        EXPECT_LE(std::abs(back.blue - c.blue), tolerance) << c.red << " " << c.blue;
    }
}

TEST(PixelZel, Luminance) {
    // (5*20000 + 8*10000 + 3*4000) / 16 = 12000
    EXPECT_EQ(makePixel(20000, 10000, 4000, 0).GetLuminance(), 12000);
    EXPECT_EQ(makePixel(32767, 32767, 32767, 0).GetLuminance(), 32767);
    // 16 * 65535 needs more than 16 bits before the shift.
    EXPECT_EQ(makePixel(65535, 65535, 65535, 0).GetLuminance(), 65535);
    // Truncating shift: (5*1 + 8*1 + 0) / 16 = 0
    EXPECT_EQ(makePixel(1, 1, 0, 0).GetLuminance(), 0);

    PixelZel p = makePixel(1, 2, 3, 4);
    p.SetLuminance(900);
    EXPECT_EQ(p.red, 900);
    EXPECT_EQ(p.green, 900);
    EXPECT_EQ(p.blue, 900);
    EXPECT_EQ(p.alpha, 4);
}
