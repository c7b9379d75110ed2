// zelDynamicStore: a block allocator over one fixed arena whose size is a
// power of two, run as a buddy system. Every block is a power of two of at
// least 32 bytes and starts with a 16-byte header (order, free flag, bytes
// asked for); a block is split in halves until it fits a request, and a freed
// block merges with its free "buddy" half again and again. Requests the arena
// cannot hold are left to the caller (it passes them to the C library). Sizes
// are bytes. Not locked: callers hold the heap mutex.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zelVirtualRange.h"

class zelDynamicStore {
  public:
    zelDynamicStore(const char* name, size_t arenaBytes);

    bool owns(const void* block) const { return range_.contains(block); }
    void* allocate(size_t bytes);
    void release(void* block);
    // In place while the block's own size suffices, else moves; null (block kept) when full.
    void* resize(void* block, size_t bytes);
    size_t usableSize(const void* block) const;
    void noteFallback() { ++fallbacks_; }

    // Logs the report headed "ZEL-DYNAMIC-STORE ALLOCATOR REPORT" at level INFO.
    void report() const;

  private:
    struct Block {
        uint32_t tag;
        uint8_t order;
        uint8_t free;
        uint16_t unused;
        uint64_t requested;
        Block* next;  // free-list links, only while free
        Block* prev;
    };

    static constexpr int kMaxOrders = 64;

    Block* blockAt(size_t offset) const;
    void push(Block* b);
    void pop(Block* b);

    const char* name_;
    zelVirtualRange range_;
    int topOrder_ = 0;
    Block* freeLists_[kMaxOrders] = {};
    int freeCounts_[kMaxOrders] = {};
    size_t bytesInUse_ = 0;
    size_t peakBytesInUse_ = 0;
    size_t bytesRequested_ = 0;
    int blocksInUse_ = 0;
    int allocationCalls_ = 0;
    int freeCalls_ = 0;
    int fallbacks_ = 0;
};
