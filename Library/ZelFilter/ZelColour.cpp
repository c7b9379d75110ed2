#include "ZelColour.h"

namespace {

constexpr float kSectors = 6.0f;  // hue sectors of a turn

}  // namespace

ZelHsv zelRgbToHsv(const ZelRgb& c) {
    float max = c.red > c.green ? c.red : c.green;
    if (c.blue > max) max = c.blue;
    float min = c.red < c.green ? c.red : c.green;
    if (c.blue < min) min = c.blue;
    ZelHsv hsv;
    hsv.value = max;
    const float delta = max - min;
    if (delta <= 0.0f || max <= 0.0f) return hsv;
    hsv.saturation = delta / max;
    // Sector position: the distance of the other two channels from the largest.
    float h;
    if (c.red == max)
        h = (c.green - c.blue) / delta;
    else if (c.green == max)
        h = 2.0f + (c.blue - c.red) / delta;
    else
        h = 4.0f + (c.red - c.green) / delta;
    if (h < 0.0f) h += kSectors;
    hsv.hue = h / kSectors;
    if (hsv.hue >= 1.0f) hsv.hue = 0.0f;  // -0 wrapped up to exactly one turn
    return hsv;
}

ZelRgb zelHsvToRgb(const ZelHsv& hsv) {
    const float v = hsv.value;
    const float s = hsv.saturation;
    if (s <= 0.0f) return ZelRgb{v, v, v};
    float h = (hsv.hue - static_cast<float>(static_cast<int>(hsv.hue))) * kSectors;
    if (h < 0.0f) h += kSectors;
    int sector = static_cast<int>(h);
    const float f = h - static_cast<float>(sector);
    if (sector >= 6) sector = 0;
    // p, q, t: the channel values at the sector's start, falling and rising edges.
    const float p = v * (1.0f - s);
    const float q = v * (1.0f - s * f);
    const float t = v * (1.0f - s * (1.0f - f));
    switch (sector) {
        case 0:
            return ZelRgb{v, t, p};
        case 1:
            return ZelRgb{q, v, p};
        case 2:
            return ZelRgb{p, v, t};
        case 3:
            return ZelRgb{p, q, v};
        case 4:
            return ZelRgb{t, p, v};
        default:
            return ZelRgb{v, p, q};
    }
}

float zelLuma(const ZelRgb& c) {
    return kZelLumaRed * c.red + kZelLumaGreen * c.green + kZelLumaBlue * c.blue;
}

ZelLumaDifferences zelRgbToLumaDifferences(const ZelRgb& c) {
    const float y = zelLuma(c);
    return ZelLumaDifferences{y, c.blue - y, c.red - y};
}

// G from Y = wr R + wg G + wb B once R and B are back.
ZelRgb zelLumaDifferencesToRgb(const ZelLumaDifferences& d) {
    const float r = d.luma + d.redDifference;
    const float b = d.luma + d.blueDifference;
    const float g = (d.luma - kZelLumaRed * r - kZelLumaBlue * b) / kZelLumaGreen;
    return ZelRgb{r, g, b};
}
