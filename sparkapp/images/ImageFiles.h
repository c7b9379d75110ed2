// ImageFiles: reading and writing image files with OpenImageIO, with the
// checks that keep a bad file from turning into a bad frame.
//
// Reading accepts anything OpenImageIO reads (PNG, TIFF, JPEG, DPX, OpenEXR,
// ...): the first subimage, greyscale expanded to RGB, alpha and further
// channels dropped. The frame is the display window: data outside it (an
// overscan plate's margin) is left out, and its pixels without data are
// black. A frame must be 1..kMaxFrameSide pixels on each side and
// its host buffer at most kMaxFrameBytes bytes (the host's FrameBytes is an
// int). Decoding runs in a reader process (ReaderProcess.h), so that a
// library that aborts on a damaged file cannot take the tool with it; any
// error or warning the decoder reports (a premature end, a failed strip) and
// a cut-off DPX or Cineon file (FileHeaders.h) fail the read, so a partly
// decoded file never becomes a frame. The frame's memory is estimated from
// the header before a pixel is decoded (FrameMemory.h).
//
// Writing goes to an exclusively created temporary in the output's folder
// (safeio::OutputFile) through a checked stream, and is renamed into place
// only when the writer, the sync and the close all succeeded, so a failure
// (a full disk, a size limit) leaves neither the output nor a temporary.
// Writers that cannot write to a stream (a few rare formats: SGI, HEIF and
// AVIF, FITS, ICO, RLA) write the temporary by its name; what they wrote is
// then written again through the checked file (a write they lost without
// saying, such as one refused by a full disk before a seek, fails there)
// and read back before it is kept. The same frame gives the same bytes in
// every format (SGI's image name is the file's name).
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "FilePixels.h"
#include "HostPixels.h"

namespace safeio {
class OutputFile;
}
#include "RunStatus.h"

const int kMaxFrameSide = 32768;
const long long kMaxFrameBytes = 2147483647LL;  // largest int

// The host depth (24 or 48) for a file: 48 for files deeper than 8 bits or
// floating, else 24; a non-zero requestedDepth wins.
int hostDepthFor(int fileBits, bool isFloat, int requestedDepth);

struct ReadRequest {
    int requestedDepth = 0;      // host depth 24 or 48; 0 follows the file
    uint64_t memoryLimit = 0;    // bytes a frame may need; 0: not checked
    bool limitIsOption = false;  // the limit came from --max-memory
    bool forProcessing = false;  // the estimate includes the plug-in and the output
    int expectWidth = 0;         // non-zero: the file must be this size
    int expectHeight = 0;
};

// Reads path. The size limits are checked against the host depth that will be
// used (requestedDepth, or the file's own when 0), reported in *depth.
RunStatus readImage(const std::string& path, const ReadRequest& request, FilePixels* picture,
                    int* depth);
// The same for a picture that is only read (compared, put side by side),
// checked against the memory available.
RunStatus readImage(const std::string& path, int requestedDepth, FilePixels* picture, int* depth);

// The decode itself, in this process (what the reader process runs), into
// memory the caller places: place(bytes) gives room for the picture's
// samples (null when there is none); *picture gets the facts only.
using SamplePlace = std::function<void*(size_t bytes)>;
RunStatus decodeImageInto(const std::string& path, const ReadRequest& request, FilePixels* picture,
                          int* depth, const SamplePlace& place);
// The same into the picture's own samples, in this process: for programs
// that read a few pictures of their own (a decoder's abort ends them).
RunStatus decodeImage(const std::string& path, const ReadRequest& request, FilePixels* picture,
                      int* depth);

// Sets up OpenImageIO for this tool: everything on the calling thread, so
// that pictures come out the same whatever the machine.
void configureImageLibrary();
// For the reader process: decoders may use the image library's threads (a
// decoded picture does not depend on them).
void configureReaderLibrary();

// Checks before any work that path can be written: its folder exists and is
// writable and OpenImageIO has a writer for its extension.
RunStatus checkOutputPath(const std::string& path);

// The sample type a result from a host of the given depth is written in:
// float for OpenEXR and other floating formats, 8-bit for formats that hold
// only 8 bits and for 8-bit hosts, 16-bit otherwise.
SampleType outputSampleType(const std::string& path, int hostDepth);

// Writes an RGB picture of width x height whose samples are in result. A
// non-empty dateTime is stored as the picture's date (formats that stamp
// one otherwise stamp the time of writing). The picture is the display
// window and the data window too, both at origin (formats that keep neither
// keep the pixels alone).
RunStatus writeImage(const std::string& path, int width, int height, const RgbSamples& result,
                     const std::string& dateTime = "", FrameOrigin origin = {});
// The writing alone, into file, which the caller opened for path and commits
// (the frame loop commits its frames in order); on a failure the file is
// discarded. threads: the writer's own threads (the bytes do not depend on
// them); DPX of the plates' layouts skips the library (DpxFastPath.h).
RunStatus encodeImage(const std::string& path, int width, int height, const RgbSamples& result,
                      const std::string& dateTime, safeio::OutputFile& file, int threads,
                      FrameOrigin origin = {});
