#include "zelHeapMutex.h"

#include <pthread.h>

#include <atomic>

#include "zelMessageLog.h"

namespace {

pthread_mutex_t hm_mutex;
pthread_once_t hm_mutex_once = PTHREAD_ONCE_INIT;
std::atomic<int> hm_mutex_init{0};

void createHeapMutex() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&hm_mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    hm_mutex_init.store(1);
}

}  // namespace

void acquire_hm_mutex() {
    pthread_once(&hm_mutex_once, createHeapMutex);
    if (pthread_mutex_lock(&hm_mutex) != 0)
        zel_notify(kZelLevelError, "ZEL-HM-DEBUG: INTERNAL ERROR: pthread_mutex_lock() failed!\n");
}

void release_hm_mutex() {
    if (hm_mutex_init.load() == 0) {
        zel_notify(kZelLevelError,
                   "ZEL-HM-DEBUG: INTERNAL ERROR: release_hm_mutex() found hm_mutex_init=0!\n");
        return;
    }
    pthread_mutex_unlock(&hm_mutex);
}
