// RunOptions: what a user asked of a program on the simulated host, as one
// record. CommandLine.h fills it from a command line and OptionRules.h
// holds every rule on which options go together.
//
// Frame numbers are the host's (unsigned, usually from 1); sizes in pixels;
// memory in bytes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "FloatEncoding.h"

enum class RunMode {
    Process,
    ListControls,
    MakeChart,
    SideBySide,
    Compare,
    TraceChart,
    StMap,
    ExportLens,
    DetectLines,
    Help
};

// Which mode corrects the plate with a lens taken from OpenCV or lensfun.
enum class CorrectIn { Add, Remove };

struct RunOptions {
    RunMode mode = RunMode::Process;
    std::vector<std::string> modeOptions;  // every mode option given, in order
    std::vector<std::string> files;        // positional arguments
    std::string pluginPath;                // empty: straightlux.spark next to the program
    int depth = 0;                         // host depth 24 or 48; 0 follows the input
    std::string frames;                    // "A-B" or "A"; empty: all frames found, or 1
    std::vector<std::string> sets;         // "Name=Value"
    std::vector<std::string> keys;         // "Name@Frame=Value"
    std::string setupPath;
    std::string saveSetupPath;
    std::string linesPath;    // --lines: drawn in the viewer on the first frame
    bool autoFind = false;    // --autofind: AutoFind pressed after the lines are drawn
    std::string overlayPath;  // --overlay: the first frame with the plug-in's overlay
    int processors = 0;       // 0: the machine's
    uint64_t maxMemory = 0;   // bytes a frame may need; 0: the memory available
    FloatEncoding floatEncoding = FloatEncoding::Linear;
    bool verbose = false;
    bool quiet = false;
    int progress = -1;        // --progress 1, --no-progress 0; -1: when stderr is a terminal
    bool sequential = false;  // --sequential: one frame after another, nothing ahead
    int sizeWidth = 0;        // --size: a frame without a picture (chart, ST-map, lens); 0: none
    int sizeHeight = 0;
    double marginPercent = 10.0;
    // The interactive viewer's command line: at most one INPUT (an image or a
    // sequence pattern) and no OUTPUT; the session options mean the same.
    bool viewer = false;

    // Lens data in and out.
    std::string stMapPath;         // --stmap: the set-up's ST-map (pattern for frames)
    double overscanPercent = 0.0;  // --overscan: canvas added on each side
    bool overscanGiven = false;
    std::string fromOpenCv;                // --from-opencv: a calibration file
    std::vector<std::string> fromLensfun;  // --from-lensfun: MAKER MODEL LENS FOCAL
    CorrectIn correctIn = CorrectIn::Add;  // --correct-in
    bool correctInGiven = false;
    std::string toOpenCv;     // --to-opencv: the set-up as an OpenCV calibration
    std::string toLensfun;    // --to-lensfun: the set-up as a lensfun database entry
    double focalMm = 0.0;     // --focal: the lens's focal length for --to-*
    double cropFactor = 0.0;  // --crop: the camera's crop factor (0: not given, 1)

    // Automatic lines: --lines auto finds them in the input (LineDetectionRun.h).
    std::string detectLinesPath;  // --detect-lines: the lines file written
    std::string detectFrames;     // --detect-frames: the frames searched

    // --lines, --autofind or --overlay: work in the plug-in's viewer.
    bool viewerWork() const { return !linesPath.empty() || autoFind || !overlayPath.empty(); }
    // --from-opencv or --from-lensfun: the controls come from another program's lens.
    bool lensSource() const { return !fromOpenCv.empty() || !fromLensfun.empty(); }
};
