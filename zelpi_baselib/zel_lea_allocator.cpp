// The arena allocator as an override of the normal or the image heap. Each
// heap gets its own arena, made on first use and kept for good so that its
// blocks can still be freed after the override is ended.
#include <atomic>
#include <initializer_list>

#include "zelArenaAllocator.h"
#include "zelHeapMutex.h"
#include "zelOverrideAdapter.h"
#include "zelTrackedHeap.h"

namespace {

constexpr size_t kNormalArenaReserve = size_t(32) << 30;
constexpr size_t kImageArenaReserve = size_t(64) << 30;

using Adapter = zelOverrideAdapter<zelArenaAllocator>;

std::atomic<zelArenaAllocator*> g_normalArena{nullptr};
std::atomic<zelArenaAllocator*> g_imageArena{nullptr};

zelArenaAllocator* arenaFor(std::atomic<zelArenaAllocator*>& slot, size_t reserve) {
    zelHeapLock lock;
    zelArenaAllocator* arena = slot.load();
    if (!arena) {
        arena = new zelArenaAllocator(reserve);
        zel_heap_register_owner(Adapter::owner(arena));
        slot.store(arena);
    }
    return arena;
}

void endUse(zelTrackedHeap& heap, zelArenaAllocator* arena) {
    zelHeapLock lock;
    if (arena && heap.overrideContext() == arena) heap.setOverride(zelHeapOverride{});
}

}  // namespace

void use_lea_allocator_for_normal_allocs() {
    zelArenaAllocator* arena = arenaFor(g_normalArena, kNormalArenaReserve);
    set_zel_heap_normal_memory_overrides(arena, &Adapter::allocate, &Adapter::resize,
                                         &Adapter::duplicate, &Adapter::release);
}

void use_lea_allocator_for_image_allocs() {
    zelArenaAllocator* arena = arenaFor(g_imageArena, kImageArenaReserve);
    set_zel_heap_image_memory_overrides(arena, &Adapter::allocate, &Adapter::resize,
                                        &Adapter::release);
}

void end_use_lea_allocator_for_normal_allocs() { endUse(zel_normal_heap(), g_normalArena.load()); }

void end_use_lea_allocator_for_image_allocs() { endUse(zel_image_heap(), g_imageArena.load()); }

bool lea_allocator_owns_block(const void* block) {
    for (const zelArenaAllocator* arena : {g_normalArena.load(), g_imageArena.load()})
        if (arena && arena->owns(block)) return true;
    return false;
}
