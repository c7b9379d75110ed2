// Checking the stated sizes in DPX and Cineon headers.
#include "FileHeaders.h"

#include <sys/stat.h>

#include <cstdint>
#include <fstream>
#include <vector>

namespace {
const uint32_t kDpxMagic = 0x53445058;     // "SDPX"
const uint32_t kCineonMagic = 0x802A5FD7;  // Cineon
const uint32_t kUndefined = 0xFFFFFFFFu;   // a field left unset
const size_t kDpxHeaderBytes = 2048;       // file, image and orientation headers
const size_t kCineonHeaderBytes = 24;
const size_t kImageDataOffset = 4;
const size_t kDpxFileSize = 16;
const size_t kCineonFileSize = 20;
const size_t kDpxLinePixels = 772;
const size_t kDpxLines = 776;
const size_t kDpxElement = 780;  // the first image element
const size_t kElementDescriptor = 20;
const size_t kElementBits = 23;
const size_t kElementPacking = 24;
const size_t kElementEncoding = 26;
const size_t kElementDataOffset = 28;
const int kBitsPerByte = 8;
const int kWordBytes = 4;

struct Header {
    std::vector<unsigned char> bytes;
    bool swapped = false;  // stored in the other byte order

    uint32_t word(size_t at) const {
        uint32_t v = static_cast<uint32_t>(bytes[at]) << 24 | bytes[at + 1] << 16 |
                     bytes[at + 2] << 8 | bytes[at + 3];
        if (swapped) v = (v >> 24) | ((v >> 8) & 0xFF00u) | ((v << 8) & 0xFF0000u) | (v << 24);
        return v;
    }
    uint16_t half(size_t at) const {
        const uint16_t v = static_cast<uint16_t>(bytes[at] << 8 | bytes[at + 1]);
        return swapped ? static_cast<uint16_t>(v >> 8 | v << 8) : v;
    }
};

bool defined(uint32_t value) { return value != 0 && value != kUndefined; }

// Samples per pixel of a DPX element descriptor; 0 for one this does not know.
int dpxComponents(int descriptor) {
    switch (descriptor) {
        case 1:
        case 2:
        case 3:
        case 4:
        case 6:
        case 7:
        case 8:
            return 1;
        case 100:  // CbYCrY 4:2:2: two samples a pixel
            return 2;
        case 50:
        case 101:
        case 102:
            return 3;
        case 51:
        case 52:
        case 103:
            return 4;
        default:
            return 0;
    }
}

// The fewest bytes the element's data can take.
uint64_t dpxDataBytes(const Header& header) {
    const uint64_t width = header.word(kDpxLinePixels);
    const uint64_t lines = header.word(kDpxLines);
    const size_t element = kDpxElement;
    const int components = dpxComponents(header.bytes[element + kElementDescriptor]);
    const int bits = header.bytes[element + kElementBits];
    const int packing = header.half(element + kElementPacking);
    const int encoding = header.half(element + kElementEncoding);
    if (!components || encoding != 0 || !defined(static_cast<uint32_t>(width)) ||
        !defined(static_cast<uint32_t>(lines)) || width > (1u << 20) || lines > (1u << 20))
        return 0;
    const uint64_t samplesPerLine = width * components;
    const uint64_t samples = samplesPerLine * lines;
    switch (bits) {
        case 1:
        case 8:
        case 10:
        case 12:
        case 16:
        case 32:
        case 64:
            break;
        default:
            return 0;
    }
    // Filled 10-bit words hold three samples per line; filled 12-bit one per half word.
    if (packing != 0 && bits == 10) return (samplesPerLine + 2) / 3 * kWordBytes * lines;
    if (packing != 0 && bits == 12) return samples * 2;
    // Whole bytes, not whole words: writers (OpenImageIO's among them) end the
    // data with the last sample's byte.
    return (samples * bits + kBitsPerByte - 1) / kBitsPerByte;
}

std::string cutOff(uint64_t stated, uint64_t actual, const char* what) {
    return "cut off: its header " + std::string(what) + " " + std::to_string(stated) +
           " bytes, the file has " + std::to_string(actual);
}
}  // namespace

std::string headerProblem(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return "";
    const uint64_t actual = static_cast<uint64_t>(status.st_size);
    std::ifstream in(path, std::ios::binary);
    Header header;
    header.bytes.resize(kDpxHeaderBytes);
    in.read(reinterpret_cast<char*>(header.bytes.data()), kDpxHeaderBytes);
    const size_t got = static_cast<size_t>(in.gcount());
    if (got < kCineonHeaderBytes) return "";
    const uint32_t magic = header.word(0);
    header.swapped = true;
    const uint32_t swappedMagic = header.word(0);
    header.swapped = false;
    const bool dpx = magic == kDpxMagic || swappedMagic == kDpxMagic;
    const bool cineon = magic == kCineonMagic || swappedMagic == kCineonMagic;
    if (!dpx && !cineon) return "";
    header.swapped = magic != kDpxMagic && magic != kCineonMagic;

    const uint32_t stated = header.word(dpx ? kDpxFileSize : kCineonFileSize);
    if (defined(stated) && actual < stated) return cutOff(stated, actual, "says");
    if (!dpx) return "";
    if (got < kDpxHeaderBytes) return "cut off inside its header";
    uint32_t offset = header.word(kDpxElement + kElementDataOffset);
    if (!defined(offset)) offset = header.word(kImageDataOffset);
    const uint64_t data = dpxDataBytes(header);
    if (data && defined(offset) && actual < offset + data)
        return cutOff(offset + data, actual, "places image data up to");
    return "";
}
