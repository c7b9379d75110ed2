// Host buffer conversion: channel mapping, proxy sizes and sampling, the
// 12-bit truncation, and the band forms against the whole-frame forms.
#include <gtest/gtest.h>

#include <vector>

#include "DLImageConversion.h"
#include "DLImageConversionBands.h"
#include "ImageZel.h"
#include "Library/FakeHost.h"

namespace {

constexpr unsigned short kSentinel = 12345;

std::vector<unsigned char> codedBytes(int width, int height) {
    // red = column, green = row, blue = column + 10 * row: each pixel names its position.
    std::vector<unsigned char> bytes;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            bytes.push_back(static_cast<unsigned char>(x));
            bytes.push_back(static_cast<unsigned char>(y));
            bytes.push_back(static_cast<unsigned char>(x + 10 * y));
        }
    }
    return bytes;
}

std::vector<unsigned short> codedWords(int width, int height) {
    // 12-bit values x + 100 * y (and + 1000), low 4 bits holding noise.
    std::vector<unsigned short> words;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int v = x + 100 * y;
            words.push_back(static_cast<unsigned short>((v << 4) | 9));
            words.push_back(static_cast<unsigned short>(((v + 1000) << 4) | 3));
            words.push_back(static_cast<unsigned short>((4095 << 4) | 15));
        }
    }
    return words;
}

void fillSentinel(ImageZel& image) {
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
            image.rows[y][x] = PixelZel{kSentinel, kSentinel, kSentinel, kSentinel};
}

}  // namespace

TEST(DLImageConversion, EightBitChannelsMapIntoFifteenBitsAndBack) {
    unsigned char host[] = {0, 128, 255, 1, 2, 254};
    ImageZel* image = ConvertFromDLImage8(host, 2, 1, 1.0, 1, nullptr, 1);
    ASSERT_NE(image, nullptr);
    const PixelZel& a = image->rows[0][0];
    const PixelZel& b = image->rows[0][1];
    // c * 128 + c / 2
    EXPECT_EQ(a.red, 0);
    EXPECT_EQ(a.green, 16448);
    EXPECT_EQ(a.blue, 32767);
    EXPECT_EQ(a.alpha, 32767);
    EXPECT_EQ(b.red, 128);
    EXPECT_EQ(b.green, 257);
    EXPECT_EQ(b.blue, 32639);
    EXPECT_EQ(b.alpha, 32767);

    unsigned char back[6] = {};
    ConvertToDLImage8(image, back, 2, 1, 1);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(back[i], host[i]) << "byte " << i;

    // Values above the 15-bit range clamp to 255.
    image->rows[0][0] = PixelZel{40000, 65535, 32768, 0};
    ConvertToDLImage8(image, back, 2, 1, 1);
    EXPECT_EQ(back[0], 255);
    EXPECT_EQ(back[1], 255);
    EXPECT_EQ(back[2], 255);
    delete image;
}

TEST(DLImageConversion, TwelveBitWordsKeepTheirLowBitsOnTheWayBack) {
    unsigned short host[] = {65520, 16, 512 << 4, 0x000A, 0x0005, 0xFFFF};
    ImageZel* image = ConvertFromDLImage12(host, 2, 1, 1.0, 1, nullptr, 1);
    ASSERT_NE(image, nullptr);
    // v = word >> 4; v * 8 + v / 512
    EXPECT_EQ(image->rows[0][0].red, 32767);
    EXPECT_EQ(image->rows[0][0].green, 8);
    EXPECT_EQ(image->rows[0][0].blue, 4097);
    EXPECT_EQ(image->rows[0][0].alpha, 32767);
    EXPECT_EQ(image->rows[0][1].red, 0);
    EXPECT_EQ(image->rows[0][1].blue, 32767);

    // The host words that receive the result carry low bits 10, 5, 15, 0, 0, 0.
    unsigned short back[] = {0x000A, 0x0005, 0x000F, 0, 0, 0};
    image->rows[0][1] = PixelZel{65535, 40000, 32768, 0};
    ConvertToDLImage12(image, back, 2, 1, 1, 0);
    EXPECT_EQ(back[0], 65520 + 10);
    EXPECT_EQ(back[1], 16 + 5);
    EXPECT_EQ(back[2], (512 << 4) + 15);
    // Clamped to 4095 in the top 12 bits.
    EXPECT_EQ(back[3], 65520);
    EXPECT_EQ(back[4], 65520);
    EXPECT_EQ(back[5], 65520);
    delete image;
}

