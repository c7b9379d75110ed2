#include "zelArenaAllocator.h"

#include <cstring>

namespace {

constexpr size_t kAlignment = 16;
constexpr size_t kHeaderBytes = 16;  // prevSize and head; the payload follows
constexpr size_t kMinChunk = 32;     // room for the bin links when free
constexpr size_t kSmallLimit = 1024;
constexpr int kSmallLimitLog2 = 10;
constexpr size_t kInUse = 1;
constexpr size_t kPrevInUse = 2;
constexpr size_t kFlags = kAlignment - 1;
// Free chunks at least this long give their pages back to the system.
constexpr size_t kDiscardBytes = size_t(1) << 20;
constexpr size_t kMinimumReserve = size_t(64) << 20;
// Chunks looked at in a bin above the request's; bounds the time of a search.
constexpr int kLaterBinScan = 16;

}  // namespace

// The range is reserved for good: blocks made from it may be freed after the allocator is
// uninstalled.
zelArenaAllocator::zelArenaAllocator(size_t reserveBytes)
    : range_(reserveBytes, kMinimumReserve),
      top_(range_.base()),
      end_(range_.base() + range_.size()),
      highWater_(range_.base()) {}

size_t zelArenaAllocator::sizeOf(const Chunk* c) { return c->head & ~kFlags; }

size_t zelArenaAllocator::chunkSizeFor(size_t bytes) {
    size_t size = (bytes + kHeaderBytes + kAlignment - 1) & ~(kAlignment - 1);
    return size < kMinChunk ? kMinChunk : size;
}

int zelArenaAllocator::binOf(size_t chunkSize) {
    if (chunkSize < kSmallLimit) return static_cast<int>(chunkSize / kAlignment);
    int log2 = 63 - __builtin_clzll(chunkSize);
    int quarter = static_cast<int>((chunkSize >> (log2 - 2)) & 3);
    return kSmallBins + (log2 - kSmallLimitLog2) * kLargeBinsPerDoubling + quarter;
}

void zelArenaAllocator::insert(Chunk* c) {
    int bin = binOf(sizeOf(c));
    c->prev = nullptr;
    c->next = bins_[bin];
    if (c->next) c->next->prev = c;
    bins_[bin] = c;
    nonEmpty_[bin / 64] |= uint64_t(1) << (bin % 64);
}

void zelArenaAllocator::unlink(Chunk* c) {
    int bin = binOf(sizeOf(c));
    if (c->prev)
        c->prev->next = c->next;
    else
        bins_[bin] = c->next;
    if (c->next) c->next->prev = c->prev;
    if (!bins_[bin]) nonEmpty_[bin / 64] &= ~(uint64_t(1) << (bin % 64));
}

int zelArenaAllocator::nextNonEmptyBin(int from) const {
    for (int word = from / 64; word < kBitmapWords; ++word) {
        uint64_t bits = nonEmpty_[word];
        if (word == from / 64) bits &= ~uint64_t(0) << (from % 64);
        if (bits) return word * 64 + __builtin_ctzll(bits);
    }
    return -1;
}

// Best fit in the request's own bin; any chunk of a later bin is big enough,
// and the smallest of its first few is taken. Small bins hold one size only.
zelArenaAllocator::Chunk* zelArenaAllocator::takeFit(size_t need) {
    int bin = binOf(need);
    Chunk* best = nullptr;
    if (bin < kSmallBins) {
        best = bins_[bin];
    } else {
        for (Chunk* c = bins_[bin]; c; c = c->next) {
            if (sizeOf(c) >= need && (!best || sizeOf(c) < sizeOf(best))) best = c;
            if (best && sizeOf(best) == need) break;
        }
    }
    if (!best) {
        int later = nextNonEmptyBin(bin + 1);
        if (later < 0) return nullptr;
        int looked = 0;
        for (Chunk* c = bins_[later]; c && looked < kLaterBinScan; c = c->next, ++looked)
            if (!best || sizeOf(c) < sizeOf(best)) best = c;
    }
    unlink(best);
    return best;
}

void zelArenaAllocator::markInUse(Chunk* c) {
    c->head |= kInUse;
    char* next = reinterpret_cast<char*>(c) + sizeOf(c);
    if (next != top_) reinterpret_cast<Chunk*>(next)->head |= kPrevInUse;
    ++blocksInUse_;
    bytesInUse_ += sizeOf(c);
}

// Cuts an in-use chunk down to `need` and frees the rest, which merges with what follows.
void zelArenaAllocator::split(Chunk* c, size_t need) {
    size_t size = sizeOf(c);
    if (size - need < kMinChunk) return;
    auto* rest = reinterpret_cast<Chunk*>(reinterpret_cast<char*>(c) + need);
    rest->head = (size - need) | kInUse | kPrevInUse;
    c->head = need | (c->head & kFlags);
    ++blocksInUse_;
    releaseChunk(rest);
}

