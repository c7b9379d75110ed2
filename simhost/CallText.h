// Text forms of call arguments for the recorded call list, and note(), which
// host functions call to record themselves.
//
// Integers print with "%d" (unsigned ones with "%u"), floats and doubles with
// "%g", texts as they stand; a null text prints as "(null)". Nothing is
// formatted while recording is off.
#pragma once

#include <new>
#include <string>

#include "SimHost.h"

namespace simhost {

std::string argText(int value);
std::string argText(unsigned value);
std::string argText(long value);
std::string argText(double value);
std::string argText(const char* text);

// Records the call name(args...) when the host records calls. A call that
// cannot be recorded for lack of memory is left out: host functions throw
// nothing at the plug-in.
template <class... Args>
void note(const char* name, const Args&... args) {
    Host& host = Host::instance();
    if (!host.recording()) return;
    try {
        host.record(name, {argText(args)...});
    } catch (const std::bad_alloc&) {
    }
}

}  // namespace simhost
