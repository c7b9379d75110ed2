// The frame loop.
#include "FrameLoop.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>

#include "ControlAssignments.h"
#include "DpxFastPath.h"
#include "FrameInputs.h"
#include "FrameMemory.h"
#include "FramePlan.h"
#include "ImageFiles.h"
#include "LensDataRun.h"
#include "ProgressBar.h"
#include "ReaderProcess.h"
#include "SparkSession.h"
#include "ViewerActions.h"

namespace {
// A run's first picture and how the frames after it are read.
struct FirstFrame {
    FilePixels picture;
    int depth = 0;
    ReadRequest next;  // the same size and depth as the first
};

// Tells how many pixels of a float frame the host frame cannot hold.
void reportClipped(const ClipCount& clipped, FloatEncoding encoding, const std::string& file) {
    if (!clipped.pixels) return;
    const bool linear = encoding == FloatEncoding::Linear;
    std::fprintf(stderr,
                 "%s: warning: %s: %zu pixel(s) had values outside 0 .. %g%s and were "
                 "clipped (largest %g, smallest %g)%s\n",
                 program_invocation_short_name, file.c_str(), clipped.pixels,
                 static_cast<double>(encodingTop(encoding)),
                 clipped.notNumbers ? " or not numbers" : "", static_cast<double>(clipped.largest),
                 static_cast<double>(clipped.smallest),
                 linear ? "; --float-encoding log carries 0 .. 64 through" : "");
}

// The first frame is weighed against the memory before it is decoded; the
// others must match its size, which is checked before they are.
RunStatus readFirstFrame(const RunOptions& options, const FramePlan& plan, FirstFrame* first) {
    ReadRequest request;
    request.requestedDepth = options.depth;
    request.memoryLimit = options.maxMemory ? options.maxMemory : memoryAvailable();
    request.limitIsOption = options.maxMemory != 0;
    request.forProcessing = true;
    const std::string name = plan.input.fileFor(plan.frames.front());
    RunStatus status = readImage(name, request, &first->picture, &first->depth);
    if (!status.ok()) return status;
    if (options.floatEncoding == FloatEncoding::Log && !first->picture.isFloat)
        return RunStatus::failure(
            ExitCode::Usage,
            "--float-encoding log is for floating-point inputs; " + name + " holds whole numbers");
    std::string error;
    if (!options.linesPath.empty() &&
        !checkLinesInFrame(plan.lines, first->picture.width, first->picture.height, error))
        return RunStatus::failure(ExitCode::Usage, options.linesPath + ": " + error);
    first->next.requestedDepth = first->depth;
    first->next.expectWidth = first->picture.width;
    first->next.expectHeight = first->picture.height;
    return RunStatus::success();
}

// The viewer's work on the first frame, before any frame is written: show
// it, draw the lines, AutoFind, write the overlay picture.
RunStatus runViewer(const RunOptions& options, SparkSession& session, const FramePlan& plan,
                    const FilePixels& picture) {
    ViewerActions actions(session, plan.frames.front(), static_cast<unsigned>(plan.frames.size()));
    const bool drawLines = !options.linesPath.empty();
    RunStatus status = actions.check(drawLines, options.autoFind, !options.overlayPath.empty());
    if (status.ok()) status = actions.show(picture);
    if (status.ok() && drawLines) status = actions.drawLines(plan.lines);
    if (status.ok() && options.autoFind) {
        std::string fitted;
        status = actions.autoFind(&fitted);
        if (status.ok()) std::printf("autofind: %s\n", fitted.c_str());
    }
    if (status.ok() && !options.overlayPath.empty()) {
        status = actions.writeOverlay(picture, options.overlayPath);
        if (status.ok() && options.verbose)
            std::printf("overlay: %s\n", options.overlayPath.c_str());
    }
    std::fflush(stdout);
    return status;
}

RunStatus startSession(const RunOptions& options, const std::string& pluginPath,
                       const FramePlan& plan, const FirstFrame& first, SparkSession& session) {
    session.setFloatEncoding(options.floatEncoding);
    RunStatus status = session.load(pluginPath);
    if (!status.ok()) return status;
    const FilePixels& picture = first.picture;
    status = session.start(picture.width, picture.height, first.depth, picture.pixelAspect,
                           options.setupPath);
    if (status.ok()) status = applyLensSource(options, session, picture.width, picture.height);
    if (status.ok()) status = applyControlValues(options.sets, options.keys, session.controls());
    if (status.ok() && options.verbose)
        std::printf("%s: %dx%d at %d bits, %zu frame(s)\n", pluginPath.c_str(), picture.width,
                    picture.height, first.depth == kHostDepth12 ? 12 : 8, plan.frames.size());
    if (status.ok() && options.viewerWork()) status = runViewer(options, session, plan, picture);
    return status;
}

// One frame through the plug-in and out to its file.
RunStatus renderFrame(const RunOptions& options, const FramePlan& plan, unsigned frame,
                      SparkSession& session, const FilePixels& picture, int depth) {
    const unsigned total = static_cast<unsigned>(plan.frames.size());
    const unsigned char* result = nullptr;
    std::string animated;
    reportClipped(countClipped(picture, options.floatEncoding), options.floatEncoding,
                  plan.input.fileFor(frame));
    RunStatus status = session.process(frame, total, picture, &result, &animated);
    if (!status.ok()) return status;
    const std::string name = plan.output.fileFor(frame);
    const RgbSamples samples = readHostFrame(result, session.width(), session.height(), depth,
                                             outputSampleType(name, depth), options.floatEncoding);
    status = writeImage(name, session.width(), session.height(), samples, picture.dateTime,
                        picture.origin);
    if (status.ok() && options.verbose)
        std::printf(
            "frame %u: %s%s%s  (peak memory: tool %s, reader %s; reader between frames %s)\n",
            frame, name.c_str(), animated.empty() ? "" : "  ", animated.c_str(),
            memoryText(peakMemory()).c_str(), memoryText(readerPeakMemory()).c_str(),
            memoryText(readerIdleMemory()).c_str());
    return status;
}

// The plain loop: read, process, write, then the next frame.
RunStatus renderSequentially(const RunOptions& options, const FramePlan& plan,
                             SparkSession& session, FirstFrame& first, FrameLoopWatch* watch) {
    RunStatus status;
    ProgressBar progress(static_cast<int>(plan.frames.size()), options.progress);
    const bool firstIsFloat = first.picture.isFloat;
    for (size_t i = 0; status.ok() && i < plan.frames.size(); ++i) {
        const unsigned frame = plan.frames[i];
        if (watch && watch->stopAsked && watch->stopAsked()) {
            watch->stopped = true;
            break;
        }
        // A still input is read once and stands for every frame.
        if (i > 0 && plan.input.isSequence()) {
            int frameDepth = 0;
            const std::string name = plan.input.fileFor(frame);
            status = readImage(name, first.next, &first.picture, &frameDepth);
            if (status.ok())
                status = checkFrameKind(options.floatEncoding, firstIsFloat, first.picture.isFloat,
                                        name);
            if (!status.ok()) break;
        }
        status = renderFrame(options, plan, frame, session, first.picture, first.depth);
        if (status.ok()) progress.advance(static_cast<int>(i + 1), frame);
        if (status.ok() && watch && watch->written)
            watch->written(
                FrameWritten{i + 1, plan.frames.size(), frame, plan.output.fileFor(frame)});
    }
    progress.finish();
    return status;
}

const int kReadLanes = 1;  // reader processes: one decodes ahead fast enough
const int kReadAhead = 2;  // frames decoded and waiting (N+1, N+2)
const int kWriters = 2;    // frames encoded and written at once

OutputSettings outputSettings(const RunOptions& options, const FramePlan& plan,
                              const SparkSession& session, FrameLoopWatch* watch) {
    OutputSettings settings;
    settings.width = session.width();
    settings.height = session.height();
    settings.depth = session.depth();
    settings.encoding = options.floatEncoding;
    const std::string first = plan.output.fileFor(plan.frames.front());
    settings.type = outputSampleType(first, session.depth());
    settings.dpx = writesDpx(first);
    settings.total = plan.frames.size();
    settings.verbose = options.verbose;
    settings.progress = options.progress;
    if (watch) settings.written = watch->written;
    return settings;
}

// The reading ahead starts as soon as the first frame is known, while the
// plug-in is loaded and started.
std::unique_ptr<FrameInputs> startReadingAhead(const RunOptions& options, const FramePlan& plan,
                                               const FirstFrame& first) {
    FrameSource source;
    source.plan = &plan;
    source.first = &first.picture;
    source.next = first.next;
    source.depth = first.depth;
    source.encoding = options.floatEncoding;
    const size_t words = (hostFrameBytes(first.picture.width, first.picture.height, first.depth) +
                          sizeof(unsigned long) - 1) /
                         sizeof(unsigned long);
    return std::make_unique<FrameInputs>(source, std::max<size_t>(words, 1), kReadLanes,
                                         kReadAhead);
}

// The pipeline: frames read ahead, processed here in order, written behind.
RunStatus renderPipelined(const RunOptions& options, const FramePlan& plan, SparkSession& session,
                          FrameInputs& inputs, FrameLoopWatch* watch) {
    HostFrame input = session.newHostFrame();
    HostFrame result = session.newHostFrame();
    FrameOutputs outputs(outputSettings(options, plan, session, watch), result.size(), kWriters);
    const unsigned total = static_cast<unsigned>(plan.frames.size());
    RunStatus status;
    for (size_t i = 0; i < plan.frames.size() && !outputs.failed(); ++i) {
        if (watch && watch->stopAsked && watch->stopAsked()) {
            watch->stopped = true;
            break;
        }
        const unsigned frame = plan.frames[i];
        TakenFrame taken;
        status = inputs.take(i, &input, &taken);
        if (!status.ok()) break;
        reportClipped(taken.clipped, options.floatEncoding, plan.input.fileFor(frame));
        std::string animated;
        status = session.processFilled(frame, total, &input, &result, &animated);
        if (!status.ok()) break;
        outputs.submit(i, frame, plan.output.fileFor(frame), taken.dateTime, taken.origin, animated,
                       &result);
        outputs.report();
    }
    // The frames before a failure here are written; a failed write before it is the one to tell.
    const RunStatus written = outputs.finish();
    return written.ok() ? status : written;
}
}  // namespace

RunStatus runFrames(const RunOptions& options, const std::string& pluginPath,
                    FrameLoopWatch* watch) {
    FramePlan plan;
    RunStatus status = planFrames(options, &plan);
    if (!status.ok()) return status;
    FirstFrame first;
    status = readFirstFrame(options, plan, &first);
    if (!status.ok()) return status;
    std::unique_ptr<FrameInputs> inputs;
    if (!options.sequential) inputs = startReadingAhead(options, plan, first);
    SparkSession session(options.quiet, options.processors);
    status = startSession(options, pluginPath, plan, first, session);
    if (status.ok())
        status = inputs ? renderPipelined(options, plan, session, *inputs, watch)
                        : renderSequentially(options, plan, session, first, watch);
    const RunStatus finished = session.finish(status.ok() ? options.saveSetupPath : "");
    return status.ok() ? finished : status;
}
