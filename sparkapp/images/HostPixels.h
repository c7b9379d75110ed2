// HostPixels: conversion between file pixels and the host's frame buffers,
// done the way a host does it.
//
// Rows: a file's rows run top first, a host buffer's bottom first (row 0 is
// the bottom of the picture, frame row y = 0; simhost/Viewer.h states the
// rule), so file row r is host row height - 1 - r both ways.
//
// Host buffers are packed RGB rows without padding: depth 24 holds one byte
// (0..255) per channel, depth 48 one 16-bit word per channel with the 12-bit
// value (0..4095) in the top 12 bits and the low 4 bits 0. Each mapping rounds
// to the nearest level, halves upward:
//   16-bit v -> 12-bit  (v * 4095 + 32767) / 65535
//   12-bit v -> 16-bit  (v * 65535 + 2047) / 4095
//   16-bit v -> 8-bit   (v * 255 + 32767) / 65535     (an 8-bit file's v * 257 gives v back)
//   8-bit v  -> 16-bit  v * 257
//   12-bit v -> 8-bit   (v * 255 + 2047) / 4095
//   float f  -> 12-bit  (int)(clamp(f, 0, 1) * 4095 + 0.5), NaN as 0
//   float f  -> 8-bit   (int)(clamp(f, 0, 1) * 255 + 0.5), NaN as 0
//   12-bit v -> float   v / 4095;  8-bit v -> float  v / 255
// Float samples may instead go through the log curve of FloatEncoding.h
// (12-bit frames only).
// The row loops have AVX2 forms that give the same bytes (HostPixelsRows.h).
// Host buffers must be aligned for 16-bit words.
// A 16-bit file therefore comes back within half a 12-bit step (about 8 of
// 65535) after a 12-bit round trip; an 8-bit file comes back exactly.
#pragma once

#include <cstdint>
#include <vector>

#include "FilePixels.h"
#include "FloatEncoding.h"

const int kHostDepth8 = 24;   // bits per pixel of the 8-bit host format
const int kHostDepth12 = 48;  // bits per pixel of the 12-bit host format
const int kFull8 = 255;
const int kFull12 = 4095;
const int kFull16 = 65535;
const int kTwelveBitShift = 4;  // the 12-bit value sits above 4 unused bits

int twelveFromSixteen(int v);
int sixteenFromTwelve(int v);
int eightFromSixteen(int v);
int sixteenFromEight(int v);
int eightFromTwelve(int v);
int twelveFromFloat(float f);
float floatFromTwelve(int v);
int eightFromFloat(float f);
float floatFromEight(int v);

// The storage of a host frame, word-aligned as the host's buffers are
// (simhost::FrameBuffer): hostFrameBytes rounded up to whole words.
using HostFrame = std::vector<unsigned long>;

// Bytes of one frame at a host depth (24 or 48).
size_t hostFrameBytes(int width, int height, int depth);

// Writes the picture into a host buffer of the same size at depth 24 or 48,
// its top row last.
void fillHostFrame(const PixelView& picture, int depth, unsigned char* buffer,
                   FloatEncoding encoding = FloatEncoding::Linear);
void fillHostFrame(const FilePixels& picture, int depth, unsigned char* buffer,
                   FloatEncoding encoding = FloatEncoding::Linear);

// The sample type a result is written to a file in.
enum class SampleType { Eight, Sixteen, Float };

// RGB samples ready to write to a file: the one vector of the type is used.
struct RgbSamples {
    SampleType type = SampleType::Eight;
    std::vector<uint8_t> eights;
    std::vector<uint16_t> sixteens;
    std::vector<float> floats;
    const void* data() const;
};

// The host buffer's rows, top row (the buffer's last) first.
RgbSamples readHostFrame(const unsigned char* buffer, int width, int height, int depth,
                         SampleType type, FloatEncoding encoding = FloatEncoding::Linear);
// File row `row` (top first) of a host frame as 16-bit samples, as
// readHostFrame gives them for SampleType::Sixteen.
void readHostRowSixteen(const unsigned char* buffer, int width, int height, int depth, int row,
                        uint16_t* to);
// The same into *into, whose vectors keep their room from one frame to the next.
void readHostFrame(const unsigned char* buffer, int width, int height, int depth, SampleType type,
                   FloatEncoding encoding, RgbSamples* into);
