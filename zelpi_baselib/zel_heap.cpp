// Public entry points of the tracked heap: the switches, the normal and the
// image allocator with their C-linkage forms, and the override setters.
#include "zel_heap.h"

#include <atomic>
#include <cstring>

#include "zelTrackedHeap.h"

namespace {

std::atomic<bool> g_enable{false};
std::atomic<bool> g_debug{false};
std::atomic<bool> g_trace{false};

// The two spaces before the bracket of the normal realloc text are the system's own.
constexpr zelHeapMessages kNormalMessages = {
    "ZEL-HM-DEBUG: zel_malloc( size=0 ) attempted! [%s(%d)]\n",
    "ZEL-HM-DEBUG: zel_realloc( size=0 ) attempted! [%s(%d)]\n",
    "ZEL-HM-DEBUG: zel_realloc(%p,%d) attempted - but %p is not allocated!  [%s(%d)]\n",
    "ZEL-HM-DEBUG: zel_strdup( NULL ) attempted! [%s(%d)]\n",
    "ZEL-HM-DEBUG: zel_free( NULL ) attempted! [%s(%d)]\n",
    "ZEL-HM-DEBUG: zel_free(%p) attempted - but %p is not allocated! [%s(%d)]\n",
    "ZEL-HM-TRACE: zel_malloc(%d) ret (%p) at [%s(%d)]\n",
    "ZEL-HM-TRACE: zel_realloc(%p,%d) ret (%p) at [%s(%d)]\n",
    "ZEL-HM-TRACE: zel_strdup(%p) ret (%p) at [%s(%d)]\n",
    "ZEL-HM-TRACE: zel_free(%p) at [%s(%d)]\n",
    "ZEL-HM-TRACE: zel_free(%p) at [%s(%d)].\n",
};

constexpr zelHeapMessages kImageMessages = {
    "ZEL-HM-DEBUG: zel_image_malloc( size=0 ) attempted! [%s(%d)]\n",
    "ZEL-HM-DEBUG: zel_image_realloc( size=0 ) attempted! [%s(%d)]\n",
    "ZEL-HM-DEBUG: zel_image_realloc(%p,%d) attempted - but %p is not allocated! [%s(%d)]\n",
    "",
    "ZEL-HM-DEBUG: zel_image_free( NULL ) attempted! [%s(%d)]\n",
    "ZEL-HM-DEBUG: zel_image_free(%p) attempted - but %p is not allocated! [%s(%d)]\n",
    "ZEL-HM-TRACE: zel_image_malloc(%d) ret (%p) at [%s(%d)]\n",
    "ZEL-HM-TRACE: zel_image_realloc(%p,%d) ret (%p) at [%s(%d)]\n",
    "",
    "ZEL-HM-TRACE: zel_image_free(%p) at [%s(%d)]\n",
    "ZEL-HM-TRACE: zel_image_free(%p) at [%s(%d)].\n",
};

zelHeapTable g_normalTable;
zelHeapTable g_imageTable;

zelTrackedHeap g_normalHeap("NORMAL", &kNormalMessages, &g_normalTable);
zelTrackedHeap g_imageHeap("IMAGE", &kImageMessages, &g_imageTable);

}  // namespace

bool zel_heap_enabled() { return g_enable.load(std::memory_order_relaxed); }
bool zel_heap_debug() { return g_debug.load(std::memory_order_relaxed); }
bool zel_heap_trace() { return g_trace.load(std::memory_order_relaxed); }

void set_zel_heap_memory_enable(bool on) { g_enable.store(on); }
void set_zel_heap_memory_debug(bool on) { g_debug.store(on); }
void set_zel_heap_memory_trace(bool on) { g_trace.store(on); }

zelTrackedHeap& zel_normal_heap() { return g_normalHeap; }
zelTrackedHeap& zel_image_heap() { return g_imageHeap; }

void* zel_malloc(size_t size, const char* file, int line) {
    return g_normalHeap.allocate(size, file, line);
}

void* zel_realloc(void* block, size_t size, const char* file, int line) {
    return g_normalHeap.reallocate(block, size, file, line);
}

// count × size through zel_malloc, cleared; a product that overflows fails.
void* zel_calloc(size_t count, size_t size, const char* file, int line) {
    if (size != 0 && count > static_cast<size_t>(-1) / size) return nullptr;
    size_t bytes = count * size;
    void* block = zel_malloc(bytes, file, line);
    if (block) memset(block, 0, bytes);
    return block;
}

char* zel_strdup(const char* text, const char* file, int line) {
    return g_normalHeap.duplicate(text, file, line);
}

void zel_free(void* block, const char* file, int line) { g_normalHeap.release(block, file, line); }

void* zel_image_malloc(size_t size, const char* file, int line) {
    return g_imageHeap.allocate(size, file, line);
}

void* zel_image_realloc(void* block, size_t size, const char* file, int line) {
    return g_imageHeap.reallocate(block, size, file, line);
}

void zel_image_free(void* block, const char* file, int line) {
    g_imageHeap.release(block, file, line);
}

void set_zel_heap_normal_memory_overrides(void* context, zel_override_malloc_fn m,
                                          zel_override_realloc_fn r, zel_override_strdup_fn s,
                                          zel_override_free_fn f) {
    g_normalHeap.setOverride(zelHeapOverride{context, m, r, s, f});
}

void set_zel_heap_image_memory_overrides(void* context, zel_override_malloc_fn m,
                                         zel_override_realloc_fn r, zel_override_free_fn f) {
    g_imageHeap.setOverride(zelHeapOverride{context, m, r, nullptr, f});
}

extern "C" {
void* zel_malloc_c(size_t size, const char* file, int line) { return zel_malloc(size, file, line); }
void* zel_realloc_c(void* block, size_t size, const char* file, int line) {
    return zel_realloc(block, size, file, line);
}
void* zel_calloc_c(size_t count, size_t size, const char* file, int line) {
    return zel_calloc(count, size, file, line);
}
char* zel_strdup_c(const char* text, const char* file, int line) {
    return zel_strdup(text, file, line);
}
void zel_free_c(void* block, const char* file, int line) { zel_free(block, file, line); }
void* zel_image_malloc_c(size_t size, const char* file, int line) {
    return zel_image_malloc(size, file, line);
}
void* zel_image_realloc_c(void* block, size_t size, const char* file, int line) {
    return zel_image_realloc(block, size, file, line);
}
void zel_image_free_c(void* block, const char* file, int line) {
    zel_image_free(block, file, line);
}
}
