// ProcessSignals: what a program does when a signal arrives.
//
//   SIGINT, SIGTERM, SIGHUP: the temporary file being written (a picture or
//       a set-up) is removed, the cleanups added below run (the reader
//       process is killed), and the program exits with 128 + the signal's
//       number: 130, 143, 129.
//   SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT: a crash. One line on standard
//       error says so and where ("in the plug-in's SparkProcess, frame 12"),
//       temporaries are removed, then the handler that was there before runs
//       (a sanitizer's report, or the default: the process ends by the
//       signal, status 128 + its number, e.g. 139 or 134).
//   SIGXFSZ: ignored, so that a file-size limit (ulimit -f) is a write
//       error with a message instead of a silent death.
// A library that calls exit() also gets its temporaries removed.
#pragma once

#include <string>

void installProcessSignals();

// An async-signal-safe function run on a stop or a crash, after the
// temporaries are removed (a few at most; adding one twice keeps one).
using SignalCleanup = void (*)();
void addSignalCleanup(SignalCleanup cleanup);

// The step named in a crash message; null for none. The text is copied.
void setCrashContext(const char* text);

// Names the step for its lifetime: CrashContext during("in the plug-in's SparkProcess").
class CrashContext {
  public:
    explicit CrashContext(const std::string& text) { setCrashContext(text.c_str()); }
    ~CrashContext() { setCrashContext(nullptr); }
    CrashContext(const CrashContext&) = delete;
    CrashContext& operator=(const CrashContext&) = delete;
};
