// Per-channel value mapping between host frame buffers and 15-bit image
// channels (0..32767). 8-bit host channels are bytes 0..255; 12-bit host
// channels are 16-bit words carrying the value in their top 12 bits, the low
// 4 bits carrying no picture value. Each forward mapping sits next to its
// inverse; all conversions and their band forms use exactly these.
#pragma once

#include <algorithm>

constexpr unsigned short kDLAlphaFull = 32767;          // alpha of converted pixels
constexpr unsigned short kDLAlphaSubSampled12 = 65535;  // alpha of sub-sampled 12-bit pixels
constexpr unsigned int kDLMax8 = 255;
constexpr unsigned int kDLMax12 = 4095;
constexpr int kDLWordValueShift = 4;                 // 12-bit value position inside a host word
constexpr unsigned int kDLWordLowBits = 15;          // host word bits below the 12-bit value
constexpr unsigned short kDLTruncate10Mask = 65488;  // 0xFFD0, used as given

// c -> c * 128 + (c >> 1): 0 -> 0, 255 -> 32767.
inline unsigned short hostByteToChannel(unsigned char c) {
    return static_cast<unsigned short>(c * 128u + (c >> 1));
}

// value -> min(value >> 7, 255).
inline unsigned char channelToHostByte(unsigned short value) {
    return static_cast<unsigned char>(std::min(static_cast<unsigned int>(value) >> 7, kDLMax8));
}

// v = word >> 4; v -> v * 8 + (v >> 9): 4095 -> 32767.
inline unsigned short hostWordToChannel(unsigned short word) {
    const unsigned int v = static_cast<unsigned int>(word) >> kDLWordValueShift;
    return static_cast<unsigned short>(v * 8u + (v >> 9));
}

// v = min(value >> 3, 4095); word = (old word AND 15) + v * 16. The host word's
// low 4 bits are kept as they were, deliberately.
inline unsigned short channelToHostWord(unsigned short value, unsigned short oldWord) {
    const unsigned int v = std::min(static_cast<unsigned int>(value) >> 3, kDLMax12);
    return static_cast<unsigned short>((oldWord & kDLWordLowBits) + (v << kDLWordValueShift));
}
