// One tracked allocator, the normal or the image heap. Each call goes to the
// C library, to an installed override, or (in debug mode) through the block
// table that counts, sizes and checks every block. Blocks made by a
// ready-made allocator always go back to it (see zelHeapOwners.h). Misuse is
// logged and ignored. Sizes are bytes; a line of 0 suppresses trace lines.
#pragma once

#include <atomic>
#include <cstddef>

#include "zelHeapTable.h"
#include "zel_heap.h"

// The message texts of one allocator, each a printf format.
struct zelHeapMessages {
    const char* mallocZero;      // file, line
    const char* reallocZero;     // file, line
    const char* reallocUnknown;  // block, size, block, file, line
    const char* strdupNull;      // file, line
    const char* freeNull;        // file, line
    const char* freeUnknown;     // block, block, file, line
    const char* traceMalloc;     // size, result, file, line
    const char* traceRealloc;    // block, size, result, file, line
    const char* traceStrdup;     // text, result, file, line
    const char* traceFree;       // block, file, line (override path)
    const char* traceFreeDebug;  // block, file, line (debug path)
};

struct zelHeapOverride {
    void* context;
    zel_override_malloc_fn malloc;
    zel_override_realloc_fn realloc;
    zel_override_strdup_fn strdup;  // may be null: malloc and copy
    zel_override_free_fn free;
};

bool zel_heap_enabled();
bool zel_heap_debug();
bool zel_heap_trace();

class zelTrackedHeap {
  public:
    constexpr zelTrackedHeap(const char* name, const zelHeapMessages* messages, zelHeapTable* table)
        : name_(name), messages_(messages), table_(table) {}

    void* allocate(size_t size, const char* file, int line);
    void* reallocate(void* block, size_t size, const char* file, int line);
    char* duplicate(const char* text, const char* file, int line);
    void release(void* block, const char* file, int line);

    // An override without malloc, realloc or free removes the override.
    void setOverride(const zelHeapOverride& override);
    // The installed override's context, or null; the caller holds the heap mutex.
    void* overrideContext() const;
    // The caller holds the heap mutex.
    zelHeapTable& table();

  private:
    void* allocateLocked(size_t size);
    void* resizeLocked(void* block, size_t size);
    char* duplicateLocked(const char* text);
    void releaseLocked(void* block);
    void releaseAnywhere(void* block);
    void* resizeAnywhere(void* block, size_t size);

    const char* name_;
    const zelHeapMessages* messages_;
    zelHeapTable* table_;
    zelHeapOverride override_ = {};
    std::atomic<bool> hasOverride_{false};
};

zelTrackedHeap& zel_normal_heap();
zelTrackedHeap& zel_image_heap();
