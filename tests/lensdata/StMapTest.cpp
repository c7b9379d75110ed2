// ST-map values against the plug-in's own address map (a Straightlux object
// computing it as its passes do), the ST-map convention on hand-computed
// cases, and the refusals of bad input.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "ImageXfmZel.h"
#include "StMap.h"
#include "Straightlux.h"

namespace {

// The plug-in's map for a set-up: a Straightlux object loads the model as a
// frame does and fills its address map with its own pass.
std::vector<float> pluginAddressMap(const LensSetup& setup, int width, int height) {
    Straightlux lens;
    lens.width = width;
    lens.height = height;
    lens.normScale = 1.0f;
    lens.loadControls(setup.centreXPercent / 100.0, setup.centreYPercent / 100.0, setup.squeeze,
                      setup.radial1, setup.radial2, setup.xCurvature, setup.yCurvature);
    lens.ComputeAddressMap(setup.mode == LensMode::kAdd);
    std::vector<float> map(lens.addressMap, lens.addressMap + 2 * size_t(width) * height);
    delete lens.xfm;  // the plug-in leaves its resampler to the library's lifetime
    lens.xfm = nullptr;
    return map;
}

const float* stAt(const StMap& map, int column, int fileRow) {
    return map.rgb.data() + (size_t(fileRow) * map.width + column) * 3;
}

}  // namespace

TEST(StMap, ValuesAreThePluginsAddressMapInBothModes) {
    struct Case {
        LensSetup setup;
        int width, height;
    };
    const Case cases[] = {
        {{LensMode::kRemove, 0.12f, 0.03f, 0.0f, 0.0f, 50.0f, 50.0f, 1.0f, 1.0f}, 64, 36},
        {{LensMode::kAdd, 0.12f, 0.03f, 0.0f, 0.0f, 50.0f, 50.0f, 1.0f, 1.0f}, 64, 36},
        {{LensMode::kAutoRemove, -0.2f, 0.1f, 0.3f, -0.2f, 41.5f, 57.25f, 1.8f, 1.0f}, 51, 47},
        {{LensMode::kAdd, -0.2f, 0.1f, 0.3f, -0.2f, 41.5f, 57.25f, 1.8f, 1.0f}, 51, 47},
        // Strong barrel removal: the inverse fails towards the corners.
        {{LensMode::kRemove, -1.0f, -1.0f, 0.0f, 0.0f, 50.0f, 50.0f, 1.0f, 1.0f}, 40, 30},
    };
    int failedPixels = 0;
    for (const Case& c : cases) {
        const std::vector<float> want = pluginAddressMap(c.setup, c.width, c.height);
        StMap map;
        ASSERT_TRUE(makeStMap(c.setup, c.width, c.height, 0.0, map).ok());
        ASSERT_EQ(map.width, c.width);
        ASSERT_EQ(map.height, c.height);
        for (int y = 0; y < c.height; ++y)
            for (int x = 0; x < c.width; ++x) {
                // Row y of the plug-in (from the bottom) is file row H - 1 - y.
                const float* st = stAt(map, x, c.height - 1 - y);
                const float fx = want[2 * (size_t(y) * c.width + x)];
                const float fy = want[2 * (size_t(y) * c.width + x) + 1];
                ASSERT_EQ(st[0], static_cast<float>((fx + 0.5) / c.width)) << x << "," << y;
                ASSERT_EQ(st[1], static_cast<float>((fy + 0.5) / c.height)) << x << "," << y;
                ASSERT_EQ(st[2], 0.0f);
                if (fx == 0.0f && fy == 0.0f) ++failedPixels;
            }
    }
    // The failing inverse was met, and its pixels point at pixel (0, 0).
    EXPECT_GT(failedPixels, 4);
}

