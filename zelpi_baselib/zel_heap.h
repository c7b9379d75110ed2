// Tracked heap: the normal allocator (zel_malloc and friends) and the image
// allocator for pixel memory (zel_image_malloc ...). Every call carries the
// caller's source name (a module tag such as "Library/ZelImage") and line.
// With the enable switch off every call goes straight to the C library; in
// debug mode every live block is recorded in a 16384-bucket table so that
// frees of unknown pointers are caught and reports can be printed. Sizes are
// bytes. The _c forms are the same operations for callers with C linkage.
#pragma once

#include <cstddef>

// Tag macros: ZEL_MALLOC("XfmZel", n) records the calling line.
#define ZEL_MALLOC(src, size) zel_malloc((size), (src), __LINE__)
#define ZEL_REALLOC(src, p, size) zel_realloc((p), (size), (src), __LINE__)
#define ZEL_CALLOC(src, n, size) zel_calloc((n), (size), (src), __LINE__)
#define ZEL_STRDUP(src, s) zel_strdup((s), (src), __LINE__)
#define ZEL_FREE(src, p) zel_free((p), (src), __LINE__)
#define ZEL_IMAGE_MALLOC(src, size) zel_image_malloc((size), (src), __LINE__)
#define ZEL_IMAGE_REALLOC(src, p, size) zel_image_realloc((p), (size), (src), __LINE__)
#define ZEL_IMAGE_FREE(src, p) zel_image_free((p), (src), __LINE__)

void* zel_malloc(size_t size, const char* file, int line);
void* zel_realloc(void* block, size_t size, const char* file, int line);
void* zel_calloc(size_t count, size_t size, const char* file, int line);
char* zel_strdup(const char* text, const char* file, int line);
void zel_free(void* block, const char* file, int line);

void* zel_image_malloc(size_t size, const char* file, int line);
void* zel_image_realloc(void* block, size_t size, const char* file, int line);
void zel_image_free(void* block, const char* file, int line);

extern "C" {
void* zel_malloc_c(size_t size, const char* file, int line);
void* zel_realloc_c(void* block, size_t size, const char* file, int line);
void* zel_calloc_c(size_t count, size_t size, const char* file, int line);
char* zel_strdup_c(const char* text, const char* file, int line);
void zel_free_c(void* block, const char* file, int line);
void* zel_image_malloc_c(size_t size, const char* file, int line);
void* zel_image_realloc_c(void* block, size_t size, const char* file, int line);
void zel_image_free_c(void* block, const char* file, int line);
}

// Process-wide switches, all off until set.
void set_zel_heap_memory_enable(bool on);
void set_zel_heap_memory_debug(bool on);
void set_zel_heap_memory_trace(bool on);

// Reports (logged through the message log) and statistics.
void output_zel_heap_normal_memory_report(bool dumpBlocks);
void output_zel_heap_image_memory_report(bool dumpBlocks);
// Live block count (allocation calls minus free calls), free calls, total size now, peak size.
void get_zel_heap_normal_memory_statistics(int* blocks, int* frees, long* total, long* peak);
void get_zel_heap_image_memory_statistics(int* blocks, int* frees, long* total, long* peak);

// Allocator overrides: each function takes the context first. Null functions remove the override.
typedef void* (*zel_override_malloc_fn)(void* context, size_t size);
typedef void* (*zel_override_realloc_fn)(void* context, void* block, size_t size);
typedef char* (*zel_override_strdup_fn)(void* context, const char* text);
typedef void (*zel_override_free_fn)(void* context, void* block);
void set_zel_heap_normal_memory_overrides(void* context, zel_override_malloc_fn m,
                                          zel_override_realloc_fn r, zel_override_strdup_fn s,
                                          zel_override_free_fn f);
void set_zel_heap_image_memory_overrides(void* context, zel_override_malloc_fn m,
                                         zel_override_realloc_fn r, zel_override_free_fn f);

// Ready-made overrides: an arena allocator and the fixed-arena zelDynamicStore.
void use_lea_allocator_for_normal_allocs();
void use_lea_allocator_for_image_allocs();
void end_use_lea_allocator_for_normal_allocs();
void end_use_lea_allocator_for_image_allocs();
void use_zelDynamicStore_for_normal_allocs();
void use_zelDynamicStore_for_image_allocs();
void end_use_zelDynamicStore_for_normal_allocs();
void end_use_zelDynamicStore_for_image_allocs();
// Both ready-made allocators keep their arenas after they are ended, so blocks
// made while one was installed may be freed or resized at any later time.

// Logs the report headed "ZEL-DYNAMIC-STORE ALLOCATOR REPORT".
void output_zelDynamicStore_normal_report();
void output_zelDynamicStore_image_report();

// Whether a block lies in one of the ready-made allocators' arenas.
bool lea_allocator_owns_block(const void* block);
bool zelDynamicStore_owns_block(const void* block);
