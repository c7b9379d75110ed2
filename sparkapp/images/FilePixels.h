// FilePixels: a picture as read from (or written to) an image file, reduced
// to what a host frame carries: red, green, blue, interleaved, rows top to
// bottom without padding. Integer files are held as 16-bit samples
// (0..65535, an 8-bit file's v as v * 257); floating files as floats where
// 0.0 is black and 1.0 full scale (values outside are kept; conversions clamp).
// bitsPerSample records the file's own depth so the host depth can follow it;
// pixelAspect is the file's pixel aspect ratio (1 when it states none);
// dateTime the file's own date ("YYYY:MM:DD HH:MM:SS", its DateTime or else
// its modification time in UTC), which outputs made from it carry, so that
// the same frame rendered twice gives the same bytes. The picture is the
// file's display window (OpenEXR's; the whole picture for other formats);
// origin is where that window's top-left pixel lies in the file's pixel
// coordinates (0, 0 but for a display window placed elsewhere), which
// outputs keep.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

const int kRgbChannels = 3;

struct FrameOrigin {
    int x = 0;
    int y = 0;
};

// A picture's samples held elsewhere (a FilePixels, the reader's shared
// memory): the same layout, words when !isFloat, reals when isFloat.
struct PixelView {
    int width = 0;
    int height = 0;
    bool isFloat = false;
    const uint16_t* words = nullptr;
    const float* reals = nullptr;

    size_t sampleCount() const {
        return static_cast<size_t>(width) * static_cast<size_t>(height) * kRgbChannels;
    }
};

struct FilePixels {
    int width = 0;
    int height = 0;
    bool isFloat = false;
    int bitsPerSample = 8;
    float pixelAspect = 1.0f;
    std::string dateTime;
    FrameOrigin origin;
    std::vector<uint16_t> words;  // 3 per pixel when !isFloat
    std::vector<float> reals;     // 3 per pixel when isFloat

    size_t sampleCount() const {
        return static_cast<size_t>(width) * static_cast<size_t>(height) * kRgbChannels;
    }
    PixelView view() const;
};

inline PixelView FilePixels::view() const {
    return PixelView{width, height, isFloat, isFloat ? nullptr : words.data(),
                     isFloat ? reals.data() : nullptr};
}
