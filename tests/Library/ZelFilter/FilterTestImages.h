// Shared by the filter tests: float images from arrays and formulas, pictures
// of edges at known sub-pixel places (each pixel the exact or finely sampled
// fraction of its area on the bright side), and comparisons.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>

#include "FloatImageZel.h"

namespace filtertest {

inline FloatImageZel imageFrom(const float* values, int width, int height) {
    FloatImageZel image(width, height);
    for (long i = 0; i < image.count(); ++i) image.data()[i] = values[i];
    return image;
}

inline FloatImageZel imageOf(int width, int height, const std::function<float(int, int)>& fn) {
    FloatImageZel image(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) image.row(y)[x] = fn(x, y);
    return image;
}

// Largest |a - b| over the pixels at least `margin` from every border.
inline float maxDifference(const FloatImageZel& a, const float* b, int margin = 0) {
    float worst = 0.0f;
    for (int y = margin; y < a.height() - margin; ++y)
        for (int x = margin; x < a.width() - margin; ++x)
            worst = std::max(worst, std::fabs(a.at(x, y) - b[y * a.width() + x]));
    return worst;
}

inline float maxDifference(const FloatImageZel& a, const FloatImageZel& b, int margin = 0) {
    return maxDifference(a, b.data(), margin);
}

inline bool sameBits(const FloatImageZel& a, const FloatImageZel& b) {
    if (!a.sameSize(b)) return false;
    for (long i = 0; i < a.count(); ++i)
        if (std::memcmp(a.data() + i, b.data() + i, sizeof(float)) != 0) return false;
    return true;
}

// Dark (lo) on the side where inside(x, y) is false, bright (hi) where true;
// each pixel samples its area on an n x n grid.
inline FloatImageZel areaSampled(int width, int height, float lo, float hi,
                                 const std::function<bool(double, double)>& inside, int n = 16) {
    return imageOf(width, height, [&](int x, int y) {
        int count = 0;
        for (int j = 0; j < n; ++j)
            for (int i = 0; i < n; ++i)
                count += inside(x - 0.5 + (i + 0.5) / n, y - 0.5 + (j + 0.5) / n) ? 1 : 0;
        const float f = static_cast<float>(count) / static_cast<float>(n * n);
        return lo + (hi - lo) * f;
    });
}

}  // namespace filtertest
