// Parsing sparkrun's command line.
#include "RunOptions.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "FrameMemory.h"
#include "HostPixels.h"

namespace {
const int kMaxProcessors = 64;  // the host record holds the count in a signed byte

RunStatus usage(const std::string& text) { return RunStatus::failure(ExitCode::Usage, text); }

bool parseInt(const std::string& text, int* value) {
    if (text.empty()) return false;
    char* end = nullptr;
    errno = 0;
    const long number = std::strtol(text.c_str(), &end, 10);
    if (errno || !end || *end || number < -2147483647L - 1 || number > 2147483647L) return false;
    *value = static_cast<int>(number);
    return true;
}

bool parseSize(const std::string& text, int* width, int* height) {
    const size_t x = text.find('x');
    return x != std::string::npos && parseInt(text.substr(0, x), width) &&
           parseInt(text.substr(x + 1), height);
}

bool setMode(RunOptions* options, RunMode mode, const std::string& option, RunStatus* status) {
    if (options->mode != RunMode::Process && options->mode != mode) {
        *status = usage(option + " cannot be combined with another mode option");
        return false;
    }
    options->mode = mode;
    return true;
}
}  // namespace

const char* usageText() {
    return R"(usage: sparkrun [options] INPUT OUTPUT
       sparkrun [options] --list-controls
       sparkrun [options] --save-setup FILE          (no images: just save the controls)
       sparkrun --make-chart OUTPUT [--size WxH]
       sparkrun --side-by-side LEFT RIGHT OUTPUT
       sparkrun --compare A B [--margin PERCENT]
       sparkrun --trace-chart IMAGE LINES.json

Runs a Spark plug-in (by default straightlux.spark next to this tool) on image
files through the simulated host. INPUT and OUTPUT are any files OpenImageIO
reads and writes; a sequence is a name with a run of # (shot.####.dpx, the
count is the zero padding) or %d / %04d. A single INPUT with a sequence OUTPUT
renders the still for every frame.

options:
  --plugin PATH          the plug-in to run
  --depth 8|12           host frame depth (default: 12 for inputs deeper than 8 bits)
  --frames A-B           frame numbers (default: the sequence files found, or 1)
  --set NAME=VALUE       set a control by its title: --set Radial1=-0.08
                         --set "Centre X=52" --set Sampling=Cubic --set Proxy=1/2
                         --set "Auto Preview=off"
  --key NAME@FRAME=VALUE animation key of a number field: --key Radial1@10=-0.05
  --setup FILE           load a saved set-up (--set and --key win over it)
  --save-setup FILE      save every control value and key at the end
  --list-controls        print every control with its value and range or entries
  --lines FILE           draw these lines in the plug-in's viewer on the first
                         frame, as a user draws them (LineEdit "Add Line", one
                         click per point): JSON {"lines": [[[x, y], ...], ...]},
                         image pixels, x right, y down from the top-left pixel
                         centre, two points or more a line
  --autofind             press AutoFind after the lines are drawn; prints the
                         fitted Radial1 and Radial2, which the frames written
                         use and --save-setup keeps
  --overlay FILE         write the first input frame with the plug-in's overlay
                         drawn on it (lines, handles, centre, fitted points)
  --threads N            processors the host offers the plug-in
  --float-encoding linear|log
                         how float (scene-linear) inputs enter the 12-bit host:
                         linear clips to 0..1 (and says how many pixels it
                         clipped); log carries 0..64 on a log curve and undoes it
                         on output (float input and float output such as .exr,
                         12-bit host; within 0.1% of value + 1/64)
  --max-memory SIZE      memory a frame may need (512M, 8G, ...); default: what
                         the machine has free. A larger frame is refused (exit 3)
  --verbose              report each frame, its animated values and the peak memory
  --quiet                drop the plug-in's console output and messages (a crash
                         or a sanitizer report still shows)
  --help

utilities:
  --make-chart OUTPUT    the test chart (--size WxH, default 960x540)
  --side-by-side L R OUT two pictures side by side
  --compare A B          mean absolute difference over the interior (--margin)
  --trace-chart IMAGE LINES.json
                         find the test chart's outer grid lines in IMAGE (as
                         distorted or not) and write them as a lines file

