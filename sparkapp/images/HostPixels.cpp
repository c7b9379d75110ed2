// Conversion between file pixels and host frame buffers.
#include "HostPixels.h"

#include <cmath>
#include <cstring>

namespace {
const int kBytesPerPixel8 = 3;
const int kBytesPerPixel12 = 6;
const size_t kWordBytes = 2;  // one 12-bit host sample

float unitClamped(float f) {
    if (std::isnan(f) || f < 0.0f) return 0.0f;
    return f > 1.0f ? 1.0f : f;
}

// The host's 16-bit words are native (little-endian) unsigned shorts.
uint16_t loadWord(const unsigned char* p) {
    uint16_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

void storeWord(unsigned char* p, uint16_t word) { std::memcpy(p, &word, sizeof word); }
}  // namespace

int twelveFromSixteen(int v) { return (v * kFull12 + kFull16 / 2) / kFull16; }
int sixteenFromTwelve(int v) { return (v * kFull16 + kFull12 / 2) / kFull12; }
int eightFromSixteen(int v) { return (v * kFull8 + kFull16 / 2) / kFull16; }
int sixteenFromEight(int v) { return v * (kFull16 / kFull8); }
int eightFromTwelve(int v) { return (v * kFull8 + kFull12 / 2) / kFull12; }
int twelveFromFloat(float f) { return static_cast<int>(unitClamped(f) * kFull12 + 0.5f); }
float floatFromTwelve(int v) { return static_cast<float>(v) / kFull12; }
int eightFromFloat(float f) { return static_cast<int>(unitClamped(f) * kFull8 + 0.5f); }
float floatFromEight(int v) { return static_cast<float>(v) / kFull8; }

size_t hostFrameBytes(int width, int height, int depth) {
    const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    return pixels * (depth == kHostDepth12 ? kBytesPerPixel12 : kBytesPerPixel8);
}

void fillHostFrame(const FilePixels& picture, int depth, unsigned char* buffer,
                   FloatEncoding encoding) {
    const size_t rowSamples = static_cast<size_t>(picture.width) * kRgbChannels;
    const bool logCurve = encoding == FloatEncoding::Log;
    // File row r (top first) is host row height - 1 - r (bottom first).
    for (int r = 0; r < picture.height; ++r) {
        const size_t from = static_cast<size_t>(r) * rowSamples;
        const size_t to = static_cast<size_t>(picture.height - 1 - r) * rowSamples;
        if (depth == kHostDepth12) {
            for (size_t i = 0; i < rowSamples; ++i) {
                int v;
                if (!picture.isFloat)
                    v = twelveFromSixteen(picture.words[from + i]);
                else
                    v = logCurve ? twelveFromLog(picture.reals[from + i])
                                 : twelveFromFloat(picture.reals[from + i]);
                storeWord(buffer + kWordBytes * (to + i),
                          static_cast<uint16_t>(v << kTwelveBitShift));
            }
        } else {
            for (size_t i = 0; i < rowSamples; ++i) {
                const int v = picture.isFloat ? eightFromFloat(picture.reals[from + i])
                                              : eightFromSixteen(picture.words[from + i]);
                buffer[to + i] = static_cast<unsigned char>(v);
            }
        }
    }
}

const void* RgbSamples::data() const {
    switch (type) {
        case SampleType::Eight:
            return eights.data();
        case SampleType::Sixteen:
            return sixteens.data();
        case SampleType::Float:
            return floats.data();
    }
    return nullptr;
}

RgbSamples readHostFrame(const unsigned char* buffer, int width, int height, int depth,
                         SampleType type, FloatEncoding encoding) {
    RgbSamples result;
    result.type = type;
    const size_t samples = static_cast<size_t>(width) * static_cast<size_t>(height) * kRgbChannels;
    const bool deep = depth == kHostDepth12;
    switch (type) {
        case SampleType::Eight:
            result.eights.resize(samples);
            break;
        case SampleType::Sixteen:
            result.sixteens.resize(samples);
            break;
        case SampleType::Float:
            result.floats.resize(samples);
            break;
    }
    const size_t rowSamples = static_cast<size_t>(width) * kRgbChannels;
    // Host row j (bottom first) is file row height - 1 - j (top first).
    for (int j = 0; j < height; ++j) {
        const size_t from = static_cast<size_t>(j) * rowSamples;
        const size_t to = static_cast<size_t>(height - 1 - j) * rowSamples;
        for (size_t k = 0; k < rowSamples; ++k) {
            const size_t i = to + k;
            // The low 4 bits of a 12-bit word carry no picture value.
            const int v = deep ? loadWord(buffer + kWordBytes * (from + k)) >> kTwelveBitShift
                               : buffer[from + k];
            switch (type) {
                case SampleType::Eight:
                    result.eights[i] = static_cast<uint8_t>(deep ? eightFromTwelve(v) : v);
                    break;
                case SampleType::Sixteen:
                    result.sixteens[i] =
                        static_cast<uint16_t>(deep ? sixteenFromTwelve(v) : sixteenFromEight(v));
                    break;
                case SampleType::Float:
                    if (!deep)
                        result.floats[i] = floatFromEight(v);
                    else
                        result.floats[i] =
                            encoding == FloatEncoding::Log ? logFromTwelve(v) : floatFromTwelve(v);
                    break;
            }
        }
    }
    return result;
}
