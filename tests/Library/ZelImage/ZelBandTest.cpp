// Row banding: which rows each worker takes and which band a share names, and
// the bands run in order on the calling thread when no host forks them.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "ZelBand.h"
#include "ZelHost.h"

using Ranges = std::vector<std::pair<long, long>>;

static Ranges split(long workers, long bands, long count) {
    Ranges out;
    for (long i = 0; i < workers; ++i) {
        const ZelRowBand band = zelBandRows(i, bands, count);
        out.emplace_back(band.first, band.last);
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

// Without a host fork service the bands run one after the other on the
// calling thread, split exactly as the host's workers would split them; the
// transformer's executor hook goes the same way.
TEST(ZelBand, BandsWithoutAHostRunInOrderWithTheSameSplit) {
    zelHost() = ZelHost{};
    zelHost().frame.processors = 4;
    Ranges seen;
    zelForEachBand(10, [&seen](long first, long last) { seen.emplace_back(first, last); });
    EXPECT_EQ(seen, (Ranges{{0, 1}, {2, 3}, {4, 5}, {6, 9}}));

    seen.clear();
    int argument = 0;
    static Ranges* out = &seen;
    zelBandExecutor(
        &argument, [](void*, int first, int last) { out->emplace_back(first, last); }, 3,
        &argument);
    EXPECT_EQ(seen, (Ranges{{0, -1}, {0, -1}, {0, -1}, {0, 2}}));

    zelHost().frame.processors = 0;  // not set yet: one band
    seen.clear();
    zelForEachBand(5, [&seen](long first, long last) { seen.emplace_back(first, last); });
    EXPECT_EQ(seen, (Ranges{{0, 4}}));
}
