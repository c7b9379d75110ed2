// Turns a ready-made allocator (zelArenaAllocator, zelDynamicStore) into the
// heap's override functions and its owner record. A request the allocator
// cannot hold goes to the C library instead; a block the allocator did not
// make goes back to whichever allocator did. Callers hold the heap mutex.
#pragma once

#include <cstdlib>
#include <cstring>

#include "zelHeapOwners.h"

template <class Allocator>
struct zelOverrideAdapter {
    static Allocator* of(void* context) { return static_cast<Allocator*>(context); }

    static void* allocate(void* context, size_t size) {
        if (void* block = of(context)->allocate(size)) return block;
        of(context)->noteFallback();
        return malloc(size);
    }

    static void* resize(void* context, void* block, size_t size) {
        Allocator* allocator = of(context);
        if (!block) return allocate(context, size);
        if (!allocator->owns(block)) return zel_heap_resize_owned(block, size);
        if (size == 0) {
            allocator->release(block);
            return nullptr;
        }
        if (void* moved = allocator->resize(block, size)) return moved;
        // Full: the block moves out to the C library.
        void* moved = malloc(size);
        if (!moved) return nullptr;
        allocator->noteFallback();
        size_t kept = allocator->usableSize(block);
        memcpy(moved, block, kept < size ? kept : size);
        allocator->release(block);
        return moved;
    }

    static char* duplicate(void* context, const char* text) {
        if (!text) return nullptr;
        size_t bytes = strlen(text) + 1;
        auto* copy = static_cast<char*>(allocate(context, bytes));
        if (copy) memcpy(copy, text, bytes);
        return copy;
    }

    static void release(void* context, void* block) {
        if (!block) return;
        if (of(context)->owns(block))
            of(context)->release(block);
        else
            zel_heap_release_owned(block);
    }

    static bool owns(const void* context, const void* block) {
        return static_cast<const Allocator*>(context)->owns(block);
    }

    static zelHeapOwner owner(Allocator* allocator) {
        return zelHeapOwner{allocator, &owns, &release, &resize};
    }
};
