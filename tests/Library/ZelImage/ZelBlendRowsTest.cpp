// The blend's row kernel: hand-worked values where the result leaves the
// 15-bit range (amounts outside 0..1 are taken as given, and the low 16 bits
// of the truncated value are stored), and the AVX2 form against the plain
// one over all channel values and many amounts and row lengths.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "ZelBlendRows.h"
#include "ZelCpu.h"

namespace {

PixelZel pixel(int r, int g, int b, int a) {
    PixelZel p;
    p.red = static_cast<unsigned short>(r);
    p.green = static_cast<unsigned short>(g);
    p.blue = static_cast<unsigned short>(b);
    p.alpha = static_cast<unsigned short>(a);
    return p;
}

}  // namespace

TEST(ZelBlendRows, OutOfRangeResultsKeepTheirLow16Bits) {
    for (bool plain : {false, true}) {
        zelForcePlainCpu(plain);
        // 1.5 * 100 - 0.5 * 200 = 50; -0.5 * 1000 = -500 -> 65036;
        // 3 * 30000 = 90000 -> 24464; 0.25 * 65535 + 0.75 * 65535 = 65535.
        const std::vector<PixelZel> start(9, pixel(200, 0, 0, 65535));
        const std::vector<PixelZel> other(9, pixel(100, 1000, 30000, 65535));
        std::vector<PixelZel> row = start;
        zelBlendRow(row.data(), other.data(), 9, 1.5f, -0.5f);
        EXPECT_EQ(row[8].red, 50);
        row = start;
        zelBlendRow(row.data(), other.data(), 9, -0.5f, 1.5f);
        EXPECT_EQ(row[0].green, 65036);
        row = start;
        zelBlendRow(row.data(), other.data(), 9, 3.0f, -2.0f);
        EXPECT_EQ(row[4].blue, 24464);
        row = start;
        zelBlendRow(row.data(), other.data(), 9, 0.25f, 0.75f);
        EXPECT_EQ(row[6].alpha, 65535);
    }
    zelForcePlainCpu(false);
}

TEST(ZelBlendRows, VectorFormMatchesThePlainForm) {
    if (!zelUseAvx2()) GTEST_SKIP() << "this processor has no AVX2";
#if ZEL_AVX2_FORMS
    std::vector<PixelZel> base(4099), other(4099);
    for (size_t i = 0; i < base.size(); ++i) {
        const uint32_t h = static_cast<uint32_t>(i) * 2654435761u;
        base[i] = pixel(h & 0xFFFF, (h >> 8) & 0xFFFF, (h >> 16) & 0x7FFF, i % 65536);
        other[i] = pixel((h >> 5) & 0xFFFF, i % 32768, 65535 - i % 65536, (h >> 11) & 0xFFFF);
    }
    for (float amount : {0.0f, 0.001f, 0.3f, 0.5f, 0.555f, 0.999f, 1.0f, 1.7f, -0.4f, 250.0f}) {
        for (long count : {0L, 1L, 3L, 4L, 5L, 17L, 4099L}) {
            std::vector<PixelZel> plain = base, vector = base;
            zelBlendRowPlain(plain.data(), other.data(), count, amount, 1.0f - amount);
            zelBlendRowAvx2(vector.data(), other.data(), count, amount, 1.0f - amount);
            for (size_t i = 0; i < base.size(); ++i) {
                const PixelZel& p = plain[i];
                const PixelZel& v = vector[i];
                ASSERT_EQ(p.red, v.red)
                    << "amount " << amount << " count " << count << " pixel " << i;
                ASSERT_EQ(p.green, v.green)
                    << "amount " << amount << " count " << count << " pixel " << i;
                ASSERT_EQ(p.blue, v.blue)
                    << "amount " << amount << " count " << count << " pixel " << i;
                ASSERT_EQ(p.alpha, v.alpha)
                    << "amount " << amount << " count " << count << " pixel " << i;
            }
        }
    }
#endif
}
