// Small test pictures for the transform tests: images filled from a function
// of the pixel position, so every sampled value tells where it came from.
#pragma once

#include <memory>

#include "ImageZel.h"

using ImagePtr = std::unique_ptr<ImageZel>;

inline PixelZel makePixel(int r, int g, int b, int a) {
    PixelZel p;
    p.red = static_cast<unsigned short>(r);
    p.green = static_cast<unsigned short>(g);
    p.blue = static_cast<unsigned short>(b);
    p.alpha = static_cast<unsigned short>(a);
    return p;
}

template <typename Fn>
ImagePtr makeImage(int w, int h, Fn fn) {
    ImagePtr img(new ImageZel(w, h, 1.0f, nullptr, nullptr));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) img->rows[y][x] = fn(x, y);
    return img;
}

inline ImagePtr makeUniform(int w, int h, int r, int g, int b, int a) {
    return makeImage(w, h, [=](int, int) { return makePixel(r, g, b, a); });
}

// red 100 * (x + 10 y), green half of it plus 7, blue constant, alpha 32000.
inline ImagePtr makeCoded(int w, int h) {
    return makeImage(w, h, [](int x, int y) {
        int code = x + 10 * y;
        return makePixel(100 * code, 50 * code + 7, 20000, 32000);
    });
}

inline bool samePixel(const PixelZel& a, const PixelZel& b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue && a.alpha == b.alpha;
}

inline bool isBlack(const PixelZel& p) { return samePixel(p, PixelZel()); }
