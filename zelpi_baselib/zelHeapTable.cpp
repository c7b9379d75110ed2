#include "zelHeapTable.h"

#include <cstdlib>
#include <cstring>

#include "zelMessageLog.h"

namespace {

constexpr uint32_t kHashRoundMultiplier = 1025;  // h + (h << 10)
constexpr uint32_t kHashFinalMultiplier = 9;     // h + (h << 3)
constexpr int kAddressBytesHashed = 4;

void copySource(char* target, const char* source) {
    if (!source) source = "";
    size_t length = strlen(source);
    if (length > kHeapSourceChars) source += length - kHeapSourceChars;  // keep the last characters
    strncpy(target, source, kHeapSourceChars);
    target[kHeapSourceChars] = '\0';
}

}  // namespace

// One-at-a-time hash of the address's four lowest bytes, lowest first. The
// final "h += h << 15" of that hash is deliberately left out.
unsigned zel_heap_bucket_of(const void* address) {
    uint32_t low = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(address));
    uint32_t h = 0;
    for (int i = 0; i < kAddressBytesHashed; ++i) {
        h = (h + ((low >> (8 * i)) & 0xffu)) * kHashRoundMultiplier;
        h ^= h >> 6;
    }
    h *= kHashFinalMultiplier;
    h ^= h >> 11;
    return h & kHeapBucketMask;
}

void zelHeapTable::touch(const char* tableName) {
    if (named) return;
    memset(this, 0, sizeof *this);
    strncpy(name, tableName, kHeapTableNameBytes - 1);
    named = true;
}

void zelHeapTable::add(void* address, size_t size, const char* source, int line, bool counted) {
    zelBlockRecord& bucket = buckets[zel_heap_bucket_of(address)];
    if (bucket.address) {
        ++collisions;
        auto* moved = static_cast<zelBlockRecord*>(malloc(sizeof(zelBlockRecord)));
        if (!moved) {
            zel_notify(kZelLevelError,
                       "ZEL-HM-DEBUG: INTERNAL ERROR: Cannot allocate space for info node.\n");
            errorState = 1;
            return;
        }
        *moved = bucket;
        bucket.overflow = moved;
    } else {
        bucket.overflow = nullptr;
    }
    bucket.address = address;
    bucket.size = static_cast<uint32_t>(size);
    bucket.line = line;
    copySource(bucket.source, source);
    if (counted) ++allocationCalls;
    totalSize += bucket.size;
    if (totalSize > peakSize) peakSize = totalSize;
}

const zelBlockRecord* zelHeapTable::find(const void* address) const {
    if (!address) return nullptr;
    for (const zelBlockRecord* r = &buckets[zel_heap_bucket_of(address)]; r; r = r->overflow)
        if (r->address == address) return r;
    return nullptr;
}

bool zelHeapTable::remove(const void* address, bool counted) {
    if (!address) return false;
    zelBlockRecord& bucket = buckets[zel_heap_bucket_of(address)];
    zelBlockRecord* previous = nullptr;
    for (zelBlockRecord* r = &bucket; r; previous = r, r = r->overflow) {
        if (r->address != address) continue;
        totalSize -= r->size;
        if (counted) ++freeCalls;
        if (r == &bucket) {
            // The newest chained record is promoted into the bucket.
            zelBlockRecord* next = bucket.overflow;
            if (next) {
                bucket = *next;
                free(next);
            } else {
                memset(&bucket, 0, sizeof bucket);
            }
        } else {
            previous->overflow = r->overflow;
            free(r);
        }
        return true;
    }
    return false;
}
