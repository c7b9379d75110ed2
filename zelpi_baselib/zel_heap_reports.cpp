// Allocation reports and statistics of the two tracked heaps, read from the
// debug-mode block tables.
#include "zelHeapMutex.h"
#include "zelMessageLog.h"
#include "zelTrackedHeap.h"

namespace {

void dumpBlocks(const zelHeapTable& table) {
    zel_msgcont("DUMP OF CURRENTLY ALLOCATED BLOCKS\n");
    for (int bucket = 0; bucket < kHeapBuckets; ++bucket) {
        for (const zelBlockRecord* r = &table.buckets[bucket]; r && r->address; r = r->overflow)
            zel_msgcont("%6d: %p, %d %48s %6d\n", bucket, r->address, static_cast<int>(r->size),
                        r->source, r->line);
    }
}

void report(zelTrackedHeap& heap, const char* heading, bool dump) {
    if (!zel_heap_debug()) {
        zel_notify(kZelLevelInfo, "ZEL-HM-DEBUG: Debug mode not set. Statistics not available.\n");
        return;
    }
    zelHeapLock lock;
    const zelHeapTable& table = heap.table();
    zel_notify(kZelLevelInfo, "%s", heading);
    zel_msgcont("Hash table collisions: %d\n", table.collisions);
    zel_msgcont("Total allocation calls: %d\n", table.allocationCalls);
    zel_msgcont("Total free calls: %d\n", table.freeCalls);
    zel_msgcont("Blocks currently allocated: %d\n", table.allocationCalls - table.freeCalls);
    zel_msgcont("Total size now allocated: %d\n", static_cast<int>(table.totalSize));
    zel_msgcont("Peak size allocated: %d\n", static_cast<int>(table.peakSize));
    zel_msgcont("Internal error state: %d\n", table.errorState);
    zel_msgcont("Elapsed time in allocator: %fs\n", table.secondsInAllocator);
    if (dump) dumpBlocks(table);
    zel_msgcont("END OF ALLOCATION REPORT\n");
}

void statistics(zelTrackedHeap& heap, int* blocks, int* frees, long* total, long* peak) {
    zelHeapLock lock;
    const zelHeapTable& table = heap.table();
    if (blocks) *blocks = table.allocationCalls - table.freeCalls;
    if (frees) *frees = table.freeCalls;
    if (total) *total = table.totalSize;
    if (peak) *peak = table.peakSize;
}

}  // namespace

void output_zel_heap_normal_memory_report(bool dumpBlocks) {
    report(zel_normal_heap(), "NORMAL MEMORY ALLOCATOR REPORT\n", dumpBlocks);
}

void output_zel_heap_image_memory_report(bool dumpBlocks) {
    report(zel_image_heap(), "IMAGE MEMORY ALLOCATOR REPORT\n", dumpBlocks);
}

void get_zel_heap_normal_memory_statistics(int* blocks, int* frees, long* total, long* peak) {
    statistics(zel_normal_heap(), blocks, frees, total, peak);
}

void get_zel_heap_image_memory_statistics(int* blocks, int* frees, long* total, long* peak) {
    statistics(zel_image_heap(), blocks, frees, total, peak);
}
