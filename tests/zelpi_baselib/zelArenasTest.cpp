// The two ready-made allocators of the runtime heap: the arena allocator
// (neighbours merge, the top grows and shrinks in place) and the dynamic
// store (power-of-two buddies split and merge, growing moves the block).
#include <gtest/gtest.h>

#include "zelArenaAllocator.h"
#include "zelDynamicStore.h"

namespace {

constexpr size_t kArenaBytes = size_t(64) << 20;

// Chunks are the payload plus a 16-byte tag, rounded up to 16 bytes.
TEST(ArenaAllocator, FreedNeighboursMergeAndAreReused) {
    zelArenaAllocator arena(kArenaBytes);
    auto* a = static_cast<char*>(arena.allocate(1000));  // 1024-byte chunks
    auto* b = static_cast<char*>(arena.allocate(1000));
    auto* c = static_cast<char*>(arena.allocate(1000));
    ASSERT_TRUE(arena.owns(a));
    EXPECT_EQ(b, a + 1024);
    EXPECT_EQ(c, b + 1024);
    EXPECT_EQ(arena.usableSize(a), 1008u);

    // a and b merge into 2048 bytes: 2016 for the request, a 32-byte chunk left over.
    arena.release(a);
    arena.release(b);
    EXPECT_EQ(arena.allocate(2000), a);
    zelArenaAllocator::Statistics s = arena.statistics();
    EXPECT_EQ(s.blocksInUse, 2);
    EXPECT_EQ(s.bytesInUse, 2016u + 1024u);
    EXPECT_EQ(s.freeChunks, 1);
    EXPECT_EQ(s.freeBytes, 32u);

    // c merges with the leftover and the top, so the top starts right after a.
    arena.release(c);
    EXPECT_EQ(arena.statistics().freeChunks, 0);
    auto* d = static_cast<char*>(arena.allocate(100));
    EXPECT_EQ(d, a + 2016);

    // At the top a block grows in place; shrinking gives the tail back.
    EXPECT_EQ(arena.resize(d, 5000), d);
    EXPECT_EQ(arena.statistics().topOffset, 2016u + 5024u);
    EXPECT_EQ(arena.resize(d, 10), d);
    EXPECT_EQ(arena.allocate(10), d + 32);

    int local = 0;
    EXPECT_FALSE(arena.owns(&local));
}

// Blocks are powers of two holding a 16-byte header and the request.
TEST(DynamicStore, BuddiesSplitAndMerge) {
    zelDynamicStore store("TEST", kArenaBytes);
    auto* a = static_cast<char*>(store.allocate(100));  // 128-byte blocks
    auto* b = static_cast<char*>(store.allocate(100));
    ASSERT_TRUE(store.owns(a));
    EXPECT_EQ(b, a + 128);
    EXPECT_EQ(store.usableSize(a), 112u);
    auto* c = static_cast<char*>(store.allocate(200));  // 256: the other half of the first 512
    EXPECT_EQ(c, a + 256);

    // a and b merge into 256 bytes again, which fits a 240-byte request in place of a.
    store.release(a);
    store.release(b);
    EXPECT_EQ(store.allocate(240), a);
    // Growing past the block moves it; the contents come along.
    c[0] = 'x';
    c[199] = 'y';
    auto* moved = static_cast<char*>(store.resize(c, 300));
    EXPECT_NE(moved, c);
    EXPECT_EQ(moved[0], 'x');
    EXPECT_EQ(moved[199], 'y');
    EXPECT_EQ(store.resize(moved, 400), moved);  // still within its 512 bytes

    EXPECT_EQ(store.allocate(kArenaBytes), nullptr);  // larger than the arena: left to the caller
}

}  // namespace
