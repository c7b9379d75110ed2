// Frames through the real plug-in's driver with the plug-in showing its input
// unchanged: the output must equal the conversion round trip of the input at
// every proxy factor, with blending on or off, and buffer failures must
// return null.
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "LoadedPlugin.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

constexpr int kSize = 12;  // divisible by every factor used, so no unsampled pixel is shown

// Selector value and the sub-sampling factor it stands for.
struct Proxy {
    int selector;
    int factor;
};
const Proxy kProxies[] = {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 6}, {6, 12}, {9, 1}, {-1, 1}};

// Host column or row shown at position k for a factor: the sample taken at
// the middle of k's block.
int shownSource(int k, int factor) { return (k / factor) * factor + factor / 2; }

void fillCodedInput8(simhost::FrameBuffer& buffer) {
    unsigned char* bytes = buffer.bytes();
    for (int y = 0; y < kSize; ++y)
        for (int x = 0; x < kSize; ++x) {
            unsigned char* p = bytes + (y * kSize + x) * 3;
            p[0] = static_cast<unsigned char>(x + 10 * y);
            p[1] = static_cast<unsigned char>(255 - x - 10 * y);
            p[2] = static_cast<unsigned char>(x * y);
        }
}

void fillCodedInput12(simhost::FrameBuffer& buffer) {
    unsigned short* words = buffer.words();
    for (int y = 0; y < kSize; ++y)
        for (int x = 0; x < kSize; ++x) {
            unsigned short* p = words + (y * kSize + x) * 3;
            const int v = x + 100 * y;
            p[0] = static_cast<unsigned short>((v << 4) | (x & 15));
            p[1] = static_cast<unsigned short>(((4095 - v) << 4) | 7);
            p[2] = static_cast<unsigned short>((x * y * 30) << 4);
        }
}

// Low 4 bits in the output buffer that the 12-bit conversion must keep.
void fillOutputLowBits(simhost::FrameBuffer& buffer) {
    unsigned short* words = buffer.words();
    for (int i = 0; i < kSize * kSize * 3; ++i) words[i] = static_cast<unsigned short>(i % 16);
}

}  // namespace

class FrameDriver : public LoadedPlugin {
  protected:
    void SetUp() override {
        LoadedPlugin::SetUp();
        ASSERT_NO_FATAL_FAILURE(showInputView());
    }

    SparkPupStruct* proxy() { return plugin.record<SparkPupStruct>("SparkPup33"); }
    SparkFloatStruct* blend() { return plugin.record<SparkFloatStruct>("SparkFloat27"); }
};

TEST_F(FrameDriver, EightBitFramesPassThroughAtEveryProxyFactor) {
    const SparkInfoStruct info = host().makeInfo(kSize, kSize, 24);
    initialise(info);
    ASSERT_NE(proxy(), nullptr);
    ASSERT_NE(blend(), nullptr);
    for (float amount : {0.0f, 100.0f}) {
        blend()->Value = amount;
        for (const Proxy p : kProxies) {
            fillCodedInput8(host().setBuffer(2, kSize, kSize, 24));
            simhost::FrameBuffer& output = host().setBuffer(1, kSize, kSize, 24);
            simhost::FrameBuffer& input = host().buffers[2];
            proxy()->Value = p.selector;
            host().clearCalls();
            EXPECT_EQ(plugin.process(info), output.storage.data());
            for (int y = 0; y < kSize; ++y)
                for (int x = 0; x < kSize; ++x)
                    for (int c = 0; c < 3; ++c) {
                        const int sx = shownSource(x, p.factor);
                        const int sy = shownSource(y, p.factor);
                        ASSERT_EQ(output.bytes()[(y * kSize + x) * 3 + c],
                                  input.bytes()[(sy * kSize + sx) * 3 + c])
                            << "selector " << p.selector << " blend " << amount << " at " << x
                            << "," << y << " channel " << c;
                    }
            EXPECT_EQ(host().count("sparkCursorBusy"), 1);
            EXPECT_EQ(host().count("sparkGraphSetup"), 1);
            EXPECT_TRUE(host().called("sparkViewingCursor(1)"));
        }
    }
}

TEST_F(FrameDriver, TwelveBitFramesPassThroughKeepingOutputLowBits) {
    const SparkInfoStruct info = host().makeInfo(kSize, kSize, 48);
    initialise(info);
    for (float amount : {0.0f, 100.0f}) {
        blend()->Value = amount;
        for (const Proxy p : kProxies) {
            simhost::FrameBuffer& input = host().setBuffer(2, kSize, kSize, 48);
            fillCodedInput12(input);
            simhost::FrameBuffer& output = host().setBuffer(1, kSize, kSize, 48);
            fillOutputLowBits(output);
            proxy()->Value = p.selector;
            EXPECT_EQ(plugin.process(info), output.storage.data());
            for (int y = 0; y < kSize; ++y)
                for (int x = 0; x < kSize; ++x)
                    for (int c = 0; c < 3; ++c) {
                        const int i = (y * kSize + x) * 3 + c;
                        const int source =
                            (shownSource(y, p.factor) * kSize + shownSource(x, p.factor)) * 3 + c;
                        ASSERT_EQ(output.words()[i], (input.words()[source] & 0xFFF0) | (i % 16))
                            << "selector " << p.selector << " blend " << amount << " at " << x
                            << "," << y << " channel " << c;
                    }
        }
    }
}

