#include "zelMessageLog.h"

#include <cstdarg>
#include <cstring>

namespace {

constexpr double kSecondsPerDay = 86400.0;
constexpr int kSecondsPerHour = 3600;
constexpr int kSecondsPerMinute = 60;

// Names padded to five characters so that the text columns line up.
const char* const kLevelNames[] = {"NONE ", "ERROR", "WARN ", "INFO ", "DEBUG", "TRACE"};

}  // namespace

void zelMessageLog::setFile(FILE* stream) { stream_ = stream; }

bool zelMessageLog::zel_have_logfile() const { return stream_ != nullptr && facilitySet_; }

void zelMessageLog::zel_notify_set_facility(const char* name) {
    snprintf(facility_, sizeof facility_, "(%s)", name ? name : "");
    facilitySet_ = true;
}

void zelMessageLog::zel_notify_setlevel(int level) {
    level_ = level;
    if (level == kZelLogOff) {
        stream_ = nullptr;
        reserved_ = 0;
    }
}

int zelMessageLog::zel_notify_getlevel() const { return level_; }

void zelMessageLog::useStandardErrorIfUnset() {
    if (!stream_) stream_ = stderr;
}

void zelMessageLog::zel_notify(int level, const char* format, ...) {
    if (level_ < 0) return;
    useStandardErrorIfUnset();
    if (level > kZelLevelTrace) level = kZelLevelTrace;
    if (level < kZelLevelError) return;
    if (level_ < level) return;
    va_list args;
    va_start(args, format);
    vsnprintf(message_, sizeof message_, format, args);
    va_end(args);
    zel_msg_print(level);
    lastLevel_ = level;
}

void zelMessageLog::zel_trace(const char* format, ...) {
    if (level_ < kZelLevelTrace) return;
    va_list args;
    va_start(args, format);
    vsnprintf(message_, sizeof message_, format, args);
    va_end(args);
    zel_msg_print(kZelLevelTrace);
}

// Plain messages are deliberately printed as continuation lines, without a time stamp.
void zelMessageLog::zel_msg(const char* format, ...) {
    if (level_ < kZelLevelInfo) return;
    va_list args;
    va_start(args, format);
    vsnprintf(message_, sizeof message_, format, args);
    va_end(args);
    zel_msg_print(kZelLevelContinuation);
}

void zelMessageLog::zel_msgcont(const char* format, ...) {
    if (lastLevel_ < kZelLevelError || lastLevel_ > level_) return;
    va_list args;
    va_start(args, format);
    vsnprintf(message_, sizeof message_, format, args);
    va_end(args);
    zel_msg_print(kZelLevelContinuation);
}

// Extrapolates from the last resynchronisation with the fast clock; resynchronises
// with the local time of day the first time and whenever the clock went backwards.
double zelMessageLog::secondsSinceMidnight() {
    double now = zel_log_clock();
    double t;
    if (clockBase_ != 0.0 && now >= clockBase_) {
        t = timeOfDayBase_ + (now - clockBase_);
    } else {
        timeOfDayBase_ = static_cast<double>(zel_log_time_of_day());
        clockBase_ = now;
        t = timeOfDayBase_;
    }
    if (t >= kSecondsPerDay) t -= kSecondsPerDay * static_cast<int>(t / kSecondsPerDay);
    return t;
}

void zelMessageLog::zel_msg_print(int level) {
    useStandardErrorIfUnset();
    size_t length = strlen(message_);
    if (length == 0 || message_[length - 1] != '\n') {
        if (length + 1 >= sizeof message_) length = sizeof message_ - 2;
        message_[length] = '\n';
        message_[length + 1] = '\0';
    }
    if (level >= kZelLevelContinuation) {
        fprintf(stream_, "%s                  : %s", facility_, message_);
        fflush(stream_);
        return;
    }
    double t = secondsSinceMidnight();
    int whole = static_cast<int>(t);
    int h = whole / kSecondsPerHour;
    int m = (whole % kSecondsPerHour) / kSecondsPerMinute;
    double s = t - (h * kSecondsPerHour + m * kSecondsPerMinute);
    const char* name = kLevelNames[level < kZelLevelNone ? kZelLevelNone : level];
    fprintf(stream_, "%s %02d:%02d:%05.2f %s: %s", facility_, h, m, s, name, message_);
    fflush(stream_);
}
