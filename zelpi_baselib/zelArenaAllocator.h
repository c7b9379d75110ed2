// A general-purpose allocator in the manner of Doug Lea's malloc, carving
// chunks from one large reserved address range. Every chunk starts with a
// boundary tag (its size, whether it and the chunk before it are in use; a
// free chunk also leaves its size at the start of the next chunk) so that a
// freed chunk merges with free neighbours at once. Free chunks wait in bins:
// one per 16-byte size below 1 KiB, four per power of two above. A request
// takes the best fit in its own bin, else the smallest chunk of the next
// non-empty bin, else it extends the untouched top of the range. Payloads
// are 16-byte aligned; sizes are bytes. Not locked: callers hold the heap
// mutex.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zelVirtualRange.h"

class zelArenaAllocator {
  public:
    explicit zelArenaAllocator(size_t reserveBytes);

    bool owns(const void* block) const { return range_.contains(block); }
    // Null when the range is exhausted (or was never obtained).
    void* allocate(size_t bytes);
    void release(void* block);
    // Grows or shrinks in place when it can, else moves; null (block kept) when it cannot.
    void* resize(void* block, size_t bytes);
    size_t usableSize(const void* block) const;

    // Requests the caller had to pass on to the C library.
    void noteFallback() { ++fallbacks_; }

    struct Statistics {
        size_t reservedBytes;
        size_t topOffset;  // bytes of the range ever carved
        size_t bytesInUse;
        size_t freeBytes;  // in bins, not counting the top
        int blocksInUse;
        int freeChunks;
        int fallbacks;
    };
    Statistics statistics() const;

  private:
    struct Chunk {
        size_t prevSize;  // valid only while the chunk before is free
        size_t head;      // size | flags
        Chunk* next;      // bin links, only while free
        Chunk* prev;
    };

    static constexpr int kSmallBins = 64;
    static constexpr int kLargeBinsPerDoubling = 4;
    static constexpr int kBins = kSmallBins + kLargeBinsPerDoubling * 54;
    static constexpr int kBitmapWords = (kBins + 63) / 64;

    static size_t sizeOf(const Chunk* c);
    static size_t chunkSizeFor(size_t bytes);
    static int binOf(size_t chunkSize);

    void insert(Chunk* c);
    void unlink(Chunk* c);
    int nextNonEmptyBin(int from) const;
    Chunk* takeFit(size_t need);
    void markInUse(Chunk* c);
    void split(Chunk* c, size_t need);
    void releaseChunk(Chunk* c);
    void setTop(char* top);

    zelVirtualRange range_;
    char* top_;
    char* end_;
    char* highWater_;
    Chunk* bins_[kBins] = {};
    uint64_t nonEmpty_[kBitmapWords] = {};
    size_t bytesInUse_ = 0;
    int blocksInUse_ = 0;
    int fallbacks_ = 0;
};