using FrameDriverFailures = LoadedPlugin;

TEST_F(FrameDriverFailures, MissingHostBuffersReturnNull) {
    const SparkInfoStruct info = host().makeInfo(kSize, kSize, 24);
    initialise(info);
    fillCodedInput8(host().setBuffer(2, kSize, kSize, 24));
    simhost::FrameBuffer& output = host().setBuffer(1, kSize, kSize, 24);
    output.bytes()[0] = 77;

    host().failingBufferIds = {2};
    EXPECT_EQ(plugin.process(info), nullptr);
    EXPECT_EQ(output.bytes()[0], 77);
    EXPECT_EQ(host().count("sparkMessage"), 0);

    // The input image of this path is left behind on purpose.
    host().failingBufferIds = {1};
#if defined(__SANITIZE_ADDRESS__)
    __lsan_disable();
#endif
    EXPECT_EQ(plugin.process(info), nullptr);
#if defined(__SANITIZE_ADDRESS__)
    __lsan_enable();
#endif
    EXPECT_EQ(output.bytes()[0], 77);
    EXPECT_EQ(host().count("sparkMessage"), 0);
    EXPECT_EQ(host().count("sparkViewingCursor"), 0);

    host().failingBufferIds.clear();
    EXPECT_EQ(plugin.process(info), output.storage.data());
}

namespace {

// Host row or column shown at k of a side at a factor: the sample of k's block
// (factor / 2 + block * factor), the last sample when the block lies past it
// (the picture's padding), the last host row when the side has no sample.
int expectedSource(int k, int factor, int side) {
    const int imageSide = std::max(2, side / factor + (side / factor) % 2);
    const int block = std::min(k / factor, imageSide - 1);
    int source = factor / 2 + block * factor;
    while (source >= side && source - factor >= factor / 2) source -= factor;
    return std::min(source, side - 1);
}

}  // namespace

// Every proxy factor against every side from 1 to 33, at both depths: no
// frame is refused or read out of bounds, and every output pixel is the
// sample the replication rule names, padding included.
TEST_F(FrameDriver, EveryFactorAgainstEverySmallSide) {
    const int factors[] = {2, 3, 4, 6, 8, 12, 16, 32};
    for (int depth : {24, 48}) {
        for (int selector = 1; selector <= 8; ++selector) {
            const int factor = factors[selector - 1];
            for (int side = 1; side <= 33; ++side) {
                for (const auto& [width, height] : {std::pair{side, 5}, std::pair{7, side}}) {
                    const SparkInfoStruct info = host().makeInfo(width, height, depth);
                    if (side == 1 && selector == 1) initialise(info);
                    simhost::FrameBuffer& input = host().setBuffer(2, width, height, depth);
                    simhost::FrameBuffer& output = host().setBuffer(1, width, height, depth);
                    for (int i = 0; i < width * height * 3; ++i) {
                        if (depth == 24)
                            input.bytes()[i] = static_cast<unsigned char>(i * 7 + 1);
                        else
                            input.words()[i] = static_cast<unsigned short>((i * 13 + 1) << 4);
                    }
                    proxy()->Value = selector;
                    ASSERT_EQ(plugin.process(info), output.storage.data())
                        << width << "x" << height << " factor " << factor << " depth " << depth;
                    for (int y = 0; y < height; ++y)
                        for (int x = 0; x < width; ++x)
                            for (int c = 0; c < 3; ++c) {
                                const int sx = expectedSource(x, factor, width);
                                const int sy = expectedSource(y, factor, height);
                                const int at = (y * width + x) * 3 + c;
                                const int from = (sy * width + sx) * 3 + c;
                                const int got =
                                    depth == 24 ? output.bytes()[at] : output.words()[at] >> 4;
                                const int want =
                                    depth == 24 ? input.bytes()[from] : input.words()[from] >> 4;
                                ASSERT_EQ(got, want) << width << "x" << height << " factor "
                                                     << factor << " at " << x << "," << y;
                            }
                }
            }
        }
    }
    proxy()->Value = 0;
}

// Whatever the allocator leaves in fresh memory, a proxy frame whose picture
// was padded (odd sub-sampled sizes) comes out the same: every byte of the
// result is written from the input.
TEST_F(FrameDriver, PaddedProxyFramesDoNotDependOnFreshMemory) {
    plugin.record<SparkPupStruct>("SparkPup24")->Value = 0;  // View: Result
    plugin.record<SparkFloatStruct>("SparkFloat6")->Value = -0.05f;
    const int width = 150, height = 90;  // at 1/16: 9 x 5 samples, padded to 10 x 6
    const SparkInfoStruct info = host().makeInfo(width, height, 24);
    initialise(info);
    proxy()->Value = 7;
    std::vector<unsigned char> results[2];
    const int perturb[2] = {0x5a, 0xa5};
    for (int run = 0; run < 2; ++run) {
        simhost::FrameBuffer& input = host().setBuffer(2, width, height, 24);
        for (int i = 0; i < width * height * 3; ++i)
            input.bytes()[i] = static_cast<unsigned char>(i * 31 + 3);
        simhost::FrameBuffer& output = host().setBuffer(1, width, height, 24);
        mallopt(M_PERTURB, perturb[run]);
        ASSERT_EQ(plugin.process(info), output.storage.data());
        mallopt(M_PERTURB, 0);
        results[run].assign(output.bytes(), output.bytes() + width * height * 3);
    }
    EXPECT_EQ(results[0], results[1]);
    proxy()->Value = 0;
}

