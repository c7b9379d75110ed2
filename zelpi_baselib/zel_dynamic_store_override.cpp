// zelDynamicStore as an override of the normal or the image heap, one store
// per heap, made on first use and kept for good.
#include <atomic>
#include <initializer_list>

#include "zelDynamicStore.h"
#include "zelHeapMutex.h"
#include "zelMessageLog.h"
#include "zelOverrideAdapter.h"
#include "zelTrackedHeap.h"

namespace {

constexpr size_t kNormalStoreBytes = size_t(1) << 30;
constexpr size_t kImageStoreBytes = size_t(8) << 30;

using Adapter = zelOverrideAdapter<zelDynamicStore>;

std::atomic<zelDynamicStore*> g_normalStore{nullptr};
std::atomic<zelDynamicStore*> g_imageStore{nullptr};

zelDynamicStore* storeFor(std::atomic<zelDynamicStore*>& slot, const char* name, size_t bytes) {
    zelHeapLock lock;
    zelDynamicStore* store = slot.load();
    if (!store) {
        store = new zelDynamicStore(name, bytes);
        zel_heap_register_owner(Adapter::owner(store));
        slot.store(store);
    }
    return store;
}

void endUse(zelTrackedHeap& heap, zelDynamicStore* store) {
    zelHeapLock lock;
    if (store && heap.overrideContext() == store) heap.setOverride(zelHeapOverride{});
}

void report(const zelDynamicStore* store, const char* name) {
    zelHeapLock lock;
    if (store) {
        store->report();
        return;
    }
    zel_notify(kZelLevelInfo, "ZEL-DYNAMIC-STORE ALLOCATOR REPORT\n");
    zel_msgcont("Store: %s (not in use)\n", name);
    zel_msgcont("END OF DYNAMIC STORE REPORT\n");
}

}  // namespace

void use_zelDynamicStore_for_normal_allocs() {
    zelDynamicStore* store = storeFor(g_normalStore, "NORMAL", kNormalStoreBytes);
    set_zel_heap_normal_memory_overrides(store, &Adapter::allocate, &Adapter::resize,
                                         &Adapter::duplicate, &Adapter::release);
}

void use_zelDynamicStore_for_image_allocs() {
    zelDynamicStore* store = storeFor(g_imageStore, "IMAGE", kImageStoreBytes);
    set_zel_heap_image_memory_overrides(store, &Adapter::allocate, &Adapter::resize,
                                        &Adapter::release);
}

void end_use_zelDynamicStore_for_normal_allocs() {
    endUse(zel_normal_heap(), g_normalStore.load());
}

void end_use_zelDynamicStore_for_image_allocs() { endUse(zel_image_heap(), g_imageStore.load()); }

void output_zelDynamicStore_normal_report() { report(g_normalStore.load(), "NORMAL"); }

void output_zelDynamicStore_image_report() { report(g_imageStore.load(), "IMAGE"); }

bool zelDynamicStore_owns_block(const void* block) {
    for (const zelDynamicStore* store : {g_normalStore.load(), g_imageStore.load()})
        if (store && store->owns(block)) return true;
    return false;
}
