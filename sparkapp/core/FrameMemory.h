// FrameMemory: how much memory one frame of a run needs, how much the
// machine has for it, and the --max-memory figure.
//
// The need is estimated per pixel, before any pixel is decoded, from the
// parts of a run that hold a whole frame at once:
//   reading:   the decoder's buffer in the file's own layout (every channel),
//              the decoded RGB samples in the reader process and their copy
//              in the tool, and the previous frame's copy while it is replaced
//   host:      the input and output host frames (3 or 6 bytes a pixel), and
//              the frame loop's frames read ahead and written behind
//   plug-in:   its input, output and scratch images (four 16-bit channels)
//              and its address map (two floats a pixel)
//   output:    the samples to write and the writer's converted copy, at the
//              widest sample type (float)
// A run that only reads (comparison, side by side) counts the reading part.
//
// The memory available is the smallest of: the kernel's MemAvailable, the
// room left under the process's control-group limit, and the room left
// under its address-space and data-size limits (ulimit -v, ulimit -d).
// Sizes are in bytes.
#pragma once

#include <cstdint>
#include <string>

struct FrameShape {
    int width = 0;
    int height = 0;
    int fileChannels = 3;     // channels stored in the file
    int fileSampleBytes = 1;  // bytes of one stored sample
    bool isFloat = false;     // decoded as float (else 16-bit)
    int hostDepth = 24;       // 24 or 48
};

uint64_t frameMemoryNeed(const FrameShape& shape, bool withPlugin);

// Bytes the process may still take; UINT64_MAX when nothing tells.
uint64_t memoryAvailable();

// The most memory this process has held at once (its peak resident size).
uint64_t peakMemory();

// "2G", "512M", "1.5T", "1048576": a positive size with an optional K, M,
// G or T (powers of 1024) and an optional trailing "B" or "iB".
bool parseMemorySize(const std::string& text, uint64_t* bytes);

// "4.3 GiB", "512.0 MiB", "700 bytes".
std::string memoryText(uint64_t bytes);
