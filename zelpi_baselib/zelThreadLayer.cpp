#include "zelThreadLayer.h"

#include <sys/sysinfo.h>

#include <algorithm>

#include "zelSync.h"
#include "zelThreadsTesting.h"

namespace {

// Guards set-up and tear-down; static so that it exists before anything else.
pthread_mutex_t g_layerLock = PTHREAD_MUTEX_INITIALIZER;
std::atomic<bool> g_ready{false};
std::atomic<int> g_cpuCount{1};
std::atomic<int> g_processorCount{0};
std::atomic<void*> g_dataLock{nullptr};
std::atomic<void*> g_serialiser{nullptr};
std::atomic<zelmp_thread_creator> g_creator{&pthread_create};

}  // namespace

namespace zelmp_internal {

bool ready() { return g_ready.load(); }
void* dataLock() { return g_dataLock.load(); }
void* serialiser() { return g_serialiser.load(); }
int cpuCount() { return g_cpuCount.load(); }
std::atomic<int>& processorCount() { return g_processorCount; }

int createThread(pthread_t* thread, const pthread_attr_t* attributes, void* (*fn)(void*),
                 void* arg) {
    return g_creator.load()(thread, attributes, fn, arg);
}

}  // namespace zelmp_internal

void zelmp_init_threads() {
    if (g_ready.load()) return;
    pthread_mutex_lock(&g_layerLock);
    if (!g_ready.load()) {
        void* data = zelmp_new_mutex(0);
        void* serial = zelmp_new_mutex(0);
        if (data && serial) {
            g_cpuCount.store(std::max(1, get_nprocs()));
            g_dataLock.store(data);
            g_serialiser.store(serial);
            g_ready.store(true);
        } else {
            zelmp_delete_mutex(data);
            zelmp_delete_mutex(serial);
        }
    }
    pthread_mutex_unlock(&g_layerLock);
}

void zelmp_close_threads() {
    pthread_mutex_lock(&g_layerLock);
    if (g_ready.load()) {
        void* data = g_dataLock.load();
        void* serial = g_serialiser.load();
        zelmp_get_mutex(data);
        zelmp_internal::cancelTableThreads();
        zelmp_internal::cancelExecutorWorkers();
        zelmp_release_mutex(data);
        // A run in progress joins its cancelled workers and lets go of the serialiser.
        zelmp_get_mutex(serial);
        zelmp_release_mutex(serial);
        g_ready.store(false);
        g_dataLock.store(nullptr);
        g_serialiser.store(nullptr);
        zelmp_delete_mutex(data);
        zelmp_delete_mutex(serial);
    }
    pthread_mutex_unlock(&g_layerLock);
}

void zelmp_reset_nprocs_for_tests() { g_processorCount.store(0); }

void zelmp_set_thread_creator_for_tests(zelmp_thread_creator creator) {
    g_creator.store(creator ? creator : &pthread_create);
}