exit codes: 0 done; 2 usage (bad option, control name or value; a lines file
that is not valid JSON or has the wrong shape, a line of fewer than two
points, a point outside the frame; AutoFind without lines, or with no line of
three points or more); 3 input (missing, unreadable, damaged or cut-off image,
set-up or lines file, a frame too large or needing more memory than allowed,
no chart grid found by --trace-chart); 4 output (missing folder, name too
long, unsupported format, write failure such as a full disk, --overlay
without OpenGL off-screen drawing (libOSMesa)); 5 plug-in (not a plug-in,
declined to start, lacks the viewer entry points or controls --lines,
--autofind or --overlay need); 6 processing (no frame returned); 7 out of
memory while working; 8 internal error; 129, 130, 143 stopped by SIGHUP,
SIGINT, SIGTERM (the file being written is removed); a crash prints a line
and ends by its signal (128 + N, e.g. 139)
)";
}

RunStatus parseCommandLine(int argc, char** argv, RunOptions* options) {
    RunStatus status;
    for (int i = 1; i < argc; ++i) {
        std::string argument = argv[i];
        if (argument.size() < 2 || argument.compare(0, 2, "--") != 0 || argument == "--") {
            if (argument == "--") {
                for (++i; i < argc; ++i) options->files.push_back(argv[i]);
                break;
            }
            if (argument.size() > 1 && argument[0] == '-')
                return usage("unknown option " + argument);
            options->files.push_back(argument);
            continue;
        }
        std::string value;
        bool hasValue = false;
        const size_t equals = argument.find('=');
        if (equals != std::string::npos) {
            value = argument.substr(equals + 1);
            argument = argument.substr(0, equals);
            hasValue = true;
        }
        // Options that take no value.
        if (argument == "--help" || argument == "--list-controls" || argument == "--verbose" ||
            argument == "--quiet" || argument == "--make-chart" || argument == "--side-by-side" ||
            argument == "--compare" || argument == "--trace-chart" || argument == "--autofind") {
            if (hasValue) return usage(argument + " takes no value");
            if (argument == "--help") options->mode = RunMode::Help;
            if (argument == "--verbose") options->verbose = true;
            if (argument == "--quiet") options->quiet = true;
            if (argument == "--list-controls" &&
                !setMode(options, RunMode::ListControls, argument, &status))
                return status;
            if (argument == "--make-chart" &&
                !setMode(options, RunMode::MakeChart, argument, &status))
                return status;
            if (argument == "--side-by-side" &&
                !setMode(options, RunMode::SideBySide, argument, &status))
                return status;
            if (argument == "--compare" && !setMode(options, RunMode::Compare, argument, &status))
                return status;
            if (argument == "--trace-chart" &&
                !setMode(options, RunMode::TraceChart, argument, &status))
                return status;
            if (argument == "--autofind") options->autoFind = true;
            continue;
        }
        if (!hasValue) {
            if (i + 1 >= argc) return usage(argument + " needs a value");
            value = argv[++i];
        }
        if (argument == "--plugin") {
            options->pluginPath = value;
        } else if (argument == "--depth") {
            int bits = 0;
            if (!parseInt(value, &bits) || (bits != 8 && bits != 12))
                return usage("--depth takes 8 or 12, not \"" + value + "\"");
            options->depth = bits == 8 ? kHostDepth8 : kHostDepth12;
        } else if (argument == "--frames") {
            options->frames = value;
        } else if (argument == "--set") {
            options->sets.push_back(value);
        } else if (argument == "--key") {
            options->keys.push_back(value);
        } else if (argument == "--setup") {
            options->setupPath = value;
        } else if (argument == "--save-setup") {
            options->saveSetupPath = value;
        } else if (argument == "--lines") {
            options->linesPath = value;
        } else if (argument == "--overlay") {
            options->overlayPath = value;
        } else if (argument == "--threads") {
            if (!parseInt(value, &options->processors) || options->processors < 1 ||
                options->processors > kMaxProcessors)
                return usage("--threads takes 1 to " + std::to_string(kMaxProcessors));
        } else if (argument == "--max-memory") {
            if (!parseMemorySize(value, &options->maxMemory))
                return usage("--max-memory takes a size such as 512M or 8G, not \"" + value + "\"");
        } else if (argument == "--float-encoding") {
            if (!parseFloatEncoding(value, &options->floatEncoding))
                return usage("--float-encoding takes linear or log, not \"" + value + "\"");
        } else if (argument == "--size") {
            if (!parseSize(value, &options->chartWidth, &options->chartHeight) ||
                options->chartWidth < 1 || options->chartHeight < 1)
                return usage("--size takes WIDTHxHEIGHT, not \"" + value + "\"");
        } else if (argument == "--margin") {
            char* end = nullptr;
            options->marginPercent = std::strtod(value.c_str(), &end);
            if (value.empty() || !end || *end || !std::isfinite(options->marginPercent))
                return usage("--margin takes a percentage, not \"" + value + "\"");
        } else {
            return usage("unknown option " + argument);
        }
    }
    return RunStatus::success();
}