TEST(DLImageConversion, TruncationMasksTheImageAndSaysSo) {
    ImageZel image(1, 1, 1.0f, nullptr, nullptr);
    image.rows[0][0] = PixelZel{32767, 63, 32, 32767};
    unsigned short back[3] = {};
    testing::internal::CaptureStdout();
    ConvertToDLImage12(&image, back, 1, 1, 1, 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Truncating 12bit image to 10 bits.\n");
    // AND 65488: 32767 -> 32720, 63 -> 16, 32 -> 0; alpha untouched.
    EXPECT_EQ(image.rows[0][0].red, 32720);
    EXPECT_EQ(image.rows[0][0].green, 16);
    EXPECT_EQ(image.rows[0][0].blue, 0);
    EXPECT_EQ(image.rows[0][0].alpha, 32767);
    EXPECT_EQ(back[0], (32720 >> 3) << 4);

    // The message comes even when there is nothing to convert.
    testing::internal::CaptureStdout();
    ConvertToDLImage12(nullptr, nullptr, 1, 1, 1, 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Truncating 12bit image to 10 bits.\n");
}

TEST(DLImageConversion, ProxySizesRoundUpToEvenAndPadWithTheLastSample) {
    struct Case {
        int hostWidth;
        int imageWidth;
    };
    for (const Case c : {Case{100, 34}, Case{99, 34}, Case{96, 32}}) {
        std::vector<unsigned char> host = codedBytes(c.hostWidth, 7);
        ImageZel* image = ConvertFromDLImage8(host.data(), c.hostWidth, 7, 1.0, 3, nullptr, 0);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->width, c.imageWidth) << c.hostWidth;
        EXPECT_EQ(image->height, 2) << c.hostWidth;  // 7 / 3 = 2
        EXPECT_FLOAT_EQ(image->sizeFactor, 3.0f);
        delete image;
    }

    // Width 100, height 9 at factor 3: samples at 1, 4, ..., 97; column 33
    // would be host column 100 and row 3 host row 10, so both repeat the last
    // sample (host column 97, host row 7) instead of keeping stale memory.
    std::vector<unsigned char> host = codedBytes(100, 9);
    ImageZel reuse(34, 4, 1.0f, nullptr, nullptr);
    fillSentinel(reuse);
    reuse.words[0] = 7;
    ImageZel* image = ConvertFromDLImage8(host.data(), 100, 9, 2.0, 3, &reuse, 1);
    ASSERT_EQ(image, &reuse);
    EXPECT_DOUBLE_EQ(image->pixelAspect, 2.0);
    EXPECT_DOUBLE_EQ(image->secondScale, 1.0);
    EXPECT_EQ(image->words[0], 0u);
    for (int j = 0; j < 3; ++j) {
        for (int i = 0; i < 33; ++i) {
            const int sx = 1 + 3 * i;
            const int sy = 1 + 3 * j;
            EXPECT_EQ(image->rows[j][i].red, sx * 128 + sx / 2) << i << "," << j;
            EXPECT_EQ(image->rows[j][i].green, sy * 128 + sy / 2) << i << "," << j;
            EXPECT_EQ(image->rows[j][i].alpha, 32767);
        }
        EXPECT_EQ(image->rows[j][33].red, image->rows[j][32].red) << "row " << j;
        EXPECT_EQ(image->rows[j][33].green, image->rows[j][32].green) << "row " << j;
    }
    for (int i = 0; i < 34; ++i) {
        EXPECT_EQ(image->rows[3][i].red, image->rows[2][i].red) << i;
        EXPECT_EQ(image->rows[3][i].green, 7 * 128 + 3) << i;
    }

    // Sides shorter than the factor still make a 2 x 2 picture: a 1 x 1 host
    // frame at factor 2 has no sample position inside it, so its one pixel
    // fills the picture.
    const unsigned char one[3] = {200, 100, 50};
    ImageZel* tiny = ConvertFromDLImage8(const_cast<unsigned char*>(one), 1, 1, 1.0, 2, nullptr, 1);
    ASSERT_NE(tiny, nullptr);
    EXPECT_EQ(tiny->width, 2);
    EXPECT_EQ(tiny->height, 2);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 2; ++x) EXPECT_EQ(tiny->rows[y][x].red, 200 * 128 + 100);
    delete tiny;
}

