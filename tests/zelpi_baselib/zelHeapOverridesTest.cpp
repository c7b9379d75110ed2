// The tracked heap with an allocator installed: the arena allocator and the
// dynamic store serve blocks, and blocks stay with the allocator that made
// them after it is switched off, in debug mode and under several threads.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "LogCapture.h"
#include "zel_heap.h"

namespace {

// Each byte says which block and offset it belongs to.
unsigned char patternByte(unsigned id, size_t offset) {
    return static_cast<unsigned char>(id * 131u + offset * 7u + (offset >> 8));
}

void fill(void* p, unsigned id, size_t from, size_t to) {
    auto* bytes = static_cast<unsigned char*>(p);
    for (size_t i = from; i < to; ++i) bytes[i] = patternByte(id, i);
}

bool intact(const void* p, unsigned id, size_t size) {
    auto* bytes = static_cast<const unsigned char*>(p);
    for (size_t i = 0; i < size; ++i)
        if (bytes[i] != patternByte(id, i)) return false;
    return true;
}

struct Block {
    void* p;
    size_t size;
    unsigned id;
};

using OwnerTest = bool (*)(const void*);

// Mixed sizes from 1 byte to 2 MiB; allocate, grow, shrink and free at
// random, checking every block's bytes on each move and before each free.
class Stress {
  public:
    Stress(bool image, unsigned seed) : image_(image), seed_(seed) {}

    size_t nextSize() {
        unsigned r = next();
        switch (r % 8) {
            case 0:
            case 1:
            case 2:
                return 1 + next() % 64;
            case 3:
            case 4:
                return 64 + next() % 4032;
            case 5:
            case 6:
                return 4096 + next() % 300000;
            default:
                return (r % 40 == 7) ? (size_t(2) << 20) : 1 + next() % 1024;
        }
    }

    void run(int steps, OwnerTest owned, int* ownedCount) {
        for (int step = 0; step < steps; ++step) {
            unsigned op = next() % 10;
            if (live.empty() || op < 4) {
                Block b{nullptr, nextSize(), nextId_++};
                b.p = image_ ? zel_image_malloc(b.size, "stress", 1)
                             : zel_malloc(b.size, "stress", 1);
                ASSERT_NE(b.p, nullptr);
                ++allocations;
                if (owned && owned(b.p)) ++*ownedCount;
                fill(b.p, b.id, 0, b.size);
                live.push_back(b);
            } else if (op < 7) {
                Block& b = live[next() % live.size()];
                size_t size = nextSize();
                void* p = image_ ? zel_image_realloc(b.p, size, "stress", 2)
                                 : zel_realloc(b.p, size, "stress", 2);
                ASSERT_NE(p, nullptr);
                ASSERT_TRUE(intact(p, b.id, std::min(size, b.size))) << "realloc lost bytes";
                if (size > b.size) fill(p, b.id, b.size, size);
                b.p = p;
                b.size = size;
            } else {
                size_t i = next() % live.size();
                ASSERT_TRUE(intact(live[i].p, live[i].id, live[i].size)) << "block overwritten";
                release(live[i]);
                live[i] = live.back();
                live.pop_back();
            }
        }
    }

    void releaseAll() {
        for (Block& b : live) {
            EXPECT_TRUE(intact(b.p, b.id, b.size));
            release(b);
        }
        live.clear();
    }

    void release(Block& b) {
        if (image_)
            zel_image_free(b.p, "stress", 3);
        else
            zel_free(b.p, "stress", 3);
    }

    std::vector<Block> live;
    int allocations = 0;

