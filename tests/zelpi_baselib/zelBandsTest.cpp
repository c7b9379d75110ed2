// The runtime's band arithmetic: the band size rounded to nearest with ties
// to even, each worker's rows and span, and every row owned by exactly one
// worker.
#include <gtest/gtest.h>

#include <vector>

#include "zelBands.h"

namespace {

struct Share {
    int first;
    int last;
    bool operator==(const Share& other) const { return first == other.first && last == other.last; }
};

std::ostream& operator<<(std::ostream& out, const Share& s) {
    return out << s.first << ".." << s.last;
}

std::vector<Share> rowsOf(int total, int workers) {
    std::vector<Share> shares(workers);
    for (int w = 0; w < workers; ++w)
        zelmp_band_rows(total, workers, w, shares[w].first, shares[w].last);
    return shares;
}

std::vector<Share> spansOf(int start, int end, int workers) {
    std::vector<Share> spans(workers);
    for (int w = 0; w < workers; ++w)
        zelmp_band_span(start, end, workers, w, spans[w].first, spans[w].last);
    return spans;
}

TEST(ZelBands, BandIsRoundedToNearestWithTiesToEven) {
    EXPECT_EQ(zelmp_rounded_band(10, 4), 2);  // 2.5
    EXPECT_EQ(zelmp_rounded_band(14, 4), 4);  // 3.5
    EXPECT_EQ(zelmp_rounded_band(6, 4), 2);   // 1.5
    EXPECT_EQ(zelmp_rounded_band(2, 4), 0);   // 0.5
    EXPECT_EQ(zelmp_rounded_band(3, 4), 1);   // 0.75
    EXPECT_EQ(zelmp_rounded_band(7, 4), 2);   // 1.75
    EXPECT_EQ(zelmp_rounded_band(9, 4), 2);   // 2.25
    EXPECT_EQ(zelmp_rounded_band(11, 2), 6);  // 5.5
    EXPECT_EQ(zelmp_rounded_band(13, 2), 6);  // 6.5
    EXPECT_EQ(zelmp_rounded_band(1080, 3), 360);
    EXPECT_EQ(zelmp_rounded_band(0, 3), 0);
    EXPECT_EQ(zelmp_rounded_band(-10, 4), -2);
}

TEST(ZelBands, RowsOfEachWorker) {
    // The last worker takes the remainder; a band rounded up leaves it less or nothing.
    EXPECT_EQ(rowsOf(10, 4), (std::vector<Share>{{0, 1}, {2, 3}, {4, 5}, {6, 9}}));
    EXPECT_EQ(rowsOf(3, 4), (std::vector<Share>{{0, 0}, {1, 1}, {2, 2}, {3, 2}}));
    EXPECT_EQ(rowsOf(6, 4), (std::vector<Share>{{0, 1}, {2, 3}, {4, 5}, {6, 5}}));
    EXPECT_EQ(rowsOf(14, 4), (std::vector<Share>{{0, 3}, {4, 7}, {8, 11}, {12, 13}}));
    EXPECT_EQ(
        rowsOf(13, 8),
        (std::vector<Share>{{0, 1}, {2, 3}, {4, 5}, {6, 7}, {8, 9}, {10, 11}, {12, 12}, {14, 12}}));
    // Band 0 (2 / 4 = 0.5 rounds to even): worker 0 does every row.
    EXPECT_EQ(rowsOf(2, 4), (std::vector<Share>{{0, 1}, {2, 1}, {2, 1}, {2, 1}}));
    EXPECT_EQ(rowsOf(0, 3), (std::vector<Share>{{0, -1}, {0, -1}, {0, -1}}));
    EXPECT_EQ(rowsOf(5, 1), (std::vector<Share>{{0, 4}}));
    EXPECT_EQ(rowsOf(1080, 2), (std::vector<Share>{{0, 539}, {540, 1079}}));
}

TEST(ZelBands, EveryRowBelongsToExactlyOneWorker) {
    for (int workers = 1; workers <= 12; ++workers) {
        for (int total = 0; total <= 300; ++total) {
            std::vector<int> hits(total, 0);
            for (const Share& s : rowsOf(total, workers)) {
                if (s.last < s.first) continue;
                ASSERT_GE(s.first, 0) << total << " rows over " << workers;
                ASSERT_LT(s.last, total) << total << " rows over " << workers;
                for (int row = s.first; row <= s.last; ++row) ++hits[row];
            }
            for (int row = 0; row < total; ++row)
                ASSERT_EQ(hits[row], 1) << "row " << row << " of " << total << " over " << workers;
        }
    }
}

TEST(ZelBands, SpansAreMeasuredFromZero) {
    // 10 rows from 10 over 4: bands of 2 counted from 0, not from 10; the last ends at 20.
    EXPECT_EQ(spansOf(10, 20, 4), (std::vector<Share>{{0, 2}, {2, 4}, {4, 6}, {6, 20}}));
    EXPECT_EQ(spansOf(0, 3, 4), (std::vector<Share>{{0, 1}, {1, 2}, {2, 3}, {3, 3}}));
    EXPECT_EQ(spansOf(0, 5, 4), (std::vector<Share>{{0, 1}, {1, 2}, {2, 3}, {3, 5}}));
    EXPECT_EQ(spansOf(0, 8, 3), (std::vector<Share>{{0, 3}, {3, 6}, {6, 8}}));
    // Band 0: worker 0 spans everything, the others start at the end.
    EXPECT_EQ(spansOf(5, 6, 4), (std::vector<Share>{{5, 6}, {6, 6}, {6, 6}, {6, 6}}));
    EXPECT_EQ(spansOf(3, 9, 1), (std::vector<Share>{{3, 9}}));
}

}  // namespace
