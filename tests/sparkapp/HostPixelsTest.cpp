// Host frame fills and reads: the formulas of HostPixels.h from independent
// arithmetic, the row order, and the AVX2 kernels against the plain ones on
// every integer input and on the float values that sit on the edges.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "HostPixels.h"
#include "HostPixelsRows.h"

namespace {
// Every 16-bit value, in an odd count so that a kernel's tail runs too.
std::vector<uint16_t> everyWord() {
    std::vector<uint16_t> words(65536 + 7);
    for (size_t i = 0; i < words.size(); ++i) words[i] = static_cast<uint16_t>(i * 40503u);
    for (size_t i = 0; i < 65536; ++i) words[i] = static_cast<uint16_t>(i);
    return words;
}

// Floats on every edge of the conversions, and many between.
std::vector<float> edgeFloats() {
    const float inf = std::numeric_limits<float>::infinity();
    std::vector<float> values = {std::nanf(""),
                                 -std::nanf(""),
                                 inf,
                                 -inf,
                                 -0.0f,
                                 0.0f,
                                 std::numeric_limits<float>::denorm_min(),
                                 -1e-30f,
                                 1.0f,
                                 std::nextafter(1.0f, 2.0f),
                                 std::nextafter(1.0f, 0.0f),
                                 2.0f,
                                 1e30f};
    // Just below, at and above each level's rounding point (v + 0.5) / full.
    for (float full : {255.0f, 4095.0f})
        for (int v = 0; v <= static_cast<int>(full); ++v) {
            const float edge = (static_cast<float>(v) + 0.5f) / full;
            values.push_back(std::nextafter(edge, 0.0f));
            values.push_back(edge);
            values.push_back(std::nextafter(edge, 2.0f));
        }
    std::mt19937 random(7);
    std::uniform_real_distribution<float> spread(-0.25f, 1.25f);
    for (int i = 0; i < 10001; ++i) values.push_back(spread(random));
    return values;
}
}  // namespace

TEST(HostPixels, FormulasRoundToTheNearestLevel) {
    // (v * 4095 + 32767) / 65535 is round(v * 4095 / 65535), halves up.
    for (int v = 0; v <= 65535; ++v) {
        EXPECT_EQ(twelveFromSixteen(v), static_cast<int>(std::floor(v * 4095.0 / 65535.0 + 0.5)))
            << v;
        EXPECT_EQ(eightFromSixteen(v), static_cast<int>(std::floor(v * 255.0 / 65535.0 + 0.5)))
            << v;
    }
    for (int v = 0; v <= 4095; ++v)
        EXPECT_EQ(sixteenFromTwelve(v), static_cast<int>(std::floor(v * 65535.0 / 4095.0 + 0.5)))
            << v;
    for (int v = 0; v <= 255; ++v) EXPECT_EQ(eightFromSixteen(sixteenFromEight(v)), v);
    EXPECT_EQ(twelveFromFloat(std::nanf("")), 0);
    EXPECT_EQ(twelveFromFloat(-3.0f), 0);
    EXPECT_EQ(twelveFromFloat(7.0f), 4095);
}

TEST(HostPixels, FileRowsReachTheHostBottomRowFirstAndComeBack) {
    // 3x2, value 1000 * (x + 10 * y) + channel: every word says where it came from.
    FilePixels picture;
    picture.width = 3;
    picture.height = 2;
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x)
            for (int c = 0; c < 3; ++c)
                picture.words.push_back(static_cast<uint16_t>(1000 * (x + 10 * y) + c));
    std::vector<uint16_t> host(18);
    fillHostFrame(picture, kHostDepth12, reinterpret_cast<unsigned char*>(host.data()));
    for (int j = 0; j < 2; ++j)
        for (int k = 0; k < 9; ++k)
            EXPECT_EQ(host[9 * j + k], twelveFromSixteen(picture.words[9 * (1 - j) + k])
                                           << kTwelveBitShift);
    const RgbSamples back = readHostFrame(reinterpret_cast<const unsigned char*>(host.data()), 3, 2,
                                          kHostDepth12, SampleType::Sixteen);
    for (size_t i = 0; i < 18; ++i)
        EXPECT_NEAR(back.sixteens[i], picture.words[i], 65535.0 / 4095 / 2) << i;
}

