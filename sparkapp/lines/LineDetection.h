// LineDetection: the line detector (linedetect/LineDetector.h) on a picture
// as the programs hold it, in one call: sparkrun's --detect-lines and
// --lines auto, and a viewer's "Detect Lines", take a FilePixels (or an
// ImageZel) and get a lines file, the lines rejected with their reasons, and
// the model the detector estimated on the way.
//
// The picture's luminance (Rec. 709 weights on its values, floats clamped to
// 0..1) is what is searched. Several frames of one size (a plate's frames)
// are pooled: their pieces go into one selection with one model. The work on
// pixels runs on `processors` threads; the lines do not depend on their
// number. Image pixels, y down, as in a lines file.
#pragma once

#include <string>
#include <vector>

#include "DetectedLines.h"
#include "FilePixels.h"
#include "ImageZel.h"
#include "LinesFile.h"
#include "RunStatus.h"

struct LinesFound {
    LinesFile lines;
    LineDetection detection;  // the lines again, and what was rejected
};

// Pools frames one at a time, then selects the lines.
class LineDetectionPool {
  public:
    explicit LineDetectionPool(int processors = 1);
    ~LineDetectionPool();
    LineDetectionPool(const LineDetectionPool&) = delete;
    LineDetectionPool& operator=(const LineDetectionPool&) = delete;

    // A frame's edge pieces. Every frame must have the first one's size
    // (exit 3 otherwise); a memory failure is exit 7.
    RunStatus add(const FilePixels& picture, const std::string& name);
    RunStatus add(const ImageZel& picture, const std::string& name);
    // The lines of every frame added. No usable line is exit 3 naming `what`.
    RunStatus select(const std::string& what, LinesFound* found);

  private:
    struct Frames;
    Frames* frames_;
    int processors_;
};

// One picture: the pool of one frame. An ImageZel's first row is taken as
// the picture's top row, as in an image file (a host frame's buffer holds its
// bottom row first: flip y, y = height - 1 - y, for such a picture).
RunStatus detectPictureLines(const FilePixels& picture, const std::string& name, LinesFound* found,
                             int processors = 1);
RunStatus detectPictureLines(const ImageZel& picture, const std::string& name, LinesFound* found,
                             int processors = 1);

// The rejected lines, one per line: "rejected: outlier (1.8 px from
// straight), 12 points from (x, y) to (x, y)".
std::string rejectionReport(const LineDetection& detection);
