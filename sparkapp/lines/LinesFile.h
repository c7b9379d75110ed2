// LinesFile: the reference lines sparkrun draws in the viewer, read from a
// small JSON file:
//   {"lines": [[[x, y], [x, y], ...], ...]}
// Each line is a list of at least two points; a point is [x, y] in image
// pixels as image viewers and OpenCV report them: x to the right and y down,
// from the centre of the top-left pixel. Numbers are JSON numbers; any other
// member of the object, and any other shape, is refused with the position
// (line and column) of the fault. A file holds at most kMaxLines lines and
// kMaxPoints points in all (what a user draws by hand is tens of lines;
// AutoFind's time grows with the points). Reading never throws.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

const std::size_t kMaxLines = 1000;
const std::size_t kMaxPoints = 10000;

struct LinePoint {
    double x = 0.0;
    double y = 0.0;
};

struct LinesFile {
    std::vector<std::vector<LinePoint>> lines;
};

// Parses the text of a lines file. False with the reason in error.
bool parseLinesText(const std::string& text, LinesFile& out, std::string& error);

// Reads and parses a regular file (at most 16 MiB; a pipe or a device is
// refused, never waited on). False with the reason in error.
bool readLinesFile(const std::string& path, LinesFile& out, std::string& error);

// A warning when consecutive points of a line coincide (a click given twice),
// naming the first; empty when none do.
std::string coincidentPoints(const LinesFile& lines);

// Every point must lie on the frame, the pixels' edges included: x from -0.5
// to width - 0.5, y from -0.5 to height - 0.5. False with the first point
// outside (line and point numbered from 1).
bool checkLinesInFrame(const LinesFile& lines, int width, int height, std::string& error);

// The text of a lines file holding these lines (points with up to 3 decimals).
std::string formatLinesText(const LinesFile& lines);
