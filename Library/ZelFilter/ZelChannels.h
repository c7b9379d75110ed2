// Channel extraction, storing and mixing between an ImageZel (15-bit channels)
// and the float working image (fractions of the full value, see
// ZelChannelScale.h). Banded over the host's processors. Every call returns
// false, and leaves its output unchanged or empty, when an input has no
// pixels, when sizes disagree, or when the output could not be allocated.
#pragma once

#include "FloatImageZel.h"
#include "ImageZel.h"

enum class ZelChannel { kRed = 0, kGreen = 1, kBlue = 2, kAlpha = 3 };

// Weights of a channel mix; the result is the weighted sum of the fractions.
struct ZelChannelMix {
    float red = 0.0f;
    float green = 0.0f;
    float blue = 0.0f;
    float alpha = 0.0f;
};

// out := channel / 32767 (out is resized to the image).
bool zelExtractChannel(const ImageZel& in, ZelChannel channel, FloatImageZel& out);
// The channel of `out` := the fractions of `in`, limited and rounded; the
// other three channels are left as they are. Sizes must agree.
bool zelStoreChannel(const FloatImageZel& in, ZelChannel channel, ImageZel& out);

// out := red * r + green * g + blue * b + alpha * a, in that order, on fractions.
bool zelMixChannels(const ImageZel& in, const ZelChannelMix& mix, FloatImageZel& out);
// The Rec. 709 luminance (see ZelColour.h) as a channel mix.
bool zelLuminance(const ImageZel& in, FloatImageZel& out);
