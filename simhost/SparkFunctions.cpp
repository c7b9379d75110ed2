// The host functions a plug-in imports: messages, titles and channels,
// buffers and frames, the viewer, files and version queries. Each records its
// call and answers from the host's scriptable state. Multi-processing, curves
// and set-ups live in their own files.
#include <cstdio>
#include <cstring>
#include <vector>

#include "CallText.h"
#include "SimHost.h"

using simhost::argText;
using simhost::Host;

namespace {
Host& host() { return Host::instance(); }

// Fills a buffer record from one of the host's frame buffers.
void describeBuffer(const simhost::FrameBuffer& frame, unsigned long* pixels, int totalBuffers,
                    SparkMemBufStruct* record) {
    std::memset(record, 0, sizeof *record);
    const int inc = frame.pixelBytes();
    record->TotalBuffers = totalBuffers;
    record->Buffer = pixels;
    record->BufState = MEMBUF_REGISTERED;
    record->BufSize = static_cast<int>(frame.byteCount());
    record->BufFmt = frame.depth == 24   ? SPARKBUF_RGB_24_3x8
                     : frame.depth == 48 ? SPARKBUF_RGB_48_3x12
                                         : SPARKBUF_FMT_OTHER;
    record->BufWidth = frame.width;
    record->BufHeight = frame.height;
    record->BufDepth = frame.depth;
    record->Stride = frame.width * inc;
    record->Inc = inc;
}
}  // namespace

extern "C" {

// ---- messages ----

void sparkError(char* text) { host().record("sparkError", {argText(text)}); }

void sparkMessage(char* text) { host().record("sparkMessage", {argText(text)}); }

int sparkMessageConfirm(char* text) {
    host().record("sparkMessageConfirm", {argText(text)});
    Host& h = host();
    if (h.confirmAnswers.empty()) return h.confirmDefault;
    const int answer = h.confirmAnswers.front();
    h.confirmAnswers.pop_front();
    return answer;
}

// ---- titles and channels ----

void sparkControlTitle(int page, char* title) {
    host().record("sparkControlTitle", {argText(page), argText(title)});
}

void sparkClipControlTitle(int clip, char* title) {
    host().record("sparkClipControlTitle", {argText(clip), argText(title)});
}

int sparkSetControlName(int type, int controlNo, char* name) {
    host().record("sparkSetControlName", {argText(type), argText(controlNo), argText(name)});
    return 1;
}

void sparkControlUpdate(int controlNo) {
    host().record("sparkControlUpdate", {argText(controlNo)});
}

void sparkEnableParameter(int type, int controlNo) {
    host().record("sparkEnableParameter", {argText(type), argText(controlNo)});
}

void sparkDisableParameter(int type, int controlNo) {
    host().record("sparkDisableParameter", {argText(type), argText(controlNo)});
}

void sparkCeAddFolder(int level, char* name) {
    host().record("sparkCeAddFolder", {argText(level), argText(name)});
}

void sparkCeAddControl(int level, int type, int controlNo) {
    host().record("sparkCeAddControl", {argText(level), argText(type), argText(controlNo)});
}

// ---- buffers and frames ----

int sparkMemGetFreeMemory(void) {
    host().record("sparkMemGetFreeMemory", {});
    return host().freeBuffers;
}

int sparkMemGetBuffer(int id, SparkMemBufStruct* record) {
    Host& h = host();
    h.record("sparkMemGetBuffer", {argText(id)});
    if (!record || h.failingBufferIds.count(id)) return 0;
    auto found = h.buffers.find(id);
    if (found == h.buffers.end()) return 0;
    describeBuffer(found->second, found->second.storage.data(), static_cast<int>(h.buffers.size()),
                   record);
    return 1;
}

void sparkGetFrame(int clip, int frame, unsigned long* destination) {
    host().record("sparkGetFrame", {argText(clip), argText(frame)});
    if (host().frameSource) host().frameSource(clip, frame, destination);
}

// ---- viewer ----

void sparkGraphSetup(SparkGraphInfoStruct* record) {
    host().record("sparkGraphSetup", {});
    if (!record) return;
    std::memset(record, 0, sizeof *record);
    record->PixelAspectRatio = host().pixelAspect;
    record->GraphicsMaxX = host().graphicsMaxX;
    record->GraphicsMaxY = host().graphicsMaxY;
}

float sparkGetViewerRatio(void) {
    host().record("sparkGetViewerRatio", {});
    return host().viewerRatio;
}

void sparkViewingCursor(int kind) { host().record("sparkViewingCursor", {argText(kind)}); }

void sparkViewingDraw(void) { host().record("sparkViewingDraw", {}); }

void sparkCursorBusy(void) { host().record("sparkCursorBusy", {}); }

// ---- files ----

void sparkFileBrowserDisplay(char* path, char* extension, void (*callback)(char* path)) {
    Host& h = host();
    h.record("sparkFileBrowserDisplay", {argText(path), argText(extension)});
    if (h.fileBrowserChoice.empty() || !callback) return;
    // The callback may write into the path it is given, as with the host's own buffer.
    std::vector<char> choice(FILENAME_MAX, '\0');
    std::snprintf(choice.data(), choice.size(), "%s", h.fileBrowserChoice.c_str());
    callback(choice.data());
}

void sparkWorkingDir(char* dir) {
    host().record("sparkWorkingDir", {});
    if (!dir) return;
    std::snprintf(dir, FILENAME_MAX, "%s", host().workingDir.c_str());
}

// ---- other ----

float sparkAPIVersionInfo(void) {
    host().record("sparkAPIVersionInfo", {});
    return host().apiVersion;
}

const char* sparkProgramGetName(void) {
    host().record("sparkProgramGetName", {});
    return host().programName.c_str();
}

}  // extern "C"
