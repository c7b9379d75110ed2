// ImageFiles: reading and writing image files with OpenImageIO, with the
// checks that keep a bad file from turning into a bad frame.
//
// Reading accepts anything OpenImageIO reads (PNG, TIFF, JPEG, DPX, OpenEXR,
// ...): the first subimage, greyscale expanded to RGB, alpha and further
// channels dropped. A frame must be 1..kMaxFrameSide pixels on each side and
// its host buffer at most kMaxFrameBytes bytes (the host's FrameBytes is an
// int). Writing goes to a hidden temporary name in the output's folder and is
// renamed into place only when complete, so a failure leaves no file.
#pragma once

#include <string>

#include "FilePixels.h"
#include "HostPixels.h"
#include "RunStatus.h"

const int kMaxFrameSide = 32768;
const long long kMaxFrameBytes = 2147483647LL;  // largest int

// The host depth (24 or 48) for a file: 48 for files deeper than 8 bits or
// floating, else 24; a non-zero requestedDepth wins.
int hostDepthFor(int fileBits, bool isFloat, int requestedDepth);

// Reads path. The size limits are checked against the host depth that will be
// used (requestedDepth, or the file's own when 0), reported in *depth.
RunStatus readImage(const std::string& path, int requestedDepth, FilePixels* picture, int* depth);

// Checks before any work that a file can be made at path: its folder exists
// and is writable and path is not a folder.
RunStatus checkOutputFolder(const std::string& path);

// Checks before any work that path can be written: its folder exists and is
// writable and OpenImageIO has a writer for its extension.
RunStatus checkOutputPath(const std::string& path);

// The sample type a result from a host of the given depth is written in:
// float for OpenEXR and other floating formats, 8-bit for formats that hold
// only 8 bits and for 8-bit hosts, 16-bit otherwise.
SampleType outputSampleType(const std::string& path, int hostDepth);

// Writes an RGB picture of width x height whose samples are in result.
RunStatus writeImage(const std::string& path, int width, int height, const RgbSamples& result);
