// ImageZel, the picture type: construction with own or lent pixels and the
// copy, bilinear point sampling at the borders and between pixels, and the
// value operations (fill, channel fill, look-up tables, copy, blend).
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "ImageZel.h"

namespace {

// Every channel of (x, y) := base + x + 10 y; alpha 1000 more.
void code(ImageZel& im, int base = 0) {
    for (int y = 0; y < im.height; ++y)
        for (int x = 0; x < im.width; ++x) {
            PixelZel& p = im.rows[y][x];
            p.red = p.green = p.blue = base + x + 10 * y;
            p.alpha = p.red + 1000;
        }
}

unsigned short red(ImageZel& im, float x, float y) {
    PixelZel out;
    out.red = 9999;
    im.PointSampleB(x, y, out);
    return out.red;
}

struct Witness : ZelImageAttachment {
    explicit Witness(bool* gone) : gone(gone) {}
    ~Witness() override { *gone = true; }
    bool* gone;
};

}  // namespace

TEST(ImageZel, ConstructionAndCopy) {
    ImageZel own(5L, 4L, 2.0f, nullptr, nullptr);
    EXPECT_EQ(own.ownsPixels, 1);
    EXPECT_EQ(own.rows[3], own.pixels + 15);
    EXPECT_EQ(own.sizeFactor, 144.0f);  // 720 / 5
    EXPECT_EQ(own.pixelAspect, 1.0);    // the aspect argument is ignored
    EXPECT_EQ(own.secondScale, 1.0);
    EXPECT_EQ(own.words[3], 0u);
    EXPECT_EQ(own.opParams[15], 0u);
    EXPECT_EQ(own.attached, nullptr);
    EXPECT_EQ(own.background.alpha, 0);

    PixelZel lent[3 * 2];
    bool gone = false;
    {
        ImageZel source(3, 2, 1.0f, lent, reinterpret_cast<renderop_tag*>(0x99));
        EXPECT_EQ(source.ownsPixels, 0);
        EXPECT_EQ(source.pixels, lent);
        EXPECT_EQ(source.rows[1], lent + 3);
        EXPECT_EQ(source.sizeFactor, 240.0f);
        code(source);
        source.pixelAspect = 1.5;
        source.words[2] = 7;
        source.opParams[0] = 3;
        source.attached = new Witness(&gone);
        {
            ImageZel copy(source);
            EXPECT_EQ(copy.ownsPixels, 1);
            EXPECT_NE(copy.pixels, lent);
            EXPECT_EQ(copy.rows[1], copy.pixels + 3);
            EXPECT_EQ(std::memcmp(copy.pixels, lent, sizeof lent), 0);
            EXPECT_EQ(copy.pixelAspect, 1.5);
            EXPECT_EQ(copy.words[2], 7u);
            EXPECT_EQ(copy.opParams[0], 0u);
            EXPECT_EQ(copy.renderOp, source.renderOp);
            EXPECT_EQ(copy.attached, nullptr);
            copy.rows[1][2].red = 4444;
        }
        EXPECT_EQ(lent[5].red, 12);  // the lender's pixels are untouched and still alive
        EXPECT_FALSE(gone);
    }
    EXPECT_TRUE(gone);  // the attached object goes with its image
}

