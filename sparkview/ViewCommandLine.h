// ViewCommandLine: sparkview's command line, parsed into RunOptions with the
// session options every program shares (CommandLine.h addSessionOptions) and
// checked by the same validate() (OptionRules.h) as sparkrun's:
//
//   sparkview [--plugin PATH] [--setup FILE] [--frames A-B] [--threads N]
//             [--set NAME=VALUE]... [--key NAME@FRAME=VALUE]...
//             [--lines FILE [--autofind]] [IMAGE|PATTERN]
//
// --setup FILE is loaded when it exists and is where Save Set-up writes
// (--save-setup FILE names another file for that).
#pragma once

#include "RunOptions.h"
#include "RunStatus.h"

RunStatus parseViewCommandLine(int argc, char** argv, RunOptions* options);

const char* viewUsageText();
