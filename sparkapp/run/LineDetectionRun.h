// LineDetectionRun: sparkrun's automatic lines. --detect-lines LINES.json
// INPUT finds the straight lines of INPUT (LineDetection.h) and writes them as
// a lines file, for --lines; --lines auto finds them in the run's own input
// before the frames are rendered, and draws those.
//
// Frames searched: --detect-frames (a list such as 1001,1050,1090-1100), else
// for a sequence up to kSpreadFrames frames spread evenly over the run's
// frames (first and last among them), else the still. Their lines are pooled
// (one model for all; a locked-off plate gives the same lines again, a moving
// camera more of the frame). No usable line is exit 3 with a message, and no
// lines file is written. --verbose reports the lines found and every line
// rejected, outliers among them, with the reason.
#pragma once

#include <string>
#include <vector>

#include "FramePattern.h"
#include "LinesFile.h"
#include "RunOptions.h"
#include "RunStatus.h"

const char kAutoLines[] = "auto";  // --lines auto
const unsigned kSpreadFrames = 5;

// Parses --detect-frames: numbers and ranges A-B separated by commas, into
// ascending distinct frames. False with the reason.
bool parseDetectFrames(const std::string& text, std::vector<unsigned>* frames, std::string* error);

// The frames to search among the run's frames (ascending, at least one).
std::vector<unsigned> detectionFrames(const RunOptions& options,
                                      const std::vector<unsigned>& runFrames);

// The lines of the input's chosen frames (--lines auto).
RunStatus detectInputLines(const RunOptions& options, const FramePattern& input,
                           const std::vector<unsigned>& runFrames, LinesFile* lines);

// The --detect-lines mode.
RunStatus runDetectLines(const RunOptions& options);
