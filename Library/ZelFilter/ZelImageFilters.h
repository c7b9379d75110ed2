// The float filters applied to a whole ImageZel, all four channels alike
// (alpha included, no premultiplication): each channel is read as fractions,
// filtered in single precision and stored rounded to the nearest 15-bit
// level, limited to 0..32767 (see ZelChannelScale.h). `out` must have the
// input's size and may be the input. False when a picture has no pixels, the
// sizes disagree, a parameter is out of range or allocation failed.
#pragma once

#include "ImageZel.h"

// zelGaussianBlur per channel.
bool zelBlurImage(const ImageZel& in, ImageZel& out, float sigma);
// zelUnsharpMask per channel; threshold in fractions of the full value.
bool zelSharpenImage(const ImageZel& in, ImageZel& out, float sigma, float amount,
                     float threshold = 0.0f);
