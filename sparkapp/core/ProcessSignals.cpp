// Signal handlers of the programs: clean exits on interruption, a word on a crash.
#include "ProcessSignals.h"

#include <OutputFile.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

namespace {
const int kSignalExitBase = 128;  // the shell's status for a process ended by signal N
const int kStopSignals[] = {SIGINT, SIGTERM, SIGHUP};
const int kCrashSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};
const int kCrashSignalCount = sizeof kCrashSignals / sizeof kCrashSignals[0];
const size_t kContextBytes = 256;
const int kMaxCleanups = 8;

struct sigaction previous[kCrashSignalCount];
char context[kContextBytes];
volatile sig_atomic_t contextSet = 0;
SignalCleanup cleanups[kMaxCleanups];
volatile sig_atomic_t cleanupCount = 0;

void say(const char* text) {
    if (write(STDERR_FILENO, text, std::strlen(text)) < 0) {
        // Nothing more can be done about it in a signal handler.
    }
}

const char* crashName(int signal) {
    switch (signal) {
        case SIGSEGV:
            return "a segmentation fault";
        case SIGBUS:
            return "a bus error";
        case SIGFPE:
            return "an arithmetic exception";
        case SIGILL:
            return "an illegal instruction";
        default:
            return "an abort";
    }
}

// Temporaries first: they are what a user would find left behind.
void cleanUp() {
    safeio::removeOpenTemporaries();
    for (int i = 0; i < cleanupCount; ++i) cleanups[i]();
}

void onStop(int signal) {
    cleanUp();
    _exit(kSignalExitBase + signal);
}

void onCrash(int signal, siginfo_t* info, void*) {
    say(program_invocation_short_name);
    say(": crashed with ");
    say(crashName(signal));
    if (contextSet) {
        say(" ");
        say(context);
    }
    say("\n");
    cleanUp();
    for (int i = 0; i < kCrashSignalCount; ++i)
        if (kCrashSignals[i] == signal) sigaction(signal, &previous[i], nullptr);
    // A fault happens again when the handler returns, now for the previous
    // handler; a signal that was sent (raise, kill, abort) has to be sent again.
    if (info->si_code <= 0) raise(signal);
}

void atExit() { safeio::removeOpenTemporaries(); }
}  // namespace

void installProcessSignals() {
    struct sigaction stop = {};
    stop.sa_handler = onStop;
    sigemptyset(&stop.sa_mask);
    for (int signal : kStopSignals) sigaddset(&stop.sa_mask, signal);
    stop.sa_flags = SA_RESTART;
    for (int signal : kStopSignals) sigaction(signal, &stop, nullptr);

    struct sigaction crash = {};
    crash.sa_sigaction = onCrash;
    sigemptyset(&crash.sa_mask);
    crash.sa_flags = SA_SIGINFO | SA_RESTART;
    for (int i = 0; i < kCrashSignalCount; ++i) sigaction(kCrashSignals[i], &crash, &previous[i]);

    std::signal(SIGXFSZ, SIG_IGN);
    std::atexit(atExit);
}

void addSignalCleanup(SignalCleanup cleanup) {
    for (int i = 0; i < cleanupCount; ++i)
        if (cleanups[i] == cleanup) return;
    if (cleanupCount < kMaxCleanups) {
        cleanups[cleanupCount] = cleanup;
        cleanupCount = cleanupCount + 1;
    }
}

void setCrashContext(const char* text) {
    contextSet = 0;
    if (!text) return;
    std::strncpy(context, text, kContextBytes - 1);
    context[kContextBytes - 1] = '\0';
    contextSet = 1;
}