TEST(DLImageConversion, SubSampledTwelveBitAlphaIsFullSixteenBits) {
    std::vector<unsigned short> host = codedWords(4, 4);
    ImageZel* image = ConvertFromDLImage12(host.data(), 4, 4, 1.0, 2, nullptr, 1);
    ASSERT_NE(image, nullptr);
    ASSERT_EQ(image->width, 2);
    // Image (1, 1) is host (3, 3): 12-bit value 3 + 300 = 303.
    EXPECT_EQ(image->rows[1][1].red, 303 * 8);
    EXPECT_EQ(image->rows[1][1].alpha, 65535);
    delete image;
}

TEST(DLImageConversion, FactorsBelowOneActAsFullResolution) {
    std::vector<unsigned char> host = codedBytes(3, 2);
    for (int factor : {0, -2}) {
        ImageZel* image = ConvertFromDLImage8(host.data(), 3, 2, 1.0, factor, nullptr, 1);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->width, 3);
        EXPECT_EQ(image->height, 2);
        EXPECT_FLOAT_EQ(image->sizeFactor, 1.0f);
        EXPECT_EQ(image->rows[1][2].blue, 12 * 128 + 6);

        std::vector<unsigned char> back(host.size(), 0);
        ConvertToDLImage8(image, back.data(), 3, 2, factor);
        EXPECT_EQ(back, host);
        delete image;
    }
    EXPECT_EQ(ConvertFromDLImage8(nullptr, 3, 2, 1.0, 1, nullptr, 1), nullptr);
    EXPECT_EQ(ConvertFromDLImage12(nullptr, 3, 2, 1.0, 2, nullptr, 1), nullptr);
}

TEST(DLImageConversion, ReplicationFillsFactorBlocksAndRepeatsTheLastPixel) {
    // A 2 x 2 image into a 5 x 4 host frame at factor 2: host column 4 is past
    // the image and repeats its last column.
    ImageZel image(2, 2, 1.0f, nullptr, nullptr);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 2; ++x)
            image.rows[y][x] = PixelZel{static_cast<unsigned short>((x + 10 * y) << 7), 0, 0, 0};
    unsigned char host[5 * 4 * 3] = {};
    ConvertToDLImage8(&image, host, 5, 4, 2);
    const int expected[4][5] = {
        {0, 0, 1, 1, 1}, {0, 0, 1, 1, 1}, {10, 10, 11, 11, 11}, {10, 10, 11, 11, 11}};
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(host[(y * 5 + x) * 3], expected[y][x]) << x << "," << y;
}

