#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

#include "FilterReferenceData.h"
#include "ZelRandom.h"
#include "ZelRandomDistributions.h"

// Fixed seeds give the numbers of an independent (Python) implementation of
// each published algorithm; PCG32's are also its reference program's.
TEST(FilterRandom, SeedsGiveFixedNumbers) {
    using namespace filterref;
    ZelSplitMix64 mix(1234567);
    for (uint64_t want : kSplitMix64Seed1234567) EXPECT_EQ(mix.next64(), want);
    ZelPcg32 pcg(42, 54);
    for (uint32_t want : kPcg32Seed42Stream54) EXPECT_EQ(pcg.next32(), want);
    ZelXoshiro256 xo(2024);
    for (uint64_t want : kXoshiroSeed2024) EXPECT_EQ(xo.next64(), want);
    ZelPcg32 below(7);
    for (uint32_t want : kPcg32Seed7Below1000) EXPECT_EQ(zelUniformBelow(below, 1000), want);
    ZelXoshiro256 normal(99);
    for (double want : kXoshiroSeed99Normal) EXPECT_NEAR(zelNormal(normal), want, 1e-14);
}

TEST(FilterRandom, PortableLogAgreesWithTheLibrary) {
    for (double x : {1e-300, 1e-10, 0.1, 0.5, 0.7071, 0.99999, 1.0, 1.5, 2.0, 3.14159, 1e10, 1e300})
        EXPECT_NEAR(zelPortableLog(x), std::log(x), 4e-16 * std::max(1.0, std::fabs(std::log(x))))
            << x;
    EXPECT_EQ(zelPortableLog(1.0), 0.0);
    EXPECT_EQ(zelPortableLog(0.0), -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(zelPortableLog(-1.0)));
}

// Moments and counts of many draws, with bounds several standard errors wide.
TEST(FilterRandom, DistributionsHaveTheirShapes) {
    constexpr int kDraws = 200000;
    ZelXoshiro256 g(5);
    double sum = 0.0, sumSquares = 0.0;
    float lowest = 1.0f, highest = 0.0f;
    for (int i = 0; i < kDraws; ++i) {
        const float u = zelUniformFloat(g);
        lowest = std::min(lowest, u);
        highest = std::max(highest, u);
        sum += u;
        sumSquares += u * u;
    }
    EXPECT_GE(lowest, 0.0f);
    EXPECT_LT(highest, 1.0f);
    EXPECT_NEAR(sum / kDraws, 0.5, 0.003);
    EXPECT_NEAR(sumSquares / kDraws - 0.25, 1.0 / 12.0, 0.002);

    ZelPcg32 p(11);
    sum = sumSquares = 0.0;
    double fourth = 0.0;
    for (int i = 0; i < kDraws; ++i) {
        const double z = zelNormal(p);
        sum += z;
        sumSquares += z * z;
        fourth += z * z * z * z;
    }
    EXPECT_NEAR(sum / kDraws, 0.0, 0.01);
    EXPECT_NEAR(sumSquares / kDraws, 1.0, 0.015);
    EXPECT_NEAR(fourth / kDraws, 3.0, 0.1);

    // Chi-square over 10 bins (9 degrees of freedom; 27.9 is the 0.1% point).
    std::vector<int> bins(10, 0);
    for (int i = 0; i < kDraws; ++i) ++bins[zelUniformBelow(p, 10)];
    double chi2 = 0.0;
    for (int count : bins)
        chi2 += (count - kDraws / 10.0) * (count - kDraws / 10.0) / (kDraws / 10.0);
    EXPECT_LT(chi2, 27.9);
    EXPECT_EQ(zelUniformBelow(p, 1), 0u);
    for (int i = 0; i < 1000; ++i) EXPECT_LT(zelUniformBelow(p, 3000000000u), 3000000000u);
}

TEST(FilterRandom, SamplesAreDistinctAndShufflesArePermutations) {
    ZelPcg32 g(3);
    std::vector<int> hits(20, 0);
    for (int round = 0; round < 2000; ++round) {
        uint32_t picks[4];
        ASSERT_EQ(zelSampleDistinct(g, 20, 4, picks), 4u);
        std::sort(picks, picks + 4);
        EXPECT_TRUE(std::adjacent_find(picks, picks + 4) == picks + 4);
        for (uint32_t v : picks) {
            ASSERT_LT(v, 20u);
            ++hits[v];
        }
    }
    // Each index is picked 400 times on average.
    for (int count : hits) EXPECT_NEAR(count, 400, 90);
    uint32_t all[5];
    ASSERT_EQ(zelSampleDistinct(g, 5, 9, all), 5u);  // more than there are: all of them
    std::sort(all, all + 5);
    for (uint32_t i = 0; i < 5; ++i) EXPECT_EQ(all[i], i);

    std::vector<int> items(50);
    std::iota(items.begin(), items.end(), 0);
    zelShuffle(g, items.data(), items.size());
    EXPECT_FALSE(std::is_sorted(items.begin(), items.end()));
    std::sort(items.begin(), items.end());
    for (int i = 0; i < 50; ++i) EXPECT_EQ(items[i], i);
}
