#include "zelTrackedHeap.h"

#include <cstdlib>
#include <cstring>

#include "zelClock.h"
#include "zelHeapMutex.h"
#include "zelHeapOwners.h"
#include "zelMessageLog.h"

namespace {

const char* nameOf(const char* file) { return file ? file : ""; }

bool wantTrace(int line) { return zel_heap_trace() && line != 0; }

// Adds the time spent in a debug-mode call to the table when it goes out of scope.
class zelAllocatorTimer {
  public:
    explicit zelAllocatorTimer(zelHeapTable& table) : table_(table), start_(zelmp_getclock()) {}
    ~zelAllocatorTimer() { table_.secondsInAllocator += zelmp_getclock() - start_; }

  private:
    zelHeapTable& table_;
    double start_;
};

}  // namespace

zelHeapTable& zelTrackedHeap::table() {
    table_->touch(name_);
    return *table_;
}

void* zelTrackedHeap::overrideContext() const {
    return hasOverride_.load() ? override_.context : nullptr;
}

void zelTrackedHeap::setOverride(const zelHeapOverride& override) {
    zelHeapLock lock;
    bool complete = override.malloc && override.realloc && override.free;
    override_ = complete ? override : zelHeapOverride{};
    hasOverride_.store(complete);
}

void* zelTrackedHeap::allocateLocked(size_t size) {
    if (hasOverride_.load()) return override_.malloc(override_.context, size);
    return malloc(size);
}

// A block stays with the allocator that made it.
void* zelTrackedHeap::resizeLocked(void* block, size_t size) {
    if (!block) return allocateLocked(size);
    if (const zelHeapOwner* owner = zel_heap_owner_of(block))
        return owner->resize(owner->context, block, size);
    if (hasOverride_.load()) return override_.realloc(override_.context, block, size);
    return realloc(block, size);
}

char* zelTrackedHeap::duplicateLocked(const char* text) {
    if (!hasOverride_.load()) return strdup(text);
    if (override_.strdup) return override_.strdup(override_.context, text);
    size_t bytes = strlen(text) + 1;
    auto* copy = static_cast<char*>(override_.malloc(override_.context, bytes));
    if (copy) memcpy(copy, text, bytes);
    return copy;
}

void zelTrackedHeap::releaseLocked(void* block) {
    if (const zelHeapOwner* owner = zel_heap_owner_of(block))
        owner->release(owner->context, block);
    else if (hasOverride_.load())
        override_.free(override_.context, block);
    else
        free(block);
}

// Outside debug mode and overrides: the C library unless a ready-made allocator made the block.
void zelTrackedHeap::releaseAnywhere(void* block) {
    if (!zel_heap_has_owners() || !zel_heap_owner_of(block)) {
        free(block);
        return;
    }
    zelHeapLock lock;
    zel_heap_release_owned(block);
}

void* zelTrackedHeap::resizeAnywhere(void* block, size_t size) {
    if (!zel_heap_has_owners() || !zel_heap_owner_of(block)) return realloc(block, size);
    zelHeapLock lock;
    return zel_heap_resize_owned(block, size);
}

void* zelTrackedHeap::allocate(size_t size, const char* file, int line) {
    if (!zel_heap_enabled()) return malloc(size);
    void* block;
    if (zel_heap_debug()) {
        if (size == 0) {
            zel_notify(kZelLevelError, messages_->mallocZero, nameOf(file), line);
            return nullptr;
        }
        zelHeapLock lock;
        zelAllocatorTimer timer(table());
        block = allocateLocked(size);
        if (block) table().add(block, size, file, line, true);
    } else if (hasOverride_.load()) {
        zelHeapLock lock;
        block = allocateLocked(size);
    } else {
        block = malloc(size);
    }
    if (wantTrace(line))
        zel_notify(kZelLevelInfo, messages_->traceMalloc, static_cast<int>(size), block,
                   nameOf(file), line);
    return block;
}

// Debug-mode realloc re-records the moved block without counting an extra call.
void* zelTrackedHeap::reallocate(void* block, size_t size, const char* file, int line) {
    if (!zel_heap_enabled()) return resizeAnywhere(block, size);
    void* result;
    if (zel_heap_debug()) {
        if (size == 0) {
            zel_notify(kZelLevelError, messages_->reallocZero, nameOf(file), line);
            return nullptr;
        }
        zelHeapLock lock;
        zelAllocatorTimer timer(table());
        if (block && !table().find(block)) {
            zel_notify(kZelLevelError, messages_->reallocUnknown, block, static_cast<int>(size),
                       block, nameOf(file), line);
            return nullptr;
        }
        result = resizeLocked(block, size);
        if (result) {
            if (block) table().remove(block, false);
            table().add(result, size, file, line, block == nullptr);
        }
    } else if (hasOverride_.load()) {
        zelHeapLock lock;
        result = resizeLocked(block, size);
    } else {
        result = resizeAnywhere(block, size);
    }
    if (wantTrace(line))
        zel_notify(kZelLevelInfo, messages_->traceRealloc, block, static_cast<int>(size), result,
                   nameOf(file), line);
    return result;
}

char* zelTrackedHeap::duplicate(const char* text, const char* file, int line) {
    if (!zel_heap_enabled()) return text ? strdup(text) : nullptr;
    char* copy;
    if (zel_heap_debug()) {
        if (!text) {
            zel_notify(kZelLevelError, messages_->strdupNull, nameOf(file), line);
            return nullptr;
        }
        zelHeapLock lock;
        zelAllocatorTimer timer(table());
        copy = duplicateLocked(text);
        if (copy) table().add(copy, strlen(text) + 1, file, line, true);
    } else if (!text) {
        copy = nullptr;
    } else if (hasOverride_.load()) {
        zelHeapLock lock;
        copy = duplicateLocked(text);
    } else {
        copy = strdup(text);
    }
    if (wantTrace(line))
        zel_notify(kZelLevelInfo, messages_->traceStrdup, static_cast<const void*>(text),
                   static_cast<void*>(copy), nameOf(file), line);
    return copy;
}

void zelTrackedHeap::release(void* block, const char* file, int line) {
    if (!zel_heap_enabled() || (!zel_heap_debug() && !hasOverride_.load())) {
        releaseAnywhere(block);
        return;
    }
    if (!zel_heap_debug()) {
        {
            zelHeapLock lock;
            if (block) releaseLocked(block);
        }
        if (wantTrace(line))
            zel_notify(kZelLevelInfo, messages_->traceFree, block, nameOf(file), line);
        return;
    }
    if (!block) {
        zel_notify(kZelLevelError, messages_->freeNull, nameOf(file), line);
        return;
    }
    {
        zelHeapLock lock;
        zelAllocatorTimer timer(table());
        if (!table().find(block)) {
            zel_notify(kZelLevelError, messages_->freeUnknown, block, block, nameOf(file), line);
            return;
        }
        releaseLocked(block);
        table().remove(block, true);
    }
    if (wantTrace(line))
        zel_notify(kZelLevelInfo, messages_->traceFreeDebug, block, nameOf(file), line);
}
