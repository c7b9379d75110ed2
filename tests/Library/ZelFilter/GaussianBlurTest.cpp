#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "FilterReferenceData.h"
#include "FilterTestImages.h"
#include "ZelBoxBlur.h"
#include "ZelGaussianBlur.h"
#include "ZelHost.h"
#include "ZelRecursiveGaussian.h"
#include "ZelSharpen.h"
#include "ZelSymmetricKernel.h"

using filtertest::imageFrom;
using filtertest::imageOf;
using filtertest::maxDifference;

namespace {

constexpr double kPi = 3.14159265358979323846;

FloatImageZel delta(int size) {
    return imageOf(size, size,
                   [size](int x, int y) { return x == size / 2 && y == size / 2 ? 1.0f : 0.0f; });
}

class FilterGaussian : public ::testing::Test {
  protected:
    void SetUp() override { zelHost() = ZelHost{}; }
};

}  // namespace

// The sampled kernel: weights add up to 1, ratios follow exp(-k^2 / 2 sigma^2),
// and the exact blur of a delta is the kernel's outer product.
TEST_F(FilterGaussian, ExactBlurOfADeltaIsTheKernel) {
    const float sigma = 1.7f;
    const ZelSymmetricKernel k = zelGaussianKernel(sigma, zelGaussianRadius(sigma));
    ASSERT_EQ(k.radius(), 7);  // ceil(4 * 1.7)
    double sum = k.weights[0];
    for (int i = 1; i <= k.radius(); ++i) {
        sum += 2.0 * k.weights[i];
        EXPECT_NEAR(k.weights[i] / k.weights[0], std::exp(-i * i / (2.0 * 1.7 * 1.7)), 1e-6);
    }
    EXPECT_NEAR(sum, 1.0, 1e-6);

    const FloatImageZel in = delta(21);
    FloatImageZel out;
    ASSERT_TRUE(zelGaussianBlurExact(in, out, sigma));
    for (int y = 0; y < 21; ++y)
        for (int x = 0; x < 21; ++x) {
            const int dx = std::abs(x - 10), dy = std::abs(y - 10);
            const float want = dx <= 7 && dy <= 7 ? k.weights[dx] * k.weights[dy] : 0.0f;
            EXPECT_NEAR(out.at(x, y), want, 1e-8) << x << "," << y;
        }
}

// A constant stays that constant through every blur, at the borders too
// (the replicate border; the recursive form through its boundary conditions).
TEST_F(FilterGaussian, ConstantStaysConstant) {
    const FloatImageZel in = imageOf(37, 23, [](int, int) { return 0.625f; });
    FloatImageZel out;
    ASSERT_TRUE(zelGaussianBlurExact(in, out, 2.5f));
    EXPECT_LT(maxDifference(out, imageOf(37, 23, [](int, int) { return 0.625f; })), 1e-6f);
    for (float sigma : {0.5f, 2.0f, 10.0f, 40.0f}) {
        ASSERT_TRUE(zelGaussianBlurRecursive(in, out, sigma));
        for (long i = 0; i < out.count(); ++i)
            ASSERT_NEAR(out.data()[i], 0.625f, 1e-7f) << "sigma " << sigma << " pixel " << i;
    }
    ASSERT_TRUE(zelBoxBlur(in, out, 3, 1, 2));
    for (long i = 0; i < out.count(); ++i) ASSERT_NEAR(out.data()[i], 0.625f, 1e-6f);
}

// Against OpenCV's GaussianBlur (same kernel size, replicate border).
TEST_F(FilterGaussian, ExactMatchesOpenCv) {
    using namespace filterref;
    const FloatImageZel in = imageFrom(kInput, kWidth, kHeight);
    FloatImageZel out;
    ASSERT_TRUE(zelGaussianBlurExact(in, out, 1.5f));
    EXPECT_LT(maxDifference(out, kGauss15), 2e-6f);
    ASSERT_TRUE(zelGaussianBlurExact(in, out, 3.2f));
    EXPECT_LT(maxDifference(out, kGauss32), 2e-6f);
    // The automatic choice below its switch-over sigma is the exact form.
    ASSERT_TRUE(zelGaussianBlur(in, out, 1.5f));
    EXPECT_LT(maxDifference(out, kGauss15), 2e-6f);
}

// The recursive filter's impulse response against the continuous Gaussian:
// unit sum, variance sigma^2, and a shape within a small fraction of the peak.
TEST_F(FilterGaussian, RecursiveImpulseResponseIsGaussian) {
    for (float sigma : {1.0f, 2.0f, 5.0f, 16.0f}) {
        const int size = 2 * static_cast<int>(10 * sigma) + 41;
        const int c = size / 2;
        FloatImageZel line = imageOf(size, 1, [c](int x, int) { return x == c ? 1.0f : 0.0f; });
        FloatImageZel out;
        ASSERT_TRUE(zelGaussianBlurRecursive(line, out, sigma));
        double sum = 0.0, second = 0.0, worst = 0.0;
        const double peak = 1.0 / (std::sqrt(2.0 * kPi) * sigma);
        for (int x = 0; x < size; ++x) {
            const double v = out.at(x, 0);
            const double d = x - c;
            sum += v;
            second += v * d * d;
            worst = std::max(worst, std::fabs(v - peak * std::exp(-d * d / (2.0 * sigma * sigma))));
        }
        EXPECT_NEAR(sum, 1.0, 1e-6) << sigma;
        EXPECT_NEAR(std::sqrt(second), sigma, 1e-3 * sigma) << sigma;
        // The third-order filter's own departure from the Gaussian: under 4% of
        // the peak at sigma 1, near 2% at sigma 2, 1% beyond.
        EXPECT_LT(worst / peak, sigma < 1.5f ? 0.04 : sigma < 3.0f ? 0.025 : 0.012) << sigma;
    }
}

