// sparkrun: runs a Spark plug-in on image files through the simulated host,
// and the small picture utilities of the demonstration (chart, comparison,
// side by side). See usageText() for the command line and RunStatus.h for
// the exit codes.
#include <OutputFile.h>
#include <Viewer.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <new>
#include <set>
#include <thread>

#include "ChartTracing.h"
#include "ControlNames.h"
#include "FloatEncoding.h"
#include "FrameMemory.h"
#include "FramePattern.h"
#include "HostPixels.h"
#include "ImageCompare.h"
#include "ImageFiles.h"
#include "LinesFile.h"
#include "ProcessSignals.h"
#include "ProgressBar.h"
#include "ReaderProcess.h"
#include "RunOptions.h"
#include "SparkSession.h"
#include "TestChart.h"
#include "ViewerActions.h"

namespace {
const char kDefaultPlugin[] = "straightlux.spark";
const int kNominalWidth = 1920;  // frame size a session without images starts with
const int kNominalHeight = 1080;
const int kMaxProcessors = 64;

RunStatus usage(const std::string& text) { return RunStatus::failure(ExitCode::Usage, text); }

// straightlux.spark in the folder of this executable.
std::string defaultPluginPath() {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    if (length <= 0) return kDefaultPlugin;
    std::string self(path, static_cast<size_t>(length));
    const size_t slash = self.rfind('/');
    return (slash == std::string::npos ? std::string(".") : self.substr(0, slash)) + "/" +
           kDefaultPlugin;
}

int defaultProcessors() {
    const int count = static_cast<int>(std::thread::hardware_concurrency());
    return std::clamp(count, 1, kMaxProcessors);
}

// Applies --set then --key. A control set on the command line drops the keys
// a loaded set-up gave it; a keyed control loses its set-up keys.
RunStatus applyControls(const RunOptions& options, const ControlNames& table) {
    simhost::Host& host = simhost::Host::instance();
    std::set<int> setFloats;
    for (const std::string& assignment : options.sets) {
        const Control* control = nullptr;
        RunStatus status = table.set(assignment, &control);
        if (!status.ok()) return status;
        if (control->kind == ControlKind::Float) {
            host.curveKeys.erase(control->number);
            setFloats.insert(control->number);
        }
    }
    std::set<int> keyed;
    for (const std::string& text : options.keys) {
        const Control* control = nullptr;
        int frame = 0;
        float value = 0.0f;
        RunStatus status = table.parseKey(text, &control, &frame, &value);
        if (!status.ok()) return status;
        if (setFloats.count(control->number))
            return usage(control->name + " has both --set and --key: give it keys only");
        if (keyed.insert(control->number).second) host.curveKeys.erase(control->number);
        host.curveKeys[control->number][frame] = value;
    }
    return RunStatus::success();
}

// --lines, --autofind or --overlay: work in the plug-in's viewer.
bool viewerWork(const RunOptions& options) {
    return !options.linesPath.empty() || options.autoFind || !options.overlayPath.empty();
}

// A session without images: --list-controls, or only --save-setup.
RunStatus runControlsOnly(const RunOptions& options, const std::string& pluginPath) {
    SparkSession session(options.quiet, options.processors);
    RunStatus status = session.load(pluginPath);
    if (!status.ok()) return status;
    const int depth = options.depth ? options.depth : kHostDepth8;
    status = session.start(kNominalWidth, kNominalHeight, depth, 1.0f, options.setupPath);
    if (status.ok()) status = applyControls(options, session.controls());
    if (status.ok() && options.mode == RunMode::ListControls)
        std::fputs(session.controls().listing().c_str(), stdout);
    const RunStatus finished = session.finish(status.ok() ? options.saveSetupPath : "");
    return status.ok() ? finished : status;
}

// Tells how many pixels of a float frame the host frame cannot hold.
void reportClipped(const ClipCount& clipped, FloatEncoding encoding, const std::string& file) {
    if (!clipped.pixels) return;
    const bool linear = encoding == FloatEncoding::Linear;
    std::fprintf(stderr,
                 "sparkrun: warning: %s: %zu pixel(s) had values outside 0 .. %g%s and were "
                 "clipped (largest %g, smallest %g)%s\n",
                 file.c_str(), clipped.pixels, static_cast<double>(encodingTop(encoding)),
                 clipped.notNumbers ? " or not numbers" : "", static_cast<double>(clipped.largest),
                 static_cast<double>(clipped.smallest),
                 linear ? "; --float-encoding log carries 0 .. 64 through" : "");
}

bool sameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return a == b || std::filesystem::weakly_canonical(a, error) ==
                         std::filesystem::weakly_canonical(b, error);
}

