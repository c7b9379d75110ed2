// The ST-map applied to a smooth picture against the real plug-in's output
// (straightlux.spark loaded by the simulated host, 12-bit frames), for random
// set-ups over every sampling mode, Remove, Add and Auto Remove, squeeze,
// curvatures, off-centre and magnify: one bilinear warp through the map gives
// the plug-in's picture to interpolation precision. A few maps also go
// through `oiiotool --st_warp` (flip_t=1), as a compositor would apply them.
#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "StMap.h"
#include "host/LoadedPlugin.h"

namespace {

constexpr int kWidth = 160, kHeight = 120;
constexpr double kFull12 = 4095.0;
constexpr double kPi = 3.14159265358979323846;
// Pixels a kernel reaches past its centre (the cubic's 2, and one more for
// the magnify pass's second resampling).
constexpr double kKernelReach = 3.0;
constexpr double kSqueezed = 1.5;

// A smooth picture in the plug-in's pixels (rows from the bottom): waves of
// about 50 pixels, a different phase per channel.
double picture(int channel, double x, double y) {
    return 0.5 + 0.35 * std::sin(2 * kPi * x / 53.0 + channel) *
                     std::cos(2 * kPi * y / 47.0 + 0.5 * channel);
}

struct Frame {
    std::vector<double> values;  // kWidth x kHeight x 3, rows from the bottom
    double at(int c, int x, int y) const { return values[(size_t(y) * kWidth + x) * 3 + c]; }
};

// Bilinear sample at a position in pixels (integer centres); outside is 0.
double bilinear(const Frame& f, int c, double x, double y) {
    const int x0 = static_cast<int>(std::floor(x)), y0 = static_cast<int>(std::floor(y));
    const double ax = x - x0, ay = y - y0;
    auto px = [&](int i, int j) {
        return i < 0 || j < 0 || i >= kWidth || j >= kHeight ? 0.0 : f.at(c, i, j);
    };
    return (1 - ay) * ((1 - ax) * px(x0, y0) + ax * px(x0 + 1, y0)) +
           ay * ((1 - ax) * px(x0, y0 + 1) + ax * px(x0 + 1, y0 + 1));
}

struct Comparison {
    double largest = 0.0;
    int compared = 0;
};

LensSetup randomSetup(std::mt19937& random, int& sampling) {
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    auto between = [&](double a, double b) {
        return static_cast<float>(a + (b - a) * unit(random));
    };
    LensSetup s;
    const int mode = static_cast<int>(random() % 3);
    s.mode = mode == 0 ? LensMode::kRemove : mode == 1 ? LensMode::kAdd : LensMode::kAutoRemove;
    s.radial1 = between(-0.25, 0.4);
    s.radial2 = between(-0.1, 0.15);
    s.xCurvature = unit(random) < 0.5 ? 0.0f : between(-0.3, 0.3);
    s.yCurvature = unit(random) < 0.5 ? 0.0f : between(-0.3, 0.3);
    s.centreXPercent = between(38.0, 62.0);
    s.centreYPercent = between(38.0, 62.0);
    s.squeeze = unit(random) < 0.5 ? 1.0f : between(0.8, 2.0);
    s.magnify = unit(random) < 0.6 ? 1.0f : between(0.85, 1.4);
    sampling = static_cast<int>(random() % 5);
    return s;
}

}  // namespace

class StMapThroughPlugin : public LoadedPlugin {
  protected:
    // The plug-in's 12-bit output for a set-up, in 0..1.
    Frame run(const LensSetup& s, int sampling, const std::vector<unsigned short>& input) {
        const SparkInfoStruct info = host().makeInfo(kWidth, kHeight, 48);
        if (!initialised_) {
            initialise(info);
            initialised_ = true;
        }
        simhost::FrameBuffer& in = host().setBuffer(2, kWidth, kHeight, 48);
        std::copy(input.begin(), input.end(), in.words());
        simhost::FrameBuffer& out = host().setBuffer(1, kWidth, kHeight, 48);
        plugin.record<SparkFloatStruct>("SparkFloat6")->Value = s.radial1;
        plugin.record<SparkFloatStruct>("SparkFloat7")->Value = s.radial2;
        plugin.record<SparkFloatStruct>("SparkFloat8")->Value = s.xCurvature;
        plugin.record<SparkFloatStruct>("SparkFloat9")->Value = s.yCurvature;
        plugin.record<SparkFloatStruct>("SparkFloat13")->Value = s.centreXPercent;
        plugin.record<SparkFloatStruct>("SparkFloat14")->Value = s.centreYPercent;
        plugin.record<SparkFloatStruct>("SparkFloat16")->Value = s.squeeze;
        plugin.record<SparkFloatStruct>("SparkFloat18")->Value = s.magnify;
        plugin.record<SparkPupStruct>("SparkPup17")->Value = sampling;
        plugin.record<SparkPupStruct>("SparkPup23")->Value = s.mode == LensMode::kRemove ? 0
                                                             : s.mode == LensMode::kAdd  ? 1
                                                                                         : 2;
        EXPECT_NE(plugin.process(info), nullptr);
        Frame f;
        f.values.resize(size_t(kWidth) * kHeight * 3);
        for (size_t i = 0; i < f.values.size(); ++i) f.values[i] = (out.words()[i] >> 4) / kFull12;
        return f;
    }
    bool initialised_ = false;
};

