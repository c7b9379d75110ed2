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

void sparkError(char* text) {
    simhost::note("sparkError", text);
    host().deliverMessage(text);
}

void sparkMessage(char* text) {
    simhost::note("sparkMessage", text);
    host().deliverMessage(text);
}

int sparkMessageConfirm(char* text) {
    simhost::note("sparkMessageConfirm", text);
    Host& h = host();
    if (h.confirmSink) return h.confirmSink(argText(text));
    if (h.confirmAnswers.empty()) return h.confirmDefault;
    const int answer = h.confirmAnswers.front();
    h.confirmAnswers.pop_front();
    return answer;
}

// ---- titles and channels ----

void sparkControlTitle(int page, char* title) {
    simhost::note("sparkControlTitle", page, title);
    host().pageTitles[page] = argText(title);
}

void sparkClipControlTitle(int clip, char* title) {
    simhost::note("sparkClipControlTitle", clip, title);
}

int sparkSetControlName(int type, int controlNo, char* name) {
    simhost::note("sparkSetControlName", type, controlNo, name);
    return 1;
}

void sparkControlUpdate(int controlNo) { simhost::note("sparkControlUpdate", controlNo); }

void sparkEnableParameter(int type, int controlNo) {
    simhost::note("sparkEnableParameter", type, controlNo);
}

void sparkDisableParameter(int type, int controlNo) {
    simhost::note("sparkDisableParameter", type, controlNo);
}

void sparkCeAddFolder(int level, char* name) { simhost::note("sparkCeAddFolder", level, name); }

void sparkCeAddControl(int level, int type, int controlNo) {
    simhost::note("sparkCeAddControl", level, type, controlNo);
}

// ---- buffers and frames ----

int sparkMemGetFreeMemory(void) {
    simhost::note("sparkMemGetFreeMemory");
    return host().freeBuffers;
}

int sparkMemGetBuffer(int id, SparkMemBufStruct* record) {
    Host& h = host();
    simhost::note("sparkMemGetBuffer", id);
    if (!record || h.failingBufferIds.count(id)) return 0;
    auto found = h.buffers.find(id);
    if (found == h.buffers.end()) return 0;
    describeBuffer(found->second, found->second.storage.data(), static_cast<int>(h.buffers.size()),
                   record);
    return 1;
}

void sparkGetFrame(int clip, int frame, unsigned long* destination) {
    simhost::note("sparkGetFrame", clip, frame);
    if (host().frameSource) host().frameSource(clip, frame, destination);
}

// ---- viewer ----

void sparkGraphSetup(SparkGraphInfoStruct* record) {
    simhost::note("sparkGraphSetup");
    if (!record) return;
    std::memset(record, 0, sizeof *record);
    record->PixelAspectRatio = host().pixelAspect;
    record->GraphicsMaxX = host().graphicsMaxX;
    record->GraphicsMaxY = host().graphicsMaxY;
}

float sparkGetViewerRatio(void) {
    simhost::note("sparkGetViewerRatio");
    return host().viewerRatio;
}

void sparkViewingCursor(int kind) {
    simhost::note("sparkViewingCursor", kind);
    if (host().cursorSink) host().cursorSink(kind);
}

void sparkViewingDraw(void) { simhost::note("sparkViewingDraw"); }

void sparkCursorBusy(void) { simhost::note("sparkCursorBusy"); }

// ---- files ----

void sparkFileBrowserDisplay(char* path, char* extension, void (*callback)(char* path)) {
    Host& h = host();
    simhost::note("sparkFileBrowserDisplay", path, extension);
    const std::string chosen = h.fileBrowserSink
                                   ? h.fileBrowserSink(argText(path), argText(extension))
                                   : h.fileBrowserChoice;
    if (chosen.empty() || chosen.size() >= FILENAME_MAX || !callback) return;
    // The callback may write into the path it is given, as with the host's own buffer.
    std::vector<char> choice(FILENAME_MAX, '\0');
    std::snprintf(choice.data(), choice.size(), "%s", chosen.c_str());
    callback(choice.data());
}

void sparkWorkingDir(char* dir) {
    simhost::note("sparkWorkingDir");
    if (!dir) return;
    std::snprintf(dir, FILENAME_MAX, "%s", host().workingDir.c_str());
}

// ---- other ----

float sparkAPIVersionInfo(void) {
    simhost::note("sparkAPIVersionInfo");
    return host().apiVersion;
}

const char* sparkProgramGetName(void) {
    simhost::note("sparkProgramGetName");
    return host().programName.c_str();
}

}  // extern "C"
