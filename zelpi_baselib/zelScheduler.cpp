#include "zelScheduler.h"

#include <errno.h>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstring>

#include "zelMessageLog.h"

#ifndef ZEL_VERSION
#define ZEL_VERSION "unknown"
#endif

namespace {

constexpr int kLowerBy = 10;
constexpr int kRaiseBy = 5;
constexpr int kUnsetNice = INT_MIN;

std::atomic<int> g_normalNice{kUnsetNice};

// Niceness is per thread on Linux when addressed by thread id.
id_t threadId() { return static_cast<id_t>(syscall(SYS_gettid)); }

int currentNice() {
    errno = 0;
    const int nice = getpriority(PRIO_PROCESS, threadId());
    return errno == 0 ? nice : 0;
}

int normalNice() {
    const int nice = g_normalNice.load();
    return nice == kUnsetNice ? 0 : nice;
}

void warn(const char* what, int error) {
    char text[256];
    zel_notify(kZelLevelWarn, "Can't set %s scheduling for this thread: %s", what,
               strerror_r(error, text, sizeof text));
}

// Time-sharing at the given niceness.
int timeShared(const char* what, int nice) {
    struct sched_param param = {};
    int result = pthread_setschedparam(pthread_self(), SCHED_OTHER, &param);
    if (result == 0 && setpriority(PRIO_PROCESS, threadId(), nice) != 0) result = errno;
    if (result == 0) return 0;
    warn(what, result);
    return -1;
}

}  // namespace

void zelmp_scheduler_setup() {
    int expected = kUnsetNice;
    g_normalNice.compare_exchange_strong(expected, currentNice());
    char library[128] = "POSIX threads";
    confstr(_CS_GNU_LIBPTHREAD_VERSION, library, sizeof library);
    zel_notify(kZelLevelInfo, "%s Version %s (%s)", "ZEL MP", ZEL_VERSION, library);
}

int zelmp_schedule_high() { return timeShared("high", normalNice() - kRaiseBy); }

int zelmp_schedule_normal() { return timeShared("normal", normalNice()); }

int zelmp_schedule_low() { return timeShared("low", normalNice() + kLowerBy); }

int zelmp_schedule_ndpi() {
    struct sched_param param = {};
    param.sched_priority = sched_get_priority_min(SCHED_RR);
    const int result = pthread_setschedparam(pthread_self(), SCHED_RR, &param);
    if (result == 0) return 0;
    warn("ndpi", result);
    return -1;
}

void zelmp_yield() { sched_yield(); }
