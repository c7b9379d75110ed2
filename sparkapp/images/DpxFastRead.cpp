// The fast DPX reader: the header checked for an accepted layout, then the
// samples read in blocks of rows and unpacked.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "DpxFastPath.h"
#include "HostPixelsRows.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {
const uint32_t kMagicNative = 0x53445058;   // "SDPX" written in this machine's byte order
const uint32_t kMagicSwapped = 0x58504453;  // ... in the other
const uint32_t kUndefined = 0xFFFFFFFFu;
const size_t kHeaderBytes = 2048;
const size_t kImageOffset = 4;
const size_t kOrientation = 768;
const size_t kElements = 770;
const size_t kLinePixels = 772;
const size_t kLines = 776;
const size_t kDataSign = 780;
const size_t kDescriptor = 800;
const size_t kBitSize = 803;
const size_t kPacking = 804;
const size_t kEncoding = 806;
const size_t kDataOffset = 808;
const size_t kLinePadding = 812;
const int kRgbDescriptor = 50;
const int kFilledA = 1;
const int kFilledB = 2;
const size_t kBlockBytes = 1 << 20;  // read and unpacked while it is in the cache

struct Header {
    unsigned char bytes[kHeaderBytes];
    bool swapped = false;

    uint32_t word(size_t at) const {
        uint32_t v;
        std::memcpy(&v, bytes + at, sizeof v);
        return swapped ? __builtin_bswap32(v) : v;
    }
    uint16_t half(size_t at) const {
        uint16_t v;
        std::memcpy(&v, bytes + at, sizeof v);
        return swapped ? __builtin_bswap16(v) : v;
    }
};

bool readHeader(int fd, Header* header) {
    if (pread(fd, header->bytes, kHeaderBytes, 0) != static_cast<ssize_t>(kHeaderBytes))
        return false;
    uint32_t magic;
    std::memcpy(&magic, header->bytes, sizeof magic);
    if (magic != kMagicNative && magic != kMagicSwapped) return false;
    header->swapped = magic == kMagicSwapped;
    return true;
}

// Bytes of one row of the layout; 0 when the layout is not one this reads.
uint64_t rowBytes(const Header& header, int bits, DpxLayout* layout) {
    const int packing = header.half(kPacking);
    const uint64_t width = static_cast<uint64_t>(layout->width);
    if (bits == 10 && (packing == kFilledA || packing == kFilledB)) {
        layout->methodB = packing == kFilledB;
        return width * 4;  // one pixel a word
    }
    if (bits == 12 && packing == kFilledA) return width * 6;
    if (bits == 16 && (packing == 0 || packing == kFilledA)) return width * 6;
    return 0;
}

bool acceptLayout(const Header& header, uint64_t fileBytes, DpxLayout* layout) {
    const uint32_t padding = header.word(kLinePadding);
    if (header.half(kOrientation) != 0 || header.half(kElements) != 1 ||
        header.word(kDataSign) != 0 || header.bytes[kDescriptor] != kRgbDescriptor ||
        header.half(kEncoding) != 0 || (padding != 0 && padding != kUndefined))
        return false;
    const uint32_t width = header.word(kLinePixels);
    const uint32_t height = header.word(kLines);
    const uint32_t offset = header.word(kDataOffset);
    if (width < 1 || height < 1 || width > (1u << 20) || height > (1u << 20) ||
        offset != header.word(kImageOffset) || offset < kHeaderBytes)
        return false;
    layout->width = static_cast<int>(width);
    layout->height = static_cast<int>(height);
    layout->bits = header.bytes[kBitSize];
    const uint64_t row = rowBytes(header, layout->bits, layout);
    layout->swapped = header.swapped;
    layout->dataOffset = offset;
    layout->dataBytes = row * height;
    return row != 0 && offset + layout->dataBytes <= fileBytes;
}

// 10-bit v -> v << 6 | v >> 4: three samples of a word, red in the top bits.
void unpackTenPlain(const unsigned char* from, size_t pixels, bool swapped, bool methodB,
                    uint16_t* to) {
    const int low = methodB ? 0 : 2;
    for (size_t i = 0; i < pixels; ++i) {
        uint32_t word;
        std::memcpy(&word, from + 4 * i, sizeof word);
        if (swapped) word = __builtin_bswap32(word);
        for (int c = 0; c < 3; ++c) {
            const uint32_t v = (word >> (low + 10 * (2 - c))) & 0x3FFu;
            to[3 * i + c] = static_cast<uint16_t>(v << 6 | v >> 4);
        }
    }
}

