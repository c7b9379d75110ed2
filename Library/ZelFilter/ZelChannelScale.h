// The one scale between 15-bit channels and the filter library's fractions:
// a channel value v reads as v / 32767, and a fraction f is stored as
// f * 32767 limited to 0..32767 and rounded to the nearest level (half up),
// so that a filter pass does not darken the picture by half a level each time.
#pragma once

#include "PixelZel.h"

constexpr float kZelChannelToFraction = 1.0f / static_cast<float>(kZelFull15);
constexpr float kZelFractionToChannel = static_cast<float>(kZelFull15);

inline float zelChannelFraction(unsigned short v) {
    return static_cast<float>(v) * kZelChannelToFraction;
}

inline unsigned short zelFractionChannel(float f) {
    float v = f * kZelFractionToChannel;
    // Written so that NaN also lands on 0.
    if (!(v > 0.0f)) return 0;
    if (v >= kZelFractionToChannel) return kZelFull15;
    return static_cast<unsigned short>(v + 0.5f);
}
