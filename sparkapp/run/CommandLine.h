// CommandLine: sparkrun's command line, parsed into RunOptions.
//
// Options take their value as the next argument or after '=' (--depth 12,
// --depth=12); a repeated option's last value counts, and repeated --set and
// --key options apply in order. Positional arguments are the input and
// output (or the files of a utility mode); after "--" every argument is one.
// Parsing checks each value on its own (a depth, a size, a memory figure);
// which options go together is OptionRules' business. A failure is a usage
// status naming the option.
#pragma once

#include "RunOptions.h"
#include "RunStatus.h"

namespace CLI {
class App;
}

RunStatus parseCommandLine(int argc, char** argv, RunOptions* options);

// Declares the options that set up a session (the plug-in, its controls,
// set-ups, frames, lines, threads, memory, float encoding, messages) on app,
// writing into options; every program that drives a session shares them.
void addSessionOptions(CLI::App& app, RunOptions& options);

// Declares the lens data options: --stmap, --overscan, --from-opencv,
// --from-lensfun, --correct-in, --to-opencv, --to-lensfun, --focal, --crop.
void addLensDataOptions(CLI::App& app, RunOptions& options);

// Parses argv with an app whose options are declared, in the tool's words:
// a refused value, a flag given a value, an option missing its value or an
// unknown option is a usage failure naming it.
RunStatus parseApp(CLI::App& app, int argc, char** argv);

// sparkrun's usage text (--help).
const char* usageText();
