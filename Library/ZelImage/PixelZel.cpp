#include "PixelZel.h"

namespace {

// Fraction scale of the HSV helpers. 16383 rather than 16384 is deliberate:
// hue, saturation and sector fractions must match that arithmetic.
constexpr int kHsvFraction = 16383;
// Hue offsets of the green and blue thirds (in 16383-steps of a sixth, times 2).
constexpr int kHueGreen = 32768;
constexpr int kHueBlue = 65536;
constexpr int kHueTurn = 98304;  // one full hue circle
constexpr int kHueSectors = 6;
constexpr int kSectorShift = 14;
// 16383 squared: the product scale of SetHSV's q and t.
constexpr int kHsvFractionSquared = 268402689;
// The divisor is 16383 squared as a single-precision constant, so it reads
// 268402688 (one less); kept so results match.
constexpr float kHsvDivisor = 268402689.0f;

// Luminance weights, in sixteenths.
constexpr unsigned kLumaRed = 5;
constexpr unsigned kLumaGreen = 8;
constexpr unsigned kLumaBlue = 3;
constexpr unsigned kLumaShift = 4;

}  // namespace

void PixelZel::GetHSV(unsigned short& H, unsigned short& S, unsigned short& V) const {
    const int r = red >> 1;
    const int g = green >> 1;
    const int b = blue >> 1;
    int max = r > g ? r : g;
    if (b > max) max = b;
    int min = r < g ? r : g;
    if (b < min) min = b;
    const int delta = max - min;

    const int s = max != 0 ? delta * kHsvFraction / max : 0;
    int h = 0;
    if (s != 0) {
        const int rc = (max - r) * kHsvFraction / delta;
        const int gc = (max - g) * kHsvFraction / delta;
        const int bc = (max - b) * kHsvFraction / delta;
        if (r == max)
            h = bc - gc;
        else if (g == max)
            h = rc - bc + kHueGreen;
        else
            h = gc - rc + kHueBlue;
        if (h < 0) h += kHueTurn;
    }
    // Hue spans 0..32768, half the 16-bit range.
    H = static_cast<unsigned short>(h / kHueSectors * 2);
    S = static_cast<unsigned short>(s * 2);
    V = static_cast<unsigned short>(max * 2);
}

void PixelZel::SetHSV(unsigned short H, unsigned short S, unsigned short V) {
    const int h = H >> 1;
    const int s = S >> 1;
    const int v = V >> 1;
    const int sector = (kHueSectors * h) >> kSectorShift;
    const int f = kHueSectors * h - sector * kHsvFraction;

    const int p = (kHsvFraction - s) * v / kHsvFraction;
    // q := v (1 - s f), t := v (1 - s (1 - f)), fractions in 16383-steps.
    const double scale = v / static_cast<double>(kHsvDivisor);
    const int q = static_cast<int>(scale * (kHsvFractionSquared - s * f));
    const int t = static_cast<int>(scale * (kHsvFractionSquared - (kHsvFraction - f) * s));

    int r = 0;
    int g = 0;
    int b = 0;
    switch (sector) {
        case 0:
            r = v, g = t, b = p;
            break;
        case 1:
            r = q, g = v, b = p;
            break;
        case 2:
            r = p, g = v, b = t;
            break;
        case 3:
            r = p, g = q, b = v;
            break;
        case 4:
            r = t, g = p, b = v;
            break;
        case 5:
            r = v, g = p, b = q;
            break;
        default:
            break;  // hue 32768 and above: no sector, black
    }
    red = static_cast<unsigned short>(r * 2);
    green = static_cast<unsigned short>(g * 2);
    blue = static_cast<unsigned short>(b * 2);
}

unsigned short PixelZel::GetLuminance() const {
    const unsigned y = (kLumaRed * red + kLumaGreen * green + kLumaBlue * blue) >> kLumaShift;
    return static_cast<unsigned short>(y);
}

void PixelZel::SetLuminance(unsigned short Y) {
    red = Y;
    green = Y;
    blue = Y;
}
