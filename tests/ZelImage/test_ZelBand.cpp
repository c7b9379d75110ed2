#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "ZelBand.h"

using Ranges = std::vector<std::pair<long, long>>;

static Ranges split(long workers, long bands, long count) {
    Ranges out;
    for (long i = 0; i < workers; ++i) {
        long first = 99, last = 99;
        zelBandRows(i, bands, count, first, last);
        out.emplace_back(first, last);
    }
    return out;
}

TEST(ZelBand, RowsAndIndex) {
    EXPECT_EQ(split(4, 4, 10), (Ranges{{0, 1}, {2, 3}, {4, 5}, {6, 9}}));
    EXPECT_EQ(split(4, 4, 3), (Ranges{{0, -1}, {0, -1}, {0, -1}, {0, 2}}));
    EXPECT_EQ(split(1, 0, 5), (Ranges{{0, 4}}));                   // no processor count yet
    EXPECT_EQ(split(3, 2, 4), (Ranges{{0, 1}, {2, 3}, {0, -1}}));  // surplus worker idles

    EXPECT_EQ(zelBandIndex(300, 100), 3);
    EXPECT_EQ(zelBandIndex(279, 100), 2);  // 2.99
    EXPECT_EQ(zelBandIndex(281, 100), 3);  // 3.01
    EXPECT_EQ(zelBandIndex(5, 0), 0);
}
