// Conversion between file pixels and host frame buffers.
#include "HostPixels.h"

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "HostPixelsRows.h"

namespace {
const int kBytesPerPixel8 = 3;
const int kBytesPerPixel12 = 6;

float unitClamped(float f) {
    if (std::isnan(f) || f < 0.0f) return 0.0f;
    return f > 1.0f ? 1.0f : f;
}

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

namespace {
// ---- the plain row kernels ----
void wordsToTwelve(const uint16_t* from, size_t n, uint16_t* to) {
    for (size_t i = 0; i < n; ++i)
        to[i] = static_cast<uint16_t>(twelveFromSixteen(from[i]) << kTwelveBitShift);
}

void floatsToTwelve(const float* from, size_t n, uint16_t* to) {
    for (size_t i = 0; i < n; ++i)
        to[i] = static_cast<uint16_t>(twelveFromFloat(from[i]) << kTwelveBitShift);
}

void wordsToEight(const uint16_t* from, size_t n, uint8_t* to) {
    for (size_t i = 0; i < n; ++i) to[i] = static_cast<uint8_t>(eightFromSixteen(from[i]));
}

void floatsToEight(const float* from, size_t n, uint8_t* to) {
    for (size_t i = 0; i < n; ++i) to[i] = static_cast<uint8_t>(eightFromFloat(from[i]));
}

// The low 4 bits of a 12-bit word carry no picture value.
void twelveToSixteen(const uint16_t* from, size_t n, uint16_t* to) {
    for (size_t i = 0; i < n; ++i)
        to[i] = static_cast<uint16_t>(sixteenFromTwelve(from[i] >> kTwelveBitShift));
}

void twelveToFloats(const uint16_t* from, size_t n, float* to) {
    for (size_t i = 0; i < n; ++i) to[i] = floatFromTwelve(from[i] >> kTwelveBitShift);
}

std::atomic<int> plainForced{0};

bool processorHasAvx2() {
#if defined(__x86_64__)
    const char* plain = std::getenv("STRAIGHTLUX_PLAIN_CPU");
    if (plain && *plain && std::strcmp(plain, "0") != 0) return false;
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

// The host's 16-bit words are native (little-endian) unsigned shorts, at any alignment.
uint16_t* hostWords(unsigned char* buffer) { return reinterpret_cast<uint16_t*>(buffer); }
const uint16_t* hostWords(const unsigned char* buffer) {
    return reinterpret_cast<const uint16_t*>(buffer);
}

// One file row (top first) into its host row, 12-bit.
void fillRowTwelve(const PixelView& picture, size_t from, size_t n, uint16_t* to,
                   FloatEncoding encoding) {
    const HostRowKernels& rows = hostRows();
    if (!picture.isFloat) {
        rows.wordsToTwelve(picture.words + from, n, to);
    } else if (encoding == FloatEncoding::Log) {
        for (size_t i = 0; i < n; ++i)
            to[i] =
                static_cast<uint16_t>(twelveFromLog(picture.reals[from + i]) << kTwelveBitShift);
    } else {
        rows.floatsToTwelve(picture.reals + from, n, to);
    }
}
}  // namespace

const HostRowKernels& plainHostRows() {
    static const HostRowKernels kernels = {wordsToTwelve, floatsToTwelve,  wordsToEight,
                                           floatsToEight, twelveToSixteen, twelveToFloats};
    return kernels;
}

const HostRowKernels& hostRows() {
    static const bool avx2 = processorHasAvx2();
    return avx2 && !plainForced.load(std::memory_order_relaxed) ? avx2HostRows() : plainHostRows();
}

void forcePlainHostRows(bool plain) { plainForced = plain ? 1 : 0; }

void fillHostFrame(const PixelView& picture, int depth, unsigned char* buffer,
                   FloatEncoding encoding) {
    const size_t rowSamples = static_cast<size_t>(picture.width) * kRgbChannels;
    const HostRowKernels& rows = hostRows();
    // File row r (top first) is host row height - 1 - r (bottom first).
    for (int r = 0; r < picture.height; ++r) {
        const size_t from = static_cast<size_t>(r) * rowSamples;
        const size_t to = static_cast<size_t>(picture.height - 1 - r) * rowSamples;
        if (depth == kHostDepth12)
            fillRowTwelve(picture, from, rowSamples, hostWords(buffer) + to, encoding);
        else if (picture.isFloat)
            rows.floatsToEight(picture.reals + from, rowSamples, buffer + to);
        else
            rows.wordsToEight(picture.words + from, rowSamples, buffer + to);
    }
}

void fillHostFrame(const FilePixels& picture, int depth, unsigned char* buffer,
                   FloatEncoding encoding) {
    fillHostFrame(picture.view(), depth, buffer, encoding);
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

namespace {
// One host row of a 12-bit frame into file samples.
void readRowTwelve(const uint16_t* from, size_t n, size_t to, FloatEncoding encoding,
                   RgbSamples* samples) {
    const HostRowKernels& rows = hostRows();
    switch (samples->type) {
        case SampleType::Eight:
            for (size_t k = 0; k < n; ++k)
                samples->eights[to + k] =
                    static_cast<uint8_t>(eightFromTwelve(from[k] >> kTwelveBitShift));
            break;
        case SampleType::Sixteen:
            rows.twelveToSixteen(from, n, samples->sixteens.data() + to);
            break;
        case SampleType::Float:
            if (encoding == FloatEncoding::Log) {
                for (size_t k = 0; k < n; ++k)
                    samples->floats[to + k] = logFromTwelve(from[k] >> kTwelveBitShift);
            } else {
                rows.twelveToFloats(from, n, samples->floats.data() + to);
            }
            break;
    }
}

// One host row of an 8-bit frame into file samples.
void readRowEight(const unsigned char* from, size_t n, size_t to, RgbSamples* samples) {
    switch (samples->type) {
        case SampleType::Eight:
            std::memcpy(samples->eights.data() + to, from, n);
            break;
        case SampleType::Sixteen:
            for (size_t k = 0; k < n; ++k)
                samples->sixteens[to + k] = static_cast<uint16_t>(sixteenFromEight(from[k]));
            break;
        case SampleType::Float:
            for (size_t k = 0; k < n; ++k) samples->floats[to + k] = floatFromEight(from[k]);
            break;
    }
}
}  // namespace

void readHostFrame(const unsigned char* buffer, int width, int height, int depth, SampleType type,
                   FloatEncoding encoding, RgbSamples* into) {
    into->type = type;
    const size_t samples = static_cast<size_t>(width) * static_cast<size_t>(height) * kRgbChannels;
    // resize keeps the capacity: a writer that reuses its samples allocates nothing per frame.
    if (type == SampleType::Eight) into->eights.resize(samples);
    if (type == SampleType::Sixteen) into->sixteens.resize(samples);
    if (type == SampleType::Float) into->floats.resize(samples);
    const size_t rowSamples = static_cast<size_t>(width) * kRgbChannels;
    // Host row j (bottom first) is file row height - 1 - j (top first).
    for (int j = 0; j < height; ++j) {
        const size_t from = static_cast<size_t>(j) * rowSamples;
        const size_t to = static_cast<size_t>(height - 1 - j) * rowSamples;
        if (depth == kHostDepth12)
            readRowTwelve(hostWords(buffer) + from, rowSamples, to, encoding, into);
        else
            readRowEight(buffer + from, rowSamples, to, into);
    }
}

void readHostRowSixteen(const unsigned char* buffer, int width, int height, int depth, int row,
                        uint16_t* to) {
    const size_t rowSamples = static_cast<size_t>(width) * kRgbChannels;
    const size_t from = static_cast<size_t>(height - 1 - row) * rowSamples;
    if (depth == kHostDepth12) {
        hostRows().twelveToSixteen(hostWords(buffer) + from, rowSamples, to);
        return;
    }
    for (size_t k = 0; k < rowSamples; ++k)
        to[k] = static_cast<uint16_t>(sixteenFromEight(buffer[from + k]));
}

RgbSamples readHostFrame(const unsigned char* buffer, int width, int height, int depth,
                         SampleType type, FloatEncoding encoding) {
    RgbSamples result;
    readHostFrame(buffer, width, height, depth, type, encoding, &result);
    return result;
}
