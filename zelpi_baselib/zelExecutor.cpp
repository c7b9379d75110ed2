#include "zelExecutor.h"

#include <pthread.h>

#include <atomic>

#include "zelBands.h"
#include "zelMessageLog.h"
#include "zelSync.h"
#include "zelSystemInfo.h"
#include "zelThreadLayer.h"
#include "zel_heap.h"

using zelmp_internal::kHeapSource;
using zelmp_internal::processorCount;

namespace {

constexpr int kArguments = 6;

struct WorkRecord {
    int worker;
    int workers;
    pthread_t thread;
    bool started;
    intptr_t args[kArguments];
    zelmp_function fn;
};

// The key exists only during a run, which holds the serialiser.
std::atomic<bool> g_keyLive{false};
std::atomic<pthread_key_t> g_key{0};

// The run in progress, so that zelmp_close_threads can cancel its workers. Data lock.
WorkRecord* g_records = nullptr;
int g_recordCount = 0;

// Records of a run whose worker could not be created; never freed (kept as it stands).
WorkRecord* g_abandonedRecords = nullptr;

const WorkRecord* currentRecord() {
    if (!g_keyLive.load()) return nullptr;
    return static_cast<const WorkRecord*>(pthread_getspecific(g_key.load()));
}

void call(zelmp_function fn, const intptr_t* a) { fn(a[0], a[1], a[2], a[3], a[4], a[5]); }

// Runs fn in the calling thread as the only worker of a run of one.
void runAlone(zelmp_function fn, const intptr_t* args) {
    if (!g_keyLive.load()) {
        call(fn, args);
        return;
    }
    WorkRecord alone{0, 1, pthread_self(), true, {}, fn};
    const pthread_key_t key = g_key.load();
    void* outer = pthread_getspecific(key);
    pthread_setspecific(key, &alone);
    call(fn, args);
    pthread_setspecific(key, outer);
}

void* workerEntry(void* data) {
    auto* record = static_cast<WorkRecord*>(data);
    pthread_setspecific(g_key.load(), record);
    call(record->fn, record->args);
    return nullptr;
}

void publishRecords(WorkRecord* records, int count) {
    void* lock = zelmp_internal::dataLock();
    zelmp_get_mutex(lock);
    g_records = records;
    g_recordCount = count;
    zelmp_release_mutex(lock);
}

void markStarted(WorkRecord& record) {
    void* lock = zelmp_internal::dataLock();
    zelmp_get_mutex(lock);
    record.started = true;
    zelmp_release_mutex(lock);
}

// Starts n workers and joins them; the serialiser is held and the key live.
void runWorkers(int n, zelmp_function fn, const intptr_t* args) {
    auto* records = static_cast<WorkRecord*>(ZEL_MALLOC(kHeapSource, n * sizeof(WorkRecord)));
    if (!records) {
        runAlone(fn, args);
        return;
    }
    for (int i = 0; i < n; ++i) {
        records[i] = WorkRecord{i, n, pthread_t{}, false, {}, fn};
        for (int a = 0; a < kArguments; ++a) records[i].args[a] = args[a];
    }
    publishRecords(records, n);
    for (int i = 0; i < n; ++i) {
        if (zelmp_internal::createThread(&records[i].thread, nullptr, workerEntry, &records[i]) ==
            0) {
            markStarted(records[i]);
            continue;
        }
        zel_notify(kZelLevelError, "Can't create MP thread: %d\n", i);
        for (int j = i - 1; j >= 0; --j) pthread_cancel(records[j].thread);
        // Joined so that no cancelled worker outlives the run and its arguments.
        for (int j = 0; j < i; ++j) pthread_join(records[j].thread, nullptr);
        publishRecords(nullptr, 0);
        processorCount().store(1);
        g_abandonedRecords = records;
        call(fn, args);
        return;
    }
    for (int i = 0; i < n; ++i) pthread_join(records[i].thread, nullptr);
    publishRecords(nullptr, 0);
    ZEL_FREE(kHeapSource, records);
}

// The number of workers the calling thread shares its rows with.
int workersInEffect() {
    if (const WorkRecord* record = currentRecord()) return record->workers;
    const int count = processorCount().load();
    return count >= 1 ? count : zelmp_internal::cpuCount();
}

void adoptCpuCountIfUnset() {
    zelmp_init_threads();
    int count = processorCount().load();
    while (count <= 0 &&
           !processorCount().compare_exchange_weak(count, zelmp_internal::cpuCount())) {
    }
}

struct BandJob {
    zelmp_band_function fn;
    int total;
    void* arg;
};

void runBand(intptr_t job, intptr_t, intptr_t, intptr_t, intptr_t, intptr_t) {
    const auto* band = reinterpret_cast<const BandJob*>(job);
    int first = 0;
    int last = 0;
    zelmp_band_rows(band->total, workersInEffect(), zelmp_id(), first, last);
    band->fn(band->arg, first, last);
}

}  // namespace

void zelmp_exec(zelmp_function fn, intptr_t a1, intptr_t a2, intptr_t a3, intptr_t a4, intptr_t a5,
                intptr_t a6) {
    if (!fn) return;
    const intptr_t args[kArguments] = {a1, a2, a3, a4, a5, a6};
    if (processorCount().load() <= 0) adoptCpuCountIfUnset();
    if (processorCount().load() <= 1) {
        call(fn, args);
        return;
    }
    zelmp_init_threads();
    // A run started from inside a worker would wait for the serialiser its own
    // caller holds: it runs here instead.
    if (currentRecord()) {
        runAlone(fn, args);
        return;
    }
    void* serial = zelmp_internal::serialiser();
    if (!zelmp_get_mutex(serial)) {
        call(fn, args);
        return;
    }
    const int n = processorCount().load();
    pthread_key_t key;
    if (n <= 1) {
        call(fn, args);
    } else if (pthread_key_create(&key, nullptr) != 0) {
        zel_notify(kZelLevelError, "Cannot get a PTHREADS thread specific data access key.");
        processorCount().store(1);
        call(fn, args);
    } else {
        g_key.store(key);
        g_keyLive.store(true);
        runWorkers(n, fn, args);
        g_keyLive.store(false);
        pthread_key_delete(key);
    }
    zelmp_release_mutex(serial);
}

void zelmp_lib_mp_exec(void* owner, zelmp_band_function fn, int total, void* arg) {
    (void)owner;
    if (!fn) return;
    BandJob job{fn, total, arg};
    zelmp_exec(runBand, reinterpret_cast<intptr_t>(&job));
}

int zelmp_id() {
    if (processorCount().load() < 2) return 0;
    const WorkRecord* record = currentRecord();
    return record ? record->worker : 0;
}

void zelmp_find_band(int start, int end, int& lo, int& hi) {
    zelmp_band_span(start, end, workersInEffect(), zelmp_id(), lo, hi);
}

bool zelmp_executor_worker() { return currentRecord() != nullptr; }

void zelmp_set_nprocs(int n) {
    int count = processorCount().load();
    while (count < 1) {
        if (processorCount().compare_exchange_weak(count, n)) {
            zel_msg("Simulating %d-way multi-processing", n);
            return;
        }
    }
    zel_notify(kZelLevelWarn, "%d-way Multi-processing already setup. (Can't change it)", count);
}

int zelmp_get_nprocs() {
    const int count = processorCount().load();
    return count >= 1 ? count : zelmp_get_raw_cpu_count();
}

void zelmp_internal::cancelExecutorWorkers() {
    for (int i = 0; i < g_recordCount; ++i)
        if (g_records[i].started) pthread_cancel(g_records[i].thread);
}
