// The host's state, the recorded call list and the frame helpers.
#include "SimHost.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

#include "CallText.h"

namespace simhost {

namespace {
const int kBytesPerPixel24 = 3;  // one byte each for red, green, blue
const int kBytesPerPixel48 = 6;  // one 16-bit word each for red, green, blue
const int kBitsPerByte = 8;

// Bytes of one pixel at a host frame depth; depths other than the two host
// formats get their whole bytes, rounded up.
int bytesPerPixel(int depth) {
    if (depth == 24) return kBytesPerPixel24;
    if (depth == 48) return kBytesPerPixel48;
    return std::max(1, (depth + kBitsPerByte - 1) / kBitsPerByte);
}
}  // namespace

// ---- argument text ----

std::string argText(int value) {
    char text[32];
    std::snprintf(text, sizeof text, "%d", value);
    return text;
}

std::string argText(unsigned value) {
    char text[32];
    std::snprintf(text, sizeof text, "%u", value);
    return text;
}

std::string argText(long value) {
    char text[32];
    std::snprintf(text, sizeof text, "%ld", value);
    return text;
}

std::string argText(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

std::string argText(const char* text) { return text ? std::string(text) : std::string("(null)"); }

// ---- Call ----

std::string Call::str() const {
    std::string text = name + "(";
    for (size_t i = 0; i < args.size(); ++i) {
        if (i) text += ",";
        text += args[i];
    }
    return text + ")";
}

// ---- FrameBuffer ----

size_t FrameBuffer::byteCount() const {
    return static_cast<size_t>(width) * static_cast<size_t>(height) *
           static_cast<size_t>(bytesPerPixel(depth));
}

int FrameBuffer::pixelBytes() const { return bytesPerPixel(depth); }

void FrameBuffer::resize(int w, int h, int d) {
    width = std::max(0, w);
    height = std::max(0, h);
    depth = d;
    const size_t words = (byteCount() + sizeof(unsigned long) - 1) / sizeof(unsigned long);
    storage.assign(std::max<size_t>(words, 1), 0UL);
}

// ---- Host ----

Host& Host::instance() {
    static Host host;
    return host;
}

void Host::reset() {
    apiVersion = 4.0f;
    freeBuffers = 8;
    processors = 2;
    confirmAnswers.clear();
    confirmDefault = 1;
    workingDir = "/tmp";
    fileBrowserChoice.clear();
    viewerRatio = 1.0f;
    pixelAspect = 1.0f;
    graphicsMaxX = 1920;
    graphicsMaxY = 1200;
    programName = "simhost";
    buffers.clear();
    failingBufferIds.clear();
    frameSource = nullptr;
    curveFn = nullptr;
    curveKeys.clear();
    setupFiles = false;
    setupError.clear();
    messageSink = nullptr;
    fileBrowserSink = nullptr;
    setupLoads = 0;
    setupSaves = 0;
    confirmSink = nullptr;
    pageTitles.clear();
    cursorSink = nullptr;
    // The loaded plug-in stays: it belongs to its Plugin object, not to the script.
    clearCalls();
}

// A message that cannot be kept for lack of memory is dropped: nothing
// thrown may reach the plug-in, whose entry guard reports its own failures
// through this very function (a second throw there would end the process).
void Host::deliverMessage(const char* text) {
    if (!messageSink) return;
    std::lock_guard<std::mutex> lock(mutex_);
    try {
        messageSink(argText(text));
    } catch (const std::bad_alloc&) {
    }
}

void Host::record(const std::string& name, std::vector<std::string> args) {
    std::lock_guard<std::mutex> lock(mutex_);
    calls_.push_back(Call{name, std::move(args)});
}

std::vector<Call> Host::calls() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return calls_;
}

std::vector<Call> Host::callsNamed(const std::string& name) const {
    std::lock_guard<std::mutex> lock(mutex_);
    std::vector<Call> found;
    for (const Call& call : calls_)
        if (call.name == name) found.push_back(call);
    return found;
}

int Host::count(const std::string& name) const {
    std::lock_guard<std::mutex> lock(mutex_);
    return static_cast<int>(std::count_if(calls_.begin(), calls_.end(),
                                          [&](const Call& call) { return call.name == name; }));
}

bool Host::called(const std::string& callText) const {
    std::lock_guard<std::mutex> lock(mutex_);
    return std::any_of(calls_.begin(), calls_.end(),
                       [&](const Call& call) { return call.str() == callText; });
}

void Host::clearCalls() {
    std::lock_guard<std::mutex> lock(mutex_);
    calls_.clear();
}

SparkInfoStruct Host::makeInfo(int width, int height, int depth, unsigned frame,
                               const std::string& setupName) const {
    SparkInfoStruct info;
    std::memset(&info, 0, sizeof info);
    std::snprintf(info.Name, sizeof info.Name, "%s", setupName.c_str());
    info.TotalBuffers = static_cast<int>(buffers.size());
    info.TotalClips = 1;
    info.FramePixels = width * height;
    info.FrameBytes = width * height * bytesPerPixel(depth);
    info.Mode = 1;
    info.FrameNo = frame;
    info.FrameWidth = width;
    info.FrameHeight = height;
    info.FrameDepth = depth;
    info.NumProcessors = static_cast<char>(processors);
    info.Context = 1;
    return info;
}

FrameBuffer& Host::setBuffer(int id, int width, int height, int depth) {
    FrameBuffer& buffer = buffers[id];
    buffer.resize(width, height, depth);
    return buffer;
}

}  // namespace simhost
