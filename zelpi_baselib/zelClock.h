// Time sources of the runtime. `zelmp_getclock()` is the wall clock in
// seconds (gettimeofday: seconds plus microseconds as a fraction). The message
// log reads the clock and the local time of day (whole seconds since local
// midnight) through replaceable sources so that a test can decide what time it
// is; by default they are the real ones.
#pragma once

double zelmp_getclock();

using zelClockSource = double (*)();
using zelTimeOfDaySource = long (*)();

// Null restores the real source. Affects only the message log's time stamps.
void zel_set_log_time_sources(zelClockSource clock, zelTimeOfDaySource timeOfDay);

double zel_log_clock();
long zel_log_time_of_day();
