// Which allocator made a block. The ready-made allocators register their
// address ranges here once and stay alive for the life of the process, so a
// block is always returned to the allocator that made it, whatever override
// is installed when it is freed or resized; a block no registered allocator
// owns belongs to the C library. Callers of the release and resize functions
// hold the heap mutex.
#pragma once

#include <cstddef>

struct zelHeapOwner {
    void* context;
    bool (*owns)(const void* context, const void* block);
    void (*release)(void* context, void* block);
    void* (*resize)(void* context, void* block, size_t size);
};

// The registry keeps its own copy; registration is rare and done under the heap mutex.
void zel_heap_register_owner(const zelHeapOwner& owner);
bool zel_heap_has_owners();
const zelHeapOwner* zel_heap_owner_of(const void* block);

// Release or resize through the owner, or the C library.
void zel_heap_release_owned(void* block);
void* zel_heap_resize_owned(void* block, size_t size);
