// Parsing sparkrun's command line with CLI11, keeping the tool's own messages.
#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

#include "FrameMemory.h"
#include "HostPixels.h"
#include "ProgramDefaults.h"

namespace {

const char kEndOfOptions[] = "--";

// A value an option refuses: its message is the usage message.
struct ValueRefused : std::runtime_error {
    using std::runtime_error::runtime_error;
};

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

// An option with one value, given as text to `take`, which may refuse it;
// a repeated option's last value counts.
CLI::Option* addValue(CLI::App& app, const std::string& name,
                      std::function<void(const std::string&)> take) {
    return app.add_option_function<std::string>(name, std::move(take))
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

CLI::Option* addText(CLI::App& app, const std::string& name, std::string& into) {
    return addValue(app, name, [&into](const std::string& value) { into = value; });
}

CLI::Option* addList(CLI::App& app, const std::string& name, std::vector<std::string>& into) {
    return app.add_option(name, into)->allow_extra_args(false);
}

CLI::Option* addFlag(CLI::App& app, const std::string& name, std::function<void()> set) {
    return app.add_flag_callback(name, std::move(set))->disable_flag_override();
}

// The options that choose a mode; the first given chooses it.
const std::pair<const char*, RunMode> kModeOptions[] = {
    {"--list-controls", RunMode::ListControls}, {"--make-chart", RunMode::MakeChart},
    {"--side-by-side", RunMode::SideBySide},    {"--compare", RunMode::Compare},
    {"--trace-chart", RunMode::TraceChart},     {"--stmap", RunMode::StMap},
    {"--to-opencv", RunMode::ExportLens},       {"--to-lensfun", RunMode::ExportLens},
    {"--detect-lines", RunMode::DetectLines}};

// The utility modes without a value.
void addModes(CLI::App& app) {
    for (const auto& mode : kModeOptions) {
        const std::string name = mode.first;
        // The others name their output and are declared with their values.
        if (mode.second != RunMode::StMap && mode.second != RunMode::ExportLens &&
            mode.second != RunMode::DetectLines)
            addFlag(app, name, [] {});
    }
}

// The mode options in the order they were given (CLI11 runs the options'
// callbacks in the order they were declared), and the mode of the first.
void takeModes(const CLI::App& app, RunOptions& options) {
    for (const CLI::Option* option : app.parse_order())
        for (const auto& mode : kModeOptions)
            if (option->get_name() == mode.first) {
                options.modeOptions.push_back(mode.first);
                if (options.modeOptions.size() == 1 && options.mode != RunMode::Help)
                    options.mode = mode.second;
            }
}

// A number with nothing after it, finite.
bool parseNumber(const std::string& text, double* value) {
    char* end = nullptr;
    *value = std::strtod(text.c_str(), &end);
    return !text.empty() && end && !*end && std::isfinite(*value);
}

void addUtilityOptions(CLI::App& app, RunOptions& options) {
    addText(app, "--detect-lines", options.detectLinesPath);
    addText(app, "--detect-frames", options.detectFrames);
    addValue(app, "--size", [&options](const std::string& value) {
        if (!parseSize(value, &options.sizeWidth, &options.sizeHeight) || options.sizeWidth < 1 ||
            options.sizeHeight < 1)
            throw ValueRefused("--size takes WIDTHxHEIGHT, not \"" + value + "\"");
    });
    addValue(app, "--margin", [&options](const std::string& value) {
        char* end = nullptr;
        options.marginPercent = std::strtod(value.c_str(), &end);
        if (value.empty() || !end || *end || !std::isfinite(options.marginPercent))
            throw ValueRefused("--margin takes a percentage, not \"" + value + "\"");
    });
}

// What CLI11 refused, in the tool's words: a flag given a value, or an
// option missing its value (CLI11 names the option first in both).
RunStatus refusal(const CLI::App& app, const CLI::ParseError& error) {
    const std::string text = error.what();
    for (const CLI::Option* option : app.get_options()) {
        const std::string name = option->get_name();
        const std::string bare = name.substr(name.find_first_not_of('-'));
        if (text.compare(0, name.size() + 1, name + ":") != 0 &&
            text.compare(0, bare.size() + 1, bare + " ") != 0)
            continue;
        const int values = option->get_expected_min();
        return RunStatus::failure(
            ExitCode::Usage,
            name + (values == 0   ? " takes no value"
                    : values == 1 ? " needs a value"
                                  : " needs " + std::to_string(values) + " values"));
    }
    return RunStatus::failure(ExitCode::Usage, text);
}
}  // namespace

void addLensDataOptions(CLI::App& app, RunOptions& options) {
    addText(app, "--stmap", options.stMapPath);
    addText(app, "--to-opencv", options.toOpenCv);
    addText(app, "--to-lensfun", options.toLensfun);
    addValue(app, "--overscan", [&options](const std::string& value) {
        if (!parseNumber(value, &options.overscanPercent) || options.overscanPercent < 0.0 ||
            options.overscanPercent > 100.0)
            throw ValueRefused("--overscan takes a percentage from 0 to 100, not \"" + value +
                               "\"");
        options.overscanGiven = true;
    });
    addText(app, "--from-opencv", options.fromOpenCv);
    app.add_option("--from-lensfun", options.fromLensfun)->expected(4)->allow_extra_args(false);
    addValue(app, "--correct-in", [&options](const std::string& value) {
        if (value != "add" && value != "remove")
            throw ValueRefused("--correct-in takes add or remove, not \"" + value + "\"");
        options.correctIn = value == "add" ? CorrectIn::Add : CorrectIn::Remove;
        options.correctInGiven = true;
    });
    addValue(app, "--focal", [&options](const std::string& value) {
        if (!parseNumber(value, &options.focalMm) || options.focalMm <= 0.0)
            throw ValueRefused("--focal takes a focal length in millimetres, not \"" + value +
                               "\"");
    });
    addValue(app, "--crop", [&options](const std::string& value) {
        if (!parseNumber(value, &options.cropFactor) || options.cropFactor <= 0.0)
            throw ValueRefused("--crop takes a crop factor above 0, not \"" + value + "\"");
    });
}

void addSessionOptions(CLI::App& app, RunOptions& options) {
    addText(app, "--plugin", options.pluginPath);
    addText(app, "--frames", options.frames);
    addList(app, "--set", options.sets);
    addList(app, "--key", options.keys);
    addText(app, "--setup", options.setupPath);
    addText(app, "--save-setup", options.saveSetupPath);
    addText(app, "--lines", options.linesPath);
    addFlag(app, "--autofind", [&options] { options.autoFind = true; });
    addFlag(app, "--verbose", [&options] { options.verbose = true; });
    addFlag(app, "--quiet", [&options] { options.quiet = true; });
    addFlag(app, "--progress", [&options] { options.progress = 1; });
    addFlag(app, "--no-progress", [&options] { options.progress = 0; });
    addFlag(app, "--sequential", [&options] { options.sequential = true; });
    addValue(app, "--depth", [&options](const std::string& value) {
        int bits = 0;
        if (!parseInt(value, &bits) || (bits != 8 && bits != 12))
            throw ValueRefused("--depth takes 8 or 12, not \"" + value + "\"");
        options.depth = bits == 8 ? kHostDepth8 : kHostDepth12;
    });
    addValue(app, "--threads", [&options](const std::string& value) {
        if (!parseInt(value, &options.processors) || options.processors < 1 ||
            options.processors > kMaxProcessors)
            throw ValueRefused("--threads takes 1 to " + std::to_string(kMaxProcessors));
    });
    addValue(app, "--max-memory", [&options](const std::string& value) {
        if (!parseMemorySize(value, &options.maxMemory))
            throw ValueRefused("--max-memory takes a size such as 512M or 8G, not \"" + value +
                               "\"");
    });
    addValue(app, "--float-encoding", [&options](const std::string& value) {
        if (!parseFloatEncoding(value, &options.floatEncoding))
            throw ValueRefused("--float-encoding takes linear or log, not \"" + value + "\"");
    });
}

RunStatus parseCommandLine(int argc, char** argv, RunOptions* options) {
    CLI::App app("sparkrun");
    app.set_help_flag();  // --help is ours: it prints usageText()
    app.allow_extras(true);
    addFlag(app, "--help", [options] { options->mode = RunMode::Help; });
    addSessionOptions(app, *options);
    addText(app, "--overlay", options->overlayPath);
    addModes(app);
    addUtilityOptions(app, *options);
    addLensDataOptions(app, *options);
    app.add_option("files", options->files);
    const RunStatus status = parseApp(app, argc, argv);
    if (status.ok()) takeModes(app, *options);
    return status;
}

RunStatus parseApp(CLI::App& app, int argc, char** argv) {
    try {
        app.parse(argc, argv);
    } catch (const ValueRefused& refused) {
        return RunStatus::failure(ExitCode::Usage, refused.what());
    } catch (const CLI::ParseError& error) {
        return refusal(app, error);
    }
    for (std::string extra : app.remaining()) {
        if (extra == kEndOfOptions) continue;
        return RunStatus::failure(ExitCode::Usage,
                                  "unknown option " + extra.substr(0, extra.find('=')));
    }
    return RunStatus::success();
}