TEST_F(StMapThroughPlugin, OneWarpThroughTheMapGivesThePluginsPicture) {
    // The input frame, 12 bits in the top of each word, and as values.
    std::vector<unsigned short> input(size_t(kWidth) * kHeight * 3);
    Frame source;
    source.values.resize(input.size());
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            for (int c = 0; c < 3; ++c) {
                const size_t i = (size_t(y) * kWidth + x) * 3 + c;
                const int v = static_cast<int>(std::lround(picture(c, x, y) * kFull12));
                input[i] = static_cast<unsigned short>(v << 4);
                source.values[i] = v / kFull12;
            }

    std::mt19937 random(20250611);
    double worst[5] = {0, 0, 0, 0, 0};
    bool modeSeen[3] = {false, false, false};
    for (int trial = 0; trial < 50; ++trial) {
        int sampling = 0;
        const LensSetup s = randomSetup(random, sampling);
        modeSeen[static_cast<int>(s.mode)] = true;
        StMap map;
        ASSERT_TRUE(makeStMap(s, kWidth, kHeight, 0.0, map).ok());
        const Frame plugin = run(s, sampling, input);

        const bool zoom = std::fabs(s.magnify - 1.0) > 0.01;
        Comparison cmp;
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                const float* st = map.rgb.data() + (size_t(kHeight - 1 - y) * kWidth + x) * 3;
                const double sx = st[0] * kWidth - 0.5, sy = st[1] * kHeight - 0.5;
                // Only where every pass reads inside the frame: the border
                // fades to black differently in each kernel.
                auto inside = [](double px, double py) {
                    return px >= kKernelReach && py >= kKernelReach &&
                           px <= kWidth - 1 - kKernelReach && py <= kHeight - 1 - kKernelReach;
                };
                if (!inside(sx, sy)) continue;
                if (zoom && !inside((x - kWidth / 2.0) / s.magnify + kWidth / 2.0,
                                    (y - kHeight / 2.0) / s.magnify + kHeight / 2.0))
                    continue;
                // With magnify the plug-in resamples twice; where its first
                // pass squeezes the picture (more than 1.5 source pixels a
                // step) the frame in between no longer holds it, and two
                // passes differ from one by more than interpolation.
                if (zoom &&
                    (x + 1 >= kWidth || y + 1 >= kHeight ||
                     s.magnify * std::hypot((st[3] - st[0]) * kWidth, (st[4] - st[1]) * kHeight) >
                         kSqueezed ||
                     s.magnify * std::hypot((st[-3 * kWidth] - st[0]) * kWidth,
                                            (st[1 - 3 * kWidth] - st[1]) * kHeight) >
                         kSqueezed))
                    continue;
                for (int c = 0; c < 3; ++c) {
                    const double d = std::fabs(plugin.at(c, x, y) - bilinear(source, c, sx, sy));
                    cmp.largest = std::max(cmp.largest, d);
                }
                ++cmp.compared;
            }
        ASSERT_GT(cmp.compared, kWidth * kHeight / 4) << "trial " << trial;
        // Interpolation precision on this picture: the kernels differ from a
        // bilinear warp by about h^2/8 of the second derivative (0.35 (2 pi /
        // 47)^2 per pixel^2), twice over with the magnify pass, and the
        // area filter of a shrinking magnify averages over its footprint;
        // the nearest kernel is off by up to half a pixel's slope (0.35 *
        // 2 pi / 47 per axis).
        const double tolerance = sampling == 0 ? 0.07 : 0.02;
        EXPECT_LT(cmp.largest, tolerance)
            << "trial " << trial << " sampling " << sampling << " mode " << modeName(s.mode)
            << " R1 " << s.radial1 << " R2 " << s.radial2 << " sq " << s.squeeze << " mag "
            << s.magnify;
        worst[sampling] = std::max(worst[sampling], cmp.largest);
    }
    EXPECT_TRUE(modeSeen[0] && modeSeen[1] && modeSeen[2]);
    for (int m = 0; m < 5; ++m)
        std::printf("sampling %d: largest difference %.5f of full scale\n", m + 1, worst[m]);
}

