// The rules on which options go together. Each rule is one function that
// returns its own failure, or success; validate runs them in order and stops
// at the first that fails.
#include "OptionRules.h"

#include <spark.h>

#include <cctype>
#include <climits>
#include <cmath>
#include <cstdlib>
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
        case RunMode::DetectLines:
            return count == 1 ? RunStatus::success()
                              : usage("--detect-lines LINES.json takes one INPUT");
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

// A file a run reads or writes, as the clash rule names it: as the subject
// of its message ("--overlay") or as its object ("an OUTPUT frame").
struct NamedFile {
    std::string subject;
    std::string object;
    std::string name;
    bool sequence = false;  // a frame pattern (# or %d), read with the frames
};

std::vector<NamedFile> filesOf(const RunOptions& options, bool outputs) {
    std::vector<NamedFile> named;
    auto add = [&named](const std::string& subject, const std::string& object,
                        const std::string& name, bool sequence = false) {
        if (!name.empty()) named.push_back({subject, object, name, sequence});
    };
    const std::vector<std::string>& files = options.files;
    if (outputs) {
        if (imagesIn(options)) add("OUTPUT", "an OUTPUT frame", files[1], true);
        if (options.mode == RunMode::TraceChart && files.size() == 2)
            add("--trace-chart LINES.json", "the --trace-chart LINES.json", files[1]);
        if (options.mode == RunMode::MakeChart && files.size() == 1)
            add("--make-chart OUTPUT", "the --make-chart OUTPUT", files[0]);
        if (options.mode == RunMode::SideBySide && files.size() == 3)
            add("--side-by-side OUTPUT", "the --side-by-side OUTPUT", files[2]);
        add("--save-setup", "the --save-setup file", options.saveSetupPath);
        add("--overlay", "the --overlay file", options.overlayPath);
        if (options.mode == RunMode::StMap)
            add("--stmap", "an --stmap map", options.stMapPath, true);
        add("--to-opencv", "the --to-opencv file", options.toOpenCv);
        add("--to-lensfun", "the --to-lensfun file", options.toLensfun);
        if (options.mode == RunMode::DetectLines)
            add("--detect-lines", "the --detect-lines file", options.detectLinesPath);
        return named;
    }
    if (imagesIn(options)) add("INPUT", "an INPUT frame", files[0], true);
    if (options.mode == RunMode::TraceChart && files.size() == 2)
        add("--trace-chart IMAGE", "the --trace-chart IMAGE", files[0]);
    if (options.mode == RunMode::SideBySide && files.size() == 3) {
        add("--side-by-side LEFT", "the --side-by-side LEFT", files[0]);
        add("--side-by-side RIGHT", "the --side-by-side RIGHT", files[1]);
    }
    // The modes that read one picture only for its size or its lines.
    const RunMode mode = options.mode;
    if ((mode == RunMode::StMap || mode == RunMode::ExportLens || mode == RunMode::DetectLines) &&
        files.size() == 1)
        add("INPUT", "the INPUT", files[0], true);
    add("--setup", "the --setup file", options.setupPath);
    if (options.linesPath != kAutoLines) add("--lines", "the --lines file", options.linesPath);
    add("--from-opencv", "the --from-opencv calibration", options.fromOpenCv);
    return named;
}

// Whether writing output replaces other, at some frame the run renders (any
// frame when the frames come from the disk). Names are compared as places to
// write (a link under a name is replaced, not followed); an input is also
// the file its name reaches through links, which a write there replaces.
bool overwrites(const NamedFile& output, const NamedFile& other, bool otherIsInput,
                const RunOptions& options) {
    unsigned first = 0;
    unsigned last = UINT_MAX;
    std::vector<unsigned> frames;
    std::string error;
    if (!options.frames.empty() && parseFrameRange(options.frames, &frames, &error)) {
        first = frames.front();
        last = frames.back();
    }
    FramePattern written = FramePattern::single(output.name);
    FramePattern named = FramePattern::single(other.name);
    if ((output.sequence && !FramePattern::parse(output.name, &written, &error)) ||
        (other.sequence && !FramePattern::parse(other.name, &named, &error)))
        return false;
    if (written.sharesFile(named, first, last)) return true;
    unsigned frame = 0;
    return otherIsInput && !named.isSequence() && written.holds(resolvedPath(other.name), &frame) &&
           (!written.isSequence() || (frame >= first && frame <= last));
}

// No output overwrites an input or another output. A set-up saved over the
// one loaded is an update of it, as in the host, and not a clash.
RunStatus namesClash(const RunOptions& options) {
    const std::vector<NamedFile> inputs = filesOf(options, false);
    const std::vector<NamedFile> outputs = filesOf(options, true);
    for (size_t o = 0; o < outputs.size(); ++o) {
        std::vector<std::pair<const NamedFile*, bool>> others;  // with whether an input
        for (const NamedFile& input : inputs)
            if (!(outputs[o].subject == "--save-setup" && input.subject == "--setup"))
                others.emplace_back(&input, true);
        for (size_t earlier = 0; earlier < o; ++earlier)
            others.emplace_back(&outputs[earlier], false);
        for (const auto& other : others)
            if (overwrites(outputs[o], *other.first, other.second, options))
                return usage(outputs[o].subject + " " + outputs[o].name + " is also " +
                             other.first->object);
    }
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

// Automatic lines: --detect-frames chooses the frames they are found in.
RunStatus detectedLines(const RunOptions& options) {
    const bool detecting = options.mode == RunMode::DetectLines || options.linesPath == kAutoLines;
    if (!options.detectFrames.empty() && !detecting)
        return usage("--detect-frames chooses the frames of --lines auto or --detect-lines");
    std::vector<unsigned> frames;
    std::string error;
    if (!options.detectFrames.empty() && !parseDetectFrames(options.detectFrames, &frames, &error))
        return usage(error);
    return RunStatus::success();
}

const std::vector<Rule>& rules() {
    static const std::vector<Rule> all = {
        oneMode,     setupNames, viewerProgram, viewerNeedsImages, modeFiles,  namesAndFrames,
        logEncoding, namesClash, stMapNames,    lensSource,        lensExport, detectedLines};
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
