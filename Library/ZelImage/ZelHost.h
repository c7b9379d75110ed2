// ZelHost: what the framework asks of the host, in one small typed service,
// and the facts of the current host request. The host binding fills the
// calls once when the plug-in is loaded and the frame facts at the start of
// every request; unit tests fill them with fakes. Nothing below the host
// binding knows the host's own C functions, records or globals.
//
// Every call may be left unset: an unset call does nothing and reads as 0,
// so framework code runs (and is tested) without a host. Control numbers are
// the host's field numbers of the plug-in's own pages; texts are only read.
// Overlay drawing goes through `drawing`, in frame units with the origin at
// the frame's lower left (the viewer sets up the projection).
#pragma once

// Facts of the current host request, written by the host binding per frame.
struct ZelFrameContext {
    int width = 0;  // host frame size in pixels
    int height = 0;
    int proxyFactor = 0;  // proxy sub-sampling factor (1 = full resolution)
    int processors = 0;   // processors the host offers for forked work
};

// OpenGL 1.x immediate-mode calls of the viewer overlay; `mode` values are
// OpenGL's (points 0, lines 1, polygon 9).
struct ZelDrawingCalls {
    void (*begin)(unsigned int mode) = nullptr;
    void (*end)() = nullptr;
    void (*vertex)(float x, float y) = nullptr;
    void (*colour)(float r, float g, float b) = nullptr;
};

struct ZelHost {
    // Random frame access: frame `frame` of clip `clip` into the caller's buffer.
    void (*getFrame)(int clip, int frame, unsigned long* destination) = nullptr;
    // A page field's animation curve at `time` (a frame number).
    float (*curveValue)(int control, float time) = nullptr;
    // Tells the host that a field's record changed, so it shows the new value.
    void (*controlUpdate)(int control) = nullptr;
    // Shows (enable) or hides (disable) a page field.
    void (*enableField)(int control) = nullptr;
    void (*disableField)(int control) = nullptr;
    // The host's message line.
    void (*message)(const char* text) = nullptr;
    // Runs worker(job) once on each of the host's processors and returns when
    // all are done; inside a worker, share() tells which share it is
    // (offset / length is the worker's index 0, 1, 2, ...).
    void (*fork)(void (*worker)(void* job), void* job) = nullptr;
    void (*share)(unsigned long* offset, unsigned long* length) = nullptr;
    ZelDrawingCalls drawing;

    ZelFrameContext frame;
};

// The process-wide service (one per loaded plug-in).
ZelHost& zelHost();

// Null-safe forms of the calls, for framework code.
inline float zelCurveValue(int control, double time) {
    return zelHost().curveValue ? zelHost().curveValue(control, static_cast<float>(time)) : 0.0f;
}
inline void zelControlUpdate(int control) {
    if (zelHost().controlUpdate) zelHost().controlUpdate(control);
}
inline void zelShowField(int control, bool hidden) {
    ZelHost& host = zelHost();
    if (hidden) {
        if (host.disableField) host.disableField(control);
    } else if (host.enableField) {
        host.enableField(control);
    }
}
inline void zelHostMessage(const char* text) {
    if (zelHost().message) zelHost().message(text);
}
