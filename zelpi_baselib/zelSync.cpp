#include "zelSync.h"

#include <errno.h>
#include <pthread.h>
#include <semaphore.h>

#include <cstring>

#include "zelMessageLog.h"
#include "zelThreadLayer.h"
#include "zel_heap.h"

using zelmp_internal::kHeapSource;

namespace {

constexpr long kNanosecondsPerSecond = 1000000000;

pthread_mutex_t* asMutex(void* mutex) { return static_cast<pthread_mutex_t*>(mutex); }
pthread_cond_t* asCond(void* cond) { return static_cast<pthread_cond_t*>(cond); }
sem_t* asSema(void* sema) { return static_cast<sem_t*>(sema); }

}  // namespace

void* zelmp_new_mutex(int recursive) {
    auto* mutex = static_cast<pthread_mutex_t*>(ZEL_MALLOC(kHeapSource, sizeof(pthread_mutex_t)));
    if (!mutex) return nullptr;
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes,
                              recursive ? PTHREAD_MUTEX_RECURSIVE : PTHREAD_MUTEX_ERRORCHECK);
    const int result = pthread_mutex_init(mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    if (result != 0) {
        ZEL_FREE(kHeapSource, mutex);
        return nullptr;
    }
    return mutex;
}

bool zelmp_get_mutex(void* mutex) { return mutex && pthread_mutex_lock(asMutex(mutex)) == 0; }

bool zelmp_test_mutex(void* mutex) { return mutex && pthread_mutex_trylock(asMutex(mutex)) == 0; }

void zelmp_release_mutex(void* mutex) {
    if (!mutex || pthread_mutex_unlock(asMutex(mutex)) != 0)
        zel_notify(kZelLevelError, "THREAD: mutex lock errors...\n");
}

void zelmp_delete_mutex(void* mutex) {
    if (!mutex) return;
    pthread_mutex_destroy(asMutex(mutex));
    ZEL_FREE(kHeapSource, mutex);
}

void* zelmp_new_cond_block() {
    auto* cond = static_cast<pthread_cond_t*>(ZEL_MALLOC(kHeapSource, sizeof(pthread_cond_t)));
    if (!cond) return nullptr;
    if (pthread_cond_init(cond, nullptr) != 0) {
        ZEL_FREE(kHeapSource, cond);
        return nullptr;
    }
    return cond;
}

void zelmp_delete_cond_block(void* cond) {
    if (!cond) return;
    pthread_cond_destroy(asCond(cond));
    ZEL_FREE(kHeapSource, cond);
}

int zelmp_cond_signal(void* cond) { return cond ? pthread_cond_signal(asCond(cond)) : EINVAL; }

int zelmp_cond_wait(void* cond, void* mutex) {
    if (!cond || !mutex) return EINVAL;
    return pthread_cond_wait(asCond(cond), asMutex(mutex));
}

int zelmp_cond_timedwait(void* cond, void* mutex, int ns) {
    if (!cond || !mutex) return EINVAL;
    struct timespec deadline;
    deadline.tv_sec = ns / kNanosecondsPerSecond;
    deadline.tv_nsec = ns % kNanosecondsPerSecond;
    int result;
    do {
        result = pthread_cond_timedwait(asCond(cond), asMutex(mutex), &deadline);
    } while (result == EINTR);
    if (result != 0 && result != ETIMEDOUT) {
        char text[256];
        zel_notify(kZelLevelError, "ERROR: Video frame timer error: '%s'\n",
                   strerror_r(result, text, sizeof text));
    }
    return result;
}

void* zelmp_new_sema(int value) {
    if (value < 0) return nullptr;
    auto* sema = static_cast<sem_t*>(ZEL_MALLOC(kHeapSource, sizeof(sem_t)));
    if (!sema) return nullptr;
    if (sem_init(sema, 0, static_cast<unsigned>(value)) != 0) {
        ZEL_FREE(kHeapSource, sema);
        return nullptr;
    }
    return sema;
}

void zelmp_delete_sema(void* sema) {
    if (!sema) return;
    sem_destroy(asSema(sema));
    ZEL_FREE(kHeapSource, sema);
}

int zelmp_post_sema(void* sema) { return sema && sem_post(asSema(sema)) == 0 ? 1 : -1; }

int zelmp_wait_sema(void* sema) {
    if (!sema) return -1;
    int result;
    do {
        result = sem_wait(asSema(sema));
    } while (result != 0 && errno == EINTR);
    return result == 0 ? 1 : -1;
}

int zelmp_test_sema(void* sema) {
    if (!sema) return -1;
    int result;
    do {
        result = sem_trywait(asSema(sema));
    } while (result != 0 && errno == EINTR);
    if (result == 0) return 1;
    return errno == EAGAIN ? 0 : -1;
}
