// Helpers for the image tests: images whose channels code their position, so
// every sampled value tells which pixel it came from.
#pragma once

#include "ImageZel.h"

// Every channel of pixel (x, y) := base + x + 10 * y (alpha gets base + 1000 + ...).
inline void fillCoded(ImageZel& image, int base = 0) {
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            const unsigned short v = static_cast<unsigned short>(base + x + 10 * y);
            image.rows[y][x].red = v;
            image.rows[y][x].green = v;
            image.rows[y][x].blue = v;
            image.rows[y][x].alpha = static_cast<unsigned short>(v + 1000);
        }
}

inline PixelZel makePixel(unsigned short r, unsigned short g, unsigned short b, unsigned short a) {
    PixelZel p;
    p.red = r;
    p.green = g;
    p.blue = b;
    p.alpha = a;
    return p;
}
