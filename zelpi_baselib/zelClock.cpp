#include "zelClock.h"

#include <sys/time.h>

#include <atomic>
#include <ctime>

namespace {

constexpr double kMicrosecond = 1e-6;
constexpr long kSecondsPerHour = 3600;
constexpr long kSecondsPerMinute = 60;

long localTimeOfDay() {
    time_t now = time(nullptr);
    struct tm local;
    if (!localtime_r(&now, &local)) return 0;
    return local.tm_hour * kSecondsPerHour + local.tm_min * kSecondsPerMinute + local.tm_sec;
}

std::atomic<zelClockSource> g_clockSource{&zelmp_getclock};
std::atomic<zelTimeOfDaySource> g_timeOfDaySource{&localTimeOfDay};

}  // namespace

double zelmp_getclock() {
    struct timeval tv;
    gettimeofday(&tv, nullptr);
    return static_cast<double>(tv.tv_sec) + static_cast<double>(tv.tv_usec) * kMicrosecond;
}

void zel_set_log_time_sources(zelClockSource clock, zelTimeOfDaySource timeOfDay) {
    g_clockSource.store(clock ? clock : &zelmp_getclock);
    g_timeOfDaySource.store(timeOfDay ? timeOfDay : &localTimeOfDay);
}

double zel_log_clock() { return g_clockSource.load()(); }

long zel_log_time_of_day() { return g_timeOfDaySource.load()(); }