void zelArenaAllocator::setTop(char* top) {
    top_ = top;
    if (top_ > highWater_) highWater_ = top_;
}

void* zelArenaAllocator::allocate(size_t bytes) {
    if (!range_.valid() || bytes > range_.size() - kMinChunk) return nullptr;
    size_t need = chunkSizeFor(bytes);
    if (Chunk* c = takeFit(need)) {
        markInUse(c);
        split(c, need);
        return reinterpret_cast<char*>(c) + kHeaderBytes;
    }
    if (static_cast<size_t>(end_ - top_) < need) return nullptr;
    // The chunk before the top is always in use: a free one would have joined the top.
    auto* c = reinterpret_cast<Chunk*>(top_);
    c->head = need | kInUse | kPrevInUse;
    setTop(top_ + need);
    ++blocksInUse_;
    bytesInUse_ += need;
    return reinterpret_cast<char*>(c) + kHeaderBytes;
}

void zelArenaAllocator::releaseChunk(Chunk* c) {
    --blocksInUse_;
    bytesInUse_ -= sizeOf(c);
    char* start = reinterpret_cast<char*>(c);
    size_t size = sizeOf(c);
    if (!(c->head & kPrevInUse)) {
        size_t before = c->prevSize;
        start -= before;
        unlink(reinterpret_cast<Chunk*>(start));
        size += before;
    }
    char* next = start + size;
    if (next != top_) {
        auto* n = reinterpret_cast<Chunk*>(next);
        if (!(n->head & kInUse)) {
            unlink(n);
            size += sizeOf(n);
            next = start + size;
        }
    }
    if (next == top_) {
        top_ = start;
        if (static_cast<size_t>(highWater_ - top_) >= kDiscardBytes) {
            zelVirtualRange::discardPages(top_, highWater_);
            highWater_ = top_;
        }
        return;
    }
    auto* freed = reinterpret_cast<Chunk*>(start);
    freed->head = size | kPrevInUse;  // two free chunks never touch
    auto* after = reinterpret_cast<Chunk*>(next);
    after->prevSize = size;
    after->head &= ~kPrevInUse;
    insert(freed);
    if (size >= kDiscardBytes) zelVirtualRange::discardPages(start + sizeof(Chunk), next);
}

void zelArenaAllocator::release(void* block) {
    if (!block) return;
    releaseChunk(reinterpret_cast<Chunk*>(static_cast<char*>(block) - kHeaderBytes));
}

void* zelArenaAllocator::resize(void* block, size_t bytes) {
    if (!block) return allocate(bytes);
    if (bytes == 0) {
        release(block);
        return nullptr;
    }
    if (bytes > range_.size() - kMinChunk) return nullptr;
    auto* c = reinterpret_cast<Chunk*>(static_cast<char*>(block) - kHeaderBytes);
    size_t size = sizeOf(c);
    size_t need = chunkSizeFor(bytes);
    if (need <= size) {
        split(c, need);
        return block;
    }
    char* next = reinterpret_cast<char*>(c) + size;
    if (next == top_) {
        if (static_cast<size_t>(end_ - reinterpret_cast<char*>(c)) >= need) {
            c->head = need | (c->head & kFlags);
            bytesInUse_ += need - size;
            setTop(reinterpret_cast<char*>(c) + need);
            return block;
        }
    } else {
        auto* n = reinterpret_cast<Chunk*>(next);
        size_t joined = size + sizeOf(n);
        if (!(n->head & kInUse) && joined >= need) {
            unlink(n);
            bytesInUse_ += sizeOf(n);
            c->head = joined | (c->head & kFlags);
            char* after = reinterpret_cast<char*>(c) + joined;
            if (after != top_) reinterpret_cast<Chunk*>(after)->head |= kPrevInUse;
            split(c, need);
            return block;
        }
    }
    void* moved = allocate(bytes);
    if (!moved) return nullptr;
    memcpy(moved, block, size - kHeaderBytes);
    release(block);
    return moved;
}

size_t zelArenaAllocator::usableSize(const void* block) const {
    return sizeOf(reinterpret_cast<const Chunk*>(static_cast<const char*>(block) - kHeaderBytes)) -
           kHeaderBytes;
}

zelArenaAllocator::Statistics zelArenaAllocator::statistics() const {
    Statistics s = {};
    s.reservedBytes = range_.size();
    s.topOffset = static_cast<size_t>(top_ - range_.base());
    s.bytesInUse = bytesInUse_;
    s.blocksInUse = blocksInUse_;
    s.fallbacks = fallbacks_;
    for (const Chunk* bin : bins_)
        for (const Chunk* c = bin; c; c = c->next) {
            s.freeBytes += sizeOf(c);
            ++s.freeChunks;
        }
    return s;
}
