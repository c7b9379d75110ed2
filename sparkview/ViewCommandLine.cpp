// sparkview's command line.
#include "ViewCommandLine.h"

#include <CLI/CLI.hpp>

#include "CommandLine.h"
#include "OptionRules.h"

RunStatus parseViewCommandLine(int argc, char** argv, RunOptions* options) {
    options->viewer = true;
    CLI::App app("sparkview");
    app.set_help_flag();  // --help is ours: it prints viewUsageText()
    app.allow_extras(true);
    app.add_flag_callback("--help", [options] { options->mode = RunMode::Help; })
        ->disable_flag_override();
    addSessionOptions(app, *options);
    app.add_option("image", options->files);
    RunStatus status = parseApp(app, argc, argv);
    if (status.ok()) status = validate(*options);
    return status;
}

const char* viewUsageText() {
    return "usage: sparkview [--plugin PATH] [--setup FILE] [--frames A-B] [--threads N]\n"
           "                 [--set NAME=VALUE]... [--key NAME@FRAME=VALUE]...\n"
           "                 [--lines FILE [--autofind]] [IMAGE|PATTERN]\n"
           "\n"
           "Shows a Spark plug-in (straightlux.spark beside the program by default) on an\n"
           "image or a sequence (shot.####.dpx or shot.%04d.dpx) through the simulated\n"
           "host: its controls, its viewer overlay and the corrected frame.\n"
           "\n"
           "  --setup FILE      load FILE when it exists; File > Save Set-up writes it\n"
           "  --save-setup FILE File > Save Set-up writes FILE instead\n"
           "  --frames A-B      the frames of a sequence to show and render\n"
           "  --threads N       processors the host offers the plug-in\n"
           "  --set, --key      control values and animation keys, as for sparkrun\n"
           "  --lines FILE      draw these lines in the viewer (image pixels, y down)\n"
           "  --autofind        then press AutoFind\n"
           "  --depth, --float-encoding, --max-memory, --quiet, --verbose: as for sparkrun\n"
           "\n"
           "Keys in the viewer: F fit, 1 one-to-one, Tab input/result, Left/Right frames.\n"
           "Mouse: left button the plug-in's pen, middle button pans, wheel zooms.\n"
           "Exit codes as sparkrun's; 9 when no window can open (no display, no OpenGL).\n";
}
