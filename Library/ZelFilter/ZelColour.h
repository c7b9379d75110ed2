// Per-pixel colour formulas of the filter library, in single precision on
// colour values in 0..1 (fractions of the 15-bit full value): RGB to and from
// HSV (hue in turns, 0 <= h < 1, red at 0, green at 1/3, blue at 2/3;
// saturation and value 0..1, value = the largest channel), and the Rec. 709
// luminance with its two colour differences B - Y and R - Y. Each inverse sits
// next to its forward formula.
#pragma once

struct ZelRgb {
    float red = 0.0f;
    float green = 0.0f;
    float blue = 0.0f;
};

struct ZelHsv {
    float hue = 0.0f;  // turns, 0 <= hue < 1
    float saturation = 0.0f;
    float value = 0.0f;
};

// Luminance and colour differences: blueDifference = B - Y, redDifference = R - Y.
struct ZelLumaDifferences {
    float luma = 0.0f;
    float blueDifference = 0.0f;
    float redDifference = 0.0f;
};

// Rec. 709 luminance weights; they add up to 1.
constexpr float kZelLumaRed = 0.2126f;
constexpr float kZelLumaGreen = 0.7152f;
constexpr float kZelLumaBlue = 0.0722f;

// Grey (all channels equal) has hue 0 and saturation 0; black has saturation 0.
// Channels are expected non-negative.
ZelHsv zelRgbToHsv(const ZelRgb& rgb);
ZelRgb zelHsvToRgb(const ZelHsv& hsv);

float zelLuma(const ZelRgb& rgb);
ZelLumaDifferences zelRgbToLumaDifferences(const ZelRgb& rgb);
ZelRgb zelLumaDifferencesToRgb(const ZelLumaDifferences& yd);
