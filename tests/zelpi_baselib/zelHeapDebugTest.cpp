// The tracked heap in debug mode: misuse logged and nothing freed, blocks
// that share a hash bucket still found, the report's counts and source names,
// trace lines, and plain mode going straight to the C library.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "LogCapture.h"
#include "zelHeapTable.h"
#include "zel_heap.h"

namespace {

const std::string kError = "(ZEL LIB) HH:MM:SS.ss ERROR: ";
const std::string kInfo = "(ZEL LIB) HH:MM:SS.ss INFO : ";
// Eighteen blanks stand where " HH:MM:SS.ss LEVEL" would be.
const std::string kContinuation = "(ZEL LIB)" + std::string(18, ' ') + ": ";

// The bucket rule written out afresh: one-at-a-time over the four lowest
// address bytes, without the final h += h << 15.
unsigned expectedBucket(const void* p) {
    uint32_t low = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(p));
    uint32_t h = 0;
    for (int i = 0; i < 4; ++i) {
        h += (low >> (8 * i)) & 0xff;
        h += h << 10;
        h ^= h >> 6;
    }
    h += h << 3;
    h ^= h >> 11;
    return h % 16384;
}

std::string dumpLine(unsigned bucket, const void* p, int size, const std::string& source,
                     int line) {
    char text[160];
    snprintf(text, sizeof text, "%6d: %p, %d %48s %6d\n", bucket, p, size, source.c_str(), line);
    return kContinuation + text;
}

struct Stats {
    int blocks, frees;
    long total, peak;
};

Stats normalStats() {
    Stats s;
    get_zel_heap_normal_memory_statistics(&s.blocks, &s.frees, &s.total, &s.peak);
    return s;
}

class HeapDebug : public ::testing::Test {
  protected:
    HeapDebug() {
        set_zel_heap_memory_enable(true);
        set_zel_heap_memory_debug(true);
    }
    ~HeapDebug() override {
        set_zel_heap_memory_trace(false);
        set_zel_heap_memory_debug(false);
        set_zel_heap_memory_enable(false);
    }
    LogCapture log_;
};

TEST(HeapHash, BucketsFromTheFourLowestAddressBytes) {
    // Worked out by hand from the rule.
    EXPECT_EQ(zel_heap_bucket_of(reinterpret_cast<void*>(0x12345678)), 14004u);
    EXPECT_EQ(zel_heap_bucket_of(reinterpret_cast<void*>(0x10)), 8398u);
    EXPECT_EQ(zel_heap_bucket_of(reinterpret_cast<void*>(0xdeadbeef0010)), 4810u);
    EXPECT_EQ(zel_heap_bucket_of(nullptr), 0u);
}

TEST_F(HeapDebug, MisuseIsLoggedAndNothingIsFreed) {
    Stats before = normalStats();
    void* p = zel_malloc(24, "tests/heap", 10);
    ASSERT_NE(p, nullptr);
    zel_free(p, "tests/heap", 11);
    EXPECT_EQ(log_.take(), "");
    Stats after = normalStats();
    EXPECT_EQ(after.blocks, before.blocks);
    EXPECT_EQ(after.frees, before.frees + 1);

    std::string ps = pointerText(p);
    zel_free(p, "tests/heap", 12);
    EXPECT_EQ(log_.take(), kError + "ZEL-HM-DEBUG: zel_free(" + ps + ") attempted - but " + ps +
                               " is not allocated! [tests/heap(12)]\n");
    EXPECT_EQ(normalStats().frees, before.frees + 1);

    int local = 0;
    std::string ls = pointerText(&local);
    zel_free(&local, "tests/heap", 13);
    EXPECT_EQ(zel_realloc(&local, 8, "tests/heap", 14), nullptr);
    zel_image_free(&local, "img", 15);
    EXPECT_EQ(zel_image_realloc(&local, 9, "img", 16), nullptr);
    EXPECT_EQ(log_.take(),
              kError + "ZEL-HM-DEBUG: zel_free(" + ls + ") attempted - but " + ls +
                  " is not allocated! [tests/heap(13)]\n" + kError + "ZEL-HM-DEBUG: zel_realloc(" +
                  ls + ",8) attempted - but " + ls + " is not allocated!  [tests/heap(14)]\n" +
                  kError + "ZEL-HM-DEBUG: zel_image_free(" + ls + ") attempted - but " + ls +
                  " is not allocated! [img(15)]\n" + kError + "ZEL-HM-DEBUG: zel_image_realloc(" +
                  ls + ",9) attempted - but " + ls + " is not allocated! [img(16)]\n");

    EXPECT_EQ(zel_malloc(0, "a", 1), nullptr);
    EXPECT_EQ(zel_image_malloc(0, "b", 2), nullptr);
    EXPECT_EQ(zel_strdup(nullptr, "c", 3), nullptr);
    zel_free(nullptr, "d", 4);
    zel_image_free(nullptr, "e", 5);
    EXPECT_EQ(log_.take(), kError + "ZEL-HM-DEBUG: zel_malloc( size=0 ) attempted! [a(1)]\n" +
                               kError +
                               "ZEL-HM-DEBUG: zel_image_malloc( size=0 ) attempted! [b(2)]\n" +
                               kError + "ZEL-HM-DEBUG: zel_strdup( NULL ) attempted! [c(3)]\n" +
                               kError + "ZEL-HM-DEBUG: zel_free( NULL ) attempted! [d(4)]\n" +
                               kError + "ZEL-HM-DEBUG: zel_image_free( NULL ) attempted! [e(5)]\n");
}