TEST(HostPixels, Avx2KernelsGiveThePlainBytes) {
    if (!avx2HostRows().wordsToTwelve) GTEST_SKIP() << "no AVX2 forms on this processor";
    const HostRowKernels& plain = plainHostRows();
    const HostRowKernels& fast = avx2HostRows();
    const std::vector<uint16_t> words = everyWord();
    const size_t n = words.size();
    std::vector<uint16_t> a(n), b(n);
    std::vector<uint8_t> a8(n), b8(n);
    plain.wordsToTwelve(words.data(), n, a.data());
    fast.wordsToTwelve(words.data(), n, b.data());
    EXPECT_EQ(a, b);
    plain.wordsToEight(words.data(), n, a8.data());
    fast.wordsToEight(words.data(), n, b8.data());
    EXPECT_EQ(a8, b8);
    // Host words: every 12-bit value, low bits set or not.
    plain.twelveToSixteen(words.data(), n, a.data());
    fast.twelveToSixteen(words.data(), n, b.data());
    EXPECT_EQ(a, b);
    std::vector<float> fa(n), fb(n);
    plain.twelveToFloats(words.data(), n, fa.data());
    fast.twelveToFloats(words.data(), n, fb.data());
    EXPECT_EQ(0, std::memcmp(fa.data(), fb.data(), n * sizeof(float)));

    const std::vector<float> floats = edgeFloats();
    const size_t m = floats.size();
    a.resize(m);
    b.resize(m);
    a8.resize(m);
    b8.resize(m);
    plain.floatsToTwelve(floats.data(), m, a.data());
    fast.floatsToTwelve(floats.data(), m, b.data());
    EXPECT_EQ(a, b);
    plain.floatsToEight(floats.data(), m, a8.data());
    fast.floatsToEight(floats.data(), m, b8.data());
    EXPECT_EQ(a8, b8);
}

TEST(HostPixels, WholeFramesAreTheSameWithAndWithoutAvx2) {
    // An odd width so that each row ends in a kernel's tail.
    FilePixels words, reals;
    words.width = reals.width = 37;
    words.height = reals.height = 5;
    reals.isFloat = true;
    std::mt19937 random(3);
    for (size_t i = 0; i < words.sampleCount(); ++i) {
        words.words.push_back(static_cast<uint16_t>(random()));
        reals.reals.push_back(static_cast<float>(random() % 5000) / 4000.0f - 0.1f);
    }
    auto frames = [&](bool plain) {
        forcePlainHostRows(plain);
        std::vector<unsigned char> host12(hostFrameBytes(37, 5, kHostDepth12));
        std::vector<unsigned char> host8(hostFrameBytes(37, 5, kHostDepth8));
        std::vector<unsigned char> all;
        for (const FilePixels* picture : {&words, &reals}) {
            fillHostFrame(*picture, kHostDepth12, host12.data());
            fillHostFrame(*picture, kHostDepth8, host8.data());
            all.insert(all.end(), host12.begin(), host12.end());
            all.insert(all.end(), host8.begin(), host8.end());
            for (SampleType type : {SampleType::Eight, SampleType::Sixteen, SampleType::Float}) {
                const RgbSamples back = readHostFrame(host12.data(), 37, 5, kHostDepth12, type);
                const auto* bytes = static_cast<const unsigned char*>(back.data());
                const size_t size = type == SampleType::Eight     ? back.eights.size()
                                    : type == SampleType::Sixteen ? 2 * back.sixteens.size()
                                                                  : 4 * back.floats.size();
                all.insert(all.end(), bytes, bytes + size);
            }
        }
        forcePlainHostRows(false);
        return all;
    };
    EXPECT_EQ(frames(true), frames(false));
}
