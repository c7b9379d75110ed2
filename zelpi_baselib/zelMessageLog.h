// Levelled, time-stamped diagnostic lines. A `zelMessageLog` writes lines
// "<facility> HH:MM:SS.ss LEVEL: text" to a stream (standard error until a
// stream is given); continuation lines carry blanks where the time and level
// would be. Levels: 0 NONE, 1 ERROR, 2 WARN, 3 INFO, 4 DEBUG, 5 TRACE, 6 a
// continuation; a logger drops messages above its own level, and level -1
// switches it off. Times are seconds since local midnight.
//
// The free functions act on one process-wide default logger and format every
// message twice (see zel_notify). Neither the default logger nor the shared
// buffer is locked: lines from several threads may interleave.
#pragma once

#include <cstdio>

#include "zelClock.h"
#include "zelConsole.h"

constexpr int kZelLogOff = -1;
constexpr int kZelLevelNone = 0;
constexpr int kZelLevelError = 1;
constexpr int kZelLevelWarn = 2;
constexpr int kZelLevelInfo = 3;
constexpr int kZelLevelDebug = 4;
constexpr int kZelLevelTrace = 5;
constexpr int kZelLevelContinuation = 6;

constexpr int kZelMessageBytes = 4096;
constexpr int kZelFacilityBytes = 80;

class zelMessageLog {
  public:
    constexpr explicit zelMessageLog(FILE* stream) : stream_(stream) {}

    void setFile(FILE* stream);
    FILE* stream() const { return stream_; }
    bool zel_have_logfile() const;
    void zel_notify_set_facility(const char* name);
    void zel_notify_setlevel(int level);
    int zel_notify_getlevel() const;

    void zel_notify(int level, const char* format, ...);
    void zel_msg(const char* format, ...);
    void zel_trace(const char* format, ...);
    void zel_msgcont(const char* format, ...);
    void zel_msg_print(int level);

  private:
    void useStandardErrorIfUnset();
    double secondsSinceMidnight();

    double clockBase_ = 0.0;
    double timeOfDayBase_ = 0.0;
    int level_ = kZelLevelInfo;
    int lastLevel_ = -1;
    unsigned reserved_ = 0;
    FILE* stream_ = nullptr;
    char message_[kZelMessageBytes] = {};
    char facility_[kZelFacilityBytes] = "(ZEL LIB)";
    bool facilitySet_ = false;
};

// The default logger behind the free functions.
zelMessageLog& zel_default_logger();

// Each formats its arguments into a shared buffer first and then hands that
// buffer to the default logger as the format: a percent sign produced by the
// first pass is interpreted again by the second.
void zel_notify(int level, const char* format, ...) __attribute__((format(__printf__, 2, 3)));
void zel_msg(const char* format, ...) __attribute__((format(__printf__, 1, 2)));
void zel_trace(const char* format, ...) __attribute__((format(__printf__, 1, 2)));
void zel_msgcont(const char* format, ...) __attribute__((format(__printf__, 1, 2)));
void zel_msg_print(int level);
void zel_notify_setlevel(int level);
int zel_notify_getlevel();
void zel_notify_set_facility(const char* name);
bool zel_have_logfile();
void setFile(FILE* stream);

// Two process-wide console flags; stored for callers that consult them.
void zel_notify_enable_console(bool enabled, bool force);
bool zel_notify_console_enabled();
bool zel_notify_console_forced();
