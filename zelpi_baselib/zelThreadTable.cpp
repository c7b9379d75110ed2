#include "zelThreadTable.h"

#include <errno.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>

#include "zelExecutor.h"
#include "zelMessageLog.h"
#include "zelSync.h"
#include "zelThreadLayer.h"

namespace {

constexpr int kMaxCreateTries = 10000;
constexpr unsigned kSecondsBetweenTries = 1;

struct TableEntry {
    int id;
    pthread_t thread;
};

// Guarded by the data lock; the count is also read without it for a quick refusal.
TableEntry g_table[kZelmpMaxThreads];
std::atomic<int> g_threadCount{0};
int g_nextId = kZelmpFirstThreadId;
std::atomic<int> g_createCalls{0};

// Closes the gap left by entry `index`. Data lock held.
void removeEntry(int index) {
    const int count = g_threadCount.load();
    for (int i = index; i + 1 < count; ++i) g_table[i] = g_table[i + 1];
    g_threadCount.store(count - 1);
}

int findEntry(int id) {
    for (int i = 0; i < g_threadCount.load(); ++i)
        if (g_table[i].id == id) return i;
    return -1;
}

bool tableFull() {
    if (g_threadCount.load() < kZelmpMaxThreads) return false;
    // The apostrophe is the message's own (kept as it stands).
    zel_notify(kZelLevelError, "ERROR: Maximum number of thread's reached !!\n");
    return true;
}

}  // namespace

int zelmp_start_thread(void* (*fn)(void*), void* arg) {
    const int calls = ++g_createCalls;
    zelmp_init_threads();
    if (tableFull()) return -1;
    void* lock = zelmp_internal::dataLock();
    if (!fn || !zelmp_get_mutex(lock)) {
        zel_notify(kZelLevelTrace, "ERROR: Can't create thread: %d, create_calls: %d\n", EINVAL,
                   calls);
        return -1;
    }
    pthread_t thread;
    int result = 0;
    for (int attempt = 1;; ++attempt) {
        // Another thread may have filled the table while the lock was let go.
        if (tableFull()) {
            zelmp_release_mutex(lock);
            return -1;
        }
        result = zelmp_internal::createThread(&thread, nullptr, fn, arg);
        if (result != EAGAIN || attempt >= kMaxCreateTries) break;
        zel_notify(kZelLevelTrace, "==> EAGAIN condition! (try=%d)\n", attempt);
        zelmp_release_mutex(lock);
        sleep(kSecondsBetweenTries);
        zelmp_get_mutex(lock);
    }
    if (result != 0) {
        // Logged at TRACE, not ERROR (kept as it stands).
        zel_notify(kZelLevelTrace, "ERROR: Can't create thread: %d, create_calls: %d\n", result,
                   calls);
        zelmp_release_mutex(lock);
        return -1;
    }
    pthread_detach(thread);
    const int id = g_nextId++;
    g_table[g_threadCount.load()] = {id, thread};
    g_threadCount.store(g_threadCount.load() + 1);
    zel_notify(kZelLevelTrace, "Created thread id = %d, create_calls=%d\n", id, calls);
    zelmp_release_mutex(lock);
    return id;
}

void zelmp_kill_thread(int id) {
    if (!zelmp_internal::ready()) return;
    // An executor worker already runs under the serialiser its caller holds.
    void* serial = zelmp_executor_worker() ? nullptr : zelmp_internal::serialiser();
    void* lock = zelmp_internal::dataLock();
    if (serial) zelmp_get_mutex(serial);
    zelmp_get_mutex(lock);
    const int index = findEntry(id);
    if (index >= 0) {
        if (pthread_cancel(g_table[index].thread) != 0)
            zel_notify(kZelLevelError, "ERROR: Can't cancel thread: %d\n", id);
        removeEntry(index);
    }
    zelmp_release_mutex(lock);
    if (serial) zelmp_release_mutex(serial);
}

void zelmp_leaving_thread() {
    if (!zelmp_internal::ready()) return;
    // Only the data lock: a thread leaving while an executor run waits for it
    // must not queue behind that run's serialiser.
    void* lock = zelmp_internal::dataLock();
    zelmp_get_mutex(lock);
    const pthread_t self = pthread_self();
    for (int i = 0; i < g_threadCount.load(); ++i) {
        if (pthread_equal(g_table[i].thread, self)) {
            removeEntry(i);
            break;
        }
    }
    zelmp_release_mutex(lock);
}

int zelmp_thread_count() { return g_threadCount.load(); }

bool zelmp_thread_tracked(int id) {
    if (!zelmp_internal::ready()) return false;
    void* lock = zelmp_internal::dataLock();
    zelmp_get_mutex(lock);
    const bool tracked = findEntry(id) >= 0;
    zelmp_release_mutex(lock);
    return tracked;
}

void zelmp_internal::cancelTableThreads() {
    for (int i = 0; i < g_threadCount.load(); ++i)
        if (pthread_cancel(g_table[i].thread) != 0)
            zel_notify(kZelLevelError, "ERROR: Can't cancel thread: %d\n", g_table[i].id);
    g_threadCount.store(0);
}