// The overlay picture can be drawn and written, and overwrites no other output.
RunStatus checkOverlayPath(const RunOptions& options, const FramePattern& output,
                           const std::vector<unsigned>& frames) {
    for (unsigned frame : frames)
        if (sameFile(options.overlayPath, output.fileFor(frame)))
            return usage("--overlay " + options.overlayPath + " is also an OUTPUT frame");
    if (!options.saveSetupPath.empty() && sameFile(options.overlayPath, options.saveSetupPath))
        return usage("--overlay " + options.overlayPath + " is also the --save-setup file");
    RunStatus status = checkOutputPath(options.overlayPath);
    if (!status.ok()) return status;
    std::string why;
    if (!simhost::Viewer::available(&why))
        return RunStatus::failure(ExitCode::Output,
                                  "--overlay needs OpenGL off-screen drawing: " + why);
    return RunStatus::success();
}

// Reads --lines: a file that cannot be opened is an input error, one that is
// not a lines file a usage error naming the fault's position.
RunStatus readLines(const std::string& path, LinesFile* lines) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        return RunStatus::failure(
            ExitCode::Input, "cannot open the lines file " + path + ": " + std::strerror(errno));
    if (S_ISDIR(status.st_mode))
        return RunStatus::failure(ExitCode::Input, "the lines file " + path + " is a folder");
    if (!std::ifstream(path))
        return RunStatus::failure(
            ExitCode::Input, "cannot open the lines file " + path + ": " + std::strerror(errno));
    std::string error;
    if (!readLinesFile(path, *lines, error))
        return usage("not a lines file: " + error +
                     " (the form is {\"lines\": [[[x, y], [x, y], ...], ...]})");
    return RunStatus::success();
}

