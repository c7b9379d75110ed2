// The frame driver: one host request becomes one call of the plug-in's
// ProcessFrame on images converted from and back into the host's buffers.
#include <cstdio>

#include "BuildInfo.h"
#include "ControlBinding.h"
#include "DLImageConversion.h"
#include "EntryGuard.h"
#include "FrameImages.h"
#include "HostBindingGlobals.h"
#include "ImageZel.h"
#include "PluginInstance.h"
#include "SparkControlRecords.h"
#include "SparkEntryPoints.h"
#include "ZelSleep.h"

namespace {

constexpr int kRefusalPauseSeconds = 5;
constexpr int kCopyPixels = 1;
constexpr int kLeavePixels = 0;
constexpr float kPercent = 100.0f;
constexpr int kCursorNormal = 1;

// Sub-sampling factor of each entry of the proxy selector (SparkPup33).
constexpr int kProxyFactors[] = {1, 2, 3, 4, 6, 8, 12, 16, 32};
constexpr int kProxyFactorCount = sizeof kProxyFactors / sizeof kProxyFactors[0];
static_assert(kProxyFactorCount == kProxyControl.entryCount, "one factor per proxy entry");

int proxyFactor(int selector) {
    if (selector < 0 || selector >= kProxyFactorCount) return 1;
    return kProxyFactors[selector];
}

// The picture of a role converted from its host buffer, reusing the one kept
// from the last frame when it has the right size; the holder keeps the result.
ImageZel* convertFromHost(FrameImages::Role role, const SparkMemBufStruct& buffer, double aspect,
                          int factor, int copy) {
    FrameImages& images = frameImages();
    ImageZel* reuse =
        images.reusable(role, DLImageSide(DLwidth, factor), DLImageSide(DLheight, factor));
    ImageZel* image = nullptr;
    if (deep12) {
        image = ConvertFromDLImage12(reinterpret_cast<unsigned short*>(buffer.Buffer), DLwidth,
                                     DLheight, aspect, factor, reuse, copy);
    } else {
        image = ConvertFromDLImage8(reinterpret_cast<unsigned char*>(buffer.Buffer), DLwidth,
                                    DLheight, aspect, factor, reuse, copy);
    }
    images.keep(role, image);
    return image;
}

void convertToHost(ImageZel* image, const SparkMemBufStruct& buffer, int factor) {
    if (deep12) {
        ConvertToDLImage12(image, reinterpret_cast<unsigned short*>(buffer.Buffer), DLwidth,
                           DLheight, factor, truncate8);
    } else {
        ConvertToDLImage8(image, reinterpret_cast<unsigned char*>(buffer.Buffer), DLwidth, DLheight,
                          factor);
    }
}

// A frame whose pictures could not be made is refused: the user is told, and
// the host gets no frame rather than a wrong one.
unsigned long* refuseFrame() {
    frameImages().releaseAll();
    Instance.input.image = nullptr;
    Instance.output.image = nullptr;
    reportEntryFailure("not enough memory for the frame");
    return nullptr;
}

unsigned long* processFrame(const SparkInfoStruct& info) {
    Instance.frameStateWord = 0;
    sparkCursorBusy();

    if (no_buffers) {
        char message[256];
        std::snprintf(message, sizeof message, " %s cannot run due to insufficient buffers.",
                      kPluginName);
        sparkMessage(message);
        zelSleepSeconds(kRefusalPauseSeconds);
        return nullptr;
    }

    const int factor = proxyFactor(SparkPup33.Value);
    SparkGraphInfoStruct graph = {};
    sparkGraphSetup(&graph);
    const double aspect = graph.PixelAspectRatio;

    DLheight = info.FrameHeight;
    DLwidth = info.FrameWidth;
    DLscalesr = factor;
    DLnumProc = info.NumProcessors;
    Instance.frameStateFlag = 0;
    Instance.frame = static_cast<double>(info.FrameNo);
    Instance.frameField2 = static_cast<double>(info.TotalFrameNo);

    if (!sparkMemGetBuffer(SourceIDInput, &SourceBufInput)) return nullptr;
    SourceZel& input = Instance.input;
    input.clipIndex = SourceIDInput - 2;
    input.deep12 = static_cast<char>(deep12);
    input.image = convertFromHost(FrameImages::kInput, SourceBufInput, aspect, factor, kCopyPixels);
    // No temporary buffers are asked for, so random frame access reports that.
    input.tempBufferCount = 0;
    input.tempBuffers = nullptr;

    // On failure the input image is left alive behind the descriptor
    // pointer, deliberately (it stays kept for the next frame).
    if (!sparkMemGetBuffer(ResultIDOutput, &ResultBufOutput)) return nullptr;
    ResultZel& output = Instance.output;
    output.image =
        convertFromHost(FrameImages::kOutput, ResultBufOutput, aspect, factor, kLeavePixels);
    if (SourceBufInput.Buffer != nullptr && input.image == nullptr) return refuseFrame();
    if (ResultBufOutput.Buffer != nullptr && output.image == nullptr) return refuseFrame();

    copyHostValuesToControls(Instance.info);
    if (DL_Sync_Ctrl == 1) {
        Instance.SyncControls();
        DL_Sync_Ctrl = 0;
    }

    Instance.ProcessFrame();

    const float blend = hostValue(SparkFloat27, kBlendControl) / kPercent;
    if (blend > 0.0f && output.image != nullptr && input.image != nullptr) {
        output.image->InBlend(blend, input.image);
    }

    // Both pictures stay kept for the next frame; the descriptors point at them.
    convertToHost(output.image, ResultBufOutput, factor);
    sparkViewingCursor(kCursorNormal);
    return ResultBufOutput.Buffer;
}

}  // namespace

unsigned long* SparkProcess(SparkInfoStruct info) {
    return guardedCallback([&info] { return processFrame(info); });
}