// oiiotool --st_warp reads the map as a compositor does: s across, t up
// (flip_t=1), pixel centres half a pixel in.
TEST_F(StMapThroughPlugin, OiiotoolStWarpAppliesTheMapAsThePluginDoes) {
    if (std::system("command -v oiiotool > /dev/null 2>&1") != 0)
        GTEST_SKIP() << "oiiotool (openimageio-tools) is not installed";
    char folder[] = "/tmp/stmapXXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string dir = folder;

    // The picture as a float file, top row first.
    OIIO::ImageBuf plate(OIIO::ImageSpec(kWidth, kHeight, 3, OIIO::TypeDesc::FLOAT));
    std::vector<unsigned short> input(size_t(kWidth) * kHeight * 3);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            float rgb[3];
            for (int c = 0; c < 3; ++c) {
                const int v = static_cast<int>(std::lround(picture(c, x, y) * kFull12));
                input[(size_t(y) * kWidth + x) * 3 + c] = static_cast<unsigned short>(v << 4);
                rgb[c] = static_cast<float>(v / kFull12);
            }
            plate.setpixel(x, kHeight - 1 - y, rgb, 3);
        }
    ASSERT_TRUE(plate.write(dir + "/plate.exr"));

    const LensSetup setups[] = {
        {LensMode::kRemove, 0.2f, 0.05f, 0.1f, 0.0f, 45.0f, 56.0f, 1.3f, 1.0f},
        {LensMode::kAdd, 0.2f, 0.05f, 0.1f, 0.0f, 45.0f, 56.0f, 1.3f, 1.0f},
        {LensMode::kRemove, -0.15f, 0.02f, 0.0f, 0.2f, 53.0f, 47.0f, 1.0f, 1.25f},
    };
    for (const LensSetup& s : setups) {
        StMap map;
        ASSERT_TRUE(makeStMap(s, kWidth, kHeight, 0.0, map).ok());
        OIIO::ImageBuf stmap(OIIO::ImageSpec(map.width, map.height, 3, OIIO::TypeDesc::FLOAT),
                             map.rgb.data());
        ASSERT_TRUE(stmap.write(dir + "/map.exr"));
        const std::string command = "oiiotool " + dir + "/plate.exr " + dir +
                                    "/map.exr --st_warp:filter=triangle:flip_t=1 -o " + dir +
                                    "/warped.exr";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        OIIO::ImageBuf warped(dir + "/warped.exr");
        ASSERT_TRUE(warped.read(0, 0, true, OIIO::TypeDesc::FLOAT));
        const Frame plugin = run(s, 1 /* Linear */, input);
        double largest = 0.0;
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                const float* st = map.rgb.data() + (size_t(kHeight - 1 - y) * kWidth + x) * 3;
                const double sx = st[0] * kWidth - 0.5, sy = st[1] * kHeight - 0.5;
                const double mx = (x - kWidth / 2.0) / s.magnify + kWidth / 2.0;
                const double my = (y - kHeight / 2.0) / s.magnify + kHeight / 2.0;
                if (sx < kKernelReach || sy < kKernelReach || sx > kWidth - 1 - kKernelReach ||
                    sy > kHeight - 1 - kKernelReach || mx < kKernelReach || my < kKernelReach ||
                    mx > kWidth - 1 - kKernelReach || my > kHeight - 1 - kKernelReach)
                    continue;
                float rgb[3];
                warped.getpixel(x, kHeight - 1 - y, rgb, 3);
                for (int c = 0; c < 3; ++c)
                    largest = std::max(largest, std::fabs(rgb[c] - plugin.at(c, x, y)));
            }
        EXPECT_LT(largest, 0.02) << modeName(s.mode) << " magnify " << s.magnify;
        std::printf("oiiotool --st_warp, %s, magnify %.2f: largest difference %.5f\n",
                    modeName(s.mode), s.magnify, largest);
    }
    std::system(("rm -rf " + dir).c_str());
}
