// The log curve for scene-linear samples, and the count of clipped pixels.
#include "FloatEncoding.h"

#include <algorithm>
#include <cmath>

#include "HostPixels.h"

namespace {
const double kToe = 1.0 / 64.0;  // c: where the curve turns from linear to logarithmic
const double kStops = std::log2(1.0 + kLogMaximum / kToe);  // K
}  // namespace

bool parseFloatEncoding(const std::string& text, FloatEncoding* encoding) {
    if (text == "linear") {
        *encoding = FloatEncoding::Linear;
    } else if (text == "log") {
        *encoding = FloatEncoding::Log;
    } else {
        return false;
    }
    return true;
}

// v = (int)(log2(1 + f / c) / K * 4095 + 0.5), f clamped to 0 .. 64, NaN as 0.
int twelveFromLog(float f) {
    const double clamped =
        std::isnan(f) ? 0.0
                      : std::clamp(static_cast<double>(f), 0.0, static_cast<double>(kLogMaximum));
    return static_cast<int>(std::log2(1.0 + clamped / kToe) / kStops * kFull12 + 0.5);
}

// f = c * (2^(v * K / 4095) - 1)
float logFromTwelve(int v) {
    return static_cast<float>(kToe * (std::exp2(v * kStops / kFull12) - 1.0));
}

float encodingTop(FloatEncoding encoding) {
    return encoding == FloatEncoding::Log ? kLogMaximum : 1.0f;
}

namespace {
// True when every sample is a number within 0 .. top: one pass that keeps
// nothing but the running extremes (NaN compares false and fails it).
bool allWithin(const float* samples, size_t n, float top) {
    float low = 0.0f, high = 0.0f;
    bool numbers = true;
    for (size_t i = 0; i < n; ++i) {
        const float f = samples[i];
        numbers = numbers & (f == f);
        low = f < low ? f : low;
        high = f > high ? f : high;
    }
    return numbers && low >= 0.0f && high <= top;
}
}  // namespace

ClipCount countClipped(const PixelView& picture, FloatEncoding encoding) {
    ClipCount count;
    if (!picture.isFloat) return count;
    const float top = encodingTop(encoding);
    const size_t samples = picture.sampleCount();
    // Most frames hold nothing to clip: they are done in the one quick pass.
    if (allWithin(picture.reals, samples, top)) return count;
    bool anyNumber = false;
    for (size_t pixel = 0; pixel * kRgbChannels < samples; ++pixel) {
        bool clipped = false;
        for (int c = 0; c < kRgbChannels; ++c) {
            const float f = picture.reals[pixel * kRgbChannels + c];
            if (std::isnan(f)) {
                clipped = true;
                count.notNumbers = true;
                continue;
            }
            count.largest = anyNumber ? std::max(count.largest, f) : f;
            count.smallest = anyNumber ? std::min(count.smallest, f) : f;
            anyNumber = true;
            if (f < 0.0f || f > top) clipped = true;
        }
        if (clipped) ++count.pixels;
    }
    return count;
}

ClipCount countClipped(const FilePixels& picture, FloatEncoding encoding) {
    return countClipped(picture.view(), encoding);
}
