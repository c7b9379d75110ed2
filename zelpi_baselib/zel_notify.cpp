// The free functions of the message log, acting on the default logger.
#include <atomic>
#include <cstdarg>

#include "zelMessageLog.h"

namespace {

// Constant-initialised, so it is ready before any static constructor logs.
zelMessageLog g_defaultLogger(nullptr);

// First formatting pass of every free function; shared by all threads, unlocked.
char g_sharedMessage[kZelMessageBytes];
int g_messageLock = 0;

std::atomic<bool> g_consoleEnabled{false};
std::atomic<bool> g_consoleForced{false};

}  // namespace

zelMessageLog& zel_default_logger() { return g_defaultLogger; }

// Each free function formats once into the shared buffer and passes that
// buffer on as the format string of the member function. The double
// formatting is deliberate: a percent sign in the first result is read again.
static void formatShared(const char* format, va_list args) {
    vsnprintf(g_sharedMessage, sizeof g_sharedMessage, format, args);
    g_messageLock = 0;
}

void zel_notify(int level, const char* format, ...) {
    va_list args;
    va_start(args, format);
    formatShared(format, args);
    va_end(args);
    g_defaultLogger.zel_notify(level, g_sharedMessage);
}

void zel_msg(const char* format, ...) {
    va_list args;
    va_start(args, format);
    formatShared(format, args);
    va_end(args);
    g_defaultLogger.zel_msg(g_sharedMessage);
}

void zel_trace(const char* format, ...) {
    va_list args;
    va_start(args, format);
    formatShared(format, args);
    va_end(args);
    g_defaultLogger.zel_trace(g_sharedMessage);
}

void zel_msgcont(const char* format, ...) {
    va_list args;
    va_start(args, format);
    formatShared(format, args);
    va_end(args);
    g_defaultLogger.zel_msgcont(g_sharedMessage);
}

void zel_msg_print(int level) { g_defaultLogger.zel_msg_print(level); }

void zel_notify_setlevel(int level) {
    g_defaultLogger.zel_notify_setlevel(level);
    if (level == kZelLogOff) g_messageLock = 0;
}

int zel_notify_getlevel() { return g_defaultLogger.zel_notify_getlevel(); }

void zel_notify_set_facility(const char* name) { g_defaultLogger.zel_notify_set_facility(name); }

bool zel_have_logfile() { return g_defaultLogger.zel_have_logfile(); }

void setFile(FILE* stream) { g_defaultLogger.setFile(stream); }

void zel_notify_enable_console(bool enabled, bool force) {
    g_consoleEnabled.store(enabled);
    g_consoleForced.store(force);
}

bool zel_notify_console_enabled() { return g_consoleEnabled.load(); }

bool zel_notify_console_forced() { return g_consoleForced.load(); }
