// DpxFastPath: reads and writes the DPX layouts plates come in without going
// through OpenImageIO's DPX codec, which converts a scanline at a time, and
// gives exactly what OpenImageIO gives. Anything else goes to OpenImageIO.
//
// Reading (RGB, one image element, not run-length encoded, unsigned, no
// end-of-line padding, top-to-bottom orientation, either byte order):
//   10-bit filled, method A or B (three samples in a 32-bit word, the two
//       unused bits at the bottom for A, at the top for B)
//   12-bit filled, method A (one sample in the top 12 bits of a 16-bit word)
//   16-bit
// Samples come out as OpenImageIO's read_image gives them in 16 bits: a
// 10-bit value's bits repeated below it (v << 6 | v >> 4), 12-bit filled and
// 16-bit words as stored (OpenImageIO keeps a 12-bit word's 4 low bits).
//
// Writing: 16-bit RGB, byte for byte what OpenImageIO's DPX writer writes
// (its header, taken from it once per frame size, then the samples in the
// machine's byte order, which that writer also uses). Other sample types
// and names or dates it would store differently go to OpenImageIO.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "HostPixels.h"

namespace safeio {
class OutputFile;
}

// What the fast reader needs of a file's header.
struct DpxLayout {
    int width = 0;
    int height = 0;
    int bits = 0;          // 10, 12 or 16
    bool swapped = false;  // stored in the other byte order than this machine's
    bool methodB = false;  // 10-bit: the unused bits at the top of the word
    uint64_t dataOffset = 0;
    uint64_t dataBytes = 0;  // the samples of the whole picture
};

// True (and *layout) when path is a DPX file the fast reader reads whole:
// an accepted layout whose samples are all within the file.
bool dpxFastLayout(const std::string& path, DpxLayout* layout);

// Reads the RGB samples, top row first, into samples (width * height * 3).
// False with the reason when the file cannot be read.
bool readDpxFast(const std::string& path, const DpxLayout& layout, uint16_t* samples,
                 std::string* error);

// True when path is written as DPX (by its name, as OpenImageIO chooses).
bool writesDpx(const std::string& path);

// Gives file row `row` (top first) as width * 3 16-bit samples.
using SixteenBitRows = std::function<void(int row, uint16_t* samples)>;

// Writes 16-bit RGB rows to file as OpenImageIO's DPX writer would, with
// storedName in the header's file name and dateTime ("YYYY:MM:DD HH:MM:SS"
// or empty) as its creation time. The rows are asked for a block at a time
// and written while the block is in the processor's cache. False when the
// fast path does not apply (nothing written then); write failures are the
// file's (OutputFile::failure).
bool writeDpxFast(const std::string& storedName, int width, int height, const SixteenBitRows& rows,
                  const std::string& dateTime, safeio::OutputFile& file);
// The same from whole samples (SampleType::Sixteen; other types do not apply).
bool writeDpxFast(const std::string& storedName, int width, int height, const RgbSamples& samples,
                  const std::string& dateTime, safeio::OutputFile& file);