  private:
    unsigned next() {
        seed_ = seed_ * 1664525u + 1013904223u;
        return seed_ >> 8;
    }
    bool image_;
    unsigned seed_;
    unsigned nextId_ = 1;
};

class HeapOverrides : public ::testing::Test {
  protected:
    HeapOverrides() { set_zel_heap_memory_enable(true); }
    ~HeapOverrides() override {
        end_use_lea_allocator_for_normal_allocs();
        end_use_lea_allocator_for_image_allocs();
        end_use_zelDynamicStore_for_normal_allocs();
        end_use_zelDynamicStore_for_image_allocs();
        set_zel_heap_memory_debug(false);
        set_zel_heap_memory_enable(false);
    }
};

TEST_F(HeapOverrides, ArenaAllocatorServesAndOutlivesItsInstallation) {
    void* early = zel_malloc(100, "early", 1);  // from the C library
    use_lea_allocator_for_normal_allocs();
    use_lea_allocator_for_image_allocs();
    EXPECT_FALSE(lea_allocator_owns_block(early));

    Stress normal(false, 1), image(true, 2);
    int inArena = 0;
    normal.run(3000, &lea_allocator_owns_block, &inArena);
    image.run(500, &lea_allocator_owns_block, &inArena);
    EXPECT_EQ(inArena, normal.allocations + image.allocations);

    // C-library blocks still go back to the C library, whatever is installed.
    early = zel_realloc(early, 200, "early", 2);
    EXPECT_FALSE(lea_allocator_owns_block(early));
    zel_free(early, "early", 3);

    end_use_lea_allocator_for_normal_allocs();
    end_use_lea_allocator_for_image_allocs();

    void* after = zel_malloc(64, "after", 1);
    EXPECT_FALSE(lea_allocator_owns_block(after));
    zel_free(after, "after", 2);
    // Arena blocks made before the switch back can still be resized and freed, even in plain mode.
    normal.run(200, nullptr, nullptr);
    set_zel_heap_memory_enable(false);
    normal.releaseAll();
    image.releaseAll();
}

TEST_F(HeapOverrides, DebugModeCountsBlocksOfAnOverride) {
    set_zel_heap_memory_debug(true);
    use_lea_allocator_for_normal_allocs();
    int blocks0, frees0;
    long total0, peak0;
    get_zel_heap_normal_memory_statistics(&blocks0, &frees0, &total0, &peak0);

    Stress stress(false, 3);
    stress.run(2000, nullptr, nullptr);
    long liveBytes = 0;
    for (const Block& b : stress.live) liveBytes += static_cast<long>(b.size);
    int blocks, frees;
    long total, peak;
    get_zel_heap_normal_memory_statistics(&blocks, &frees, &total, &peak);
    EXPECT_EQ(blocks, blocks0 + static_cast<int>(stress.live.size()));
    EXPECT_EQ(total, total0 + liveBytes);
    EXPECT_GE(peak, total);

    stress.releaseAll();
    get_zel_heap_normal_memory_statistics(&blocks, &frees, &total, &peak);
    EXPECT_EQ(blocks, blocks0);
    EXPECT_EQ(total, total0);
}

long reportedNumber(const std::string& report, const std::string& label) {
    size_t at = report.find(label);
    if (at == std::string::npos) return -1;
    return std::strtol(report.c_str() + at + label.size(), nullptr, 10);
}

TEST_F(HeapOverrides, DynamicStoreServesAndReports) {
    use_zelDynamicStore_for_normal_allocs();
    use_zelDynamicStore_for_image_allocs();
    LogCapture log;
    output_zelDynamicStore_normal_report();
    std::string before = log.take();
    ASSERT_EQ(before.rfind("(ZEL LIB) HH:MM:SS.ss INFO : ZEL-DYNAMIC-STORE ALLOCATOR REPORT\n", 0),
              0u)
        << before;
    long blocks0 = reportedNumber(before, "Blocks in use: ");
    long requested0 = reportedNumber(before, "Bytes requested in use: ");

    Stress normal(false, 4), image(true, 5);
    int inStore = 0;
    normal.run(3000, &zelDynamicStore_owns_block, &inStore);
    image.run(500, &zelDynamicStore_owns_block, &inStore);
    EXPECT_EQ(inStore, normal.allocations + image.allocations);

    long liveBytes = 0;
    for (const Block& b : normal.live) liveBytes += static_cast<long>(b.size);
    output_zelDynamicStore_normal_report();
    std::string during = log.take();
    EXPECT_EQ(reportedNumber(during, "Blocks in use: "),
              blocks0 + static_cast<long>(normal.live.size()));
    EXPECT_EQ(reportedNumber(during, "Bytes requested in use: "), requested0 + liveBytes);
    EXPECT_NE(during.find("END OF DYNAMIC STORE REPORT\n"), std::string::npos);

    end_use_zelDynamicStore_for_normal_allocs();
    normal.releaseAll();
    image.releaseAll();
    output_zelDynamicStore_normal_report();
    std::string after = log.take();
    EXPECT_EQ(reportedNumber(after, "Blocks in use: "), blocks0);
    EXPECT_EQ(reportedNumber(after, "Bytes requested in use: "), requested0);
}

TEST_F(HeapOverrides, ArenaAllocatorUnderSeveralThreads) {
    use_lea_allocator_for_normal_allocs();
    std::vector<std::thread> threads;
    std::vector<int> failures(4, 0);
    for (unsigned t = 0; t < 4; ++t)
        threads.emplace_back([t, &failures] {
            Stress stress(false, 100 + t);
            stress.run(1500, nullptr, nullptr);
            for (const Block& b : stress.live)
                if (!intact(b.p, b.id, b.size)) ++failures[t];
            stress.releaseAll();
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failures, std::vector<int>(4, 0));
}

}  // namespace