TEST(StMap, ConventionOriginOverscanAndMagnifyByHand) {
    // The identity: file row r, column c holds ((c + 0.5) / W, (H - 1 - r + 0.5) / H).
    LensSetup identity;
    StMap map;
    ASSERT_TRUE(makeStMap(identity, 10, 4, 0.0, map).ok());
    EXPECT_FLOAT_EQ(stAt(map, 0, 0)[0], 0.05f);
    EXPECT_FLOAT_EQ(stAt(map, 0, 0)[1], 0.875f);  // top row: t near 1
    EXPECT_FLOAT_EQ(stAt(map, 9, 3)[0], 0.95f);
    EXPECT_FLOAT_EQ(stAt(map, 9, 3)[1], 0.125f);  // bottom row: t near 0

    // 50 % overscan of 10 x 4: 5 and 2 pixels more on each side; the canvas's
    // top-left pixel is frame pixel (-5, 5).
    ASSERT_TRUE(makeStMap(identity, 10, 4, 50.0, map).ok());
    EXPECT_EQ(map.width, 20);
    EXPECT_EQ(map.height, 8);
    EXPECT_EQ(map.overscanX, 5);
    EXPECT_EQ(map.overscanY, 2);
    EXPECT_FLOAT_EQ(stAt(map, 0, 0)[0], -0.45f);
    EXPECT_FLOAT_EQ(stAt(map, 0, 0)[1], 1.375f);
    // 33 % of 10 is 3.3: 3 whole pixels.
    ASSERT_TRUE(makeStMap(identity, 10, 4, 33.0, map).ok());
    EXPECT_EQ(map.width, 16);

    // The model continues outside the frame: Add at frame pixel (-5, 5).
    LensSetup add;
    add.mode = LensMode::kAdd;
    add.radial1 = 0.2f;
    ASSERT_TRUE(makeStMap(add, 10, 4, 50.0, map).ok());
    const double R = std::sqrt(0.25 * 100 + 0.25 * 16);
    const double u = -10.0 / R, v = 3.0 / R, f = 1.0 + 0.2 * (u * u + v * v);
    EXPECT_NEAR(stAt(map, 0, 0)[0], (5.0 + u * f * R + 0.5) / 10, 1e-6);
    EXPECT_NEAR(stAt(map, 0, 0)[1], (2.0 + v * f * R + 0.5) / 4, 1e-6);

    // Magnify 2 with no lens: output x shows x' = (x - W/2) / 2 + W/2 in both modes.
    for (LensMode mode : {LensMode::kRemove, LensMode::kAdd}) {
        LensSetup zoom;
        zoom.mode = mode;
        zoom.magnify = 2.0f;
        ASSERT_TRUE(makeStMap(zoom, 10, 4, 0.0, map).ok());
        EXPECT_NEAR(stAt(map, 0, 3)[0], ((0 - 5) / 2.0 + 5 + 0.5) / 10, 1e-6);
        EXPECT_NEAR(stAt(map, 0, 3)[1], ((0 - 2) / 2.0 + 2 + 0.5) / 4, 1e-6);
        // Within the dead band (1.005) no zoom at all.
        zoom.magnify = 1.005f;
        ASSERT_TRUE(makeStMap(zoom, 10, 4, 0.0, map).ok());
        EXPECT_FLOAT_EQ(stAt(map, 0, 3)[0], 0.05f);
    }
}

TEST(StMap, BadInputIsRefusedWithAReason) {
    const LensSetup fine;
    StMap map;
    map.width = 7;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (double overscan : {-1.0, 100.5, nan}) {
        const LensDataStatus status = makeStMap(fine, 10, 4, overscan, map);
        EXPECT_EQ(status.failure, LensDataFailure::kBadOverscan) << overscan;
        EXPECT_NE(status.message.find("0..100"), std::string::npos) << status.message;
    }
    EXPECT_EQ(map.width, 7);  // nothing written on failure
    EXPECT_TRUE(makeStMap(fine, 10, 4, 100.0, map).ok());

    LensSetup bad = fine;
    bad.radial1 = 5.0f;
    LensDataStatus status = makeStMap(bad, 10, 4, 0.0, map);
    EXPECT_EQ(status.failure, LensDataFailure::kBadValue);
    EXPECT_NE(status.message.find("Radial1"), std::string::npos) << status.message;
    bad = fine;
    bad.centreYPercent = std::numeric_limits<float>::infinity();
    EXPECT_EQ(makeStMap(bad, 10, 4, 0.0, map).failure, LensDataFailure::kBadValue);
    EXPECT_EQ(makeStMap(fine, 0, 4, 0.0, map).failure, LensDataFailure::kBadValue);
    EXPECT_EQ(makeStMap(fine, 10, 40000, 0.0, map).failure, LensDataFailure::kBadValue);
}
