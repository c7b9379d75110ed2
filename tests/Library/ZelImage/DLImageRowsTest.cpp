// The full-resolution row conversions in their AVX2 form against the plain
// form: every host byte or 16-bit host word and every channel value, rows
// whose width leaves a tail, and 12-bit host words whose low bits must
// survive.
#include <gtest/gtest.h>

#include <vector>

#include "DLImageRows.h"
#include "ImageZel.h"
#include "ZelCpu.h"

namespace {

void expectSamePixels(const ImageZel& plain, const ImageZel& vector) {
    for (long y = 0; y < plain.height; ++y)
        for (long x = 0; x < plain.width; ++x) {
            const PixelZel& a = plain.rows[y][x];
            const PixelZel& b = vector.rows[y][x];
            ASSERT_EQ(a.red, b.red) << x << "," << y;
            ASSERT_EQ(a.green, b.green) << x << "," << y;
            ASSERT_EQ(a.blue, b.blue) << x << "," << y;
            ASSERT_EQ(a.alpha, b.alpha) << x << "," << y;
        }
}

// Pixel i holds channels 3i, 3i + 1, 3i + 2 and alpha i (16 bits, wrapping).
void fillWithEveryChannelValue(ImageZel& image) {
    for (long y = 0; y < image.height; ++y)
        for (long x = 0; x < image.width; ++x) {
            const unsigned int i = static_cast<unsigned int>(y * image.width + x);
            image.rows[y][x] =
                PixelZel{static_cast<unsigned short>(i * 3), static_cast<unsigned short>(i * 3 + 1),
                         static_cast<unsigned short>(i * 3 + 2), static_cast<unsigned short>(i)};
        }
}

}  // namespace

TEST(DLImageRows, TwelveBitVectorFormsMatchThePlainForms) {
    if (!zelUseAvx2()) GTEST_SKIP() << "this processor has no AVX2";
    const long width = 37, height = 600;  // 22200 pixels, 66600 words: every word value
    std::vector<unsigned short> host(width * height * 3);
    for (size_t i = 0; i < host.size(); ++i) host[i] = static_cast<unsigned short>(i * 40503u);

    ImageZel plain(width, height, 1.0f, nullptr, nullptr),
        vector(width, height, 1.0f, nullptr, nullptr);
    zelForcePlainCpu(true);
    dlCopyRows12(host.data(), width, &plain, 0, height - 1);
    zelForcePlainCpu(false);
    dlCopyRows12(host.data(), width, &vector, 0, height - 1);
    ASSERT_NO_FATAL_FAILURE(expectSamePixels(plain, vector));

    // Every channel value on the way out, over host words with set low bits.
    fillWithEveryChannelValue(vector);
    std::vector<unsigned short> plainOut = host, vectorOut = host;
    zelForcePlainCpu(true);
    dlPasteRows12(&vector, plainOut.data(), 0, height - 1);
    zelForcePlainCpu(false);
    dlPasteRows12(&vector, vectorOut.data(), 0, height - 1);
    EXPECT_TRUE(plainOut == vectorOut);
    // The plain form by hand at one pixel: (red >> 3) * 16 plus the old low bits.
    const PixelZel& p = vector.rows[1][3];
    EXPECT_EQ(plainOut[(width + 3) * 3], ((host[(width + 3) * 3] & 15) + ((p.red >> 3) << 4)));
}

TEST(DLImageRows, EightBitVectorFormsMatchThePlainForms) {
    if (!zelUseAvx2()) GTEST_SKIP() << "this processor has no AVX2";
    const long width = 53, height = 420;  // 16 * 3 + 5: a tail in every row
    std::vector<unsigned char> host(width * height * 3);
    for (size_t i = 0; i < host.size(); ++i) host[i] = static_cast<unsigned char>(i * 7 + i / 256);

    ImageZel plain(width, height, 1.0f, nullptr, nullptr),
        vector(width, height, 1.0f, nullptr, nullptr);
    zelForcePlainCpu(true);
    dlCopyRows8(host.data(), width, &plain, 0, height - 1);
    zelForcePlainCpu(false);
    dlCopyRows8(host.data(), width, &vector, 0, height - 1);
    ASSERT_NO_FATAL_FAILURE(expectSamePixels(plain, vector));

    // Every channel value on the way out (above 32767 they clamp to 255).
    fillWithEveryChannelValue(vector);
    std::vector<unsigned char> plainOut(host.size(), 0), vectorOut(host.size(), 0);
    zelForcePlainCpu(true);
    dlPasteRows8(&vector, plainOut.data(), 0, height - 1);
    zelForcePlainCpu(false);
    dlPasteRows8(&vector, vectorOut.data(), 0, height - 1);
    EXPECT_TRUE(plainOut == vectorOut);
}
