// Whole-image colour conversions on ImageZel, banded over the host's
// processors, with the formulas of ZelColour.h on fractions of the 15-bit
// full value:
// - HSV pictures keep hue (in turns), saturation and value in the red, green
//   and blue channels, each scaled by 32767; alpha is carried over.
// - Luminance and colour differences go to three float images (Y, B - Y,
//   R - Y) and back.
// Results are stored rounded to the nearest level and limited to 0..32767.
// Calls return false when an input has no pixels or sizes disagree; the
// ImageZel output must already have the input's size and may be the input.
#pragma once

#include "FloatImageZel.h"
#include "ImageZel.h"

bool zelImageRgbToHsv(const ImageZel& in, ImageZel& out);
bool zelImageHsvToRgb(const ImageZel& in, ImageZel& out);

// The float images are resized to the picture.
bool zelImageToLumaDifferences(const ImageZel& in, FloatImageZel& luma,
                               FloatImageZel& blueDifference, FloatImageZel& redDifference);
// Red, green and blue of `out` from the three images; alpha is left as it is.
bool zelImageFromLumaDifferences(const FloatImageZel& luma, const FloatImageZel& blueDifference,
                                 const FloatImageZel& redDifference, ImageZel& out);
