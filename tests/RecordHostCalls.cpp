// Test programs read back what the plug-in asked of the simulated host, so a
// test program linked with it records every call from the start (programs
// built on the simulated host leave recording off).
#include <SimHost.h>

namespace {
const bool kRecording = [] {
    simhost::Host::instance().setRecording(true);
    return true;
}();
}  // namespace
