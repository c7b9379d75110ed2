// The rules on which options go together. Each rule is one function that
// returns its own failure, or success; validate runs them in order and stops
// at the first that fails.
#include "OptionRules.h"

#include <spark.h>

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <vector>

#include "FramePattern.h"
#include "HostPixels.h"
#include "ImageFiles.h"
#include "OutputPaths.h"

namespace {
using Rule = std::function<RunStatus(const RunOptions&)>;

RunStatus usage(const std::string& text) { return RunStatus::failure(ExitCode::Usage, text); }

// Images in and out: the main mode with its two names.
bool imagesIn(const RunOptions& options) {
    return options.mode == RunMode::Process && !options.files.empty() && !options.viewer;
}

// The lens exports are one mode: both may be written at once.
bool exportOption(const std::string& option) {
    return option == "--to-opencv" || option == "--to-lensfun";
}

// One utility mode at a time.
RunStatus oneMode(const RunOptions& options) {
    const std::string first = options.modeOptions.empty() ? "" : options.modeOptions.front();
    for (const std::string& option : options.modeOptions)
        if (option != first && !(exportOption(option) && exportOption(first)))
            return usage(option + " cannot be combined with another mode option");
    return RunStatus::success();
}

// A mode without pictures takes its frame's size from --size or one INPUT.
RunStatus frameSize(const RunOptions& options, const std::string& option) {
    const bool sized = options.sizeWidth > 0;
    if (options.files.size() + (sized ? 1 : 0) != 1)
        return usage(option + " needs the frame's size: --size WxH or one INPUT picture, not both");
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
        case RunMode::ListControls:
            return count == 0 ? RunStatus::success()
                              : usage("--list-controls takes no INPUT or OUTPUT");
        case RunMode::StMap:
        case RunMode::ExportLens:
            return frameSize(options, options.modeOptions.front());
        case RunMode::Process:
            if (options.viewer) return RunStatus::success();
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

// The viewer program shows one image or sequence, drawing the lines on its
// first frame.
RunStatus viewerProgram(const RunOptions& options) {
    if (!options.viewer) return RunStatus::success();
    if (options.files.size() > 1) return usage("give at most one IMAGE or PATTERN");
    if (options.autoFind && options.linesPath.empty())
        return usage("--autofind presses AutoFind after the lines of --lines are drawn");
    if (!options.linesPath.empty() && options.files.empty())
        return usage("--lines draws on an IMAGE: name one");
    if (options.files.empty()) return RunStatus::success();
    FramePattern input;
    std::string error;
    std::vector<unsigned> frames;
    if (!FramePattern::parse(options.files[0], &input, &error) ||
        (!options.frames.empty() && !parseFrameRange(options.frames, &frames, &error)))
        return usage(error);
    return RunStatus::success();
}

// The viewer's work is done on the first input frame.
RunStatus viewerNeedsImages(const RunOptions& options) {
    if (options.viewer) return RunStatus::success();
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

// An ST-map is a float OpenEXR file, one per frame when there are several.
RunStatus stMapNames(const RunOptions& options) {
    if (options.mode != RunMode::StMap)
        return options.overscanGiven ? usage("--overscan applies to --stmap")
                                     : RunStatus::success();
    const std::string& map = options.stMapPath;
    const size_t dot = map.rfind('.');
    std::string extension = dot == std::string::npos ? "" : map.substr(dot + 1);
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (extension != "exr") return usage("--stmap writes OpenEXR: " + map + " must end in .exr");
    FramePattern output, input;
    std::string error;
    if (!FramePattern::parse(map, &output, &error)) return usage(error);
    if (!options.files.empty() && !FramePattern::parse(options.files[0], &input, &error))
        return usage(error);
    std::vector<unsigned> frames;
    if (!options.frames.empty() && !parseFrameRange(options.frames, &frames, &error))
        return usage(error);
    const bool several = frames.size() > 1 || (options.frames.empty() && input.isSequence());
    return checkSequenceOutput(several ? 2 : 1, map);
}

// --from-lensfun's focal length, in millimetres.
bool lensfunFocal(const RunOptions& options, double* focal) {
    const std::string& text = options.fromLensfun[3];
    char* end = nullptr;
    *focal = std::strtod(text.c_str(), &end);
    return !text.empty() && end && !*end && *focal > 0.0 && std::isfinite(*focal);
}

// The lens comes from one program; the choice of correcting mode goes with it.
RunStatus lensSource(const RunOptions& options) {
    if (!options.fromOpenCv.empty() && !options.fromLensfun.empty())
        return usage("give --from-opencv or --from-lensfun, not both");
    if (options.correctInGiven && !options.lensSource())
        return usage("--correct-in applies to --from-opencv and --from-lensfun");
    if (!options.lensSource()) return RunStatus::success();
    const RunMode mode = options.mode;
    if (mode != RunMode::Process && mode != RunMode::ListControls && mode != RunMode::StMap &&
        mode != RunMode::ExportLens)
        return usage(
            "--from-opencv and --from-lensfun set the controls: use them with INPUT OUTPUT, "
            "--save-setup, --list-controls, --stmap, --to-opencv or --to-lensfun");
    if (options.fromLensfun.empty()) return RunStatus::success();
    double focal = 0.0;
    if (options.fromLensfun.size() != 4 || !lensfunFocal(options, &focal))
        return usage(
            "--from-lensfun takes MAKER MODEL LENS FOCAL, the focal length in "
            "millimetres last");
    if (options.sizeWidth <= 0 && options.files.empty())
        return usage("--from-lensfun needs the frame's size: an INPUT picture or --size WxH");
    return RunStatus::success();
}

// A lens written for other programs needs its focal length.
RunStatus lensExport(const RunOptions& options) {
    const bool exports = options.mode == RunMode::ExportLens;
    if (!exports && (options.focalMm > 0.0 || options.cropFactor > 0.0))
        return usage("--focal and --crop apply to --to-opencv and --to-lensfun");
    if (exports && !(options.focalMm > 0.0))
        return usage(
            "--to-opencv and --to-lensfun need the lens's --focal MM (and --crop for a camera "
            "smaller than 35 mm film)");
    return RunStatus::success();
}

const std::vector<Rule>& rules() {
    static const std::vector<Rule> all = {
        oneMode,     setupNames,  viewerProgram, viewerNeedsImages, modeFiles, namesAndFrames,
        logEncoding, overlayName, stMapNames,    lensSource,        lensExport};
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
