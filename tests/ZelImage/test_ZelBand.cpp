#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "ZelBand.h"

namespace {

std::vector<std::pair<long, long>> bands(long workers, long bandCount, long count) {
    std::vector<std::pair<long, long>> out;
    for (long i = 0; i < workers; ++i) {
        long first = 99, last = 99;
        zelBandRows(i, bandCount, count, first, last);
        out.emplace_back(first, last);
    }
    return out;
}

using Ranges = std::vector<std::pair<long, long>>;

}  // namespace

TEST(ZelBand, RowsPerBandWithRemainderOnTheLast) {
    EXPECT_EQ(bands(4, 4, 10), (Ranges{{0, 1}, {2, 3}, {4, 5}, {6, 9}}));
    EXPECT_EQ(bands(4, 4, 3), (Ranges{{0, -1}, {0, -1}, {0, -1}, {0, 2}}));
    EXPECT_EQ(bands(2, 2, 4), (Ranges{{0, 1}, {2, 3}}));
    EXPECT_EQ(bands(1, 1, 7), (Ranges{{0, 6}}));
    // No processor count yet: one band doing everything.
    EXPECT_EQ(bands(1, 0, 5), (Ranges{{0, 4}}));
    // A worker past the band count does nothing.
    EXPECT_EQ(bands(3, 2, 4), (Ranges{{0, 1}, {2, 3}, {0, -1}}));
}

TEST(ZelBand, IndexFromTheHostsShare) {
    EXPECT_EQ(zelBandIndex(0, 100), 0);
    EXPECT_EQ(zelBandIndex(100, 100), 1);
    EXPECT_EQ(zelBandIndex(300, 100), 3);
    // 2.79 + 0.2 stays in band 2; 2.81 + 0.2 reaches band 3.
    EXPECT_EQ(zelBandIndex(279, 100), 2);
    EXPECT_EQ(zelBandIndex(281, 100), 3);
    EXPECT_EQ(zelBandIndex(5, 0), 0);
}
