// The lens plug-in loaded through the simulated host: a frame at the defaults,
// a distorted frame, and the AutoFind and Reset buttons.
#include "host/LoadedPlugin.h"

namespace {

constexpr int kWidth = 12, kHeight = 10;

void FillCoded8(simhost::FrameBuffer& buffer) {
    for (int i = 0; i < kWidth * kHeight; ++i)
        for (int c = 0; c < 3; ++c)
            buffer.bytes()[i * 3 + c] =
                static_cast<unsigned char>(i % kWidth + 10 * (i / kWidth) + c);
}

}  // namespace

using StraightluxEndToEnd = LoadedPlugin;

TEST_F(StraightluxEndToEnd, FramesAndButtonsThroughTheHost) {
    const SparkInfoStruct info = host().makeInfo(kWidth, kHeight, 24);
    initialise(info);
    FillCoded8(host().setBuffer(2, kWidth, kHeight, 24));
    simhost::FrameBuffer& input = host().buffers[2];
    simhost::FrameBuffer& output = host().setBuffer(1, kWidth, kHeight, 24);
    auto* radial1 = plugin.record<SparkFloatStruct>("SparkFloat6");
    auto* mode = plugin.record<SparkPupStruct>("SparkPup23");
    ASSERT_NE(radial1, nullptr);
    ASSERT_NE(mode, nullptr);

    // Defaults: the identity map; 8-bit values survive the 15-bit round trip.
    ASSERT_EQ(plugin.process(info), output.storage.data());
    EXPECT_EQ(output.storage, input.storage);

    // A distortion moves the picture except at the centre, which maps to itself.
    radial1->Value = 0.3f;
    plugin.process(info);
    EXPECT_NE(output.storage, input.storage);
    const int centre = (kHeight / 2 * kWidth + kWidth / 2) * 3;
    EXPECT_EQ(output.bytes()[centre], input.bytes()[centre]);

    // AutoFind with no drawn line only reports.
    mode->Value = 1;
    plugin.callback("SparkPush22", 2, info);
    EXPECT_TRUE(host().called("sparkMessage(Need drawn lines to auto remove.)"));
    EXPECT_EQ(mode->Value, 1);

    // Reset puts the lens controls back; the next frame is the identity again.
    plugin.callback("SparkPush27", 2, info);
    EXPECT_EQ(radial1->Value, 0.0f);
    EXPECT_EQ(mode->Value, 0);
    plugin.process(info);
    EXPECT_EQ(output.storage, input.storage);
}
