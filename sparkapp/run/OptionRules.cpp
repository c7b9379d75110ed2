// The rules on which options go together. Each rule is one function that
// returns its own failure, or success; validate runs them in order and stops
// at the first that fails.
#include "OptionRules.h"

#include <spark.h>

#include <functional>
#include <vector>

#include "FramePattern.h"
#include "HostPixels.h"
#include "ImageFiles.h"
#include "LineDetectionRun.h"
#include "OutputPaths.h"

namespace {
using Rule = std::function<RunStatus(const RunOptions&)>;

RunStatus usage(const std::string& text) { return RunStatus::failure(ExitCode::Usage, text); }

// Images in and out: the main mode with its two names.
bool imagesIn(const RunOptions& options) {
    return options.mode == RunMode::Process && !options.files.empty();
}

// One utility mode at a time.
RunStatus oneMode(const RunOptions& options) {
    for (const std::string& option : options.modeOptions)
        if (option != options.modeOptions.front())
            return usage(option + " cannot be combined with another mode option");
    return RunStatus::success();
}

// Each mode takes its own files.
RunStatus modeFiles(const RunOptions& options) {
    const size_t count = options.files.size();
    switch (options.mode) {
        case RunMode::MakeChart:
            return count == 1 ? RunStatus::success() : usage("--make-chart takes one OUTPUT");
        case RunMode::SideBySide:
            return count == 3 ? RunStatus::success()
                              : usage("--side-by-side takes LEFT RIGHT OUTPUT");
        case RunMode::Compare:
            return count == 2 ? RunStatus::success() : usage("--compare takes two pictures");
        case RunMode::TraceChart:
            return count == 2 ? RunStatus::success()
                              : usage("--trace-chart takes IMAGE LINES.json");
        case RunMode::DetectLines:
            return count == 1 ? RunStatus::success()
                              : usage("--detect-lines LINES.json takes one INPUT");
        case RunMode::ListControls:
            return count == 0 ? RunStatus::success()
                              : usage("--list-controls takes no INPUT or OUTPUT");
        case RunMode::Process:
            // With no names at all, --save-setup alone saves the controls.
            if (count == 2 || (count == 0 && !options.saveSetupPath.empty()))
                return RunStatus::success();
            return usage("give one INPUT and one OUTPUT");
        case RunMode::Help:
            break;
    }
    return RunStatus::success();
}

// Set-up names travel in the host's information record.
RunStatus setupNames(const RunOptions& options) {
    const size_t limit = sizeof(SparkInfoStruct::Name);
    for (const std::string* name : {&options.setupPath, &options.saveSetupPath})
        if (name->size() >= limit)
            return usage("set-up file name too long (at most " + std::to_string(limit - 1) +
                         " bytes): " + *name);
    return RunStatus::success();
}

// The viewer's work is done on the first input frame.
RunStatus viewerNeedsImages(const RunOptions& options) {
    if (options.viewerWork() && !imagesIn(options))
        return usage("--lines, --autofind and --overlay work on an INPUT and OUTPUT");
    return RunStatus::success();
}

// The input and output names, and the frame range, are well formed.
RunStatus namesAndFrames(const RunOptions& options) {
    if (!imagesIn(options)) return RunStatus::success();
    FramePattern input, output;
    std::string error;
    if (!FramePattern::parse(options.files[0], &input, &error) ||
        !FramePattern::parse(options.files[1], &output, &error))
        return usage(error);
    std::vector<unsigned> frames;
    if (!options.frames.empty() && !parseFrameRange(options.frames, &frames, &error))
        return usage(error);
    return checkSequenceOutput(frames.size(), options.files[1]);
}

// The log curve lives in the 12-bit host and is undone only into floats.
RunStatus logEncoding(const RunOptions& options) {
    if (options.floatEncoding != FloatEncoding::Log || !imagesIn(options))
        return RunStatus::success();
    if (options.depth == kHostDepth8)
        return usage("--float-encoding log needs the 12-bit host, not --depth 8");
    const std::string& output = options.files[1];
    if (outputSampleType(output, kHostDepth12) != SampleType::Float)
        return usage("--float-encoding log needs a floating-point output (such as .exr): " +
                     output + " would clip what it carries");
    return RunStatus::success();
}

// The overlay picture overwrites no other output.
RunStatus overlayName(const RunOptions& options) {
    if (options.overlayPath.empty() || !imagesIn(options)) return RunStatus::success();
    FramePattern output;
    std::string error;
    unsigned frame = 0;
    std::vector<unsigned> frames;
    if (FramePattern::parse(options.files[1], &output, &error) &&
        output.holds(options.overlayPath, &frame) &&
        (options.frames.empty() || !parseFrameRange(options.frames, &frames, &error) ||
         (frame >= frames.front() && frame <= frames.back())))
        return usage("--overlay " + options.overlayPath + " is also an OUTPUT frame");
    if (!options.saveSetupPath.empty() && sameFile(options.overlayPath, options.saveSetupPath))
        return usage("--overlay " + options.overlayPath + " is also the --save-setup file");
    return RunStatus::success();
}

// Automatic lines: --detect-frames chooses the frames they are found in.
RunStatus detectedLines(const RunOptions& options) {
    const bool detecting = options.mode == RunMode::DetectLines || options.linesPath == kAutoLines;
    if (!options.detectFrames.empty() && !detecting)
        return usage("--detect-frames chooses the frames of --lines auto or --detect-lines");
    std::vector<unsigned> frames;
    std::string error;
    if (!options.detectFrames.empty() && !parseDetectFrames(options.detectFrames, &frames, &error))
        return usage(error);
    if (options.mode == RunMode::DetectLines && options.files.size() == 1 &&
        sameFile(options.detectLinesPath, options.files[0]))
        return usage("--detect-lines " + options.detectLinesPath + " is also the INPUT");
    return RunStatus::success();
}

const std::vector<Rule>& rules() {
    static const std::vector<Rule> all = {oneMode,     setupNames,     viewerNeedsImages,
                                          modeFiles,   namesAndFrames, logEncoding,
                                          overlayName, detectedLines};
    return all;
}
}  // namespace

RunStatus checkSequenceOutput(size_t frameCount, const std::string& outputName) {
    FramePattern output;
    std::string error;
    if (frameCount > 1 && FramePattern::parse(outputName, &output, &error) && !output.isSequence())
        return usage("several frames need a sequence output name (with # or %04d)");
    return RunStatus::success();
}

RunStatus validate(const RunOptions& options) {
    if (options.mode == RunMode::Help) return RunStatus::success();
    for (const Rule& rule : rules()) {
        RunStatus status = rule(options);
        if (!status.ok()) return status;
    }
    return RunStatus::success();
}
