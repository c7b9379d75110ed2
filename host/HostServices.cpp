#include "HostServices.h"

#include "SparkApi.h"
#include "ZelHost.h"

namespace {

// What every forked worker receives: the framework's worker and its job.
struct ForkCall {
    void (*worker)(void* job);
    void* job;
};

// The host calls this once per processor with the four pointers handed to
// sparkMpFork; only the first is needed.
void forkEntry(void* call, void*, void*, void*) {
    const ForkCall& fork = *static_cast<const ForkCall*>(call);
    fork.worker(fork.job);
}

constexpr int kForkArgCount = 4;

void forkOnHost(void (*worker)(void* job), void* job) {
    ForkCall call{worker, job};
    // The call record lives in this frame: sparkMpFork returns only when
    // every worker has finished.
    sparkMpFork(reinterpret_cast<void (*)()>(forkEntry), kForkArgCount, &call, job,
                &zelHost().frame.processors, &zelHost().frame.proxyFactor);
}

float curveOnHost(int control, float time) {
    return sparkGetCurveValuef(SPARK_UI_CONTROL, control, time);
}

void enableOnHost(int control) { sparkEnableParameter(SPARK_UI_CONTROL, control); }
void disableOnHost(int control) { sparkDisableParameter(SPARK_UI_CONTROL, control); }

// The host's prototype takes a plain char*; it only reads the text.
void messageOnHost(const char* text) { sparkMessage(const_cast<char*>(text)); }

void beginOnHost(unsigned int mode) { glBegin(mode); }

}  // namespace

void installHostServices() {
    ZelHost& host = zelHost();
    host.getFrame = sparkGetFrame;
    host.curveValue = curveOnHost;
    host.controlUpdate = sparkControlUpdate;
    host.enableField = enableOnHost;
    host.disableField = disableOnHost;
    host.message = messageOnHost;
    host.fork = forkOnHost;
    host.share = sparkMpInfo;
    host.drawing.begin = beginOnHost;
    host.drawing.end = glEnd;
    host.drawing.vertex = glVertex2f;
    host.drawing.colour = glColor3f;
}