TEST_F(HeapDebug, CollidingBlocksStayFindable) {
    // Allocate until two of our blocks share a bucket.
    std::vector<void*> blocks;
    std::map<unsigned, void*> firstInBucket;
    void* older = nullptr;
    void* newer = nullptr;
    while (!newer && blocks.size() < 20000) {
        void* p = zel_malloc(16, "collide", 1);
        blocks.push_back(p);
        auto found = firstInBucket.emplace(expectedBucket(p), p);
        if (!found.second) {
            older = found.first->second;
            newer = p;
        }
    }
    ASSERT_NE(newer, nullptr);
    for (void* p : blocks)
        if (p != older && p != newer) zel_free(p, "collide", 2);
    unsigned bucket = expectedBucket(newer);

    // The newer block holds the bucket, the older one is chained behind it.
    log_.take();
    output_zel_heap_normal_memory_report(true);
    std::string report = log_.take();
    std::string newerLine = dumpLine(bucket, newer, 16, "collide", 1);
    std::string olderLine = dumpLine(bucket, older, 16, "collide", 1);
    ASSERT_NE(report.find(newerLine + olderLine), std::string::npos) << report;

    zel_free(newer, "collide", 3);
    output_zel_heap_normal_memory_report(true);
    report = log_.take();
    EXPECT_EQ(report.find(newerLine), std::string::npos);
    EXPECT_NE(report.find(olderLine), std::string::npos);
    zel_free(older, "collide", 4);
    EXPECT_EQ(log_.take(), "");
    zel_free(older, "collide", 5);
    EXPECT_NE(log_.take().find("is not allocated! [collide(5)]"), std::string::npos);
}

TEST_F(HeapDebug, ReportCountsSizesAndLongSourceNames) {
    const std::string name60 = "abcdefghij0123456789ABCDEFGHIJklmnopqrstKLMNOPQRST9876543210";
    ASSERT_EQ(name60.size(), 60u);
    Stats before = normalStats();
    void* a = zel_malloc(10, name60.c_str(), 42);
    void* b = zel_calloc(4, 5, "calloc", 43);
    char* c = zel_strdup("twenty-nine characters long!", "strdup", 44);
    EXPECT_EQ(static_cast<unsigned char*>(b)[19], 0);
    zel_free(b, "calloc", 45);
    a = zel_realloc(a, 30, name60.c_str(), 46);

    // Two blocks live: 30 + 29 bytes; the peak saw 10 + 20 + 29.
    Stats now = normalStats();
    EXPECT_EQ(now.blocks, before.blocks + 2);
    EXPECT_EQ(now.frees, before.frees + 1);
    EXPECT_EQ(now.total, before.total + 59);
    EXPECT_EQ(now.peak, std::max(before.peak, before.total + 59));

    log_.take();
    output_zel_heap_normal_memory_report(true);
    std::string report = log_.take();
    char counts[512];
    snprintf(counts, sizeof counts,
             "Total allocation calls: %d\n%sTotal free calls: %d\n%sBlocks currently allocated: "
             "%d\n%sTotal size now allocated: %d\n%sPeak size allocated: %d\n%sInternal error "
             "state: 0\n",
             before.blocks + before.frees + 3, kContinuation.c_str(), before.frees + 1,
             kContinuation.c_str(), before.blocks + 2, kContinuation.c_str(),
             static_cast<int>(before.total + 59), kContinuation.c_str(), static_cast<int>(now.peak),
             kContinuation.c_str());
    EXPECT_EQ(report.rfind(kInfo + "NORMAL MEMORY ALLOCATOR REPORT\n" + kContinuation +
                               "Hash table collisions: ",
                           0),
              0u)
        << report;
    EXPECT_NE(report.find(kContinuation + counts + kContinuation + "Elapsed time in allocator: "),
              std::string::npos)
        << report;
    // A 60-character source name keeps its last 47 characters.
    EXPECT_NE(report.find(dumpLine(expectedBucket(a), a, 30, name60.substr(13), 46)),
              std::string::npos)
        << report;
    EXPECT_NE(report.find(kContinuation + "END OF ALLOCATION REPORT\n"), std::string::npos);

    long peak = normalStats().peak;
    zel_free(a, "x", 47);
    zel_free(c, "x", 48);
    EXPECT_EQ(normalStats().total, before.total);
    EXPECT_EQ(normalStats().peak, peak);

    set_zel_heap_memory_debug(false);
    output_zel_heap_image_memory_report(false);
    EXPECT_EQ(log_.take(), kInfo + "ZEL-HM-DEBUG: Debug mode not set. Statistics not available.\n");
}

TEST_F(HeapDebug, TraceLinesAndPlainMode) {
    set_zel_heap_memory_trace(true);
    void* p = zel_image_malloc(5, "t", 7);
    void* q = zel_malloc(6, "t", 0);  // line 0: no trace
    zel_image_free(p, "t", 8);
    zel_free(q, "t", 9);
    std::string ps = pointerText(p), qs = pointerText(q);
    EXPECT_EQ(log_.take(), kInfo + "ZEL-HM-TRACE: zel_image_malloc(5) ret (" + ps +
                               ") at [t(7)]\n" + kInfo + "ZEL-HM-TRACE: zel_image_free(" + ps +
                               ") at [t(8)].\n" + kInfo + "ZEL-HM-TRACE: zel_free(" + qs +
                               ") at [t(9)].\n");

    // Enable off: straight to the C library, nothing recorded or traced.
    set_zel_heap_memory_enable(false);
    Stats before = normalStats();
    void* r = zel_malloc(100, "plain", 1);
    r = zel_realloc(r, 200, "plain", 2);
    zel_free(r, "plain", 3);
    Stats after = normalStats();
    EXPECT_EQ(after.blocks, before.blocks);
    EXPECT_EQ(after.frees, before.frees);
    EXPECT_EQ(log_.take(), "");
}

}  // namespace
