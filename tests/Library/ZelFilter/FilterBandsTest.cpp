// Every filter gives the same bytes at 1, 2, 3 and 7 processors (bands on
// real threads through the fake host's fork) and with the plain and the AVX2
// forms of the row kernels.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "FilterTestImages.h"
#include "Library/FakeHost.h"
#include "ZelBoxBlur.h"
#include "ZelCanny.h"
#include "ZelChannels.h"
#include "ZelColourImages.h"
#include "ZelCpu.h"
#include "ZelGaussianBlur.h"
#include "ZelGradient.h"
#include "ZelSharpen.h"

namespace {

// Everything the filters make from one textured picture, as bytes.
std::vector<unsigned char> everything() {
    // Odd sizes, so bands, strips and column chunks all end part-way.
    const int width = 301, height = 77;
    const FloatImageZel in = filtertest::imageOf(width, height, [](int x, int y) {
        const double r = std::hypot(x - 140.3, y - 40.2);
        return static_cast<float>(0.3 + 0.4 * (r < 25.0) + 0.05 * std::sin(x * 0.7 + y * 1.3));
    });
    std::vector<unsigned char> bytes;
    auto keep = [&bytes](const void* data, size_t size) {
        const auto* p = static_cast<const unsigned char*>(data);
        bytes.insert(bytes.end(), p, p + size);
    };
    auto keepImage = [&keep](const FloatImageZel& image) {
        EXPECT_TRUE(image.hasPixels());
        keep(image.data(), static_cast<size_t>(image.count()) * sizeof(float));
    };
    FloatImageZel out, dx, dy, magnitude;
    EXPECT_TRUE(zelGaussianBlurExact(in, out, 2.0f));
    keepImage(out);
    EXPECT_TRUE(zelGaussianBlurExact(in, out, 10.0f));
    keepImage(out);
    EXPECT_TRUE(zelGaussianBlurRecursive(in, out, 2.0f));
    keepImage(out);
    EXPECT_TRUE(zelGaussianBlurRecursive(in, out, 10.0f));
    keepImage(out);
    EXPECT_TRUE(zelBoxBlur(in, out, 3, 2, 3));
    keepImage(out);
    EXPECT_TRUE(zelUnsharpMask(in, out, 1.5f, 0.8f, 0.01f));
    keepImage(out);
    for (ZelGradientOperator op : {ZelGradientOperator::kCentral, ZelGradientOperator::kSobel,
                                   ZelGradientOperator::kScharr}) {
        EXPECT_TRUE(zelGradient(in, op, dx, dy));
        keepImage(dx);
        keepImage(dy);
    }
    EXPECT_TRUE(zelGradientMagnitude(dx, dy, magnitude));
    keepImage(magnitude);
    EXPECT_TRUE(zelGradientDirection(dx, dy, out));
    keepImage(out);

    ZelEdges edges;
    ZelCannySettings settings;
    settings.sigma = 1.0f;
    settings.low = 0.01f;
    settings.high = 0.04f;
    EXPECT_TRUE(zelCanny(in, settings, edges));
    EXPECT_GT(edges.points.size(), 100u);
    keep(edges.map.data(), edges.map.size());
    keep(edges.rowStart.data(), edges.rowStart.size() * sizeof(int));
    keep(edges.points.data(), edges.points.size() * sizeof(ZelEdgePoint));

    ImageZel picture(width, height, 1.0f, nullptr, nullptr);
    picture.Fill(0, 0, 0, 1234);
    EXPECT_TRUE(zelStoreChannel(in, ZelChannel::kRed, picture));
    EXPECT_TRUE(zelStoreChannel(out, ZelChannel::kGreen, picture));
    EXPECT_TRUE(zelStoreChannel(magnitude, ZelChannel::kBlue, picture));
    EXPECT_TRUE(zelImageRgbToHsv(picture, picture));
    keep(picture.pixels, static_cast<size_t>(width) * height * sizeof(PixelZel));
    EXPECT_TRUE(zelLuminance(picture, out));
    keepImage(out);
    return bytes;
}

}  // namespace

TEST(FilterBands, SameBytesAtAnyProcessorCountAndInstructionSet) {
    resetHost();
    zelForcePlainCpu(true);
    fakehost::Host::instance().processors = 1;
    zelHost().frame.processors = 1;
    const std::vector<unsigned char> reference = everything();
    ASSERT_FALSE(reference.empty());
    for (bool plain : {true, false}) {
        zelForcePlainCpu(plain);
        for (int processors : {1, 2, 3, 7}) {
            fakehost::Host::instance().processors = processors;
            zelHost().frame.processors = processors;
            const std::vector<unsigned char> bytes = everything();
            EXPECT_TRUE(bytes == reference)
                << processors << " processors, " << (plain ? "plain" : "processor's choice");
        }
    }
    zelForcePlainCpu(false);
    resetHost();
}