#if defined(__x86_64__)
// The same four words at a time with SSSE3 shuffles (within AVX2's
// extensions, so chosen with the AVX2 row kernels): each word's three
// samples spread to 16-bit lanes, replicated, and packed without the fourth.
__attribute__((target("avx2"))) void unpackTenAvx2(const unsigned char* from, size_t pixels,
                                                   bool swapped, bool methodB, uint16_t* to) {
    const int low = methodB ? 0 : 2;
    const __m128i swap = _mm_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12);
    const __m128i drop = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -1, -1, -1, -1);
    const __m128i mask = _mm_set1_epi32(0x3FF);
    size_t i = 0;
    // Each step stores 16 bytes at 12 samples' start: a pixel must follow it.
    for (; i + 5 <= pixels; i += 4) {
        __m128i words = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 4 * i));
        if (swapped) words = _mm_shuffle_epi8(words, swap);
        const __m128i r = _mm_and_si128(_mm_srli_epi32(words, low + 20), mask);
        const __m128i g = _mm_and_si128(_mm_srli_epi32(words, low + 10), mask);
        const __m128i b = _mm_and_si128(_mm_srli_epi32(words, low), mask);
        __m128i rg = _mm_or_si128(r, _mm_slli_epi32(g, 16));
        rg = _mm_or_si128(_mm_slli_epi16(rg, 6), _mm_srli_epi16(rg, 4));
        const __m128i bb = _mm_or_si128(_mm_slli_epi16(b, 6), _mm_srli_epi16(b, 4));
        const __m128i first = _mm_shuffle_epi8(_mm_unpacklo_epi32(rg, bb), drop);
        const __m128i second = _mm_shuffle_epi8(_mm_unpackhi_epi32(rg, bb), drop);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 3 * i), first);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 3 * i + 6), second);
    }
    unpackTenPlain(from + 4 * i, pixels - i, swapped, methodB, to + 3 * i);
}
#endif

void unpackTen(const unsigned char* from, size_t pixels, bool swapped, bool methodB, uint16_t* to) {
#if defined(__x86_64__)
    if (&hostRows() == &avx2HostRows()) return unpackTenAvx2(from, pixels, swapped, methodB, to);
#endif
    unpackTenPlain(from, pixels, swapped, methodB, to);
}

// 12-bit filled and 16-bit samples: the words as stored (OpenImageIO gives
// a 12-bit word whole, its 4 low bits included).
void unpackWords(const unsigned char* from, size_t samples, bool swapped, uint16_t* to) {
    if (!swapped) {
        std::memcpy(to, from, samples * sizeof(uint16_t));
        return;
    }
    for (size_t i = 0; i < samples; ++i) {
        uint16_t word;
        std::memcpy(&word, from + 2 * i, sizeof word);
        to[i] = __builtin_bswap16(word);
    }
}

class FileCloser {
  public:
    explicit FileCloser(int fd) : fd_(fd) {}
    ~FileCloser() {
        if (fd_ >= 0) close(fd_);
    }
    FileCloser(const FileCloser&) = delete;
    FileCloser& operator=(const FileCloser&) = delete;

  private:
    int fd_;
};
}  // namespace

bool dpxFastLayout(const std::string& path, DpxLayout* layout) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    FileCloser closer(fd);
    struct stat status;
    Header header;
    return fd >= 0 && fstat(fd, &status) == 0 && readHeader(fd, &header) &&
           acceptLayout(header, static_cast<uint64_t>(status.st_size), layout);
}

bool readDpxFast(const std::string& path, const DpxLayout& layout, uint16_t* samples,
                 std::string* error) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    FileCloser closer(fd);
    if (fd < 0) {
        *error = std::strerror(errno);
        return false;
    }
    const uint64_t row = layout.dataBytes / static_cast<uint64_t>(layout.height);
    const uint64_t rowsPerBlock = row >= kBlockBytes ? 1 : kBlockBytes / row;
    static thread_local std::vector<unsigned char> block;
    block.resize(rowsPerBlock * row);
    const size_t rowSamples = static_cast<size_t>(layout.width) * 3;
    for (uint64_t y = 0; y < static_cast<uint64_t>(layout.height); y += rowsPerBlock) {
        const uint64_t rows = std::min<uint64_t>(rowsPerBlock, layout.height - y);
        const size_t bytes = static_cast<size_t>(rows * row);
        size_t got = 0;
        while (got < bytes) {
            const ssize_t n = pread(fd, block.data() + got, bytes - got,
                                    static_cast<off_t>(layout.dataOffset + y * row + got));
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) {
                *error = n < 0 ? std::strerror(errno) : "the file ends before its last row";
                return false;
            }
            got += static_cast<size_t>(n);
        }
        uint16_t* to = samples + y * rowSamples;
        if (layout.bits == 10)
            unpackTen(block.data(), rows * layout.width, layout.swapped, layout.methodB, to);
        else
            unpackWords(block.data(), rows * rowSamples, layout.swapped, to);
    }
    return true;
}
