#include "zelDynamicStore.h"

#include <cstring>

#include "zelMessageLog.h"

namespace {

constexpr size_t kHeaderBytes = 16;
constexpr int kMinOrder = 5;                // 32 bytes: header and free-list links
constexpr uint32_t kBlockTag = 0x5a454c44;  // "ZELD", marks a header the store wrote
// Free blocks from this order up give their pages back to the system.
constexpr int kDiscardOrder = 20;
constexpr size_t kMinimumArena = size_t(16) << 20;

int orderFor(size_t bytes) {
    int order = kMinOrder;
    while ((size_t(1) << order) < bytes) ++order;
    return order;
}

size_t largestPowerOfTwoIn(size_t bytes) {
    size_t p = 1;
    while (p <= bytes / 2) p *= 2;
    return p;
}

}  // namespace

zelDynamicStore::zelDynamicStore(const char* name, size_t arenaBytes)
    : name_(name), range_(largestPowerOfTwoIn(arenaBytes), kMinimumArena) {
    if (!range_.valid()) return;
    topOrder_ = orderFor(range_.size());
    Block* whole = blockAt(0);
    whole->tag = kBlockTag;
    whole->order = static_cast<uint8_t>(topOrder_);
    push(whole);
}

zelDynamicStore::Block* zelDynamicStore::blockAt(size_t offset) const {
    return reinterpret_cast<Block*>(range_.base() + offset);
}

void zelDynamicStore::push(Block* b) {
    b->free = 1;
    b->prev = nullptr;
    b->next = freeLists_[b->order];
    if (b->next) b->next->prev = b;
    freeLists_[b->order] = b;
    ++freeCounts_[b->order];
}

void zelDynamicStore::pop(Block* b) {
    if (b->prev)
        b->prev->next = b->next;
    else
        freeLists_[b->order] = b->next;
    if (b->next) b->next->prev = b->prev;
    b->free = 0;
    --freeCounts_[b->order];
}

void* zelDynamicStore::allocate(size_t bytes) {
    if (!range_.valid() || bytes > range_.size() - kHeaderBytes) return nullptr;
    int order = orderFor(bytes + kHeaderBytes);
    int found = order;
    while (found <= topOrder_ && !freeLists_[found]) ++found;
    if (found > topOrder_) return nullptr;
    Block* b = freeLists_[found];
    pop(b);
    // Halve until the block fits; each upper half becomes a free buddy.
    while (found > order) {
        --found;
        auto* half = reinterpret_cast<Block*>(reinterpret_cast<char*>(b) + (size_t(1) << found));
        half->tag = kBlockTag;
        half->order = static_cast<uint8_t>(found);
        push(half);
    }
    b->tag = kBlockTag;
    b->order = static_cast<uint8_t>(order);
    b->requested = bytes;
    ++blocksInUse_;
    ++allocationCalls_;
    bytesInUse_ += size_t(1) << order;
    bytesRequested_ += bytes;
    if (bytesInUse_ > peakBytesInUse_) peakBytesInUse_ = bytesInUse_;
    return reinterpret_cast<char*>(b) + kHeaderBytes;
}

void zelDynamicStore::release(void* block) {
    if (!block) return;
    auto* b = reinterpret_cast<Block*>(static_cast<char*>(block) - kHeaderBytes);
    int order = b->order;
    --blocksInUse_;
    ++freeCalls_;
    bytesInUse_ -= size_t(1) << order;
    bytesRequested_ -= b->requested;
    size_t offset = static_cast<size_t>(reinterpret_cast<char*>(b) - range_.base());
    // The buddy's header is always one the store wrote: the arena is fully split into blocks.
    while (order < topOrder_) {
        Block* buddy = blockAt(offset ^ (size_t(1) << order));
        if (!buddy->free || buddy->order != order) break;
        pop(buddy);
        offset &= ~(size_t(1) << order);
        ++order;
    }
    Block* merged = blockAt(offset);
    merged->tag = kBlockTag;
    merged->order = static_cast<uint8_t>(order);
    push(merged);
    if (order >= kDiscardOrder)
        zelVirtualRange::discardPages(reinterpret_cast<char*>(merged) + sizeof(Block),
                                      reinterpret_cast<char*>(merged) + (size_t(1) << order));
}

void* zelDynamicStore::resize(void* block, size_t bytes) {
    if (!block) return allocate(bytes);
    if (bytes == 0) {
        release(block);
        return nullptr;
    }
    auto* b = reinterpret_cast<Block*>(static_cast<char*>(block) - kHeaderBytes);
    if (bytes <= usableSize(block)) {
        bytesRequested_ += bytes;
        bytesRequested_ -= b->requested;
        b->requested = bytes;
        return block;
    }
    void* moved = allocate(bytes);
    if (!moved) return nullptr;
    memcpy(moved, block, b->requested);
    release(block);
    --allocationCalls_;  // a move is not a new allocation
    --freeCalls_;
    return moved;
}

size_t zelDynamicStore::usableSize(const void* block) const {
    auto* b = reinterpret_cast<const Block*>(static_cast<const char*>(block) - kHeaderBytes);
    return (size_t(1) << b->order) - kHeaderBytes;
}

void zelDynamicStore::report() const {
    zel_notify(kZelLevelInfo, "ZEL-DYNAMIC-STORE ALLOCATOR REPORT\n");
    zel_msgcont("Store: %s\n", name_);
    zel_msgcont("Arena size: %ld\n", static_cast<long>(range_.size()));
    zel_msgcont("Allocation calls: %d\n", allocationCalls_);
    zel_msgcont("Free calls: %d\n", freeCalls_);
    zel_msgcont("Blocks in use: %d\n", blocksInUse_);
    zel_msgcont("Bytes requested in use: %ld\n", static_cast<long>(bytesRequested_));
    zel_msgcont("Bytes in use: %ld\n", static_cast<long>(bytesInUse_));
    zel_msgcont("Peak bytes in use: %ld\n", static_cast<long>(peakBytesInUse_));
    zel_msgcont("Requests passed to the C library: %d\n", fallbacks_);
    for (int order = kMinOrder; order <= topOrder_; ++order)
        if (freeCounts_[order] > 0)
            zel_msgcont("Free blocks of %ld bytes: %d\n", static_cast<long>(size_t(1) << order),
                        freeCounts_[order]);
    zel_msgcont("END OF DYNAMIC STORE REPORT\n");
}