TEST(ImageZel, PointSampleB) {
    ImageZel im(3, 2, 1.0f, nullptr, nullptr);
    code(im, 400);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x) EXPECT_EQ(red(im, x, y), 400 + x + 10 * y);
    EXPECT_EQ(red(im, -0.5f, -0.5f), 100);  // a quarter of the corner
    EXPECT_EQ(red(im, 0.5f, 0.5f), 405);    // (400 + 401 + 410 + 411) / 4 = 405.5
    EXPECT_EQ(red(im, 2.5f, 0.0f), 201);    // half of 402, nothing from outside
    EXPECT_EQ(red(im, -1.0f, 0.0f), 0);
    EXPECT_EQ(red(im, 1.0f, 2.0f), 0);
    EXPECT_EQ(red(im, 1e30f, -1e30f), 0);
    // x - floor(x) rounds to 1 in single precision: all weight on column 0.
    EXPECT_EQ(red(im, -1e-10f, 1.0f), 410);
    PixelZel a;
    im.AreaSampleW(0.0f, 0.0f, 2.0f, 1.0f, a);  // centre (1, 0.5)
    EXPECT_EQ(a.alpha, 1406);

    // Weights always sum to 32768: a full constant image samples back exactly.
    ImageZel flat(5, 4, 1.0f, nullptr, nullptr);
    flat.Fill(32767, 32767, 32767, 32767);
    for (float y = 0.0f; y <= 3.0f; y += 0.13f)
        for (float x = 0.0f; x <= 4.0f; x += 0.07f)
            ASSERT_EQ(red(flat, x, y), 32767) << x << "," << y;
}

TEST(ImageZel, ValueOperations) {
    ImageZel im(3, 2, 1.0f, nullptr, nullptr);
    im.Fill(1, 2, 3, 4);
    EXPECT_EQ(im.rows[1][2].red, 1);
    EXPECT_EQ(im.rows[1][2].alpha, 4);
    EXPECT_EQ(im.rows[0][0].blue, 3);
    code(im);
    im.FillChannel(7, 1);
    im.FillChannel(5, 4);  // no such channel
    EXPECT_EQ(im.rows[1][2].red, 12);
    EXPECT_EQ(im.rows[1][2].green, 7);
    EXPECT_EQ(im.rows[1][2].alpha, 1012);

    std::vector<unsigned short> up(65536), half(65536);
    for (int i = 0; i < 65536; ++i) up[i] = i + 1, half[i] = i / 2;
    im.ApplyLUT(up.data(), half.data(), up.data(), half.data());
    EXPECT_EQ(im.rows[1][1].red, 12);
    EXPECT_EQ(im.rows[1][1].green, 3);
    EXPECT_EQ(im.rows[1][1].alpha, 505);

    // CopyValues: the source's size drives the loop; unit factors keep values above 32767.
    ImageZel src(3, 2, 1.0f, nullptr, nullptr), dst(5, 4, 1.0f, nullptr, nullptr);
    code(src);
    src.rows[0][0].red = 40000;
    dst.Fill(8, 8, 8, 8);
    dst.CopyValues(&src, 1.0f, 1.0f, 1.0f, 1.0f);
    EXPECT_EQ(dst.rows[0][0].red, 40000);
    EXPECT_EQ(dst.rows[1][2].green, 12);
    EXPECT_EQ(dst.rows[0][3].red, 8);
    dst.CopyValues(&src, 1.0f, 1.0f, 1.0f, 0.999f);
    EXPECT_EQ(dst.rows[0][0].red, 32767);
    EXPECT_EQ(dst.rows[1][2].alpha, 1010);  // 1012 * 0.999 = 1010.988, truncated
    dst.CopyValues(nullptr, 0.0f, 0.0f, 0.0f, 0.0f);
    EXPECT_EQ(dst.rows[0][0].red, 32767);

    // InBlend: 0 keeps, 0.5 of 1 and 2 truncates to 1, 1 copies.
    ImageZel other(3, 2, 1.0f, nullptr, nullptr);
    im.Fill(2, 100, 40000, 0);
    other.Fill(1, 200, 0, 65535);
    im.InBlend(0.0f, &other);
    EXPECT_EQ(im.rows[1][2].red, 2);
    EXPECT_EQ(im.rows[1][2].blue, 40000);
    im.InBlend(0.5f, &other);
    const PixelZel& p = im.rows[1][2];
    EXPECT_EQ(p.red, 1);
    EXPECT_EQ(p.green, 150);
    EXPECT_EQ(p.blue, 20000);
    EXPECT_EQ(p.alpha, 32767);
    code(other, 300);
    im.InBlend(1.0f, &other);
    EXPECT_EQ(im.rows[1][2].red, 312);
    EXPECT_EQ(im.rows[0][1].alpha, 1301);
}
