// FloatEncoding: how floating-point (scene-linear) samples travel through the
// host's 12-bit frames, and how many of them do not fit.
//
//   linear (the default): 12-bit v = (int)(clamp(f, 0, 1) * 4095 + 0.5), back
//       as v / 4095 (HostPixels.h). Values outside 0 .. 1 are clipped.
//   log (--float-encoding log, float inputs and float outputs only): a log
//       curve that fits 0 .. kLogMaximum (64, six stops above 1.0) into the
//       12 bits and is undone on output:
//           v = (int)(log2(1 + f / c) / K * 4095 + 0.5),  c = 1/64,
//           K = log2(1 + 64 / c) = log2(4097)
//           f = c * (2^(v * K / 4095) - 1)
//       One step is a factor 2^(K / 4095) = 1.00203 of (f + c), so a value
//       comes back within (f + c) * (2^(K / 8190) - 1) = 0.1016 % of
//       (f + 1/64): 0.000016 at 0, 0.0002 at 0.18, 0.001 at 1.0, 0.065 at 64
//       (linear 12 bits: 0.000122 everywhere in 0 .. 1). Values outside
//       0 .. 64 are clipped. The plug-in then resamples the encoded values:
//       an interpolated pixel between very different values is a blend of
//       logarithms, not of light.
// A pixel counts as clipped when any of its channels is below 0, above the
// encoding's top or not a number (NaN becomes 0).
#pragma once

#include <cstddef>
#include <string>

#include "FilePixels.h"

enum class FloatEncoding { Linear, Log };

const float kLogMaximum = 64.0f;

// "linear" or "log".
bool parseFloatEncoding(const std::string& text, FloatEncoding* encoding);

// The 12-bit code of f on the log curve, and back.
int twelveFromLog(float f);
float logFromTwelve(int v);

// The largest value an encoding carries: 1 or kLogMaximum.
float encodingTop(FloatEncoding encoding);

struct ClipCount {
    size_t pixels = 0;        // pixels with a channel outside 0 .. top or not a number
    bool notNumbers = false;  // some of them were NaN
    float largest = 0.0f;     // over every number of the frame
    float smallest = 0.0f;
};

// Counts the pixels of a float picture that an encoding clips; none for integer pictures.
ClipCount countClipped(const PixelView& picture, FloatEncoding encoding);
ClipCount countClipped(const FilePixels& picture, FloatEncoding encoding);
