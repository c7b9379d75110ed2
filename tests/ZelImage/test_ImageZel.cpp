#include <gtest/gtest.h>

#include <cstring>

#include "ImageZel.h"
#include "ImageZelTestUtil.h"

namespace {

struct Witness : ZelImageAttachment {
    explicit Witness(bool* gone) : gone(gone) {}
    ~Witness() override { *gone = true; }
    bool* gone;
};

}  // namespace

TEST(ImageZel, ConstructionSetsFieldsAndRowTable) {
    renderop_tag* op = reinterpret_cast<renderop_tag*>(0x1234);
    ImageZel image(5L, 4L, 2.0f, nullptr, op);
    EXPECT_EQ(image.width, 5);
    EXPECT_EQ(image.height, 4);
    EXPECT_EQ(image.ownsPixels, 1);
    ASSERT_NE(image.pixels, nullptr);
    for (int y = 0; y < 4; ++y) EXPECT_EQ(image.rows[y], image.pixels + 5 * y);
    EXPECT_EQ(image.sizeFactor, 144.0f);
    // The aspect argument is ignored.
    EXPECT_EQ(image.pixelAspect, 1.0);
    EXPECT_EQ(image.secondScale, 1.0);
    EXPECT_EQ(image.renderOp, op);
    EXPECT_EQ(image.attached, nullptr);
    for (unsigned w : image.words) EXPECT_EQ(w, 0u);
    for (unsigned w : image.opParams) EXPECT_EQ(w, 0u);
    EXPECT_EQ(image.background.red | image.background.green | image.background.blue |
                  image.background.alpha,
              0);
    // Every pixel is addressable (checked by the sanitizer build).
    image.Fill(1, 2, 3, 4);
    EXPECT_EQ(image.rows[3][4].alpha, 4);

    PixelZel lent[7 * 2];
    ImageZel borrowed(7, 2, 1.0f, lent, nullptr);
    EXPECT_EQ(borrowed.ownsPixels, 0);
    EXPECT_EQ(borrowed.pixels, lent);
    EXPECT_EQ(borrowed.rows[1], lent + 7);
    EXPECT_EQ(borrowed.sizeFactor, static_cast<float>(720.0 / 7.0));
}

TEST(ImageZel, CopyOwnsItsPixelsAndKeepsTheSettings) {
    PixelZel lent[3 * 2];
    bool gone = false;
    {
        ImageZel source(3, 2, 1.0f, lent, reinterpret_cast<renderop_tag*>(0x99));
        fillCoded(source);
        source.pixelAspect = 1.5;
        source.secondScale = 0.5;
        source.sizeFactor = 2.0f;
        source.words[2] = 7;
        source.opParams[0] = 3;
        source.background = makePixel(1, 1, 1, 1);
        source.attached = new Witness(&gone);

        {
            ImageZel copy(source);
            EXPECT_EQ(copy.ownsPixels, 1);
            EXPECT_NE(copy.pixels, lent);
            EXPECT_EQ(copy.width, 3);
            EXPECT_EQ(copy.height, 2);
            EXPECT_EQ(copy.rows[1], copy.pixels + 3);
            EXPECT_EQ(std::memcmp(copy.pixels, lent, sizeof lent), 0);
            EXPECT_EQ(copy.pixelAspect, 1.5);
            EXPECT_EQ(copy.secondScale, 0.5);
            EXPECT_EQ(copy.sizeFactor, 2.0f);
            EXPECT_EQ(copy.words[2], 7u);
            EXPECT_EQ(copy.renderOp, reinterpret_cast<renderop_tag*>(0x99));
            EXPECT_EQ(copy.opParams[0], 0u);
            EXPECT_EQ(copy.background.red, 0);
            EXPECT_EQ(copy.attached, nullptr);

            copy.rows[1][2].red = 4444;
            EXPECT_EQ(lent[5].red, 12);  // x 2 + 10 * y 1
        }
        // The copy is gone; the lender's pixels are still intact.
        EXPECT_EQ(lent[5].red, 12);
        EXPECT_FALSE(gone);
    }
    // The attached object goes with its image.
    EXPECT_TRUE(gone);
}
