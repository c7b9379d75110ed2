// TEMPORARY pass-through so that other layers link while the tracked heap is
// written; replaced by the full implementation.
#include "zel_heap.h"
#include <cstdlib>
#include <cstring>
void* zel_malloc(size_t s, const char*, int) { return std::malloc(s); }
void* zel_realloc(void* b, size_t s, const char*, int) { return std::realloc(b, s); }
void* zel_calloc(size_t n, size_t s, const char*, int) { return std::calloc(n, s); }
char* zel_strdup(const char* t, const char*, int) { return t ? strdup(t) : nullptr; }
void zel_free(void* b, const char*, int) { std::free(b); }
void* zel_image_malloc(size_t s, const char*, int) { return std::malloc(s); }
void* zel_image_realloc(void* b, size_t s, const char*, int) { return std::realloc(b, s); }
void zel_image_free(void* b, const char*, int) { std::free(b); }
