#include "zelVirtualRange.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

zelVirtualRange::zelVirtualRange(size_t bytes, size_t minimumBytes) {
    for (size_t tried = bytes; tried >= minimumBytes && tried > 0; tried /= 2) {
        void* mapped = mmap(nullptr, tried, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (mapped != MAP_FAILED) {
            base_ = static_cast<char*>(mapped);
            size_ = tried;
            return;
        }
    }
}

void zelVirtualRange::discardPages(void* from, void* to) {
    static const uintptr_t page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    uintptr_t first = (reinterpret_cast<uintptr_t>(from) + page - 1) & ~(page - 1);
    uintptr_t last = reinterpret_cast<uintptr_t>(to) & ~(page - 1);
    if (last > first) madvise(reinterpret_cast<void*>(first), last - first, MADV_DONTNEED);
}
