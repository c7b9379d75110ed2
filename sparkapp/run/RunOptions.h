// RunOptions: the command line of sparkrun, parsed into one record.
//
// Options take their value as the next argument or after '=' (--depth 12,
// --depth=12). Repeated --set and --key options apply in order. Positional
// arguments are the input and output (or the files of a utility mode).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "FloatEncoding.h"
#include "RunStatus.h"

enum class RunMode { Process, ListControls, MakeChart, SideBySide, Compare, TraceChart, Help };

struct RunOptions {
    RunMode mode = RunMode::Process;
    std::vector<std::string> files;  // positional arguments
    std::string pluginPath;          // empty: straightlux.spark next to the tool
    int depth = 0;                   // host depth 24 or 48; 0 follows the input
    std::string frames;              // "A-B" or "A"; empty: all frames found, or 1
    std::vector<std::string> sets;   // "Name=Value"
    std::vector<std::string> keys;   // "Name@Frame=Value"
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
    int chartWidth = 0;  // 0: the default chart size
    int chartHeight = 0;
    double marginPercent = 10.0;
};

RunStatus parseCommandLine(int argc, char** argv, RunOptions* options);

const char* usageText();
