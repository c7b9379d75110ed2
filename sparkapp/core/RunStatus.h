// RunStatus: how a step of sparkrun ended, and the process exit codes.
//
// Every step returns a status instead of throwing; main() prints the message
// on stderr and exits with the code. The codes are part of the tool's
// interface (scripts test them), so they never change meaning:
//   0 success
//   2 usage: bad option, unknown control name, value outside a control's range
//   3 input: missing, unreadable or unsupported input image or set-up,
//            a frame size a host frame cannot hold
//   4 output: missing output folder, unsupported output format, write failure
//   5 plug-in: not a plug-in, missing entry point, plug-in declined to start
//   6 processing: SparkProcess returned no frame
//   7 memory: an allocation failed while working (the frame passed the
//            estimate, or --max-memory raised the limit)
//   8 internal: an unexpected exception (a fault in sparkrun or the plug-in)
//   9 display: a window program cannot open its window (no display, no
//            OpenGL with the compatibility profile)
// A signal ends a run with 128 + its number (see ProcessSignals.h).
#pragma once

#include <string>

enum class ExitCode : int {
    Ok = 0,
    Usage = 2,
    Input = 3,
    Output = 4,
    Plugin = 5,
    Processing = 6,
    Memory = 7,
    Internal = 8,
    Display = 9,
};

struct RunStatus {
    ExitCode code = ExitCode::Ok;
    std::string message;

    bool ok() const { return code == ExitCode::Ok; }
    static RunStatus success() { return RunStatus(); }
    static RunStatus failure(ExitCode code, const std::string& message) {
        return RunStatus{code, message};
    }
};
