// The debug-mode record of one allocator's live blocks: 16384 buckets chosen
// by a hash of the block address, each holding one block record, with
// colliding records chained in overflow records taken from the C library's
// malloc. Also the allocator's counters: collisions, allocation and free
// calls, total and peak bytes, internal error state and seconds spent in the
// allocator. Sizes are bytes. Callers hold the heap mutex.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr int kHeapBuckets = 16384;
constexpr uint32_t kHeapBucketMask = kHeapBuckets - 1;
constexpr size_t kHeapSourceChars = 47;
constexpr size_t kHeapTableNameBytes = 20;

// The bucket of a block address.
unsigned zel_heap_bucket_of(const void* address);

// The address is kept as a full pointer so that 64-bit lookups are exact; the
// record is 64 bytes on a 32-bit build and 72 on a 64-bit one.
struct zelBlockRecord {
    void* address;
    uint32_t size;
    int32_t line;
    char source[kHeapSourceChars + 1];
    zelBlockRecord* overflow;
};

struct zelHeapTable {
    char name[kHeapTableNameBytes];
    bool named;
    zelBlockRecord buckets[kHeapBuckets];
    int collisions;
    int allocationCalls;
    int freeCalls;
    long totalSize;
    long peakSize;
    int errorState;
    double secondsInAllocator;

    // Clears and names the table the first time it is touched.
    void touch(const char* tableName);

    // `counted` false re-records a block moved by realloc without counting a call.
    void add(void* address, size_t size, const char* source, int line, bool counted);
    const zelBlockRecord* find(const void* address) const;
    bool remove(const void* address, bool counted);
};
