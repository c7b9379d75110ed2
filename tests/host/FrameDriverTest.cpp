// Frames through the real plug-in's driver with the plug-in showing its input
// unchanged: the output must equal the conversion round trip of the input at
// every proxy factor, with blending on or off, and buffer failures must
// return null.
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
        if (!showInputView()) GTEST_SKIP() << "the plug-in does not export its View record yet";
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
