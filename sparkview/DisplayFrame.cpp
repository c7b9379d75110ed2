// Frames to the viewer's 8-bit pictures.
#include "DisplayFrame.h"

#include <cstring>

#include "HostPixels.h"

DisplayFrame displayFromHostBuffer(const unsigned char* buffer, int width, int height, int depth) {
    DisplayFrame out;
    out.width = width;
    out.height = height;
    const size_t samples = static_cast<size_t>(width) * height * kRgbChannels;
    out.rgb.resize(samples);
    if (depth == kHostDepth8) {
        std::memcpy(out.rgb.data(), buffer, samples);
        return out;
    }
    // Depth 48: the 12-bit value sits in the top 12 bits of each 16-bit word;
    // the 4096 levels are looked up, not divided, on every frame shown.
    static const std::vector<uint8_t> eights = [] {
        std::vector<uint8_t> table(kFull12 + 1);
        for (int v = 0; v <= kFull12; ++v) table[v] = static_cast<uint8_t>(eightFromTwelve(v));
        return table;
    }();
    const auto* words = reinterpret_cast<const uint16_t*>(buffer);
    for (size_t i = 0; i < samples; ++i) out.rgb[i] = eights[words[i] >> kTwelveBitShift];
    return out;
}

DisplayFrame displayFromPicture(const FilePixels& picture) {
    DisplayFrame out;
    out.width = picture.width;
    out.height = picture.height;
    out.rgb.resize(picture.sampleCount());
    const size_t rowSamples = static_cast<size_t>(picture.width) * kRgbChannels;
    for (int r = 0; r < picture.height; ++r) {
        // File row r is frame row height - 1 - r.
        uint8_t* to = &out.rgb[static_cast<size_t>(picture.height - 1 - r) * rowSamples];
        const size_t from = static_cast<size_t>(r) * rowSamples;
        for (size_t i = 0; i < rowSamples; ++i)
            to[i] =
                static_cast<uint8_t>(picture.isFloat ? eightFromFloat(picture.reals[from + i])
                                                     : eightFromSixteen(picture.words[from + i]));
    }
    return out;
}