// On a textured image the recursive blur stays close to the exact one, also
// next to the borders, in both directions.
TEST_F(FilterGaussian, RecursiveIsCloseToExact) {
    using namespace filterref;
    const FloatImageZel in = imageFrom(kInput, kWidth, kHeight);
    FloatImageZel recursive;
    ASSERT_TRUE(zelGaussianBlurRecursive(in, recursive, 3.2f));
    EXPECT_LT(maxDifference(recursive, kGauss32), 0.01f);
    // A ramp is kept where the Gaussian keeps it (far from the ends).
    const FloatImageZel ramp =
        imageOf(200, 90, [](int x, int y) { return 0.01f * x + 0.002f * y; });
    ASSERT_TRUE(zelGaussianBlurRecursive(ramp, recursive, 4.0f));
    for (int y = 30; y < 60; ++y)
        for (int x = 30; x < 170; ++x) ASSERT_NEAR(recursive.at(x, y), ramp.at(x, y), 1e-4f);
}

TEST_F(FilterGaussian, BoxPassesMatchOpenCv) {
    using namespace filterref;
    const FloatImageZel in = imageFrom(kInput, kWidth, kHeight);
    FloatImageZel out;
    ASSERT_TRUE(zelBoxBlur(in, out, 2, 1));
    EXPECT_LT(maxDifference(out, kBox5x3), 2e-6f);
    ASSERT_TRUE(zelBoxBlur(in, out, 1, 1, 3));
    EXPECT_LT(maxDifference(out, kBox3x3Passes3), 2e-6f);
}

TEST_F(FilterGaussian, UnsharpMaskMatchesReferenceAndSparesFlatAreas) {
    using namespace filterref;
    const FloatImageZel in = imageFrom(kInput, kWidth, kHeight);
    FloatImageZel out;
    ASSERT_TRUE(zelUnsharpMask(in, out, 1.5f, 1.5f));
    EXPECT_LT(maxDifference(out, kUnsharp15Amount15), 1e-5f);
    // With a threshold above every detail nothing changes.
    ASSERT_TRUE(zelUnsharpMask(in, out, 1.5f, 1.5f, 10.0f));
    EXPECT_EQ(maxDifference(out, kInput), 0.0f);
}

// Every blur may write over its input and gives what it gives out of place.
TEST_F(FilterGaussian, InPlaceIsTheSame) {
    using namespace filterref;
    const FloatImageZel in = imageFrom(kInput, kWidth, kHeight);
    FloatImageZel expected;
    FloatImageZel work;
    ASSERT_TRUE(zelGaussianBlurExact(in, expected, 2.0f));
    in.copyTo(work);
    ASSERT_TRUE(zelGaussianBlurExact(work, work, 2.0f));
    EXPECT_TRUE(filtertest::sameBits(work, expected));
    ASSERT_TRUE(zelGaussianBlurRecursive(in, expected, 6.0f));
    in.copyTo(work);
    ASSERT_TRUE(zelGaussianBlurRecursive(work, work, 6.0f));
    EXPECT_TRUE(filtertest::sameBits(work, expected));
}

TEST_F(FilterGaussian, BadArgumentsAreRefused) {
    const FloatImageZel empty;
    const FloatImageZel in(8, 8);
    FloatImageZel out;
    EXPECT_FALSE(zelGaussianBlurExact(empty, out, 1.0f));
    EXPECT_FALSE(zelGaussianBlurExact(in, out, 0.0f));
    EXPECT_FALSE(zelGaussianBlurExact(in, out, std::nanf("")));
    EXPECT_FALSE(zelGaussianBlurRecursive(in, out, 0.3f));
    // Too wide to do in reasonable time and memory: refused, not attempted.
    EXPECT_FALSE(zelGaussianBlurExact(in, out, 1e6f));
    EXPECT_FALSE(zelGaussianBlurExact(in, out, 1.0f, kZelMaxKernelRadius + 1));
    EXPECT_FALSE(zelGaussianBlurRecursive(in, out, 1e5f));
    EXPECT_FALSE(zelGaussianBlur(in, out, std::numeric_limits<float>::infinity()));
    EXPECT_FALSE(zelBoxBlur(in, out, kZelMaxKernelRadius + 1, 1));
    EXPECT_FALSE(zelBoxBlur(in, out, -1, 1));
    EXPECT_FALSE(zelBoxBlur(in, out, 1, 1, 0));
    EXPECT_FALSE(zelUnsharpMask(in, out, -1.0f, 1.0f));
    // A tiny picture with a kernel far wider than itself is still fine.
    FloatImageZel one = imageOf(1, 1, [](int, int) { return 0.25f; });
    ASSERT_TRUE(zelGaussianBlurExact(one, out, 5.0f));
    EXPECT_NEAR(out.at(0, 0), 0.25f, 1e-6f);
    ASSERT_TRUE(zelGaussianBlurRecursive(one, out, 5.0f));
    EXPECT_NEAR(out.at(0, 0), 0.25f, 1e-6f);
}