// Whatever a host or a set-up leaves in the records, a frame is rendered as
// if the values were the nearest valid ones: a value that is not a number is
// the default, others are clamped to the record's range, menu indices into
// the menu.
TEST_F(FrameDriver, RecordsHoldingAnythingRenderAsTheNearestValidValues) {
    plugin.record<SparkPupStruct>("SparkPup24")->Value = 0;  // View: Result
    const int width = 24, height = 16;
    const SparkInfoStruct info = host().makeInfo(width, height, 24);
    initialise(info);
    auto render = [&] {
        simhost::FrameBuffer& input = host().setBuffer(2, width, height, 24);
        for (int i = 0; i < width * height * 3; ++i)
            input.bytes()[i] = static_cast<unsigned char>(i * 29 + 5);
        simhost::FrameBuffer& output = host().setBuffer(1, width, height, 24);
        EXPECT_EQ(plugin.process(info), output.storage.data());
        return std::vector<unsigned char>(output.bytes(), output.bytes() + width * height * 3);
    };
    auto* radial1 = plugin.record<SparkFloatStruct>("SparkFloat6");
    auto* squeeze = plugin.record<SparkFloatStruct>("SparkFloat16");
    auto* sampling = plugin.record<SparkPupStruct>("SparkPup17");
    auto* mode = plugin.record<SparkPupStruct>("SparkPup23");

    radial1->Value = 0.2f;
    squeeze->Value = 0.5f;  // the range's minimum
    sampling->Value = 4;    // BSpline, the last entry
    mode->Value = 0;        // Remove, the first
    blend()->Value = 30.0f;
    const std::vector<unsigned char> valid = render();

    squeeze->Value = 0.0f;  // would divide by zero
    sampling->Value = 2147483647;
    mode->Value = -5;
    EXPECT_EQ(render(), valid);
    blend()->Value = 0.0f;
    const std::vector<unsigned char> unblended = render();
    blend()->Value = INFINITY;  // not a number to blend with: the default, none
    EXPECT_EQ(render(), unblended);
    blend()->Value = 1000.0f;  // clamped to 100: the input itself
    const std::vector<unsigned char> input = render();
    EXPECT_NE(input, unblended);
    blend()->Value = 100.0f;
    EXPECT_EQ(render(), input);
    blend()->Value = NAN;
    radial1->Value = NAN;  // the default: 0, an identity map
    squeeze->Value = 1.0f;
    sampling->Value = 3;
    const std::vector<unsigned char> identity = render();
    radial1->Value = 0.0f;
    EXPECT_EQ(identity, render());
    blend()->Value = 0.0f;
}

namespace {

// Bytes the process has allocated from malloc (heap and mapped blocks).
size_t allocatedBytes() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

}  // namespace

// The two frame-sized pictures stay allocated from one frame to the next (a
// second frame of the same size allocates nothing more) and are given back
// when the session ends; a frame after that still comes out right.
TEST_F(FrameDriver, KeptPicturesAreGivenBackAtTheEndOfTheSession) {
    const int width = 640, height = 480;
    const size_t pictureBytes = static_cast<size_t>(width) * height * 8;
    const SparkInfoStruct info = host().makeInfo(width, height, 24);
    initialise(info);
    simhost::FrameBuffer& input = host().setBuffer(2, width, height, 24);
    for (int i = 0; i < width * height * 3; ++i) input.bytes()[i] = static_cast<unsigned char>(i);
    simhost::FrameBuffer& output = host().setBuffer(1, width, height, 24);

    ASSERT_EQ(plugin.process(info), output.storage.data());
    host().clearCalls();
    const size_t afterFirst = allocatedBytes();
    // Under a sanitizer's allocator malloc keeps no such statistics.
    if (afterFirst < 2 * pictureBytes) GTEST_SKIP() << "malloc statistics are not available";
    ASSERT_EQ(plugin.process(info), output.storage.data());
    host().clearCalls();
    EXPECT_LT(allocatedBytes(), afterFirst + pictureBytes / 2);

    plugin.uninitialise(info);
    host().clearCalls();
    EXPECT_LE(allocatedBytes() + 2 * pictureBytes, afterFirst);

    std::fill(output.storage.begin(), output.storage.end(), 0UL);
    ASSERT_EQ(plugin.process(info), output.storage.data());
    EXPECT_TRUE(std::equal(output.bytes(), output.bytes() + width * height * 3, input.bytes()));
}