// The viewer's work on the first frame, before any frame is written: show
// it, draw the lines, AutoFind, write the overlay picture.
RunStatus runViewer(const RunOptions& options, SparkSession& session, const FilePixels& picture,
                    unsigned frame, unsigned totalFrames, const LinesFile& lines) {
    ViewerActions actions(session, frame, totalFrames);
    const bool drawLines = !options.linesPath.empty();
    RunStatus status = actions.check(drawLines, options.autoFind, !options.overlayPath.empty());
    if (status.ok()) status = actions.show(picture);
    if (status.ok() && drawLines) status = actions.drawLines(lines);
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

// The frames to run and the checks that can be made before any work.
RunStatus planFrames(const RunOptions& options, const FramePattern& input,
                     const FramePattern& output, std::vector<unsigned>* frames) {
    std::string error;
    if (!options.frames.empty()) {
        if (!parseFrameRange(options.frames, frames, &error)) return usage(error);
    } else if (input.isSequence()) {
        *frames = input.existingFrames();
        if (frames->empty())
            return RunStatus::failure(ExitCode::Input, "no input files match " + input.text());
    } else {
        *frames = {1};
    }
    if (frames->size() > 1 && !output.isSequence())
        return usage("several frames need a sequence output name (with # or %04d)");
    for (unsigned frame : *frames) {
        const std::string name = input.fileFor(frame);
        struct stat status;
        if (stat(name.c_str(), &status) != 0)
            return RunStatus::failure(ExitCode::Input, "input file not found: " + name);
        if (!input.isSequence()) break;
    }
    if (options.floatEncoding == FloatEncoding::Log) {
        if (options.depth == kHostDepth8)
            return usage("--float-encoding log needs the 12-bit host, not --depth 8");
        if (outputSampleType(output.fileFor(frames->front()), kHostDepth12) != SampleType::Float)
            return usage("--float-encoding log needs a floating-point output (such as .exr): " +
                         output.fileFor(frames->front()) + " would clip what it carries");
    }
    RunStatus status = checkOutputPath(output.fileFor(frames->front()));
    // A sequence's longest name is its last frame's.
    if (status.ok() && output.isSequence())
        status = checkOutputFolder(output.fileFor(frames->back()));
    if (status.ok() && !options.overlayPath.empty())
        status = checkOverlayPath(options, output, *frames);
    return status;
}

RunStatus runFrames(const RunOptions& options, const std::string& pluginPath) {
    if (options.files.size() != 2) return usage("give one INPUT and one OUTPUT");
    FramePattern input, output;
    std::string error;
    if (!FramePattern::parse(options.files[0], &input, &error) ||
        !FramePattern::parse(options.files[1], &output, &error))
        return usage(error);
    std::vector<unsigned> frames;
    RunStatus status = planFrames(options, input, output, &frames);
    if (!status.ok()) return status;
    LinesFile lines;
    if (!options.linesPath.empty()) {
        status = readLines(options.linesPath, &lines);
        if (!status.ok()) return status;
    }

    // The first frame is weighed against the memory before it is decoded;
    // the others must match its size, which is checked before they are.
    FilePixels picture;
    int depth = 0;
    ReadRequest first;
    first.requestedDepth = options.depth;
    first.memoryLimit = options.maxMemory ? options.maxMemory : memoryAvailable();
    first.limitIsOption = options.maxMemory != 0;
    first.forProcessing = true;
    status = readImage(input.fileFor(frames.front()), first, &picture, &depth);
    if (!status.ok()) return status;
    if (options.floatEncoding == FloatEncoding::Log && !picture.isFloat)
        return usage("--float-encoding log is for floating-point inputs; " +
                     input.fileFor(frames.front()) + " holds whole numbers");
    if (!options.linesPath.empty() &&
        !checkLinesInFrame(lines, picture.width, picture.height, error))
        return usage(options.linesPath + ": " + error);
    ReadRequest next;
    next.requestedDepth = depth;
    next.expectWidth = picture.width;
    next.expectHeight = picture.height;

    SparkSession session(options.quiet, options.processors);
    session.setFloatEncoding(options.floatEncoding);
    status = session.load(pluginPath);
    if (!status.ok()) return status;
    status =
        session.start(picture.width, picture.height, depth, picture.pixelAspect, options.setupPath);
    if (status.ok()) status = applyControls(options, session.controls());
    if (status.ok() && options.verbose)
        std::printf("%s: %dx%d at %d bits, %zu frame(s)\n", pluginPath.c_str(), picture.width,
                    picture.height, depth == kHostDepth12 ? 12 : 8, frames.size());
    const unsigned total = static_cast<unsigned>(frames.size());
    if (status.ok() && viewerWork(options))
        status = runViewer(options, session, picture, frames.front(), total, lines);

    ProgressBar progress(static_cast<int>(frames.size()));
    for (size_t i = 0; status.ok() && i < frames.size(); ++i) {
        const unsigned frame = frames[i];
        // A still input is read once and stands for every frame.
        if (i > 0 && input.isSequence()) {
            int frameDepth = 0;
            status = readImage(input.fileFor(frame), next, &picture, &frameDepth);
            if (!status.ok()) break;
        }
        const unsigned char* result = nullptr;
        std::string animated;
        reportClipped(countClipped(picture, options.floatEncoding), options.floatEncoding,
                      input.fileFor(frame));
        status = session.process(frame, total, picture, &result, &animated);
        if (!status.ok()) break;
        const std::string name = output.fileFor(frame);
        const RgbSamples samples =
            readHostFrame(result, session.width(), session.height(), depth,
                          outputSampleType(name, depth), options.floatEncoding);
        status = writeImage(name, session.width(), session.height(), samples, picture.dateTime);
        if (!status.ok()) break;
        if (options.verbose)
            std::printf(
                "frame %u: %s%s%s  (peak memory: tool %s, reader %s; reader between frames %s)\n",
                frame, name.c_str(), animated.empty() ? "" : "  ", animated.c_str(),
                memoryText(peakMemory()).c_str(), memoryText(readerPeakMemory()).c_str(),
                memoryText(readerIdleMemory()).c_str());
        progress.advance(static_cast<int>(i + 1), frame);
    }
    progress.finish();
    const RunStatus finished = session.finish(status.ok() ? options.saveSetupPath : "");
    return status.ok() ? finished : status;
}

std::string folderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Removes what runs that died on this machine left in the folder of path.
void sweepStaleTemporaries(const std::string& path, time_t runStart, bool verbose) {
    const std::string folder = folderOf(path);
    const int removed = safeio::removeStaleTemporaries(folder, runStart);
    if (removed && verbose)
        std::printf("removed %d temporary file(s) left by an earlier run in %s\n", removed,
                    folder.c_str());
}

// The file a mode writes, or empty.
std::string outputOf(const RunOptions& options) {
    switch (options.mode) {
        case RunMode::Process:
            return options.files.size() == 2 ? options.files[1] : "";
        case RunMode::MakeChart:
            return options.files.size() == 1 ? options.files[0] : "";
        case RunMode::SideBySide:
            return options.files.size() == 3 ? options.files[2] : "";
        case RunMode::TraceChart:
            return options.files.size() == 2 ? options.files[1] : "";
        default:
            return "";
    }
}

RunStatus run(RunOptions& options, time_t runStart) {
    if (!options.processors) options.processors = defaultProcessors();
    const std::string pluginPath =
        options.pluginPath.empty() ? defaultPluginPath() : options.pluginPath;
    // Set-up names travel in the host's information record.
    for (const std::string* name : {&options.setupPath, &options.saveSetupPath})
        if (name->size() >= sizeof(SparkInfoStruct::Name))
            return usage("set-up file name too long (at most " +
                         std::to_string(sizeof(SparkInfoStruct::Name) - 1) + " bytes): " + *name);
    // A set-up that cannot be saved is found out before any frame is made.
    if (!options.saveSetupPath.empty()) {
        const RunStatus status = checkOutputFolder(options.saveSetupPath);
        if (!status.ok()) return status;
        sweepStaleTemporaries(options.saveSetupPath, runStart, options.verbose);
    }
    const bool imagesIn = options.mode == RunMode::Process && !options.files.empty();
    if (viewerWork(options) && !imagesIn && options.mode != RunMode::Help)
        return usage("--lines, --autofind and --overlay work on an INPUT and OUTPUT");
    const std::string output = outputOf(options);
    if (!output.empty()) sweepStaleTemporaries(output, runStart, options.verbose);
    if (!options.overlayPath.empty())
        sweepStaleTemporaries(options.overlayPath, runStart, options.verbose);
    switch (options.mode) {
        case RunMode::Help:
            std::fputs(usageText(), stdout);
            return RunStatus::success();
        case RunMode::MakeChart:
            if (options.files.size() != 1) return usage("--make-chart takes one OUTPUT");
            return writeTestChart(options.files[0],
                                  options.chartWidth ? options.chartWidth : kChartWidth,
                                  options.chartHeight ? options.chartHeight : kChartHeight);
        case RunMode::SideBySide:
            if (options.files.size() != 3) return usage("--side-by-side takes LEFT RIGHT OUTPUT");
            return writeSideBySide(options.files[0], options.files[1], options.files[2]);
        case RunMode::Compare: {
            if (options.files.size() != 2) return usage("--compare takes two pictures");
            double mean = 0.0;
            RunStatus status =
                meanAbsDifference(options.files[0], options.files[1], options.marginPercent, &mean);
            if (status.ok())
                std::printf("mean abs difference %.3f (8-bit levels, %g%% margin)\n", mean,
                            options.marginPercent);
            return status;
        }
        case RunMode::TraceChart: {
            if (options.files.size() != 2) return usage("--trace-chart takes IMAGE LINES.json");
            LinesFile traced;
            RunStatus status = traceChartFile(options.files[0], options.files[1], &traced);
            if (status.ok()) {
                size_t points = 0;
                for (const auto& line : traced.lines) points += line.size();
                std::printf("traced %zu grid lines, %zu points: %s\n", traced.lines.size(), points,
                            options.files[1].c_str());
            }
            return status;
        }
        case RunMode::ListControls:
            if (!options.files.empty()) return usage("--list-controls takes no INPUT or OUTPUT");
            return runControlsOnly(options, pluginPath);
        case RunMode::Process:
            if (options.files.empty() && !options.saveSetupPath.empty())
                return runControlsOnly(options, pluginPath);
            return runFrames(options, pluginPath);
    }
    return RunStatus::success();
}
}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::string(argv[1]) == kReaderProcessArgument) return serveReaderRequests();
    const time_t runStart = time(nullptr);
    installProcessSignals();
    configureImageLibrary();
    RunStatus status;
    try {
        RunOptions options;
        status = parseCommandLine(argc, argv, &options);
        if (status.ok()) status = run(options, runStart);
    } catch (const std::bad_alloc&) {
        status = RunStatus::failure(ExitCode::Memory,
                                    "out of memory: an allocation failed (a smaller frame, a "
                                    "proxy or more memory would help)");
    } catch (const std::exception& error) {
        status =
            RunStatus::failure(ExitCode::Internal, std::string("internal error: ") + error.what());
    } catch (...) {
        status = RunStatus::failure(ExitCode::Internal, "internal error: an unknown exception");
    }
    if (status.ok()) return 0;
    std::fprintf(stderr, "sparkrun: %s\n", status.message.c_str());
    if (status.code == ExitCode::Usage) std::fputs("(sparkrun --help shows the usage)\n", stderr);
    return static_cast<int>(status.code);
}
