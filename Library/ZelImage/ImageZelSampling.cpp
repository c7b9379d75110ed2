#include <cmath>
#include <cstdint>

#include "ImageZel.h"

namespace {

// Fixed-point one of the sampling weights (15 fractional bits).
constexpr int kWeightShift = 15;
constexpr int kWeightOne = 1 << kWeightShift;

}  // namespace

void ImageZel::PointSampleB(float x, float y, PixelZel& out) {
    // A position outside [-1, width) x [-1, height) has no neighbour inside, so
    // every contribution is zero; answering early also keeps floor() in range.
    if (!(x >= -1.0f && x < static_cast<float>(width) && y >= -1.0f &&
          y < static_cast<float>(height))) {
        out = PixelZel();
        return;
    }
    const int x0 = static_cast<int>(std::floor(x));
    const int y0 = static_cast<int>(std::floor(y));
    const int fx = static_cast<int>((x - static_cast<float>(x0)) * kWeightOne);
    const int fy = static_cast<int>((y - static_cast<float>(y0)) * kWeightOne);

    // The last weight takes the rounding loss so that the four sum to exactly 32768.
    const int w00 = ((kWeightOne - fx) * (kWeightOne - fy)) >> kWeightShift;
    const int w10 = (fx * (kWeightOne - fy)) >> kWeightShift;
    const int w01 = ((kWeightOne - fx) * fy) >> kWeightShift;
    const int w11 = kWeightOne - (w00 + w10 + w01);

    // Neighbours outside contribute nothing and the weights are not
    // renormalised: samples near the border fade toward zero.
    uint32_t r = 0, g = 0, b = 0, a = 0;
    auto add = [&](int cx, int cy, int w) {
        if (cx < 0 || cx >= width || cy < 0 || cy >= height) return;
        const PixelZel& p = rows[cy][cx];
        const uint32_t uw = static_cast<uint32_t>(w);
        r += uw * p.red;
        g += uw * p.green;
        b += uw * p.blue;
        a += uw * p.alpha;
    };
    add(x0, y0, w00);
    add(x0 + 1, y0, w10);
    add(x0, y0 + 1, w01);
    add(x0 + 1, y0 + 1, w11);

    out.red = static_cast<unsigned short>(r >> kWeightShift);
    out.green = static_cast<unsigned short>(g >> kWeightShift);
    out.blue = static_cast<unsigned short>(b >> kWeightShift);
    out.alpha = static_cast<unsigned short>(a >> kWeightShift);
}

void ImageZel::PointSampleD(float x, float y, PixelZel& out) { PointSampleB(x, y, out); }

void ImageZel::PointSampleW(float x, float y, PixelZel& out) { PointSampleB(x, y, out); }

void ImageZel::AreaSampleB(float x1, float y1, float x2, float y2, PixelZel& out) {
    PointSampleB((x1 + x2) / 2, (y1 + y2) / 2, out);
}

void ImageZel::AreaSampleD(float x1, float y1, float x2, float y2, PixelZel& out) {
    PointSampleB((x1 + x2) / 2, (y1 + y2) / 2, out);
}

void ImageZel::AreaSampleW(float x1, float y1, float x2, float y2, PixelZel& out) {
    PointSampleB((x1 + x2) / 2, (y1 + y2) / 2, out);
}