TEST(DLImageConversionBands, BandFormsMatchTheWholeFrameForms) {
    fakehost::Host& host = fakehost::Host::instance();
    host.reset();
    // Six rows over four bands: 1, 1, 1 and the remaining 3.
    host.processors = 4;
    int bands = 4;
    int width = 8;
    int height = 6;
    int factor = 2;
    // Each band form runs once in every forked worker, as a host runs it.
    auto forkCall = [](auto fn, auto... args) {
        auto call = [fn, args...] { fn(args...); };
        using Call = decltype(call);
        zelHost().fork([](void* job) { (*static_cast<Call*>(job))(); }, &call);
    };
    auto fork = [&forkCall](auto fn, auto... args) { forkCall(fn, args...); };

    // 8-bit, full resolution, both directions.
    std::vector<unsigned char> bytes = codedBytes(width, height);
    ImageZel* whole = ConvertFromDLImage8(bytes.data(), width, height, 1.0, 1, nullptr, 1);
    ImageZel banded(width, height, 1.0f, nullptr, nullptr);
    fork(mp_copy_pixel_data, bytes.data(), &banded, &bands);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            EXPECT_EQ(banded.rows[y][x].blue, whole->rows[y][x].blue);
            EXPECT_EQ(banded.rows[y][x].alpha, 32767);
        }
    std::vector<unsigned char> pasted(bytes.size(), 0);
    fork(mp_paste_pixel_data, pasted.data(), &banded, &bands);
    EXPECT_EQ(pasted, bytes);
    delete whole;

    // 8-bit sub-sampled and replicated.
    whole = ConvertFromDLImage8(bytes.data(), width, height, 1.0, factor, nullptr, 1);
    ImageZel small(whole->width, whole->height, 1.0f, nullptr, nullptr);
    fork(mp_copy_pixel_data_scale, bytes.data(), &small, &bands, &width, &height, &factor);
    std::vector<unsigned char> wholeOut(bytes.size(), 0);
    ConvertToDLImage8(whole, wholeOut.data(), width, height, factor);
    std::vector<unsigned char> bandOut(bytes.size(), 0);
    fork(mp_paste_pixel_data_scale, bandOut.data(), &small, &bands, &width, &height, &factor);
    EXPECT_EQ(bandOut, wholeOut);
    delete whole;

    // 12-bit: the same values; the band copy sets alpha 32767 where the
    // whole-frame sub-sampled copy sets 65535.
    std::vector<unsigned short> words = codedWords(width, height);
    ImageZel deep(width, height, 1.0f, nullptr, nullptr);
    fork(mp_copy_pixel_data_deep12, words.data(), &deep, &bands);
    std::vector<unsigned short> deepOut(words.size(), 0);
    fork(mp_paste_pixel_data_deep12, deepOut.data(), &deep, &bands);
    for (size_t i = 0; i < words.size(); ++i) EXPECT_EQ(deepOut[i], words[i] & 0xFFF0) << i;

    whole = ConvertFromDLImage12(words.data(), width, height, 1.0, factor, nullptr, 1);
    ImageZel deepSmall(whole->width, whole->height, 1.0f, nullptr, nullptr);
    fork(mp_copy_pixel_data_scale_deep12, words.data(), &deepSmall, &bands, &width, &height,
         &factor);
    EXPECT_EQ(deepSmall.rows[1][2].red, whole->rows[1][2].red);
    EXPECT_EQ(deepSmall.rows[1][2].alpha, 32767);
    EXPECT_EQ(whole->rows[1][2].alpha, 65535);
    std::vector<unsigned short> wholeDeepOut(words.size(), 0);
    ConvertToDLImage12(whole, wholeDeepOut.data(), width, height, factor, 0);
    std::vector<unsigned short> bandDeepOut(words.size(), 0);
    fork(mp_paste_pixel_data_scale_deep12, bandDeepOut.data(), &deepSmall, &bands, &width, &height,
         &factor);
    EXPECT_EQ(bandDeepOut, wholeDeepOut);
    delete whole;
    // One fork per band form (8) and one per whole-frame conversion (5): the
    // whole-frame forms band their rows too.
    EXPECT_EQ(host.count("sparkMpFork"), 13);
}

// At full resolution the image's own size drives the paste and the host rows
// are as long as the image's: a host frame of another size gets the image's
// bytes packed at its start and nothing else.
TEST(DLImageConversion, FullResolutionPasteUsesTheImageSize) {
    ImageZel image(3, 2, 1.0f, nullptr, nullptr);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x) {
            const auto v = static_cast<unsigned short>((1 + x + 10 * y) << 7);
            image.rows[y][x] = PixelZel{v, v, v, v};
        }
    std::vector<unsigned char> host(5 * 4 * 3, 99);
    ConvertToDLImage8(&image, host.data(), 5, 4, 1);
    const unsigned char packed[] = {1, 2, 3, 11, 12, 13};
    for (int i = 0; i < 6; ++i) {
        for (int c = 0; c < 3; ++c) EXPECT_EQ(host[i * 3 + c], packed[i]) << i;
    }
    for (size_t i = 6 * 3; i < host.size(); ++i) EXPECT_EQ(host[i], 99) << i;

    std::vector<unsigned short> words(2 * 2 * 3, 0x000F);
    ImageZel small(2, 1, 1.0f, nullptr, nullptr);
    small.rows[0][0] = PixelZel{32767, 0, 0, 0};
    small.rows[0][1] = PixelZel{0, 8, 0, 0};
    ConvertToDLImage12(&small, words.data(), 2, 2, 1, 0);
    const std::vector<unsigned short> expected = {0xFFFF, 0x000F, 0x000F, 0x000F, 0x001F, 0x000F,
                                                  0x000F, 0x000F, 0x000F, 0x000F, 0x000F, 0x000F};
    EXPECT_EQ(words, expected);
}
