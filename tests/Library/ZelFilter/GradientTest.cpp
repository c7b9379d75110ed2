#include <gtest/gtest.h>

#include <cmath>

#include "FilterReferenceData.h"
#include "FilterTestImages.h"
#include "ZelGradient.h"
#include "ZelGradientRows.h"
#include "ZelHost.h"

using filtertest::imageFrom;
using filtertest::imageOf;
using filtertest::maxDifference;

namespace {

const ZelGradientOperator kOperators[] = {
    ZelGradientOperator::kCentral, ZelGradientOperator::kPrewitt, ZelGradientOperator::kSobel,
    ZelGradientOperator::kScharr};

}  // namespace

// Every operator is a derivative estimate: a linear ramp gives its slope,
// magnitude its length and direction its angle; at the replicated border the
// difference spans one pixel instead of two, so half the slope.
TEST(FilterGradient, LinearRampGivesItsSlope) {
    zelHost() = ZelHost{};
    const float sx = 0.013f, sy = -0.021f;
    const FloatImageZel ramp =
        imageOf(17, 11, [=](int x, int y) { return 0.5f + sx * x + sy * y; });
    for (ZelGradientOperator op : kOperators) {
        FloatImageZel dx, dy, magnitude, direction;
        ASSERT_TRUE(zelGradient(ramp, op, dx, dy));
        ASSERT_TRUE(zelGradientMagnitude(dx, dy, magnitude));
        ASSERT_TRUE(zelGradientDirection(dx, dy, direction));
        for (int y = 1; y < 10; ++y)
            for (int x = 1; x < 16; ++x) {
                ASSERT_NEAR(dx.at(x, y), sx, 1e-6f) << static_cast<int>(op);
                ASSERT_NEAR(dy.at(x, y), sy, 1e-6f) << static_cast<int>(op);
                ASSERT_NEAR(magnitude.at(x, y), std::hypot(sx, sy), 1e-6f);
                ASSERT_NEAR(direction.at(x, y), std::atan2(sy, sx), 1e-4f);
            }
        EXPECT_NEAR(dx.at(0, 5), sx / 2, 1e-6f);
        EXPECT_NEAR(dy.at(5, 10), sy / 2, 1e-6f);
    }
}

// Sobel and Scharr against OpenCV's (scaled by 1/8 and 1/32, replicate border).
TEST(FilterGradient, SobelAndScharrMatchOpenCv) {
    zelHost() = ZelHost{};
    using namespace filterref;
    const FloatImageZel in = imageFrom(kInput, kWidth, kHeight);
    FloatImageZel dx, dy;
    ASSERT_TRUE(zelGradient(in, ZelGradientOperator::kSobel, dx, dy));
    EXPECT_LT(maxDifference(dx, kSobelX), 1e-6f);
    EXPECT_LT(maxDifference(dy, kSobelY), 1e-6f);
    ASSERT_TRUE(zelGradient(in, ZelGradientOperator::kScharr, dx, dy));
    EXPECT_LT(maxDifference(dx, kScharrX), 1e-6f);
    EXPECT_LT(maxDifference(dy, kScharrY), 1e-6f);
}

// The gradient at one pixel is the rows' value there, at the borders too.
TEST(FilterGradient, AtOnePixelIsTheRowsValue) {
    zelHost() = ZelHost{};
    using namespace filterref;
    const FloatImageZel in = imageFrom(kInput, kWidth, kHeight);
    FloatImageZel dx, dy, magnitude;
    ASSERT_TRUE(zelGradient(in, ZelGradientOperator::kScharr, dx, dy, &magnitude));
    const ZelGradientWeights w = zelGradientWeights(ZelGradientOperator::kScharr);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            float gx, gy, m;
            zelGradientAt(in, w, x, y, gx, gy, m);
            ASSERT_EQ(gx, dx.at(x, y));
            ASSERT_EQ(gy, dy.at(x, y));
            ASSERT_EQ(m, magnitude.at(x, y));
        }
}

TEST(FilterGradient, DirectionsOfTheAxesAndBadArguments) {
    zelHost() = ZelHost{};
    FloatImageZel dx = imageOf(4, 1, [](int x, int) {
        return x == 0 ? 1.0f : x == 2 ? -1.0f : 0.0f;
    });
    FloatImageZel dy = imageOf(4, 1, [](int x, int) {
        return x == 1 ? 1.0f : x == 3 ? -1.0f : 0.0f;
    });
    FloatImageZel direction;
    ASSERT_TRUE(zelGradientDirection(dx, dy, direction));
    EXPECT_FLOAT_EQ(direction.at(0, 0), 0.0f);
    EXPECT_FLOAT_EQ(direction.at(1, 0), static_cast<float>(M_PI / 2));
    EXPECT_FLOAT_EQ(direction.at(2, 0), static_cast<float>(M_PI));
    EXPECT_FLOAT_EQ(direction.at(3, 0), static_cast<float>(-M_PI / 2));

    FloatImageZel other(3, 1);
    EXPECT_FALSE(zelGradientMagnitude(dx, other, direction));  // sizes disagree
    EXPECT_FALSE(zelGradientMagnitude(dx, dy, dx));            // output is an input
    EXPECT_FALSE(zelGradient(dx, ZelGradientOperator::kSobel, dx, dy));
    EXPECT_FALSE(zelGradient(FloatImageZel(), ZelGradientOperator::kSobel, other, dy));
}
