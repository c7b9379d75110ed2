#include "zelHeapOwners.h"

#include <atomic>
#include <cstdlib>

namespace {

// Two ready-made allocators, one instance each for the normal and the image heap.
constexpr int kMaxOwners = 8;

zelHeapOwner g_owners[kMaxOwners];
std::atomic<int> g_ownerCount{0};

}  // namespace

void zel_heap_register_owner(const zelHeapOwner& owner) {
    int count = g_ownerCount.load(std::memory_order_relaxed);
    if (count >= kMaxOwners) return;
    g_owners[count] = owner;
    // Entries are complete before the count that publishes them.
    g_ownerCount.store(count + 1, std::memory_order_release);
}

bool zel_heap_has_owners() { return g_ownerCount.load(std::memory_order_acquire) > 0; }

const zelHeapOwner* zel_heap_owner_of(const void* block) {
    if (!block) return nullptr;
    int count = g_ownerCount.load(std::memory_order_acquire);
    for (int i = 0; i < count; ++i)
        if (g_owners[i].owns(g_owners[i].context, block)) return &g_owners[i];
    return nullptr;
}

void zel_heap_release_owned(void* block) {
    if (const zelHeapOwner* owner = zel_heap_owner_of(block))
        owner->release(owner->context, block);
    else
        free(block);
}

void* zel_heap_resize_owned(void* block, size_t size) {
    if (const zelHeapOwner* owner = zel_heap_owner_of(block))
        return owner->resize(owner->context, block, size);
    return realloc(block, size);
}
