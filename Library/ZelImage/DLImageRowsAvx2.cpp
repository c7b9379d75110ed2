// The AVX2 forms of the full-resolution row conversions: eight 12-bit pixels
// (24 host words) or sixteen 8-bit pixels (48 host bytes) at a time, three
// 16-byte blocks, with the per-channel formulas of DLPixelFormulas.h in
// 16-bit lanes, which hold every intermediate value exactly; the rest of a
// row goes through the plain form.
#include "DLImageRows.h"

#if ZEL_AVX2_FORMS

#include <immintrin.h>

#include "DLPixelFormulas.h"
#include "ImageZel.h"

namespace {

constexpr long kChannelsPerPixel = 3;
constexpr long kPixelsPerStep = 8;

// Two host pixels (six words, from the low 12 bytes) spread to red, green,
// blue and an empty alpha word each.
ZEL_TARGET_AVX2 inline __m128i spreadTwo(__m128i words) {
    const __m128i spread = _mm_setr_epi8(0, 1, 2, 3, 4, 5, -1, -1, 6, 7, 8, 9, 10, 11, -1, -1);
    return _mm_shuffle_epi8(words, spread);
}

// v = word >> 4; v * 8 + (v >> 9) = ((word >> 4) << 3) + (word >> 13); alpha 32767.
ZEL_TARGET_AVX2 inline __m128i toChannels(__m128i words) {
    const __m128i alpha = _mm_setr_epi16(0, 0, 0, kDLAlphaFull, 0, 0, 0, kDLAlphaFull);
    const __m128i value = _mm_srli_epi16(words, kDLWordValueShift);
    const __m128i channels =
        _mm_add_epi16(_mm_slli_epi16(value, 3), _mm_srli_epi16(words, kDLWordValueShift + 9));
    return _mm_or_si128(channels, alpha);
}

// v = min(value >> 3, 4095) << 4, for the red, green, blue of two pixels
// gathered into the low 12 bytes (the top four bytes zero).
ZEL_TARGET_AVX2 inline __m128i toWords(const PixelZel* pixels) {
    const __m128i gather = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -1, -1, -1, -1);
    const __m128i channels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
    const __m128i value =
        _mm_min_epu16(_mm_srli_epi16(channels, 3), _mm_set1_epi16(static_cast<short>(kDLMax12)));
    return _mm_shuffle_epi8(_mm_slli_epi16(value, kDLWordValueShift), gather);
}

// Four 8-bit host pixels (the low 12 bytes) to two registers of two image
// pixels: c -> c * 128 + (c >> 1), alpha 32767.
ZEL_TARGET_AVX2 inline void bytesToChannels(__m128i bytes, __m128i* to) {
    const __m128i first = _mm_setr_epi8(0, -1, 1, -1, 2, -1, -1, -1, 3, -1, 4, -1, 5, -1, -1, -1);
    const __m128i second =
        _mm_setr_epi8(6, -1, 7, -1, 8, -1, -1, -1, 9, -1, 10, -1, 11, -1, -1, -1);
    const __m128i alpha = _mm_setr_epi16(0, 0, 0, kDLAlphaFull, 0, 0, 0, kDLAlphaFull);
    for (int k = 0; k < 2; ++k) {
        const __m128i c = _mm_shuffle_epi8(bytes, k == 0 ? first : second);
        const __m128i channels = _mm_add_epi16(_mm_slli_epi16(c, 7), _mm_srli_epi16(c, 1));
        _mm_storeu_si128(to + k, _mm_or_si128(channels, alpha));
    }
}

// Four image pixels to their host bytes, min(value >> 7, 255), red, green and
// blue in the low 12 bytes (the top four zero).
ZEL_TARGET_AVX2 inline __m128i channelsToBytes(const PixelZel* pixels) {
    const __m128i gather = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    const __m128i* from = reinterpret_cast<const __m128i*>(pixels);
    // Shifted values are at most 511: the signed saturation to bytes is the min with 255.
    const __m128i low = _mm_srli_epi16(_mm_loadu_si128(from), 7);
    const __m128i high = _mm_srli_epi16(_mm_loadu_si128(from + 1), 7);
    return _mm_shuffle_epi8(_mm_packus_epi16(low, high), gather);
}

}  // namespace

ZEL_TARGET_AVX2 void dlCopyRows8Avx2(const unsigned char* buffer, long width, ImageZel* image,
                                     long first, long last) {
    constexpr long kBytePixelsPerStep = 16;
    for (long y = first; y <= last; ++y) {
        const unsigned char* in = buffer + y * width * kChannelsPerPixel;
        PixelZel* out = image->rows[y];
        long x = 0;
        for (; x + kBytePixelsPerStep <= width; x += kBytePixelsPerStep) {
            const __m128i* block = reinterpret_cast<const __m128i*>(in + x * kChannelsPerPixel);
            const __m128i a = _mm_loadu_si128(block);
            const __m128i b = _mm_loadu_si128(block + 1);
            const __m128i c = _mm_loadu_si128(block + 2);
            __m128i* to = reinterpret_cast<__m128i*>(out + x);
            bytesToChannels(a, to);
            bytesToChannels(_mm_alignr_epi8(b, a, 12), to + 2);
            bytesToChannels(_mm_alignr_epi8(c, b, 8), to + 4);
            bytesToChannels(_mm_srli_si128(c, 4), to + 6);
        }
        dlCopyRows8Plain(in + x * kChannelsPerPixel, width - x, out + x);
    }
}

ZEL_TARGET_AVX2 void dlPasteRows8Avx2(ImageZel* image, unsigned char* buffer, long first,
                                      long last) {
    constexpr long kBytePixelsPerStep = 16;
    const long width = image->width;
    for (long y = first; y <= last; ++y) {
        const PixelZel* in = image->rows[y];
        unsigned char* out = buffer + y * width * kChannelsPerPixel;
        long x = 0;
        for (; x + kBytePixelsPerStep <= width; x += kBytePixelsPerStep) {
            const __m128i p0 = channelsToBytes(in + x);
            const __m128i p1 = channelsToBytes(in + x + 4);
            const __m128i p2 = channelsToBytes(in + x + 8);
            const __m128i p3 = channelsToBytes(in + x + 12);
            __m128i* block = reinterpret_cast<__m128i*>(out + x * kChannelsPerPixel);
            _mm_storeu_si128(block, _mm_or_si128(p0, _mm_slli_si128(p1, 12)));
            _mm_storeu_si128(block + 1, _mm_or_si128(_mm_srli_si128(p1, 4), _mm_slli_si128(p2, 8)));
            _mm_storeu_si128(block + 2, _mm_or_si128(_mm_srli_si128(p2, 8), _mm_slli_si128(p3, 4)));
        }
        dlPasteRows8Plain(in + x, width - x, out + x * kChannelsPerPixel);
    }
}

ZEL_TARGET_AVX2 void dlCopyRows12Avx2(const unsigned short* buffer, long width, ImageZel* image,
                                      long first, long last) {
    for (long y = first; y <= last; ++y) {
        const unsigned short* in = buffer + y * width * kChannelsPerPixel;
        PixelZel* out = image->rows[y];
        long x = 0;
        for (; x + kPixelsPerStep <= width; x += kPixelsPerStep) {
            const __m128i* block = reinterpret_cast<const __m128i*>(in + x * kChannelsPerPixel);
            const __m128i a = _mm_loadu_si128(block);      // px 0, 1, 2 (r g)
            const __m128i b = _mm_loadu_si128(block + 1);  // (b) 2, 3, 4, 5 (r)
            const __m128i c = _mm_loadu_si128(block + 2);  // (g b) 5, 6, 7
            __m128i* to = reinterpret_cast<__m128i*>(out + x);
            _mm_storeu_si128(to, toChannels(spreadTwo(a)));
            _mm_storeu_si128(to + 1, toChannels(spreadTwo(_mm_alignr_epi8(b, a, 12))));
            _mm_storeu_si128(to + 2, toChannels(spreadTwo(_mm_alignr_epi8(c, b, 8))));
            _mm_storeu_si128(to + 3, toChannels(spreadTwo(_mm_srli_si128(c, 4))));
        }
        dlCopyRows12Plain(in + x * kChannelsPerPixel, width - x, out + x);
    }
}

// word = (old word AND 15) + v * 16: the host word's low 4 bits are kept.
ZEL_TARGET_AVX2 void dlPasteRows12Avx2(ImageZel* image, unsigned short* buffer, long first,
                                       long last) {
    const long width = image->width;
    const __m128i lowBits = _mm_set1_epi16(static_cast<short>(kDLWordLowBits));
    for (long y = first; y <= last; ++y) {
        const PixelZel* in = image->rows[y];
        unsigned short* out = buffer + y * width * kChannelsPerPixel;
        long x = 0;
        for (; x + kPixelsPerStep <= width; x += kPixelsPerStep) {
            const __m128i p01 = toWords(in + x);
            const __m128i p23 = toWords(in + x + 2);
            const __m128i p45 = toWords(in + x + 4);
            const __m128i p67 = toWords(in + x + 6);
            // Three blocks of eight words: 0 1 2(r g) | 2(b) 3 4 5(r) | 5(g b) 6 7.
            const __m128i words[3] = {_mm_or_si128(p01, _mm_slli_si128(p23, 12)),
                                      _mm_or_si128(_mm_srli_si128(p23, 4), _mm_slli_si128(p45, 8)),
                                      _mm_or_si128(_mm_srli_si128(p45, 8), _mm_slli_si128(p67, 4))};
            __m128i* block = reinterpret_cast<__m128i*>(out + x * kChannelsPerPixel);
            for (int k = 0; k < 3; ++k) {
                const __m128i old = _mm_loadu_si128(block + k);
                _mm_storeu_si128(block + k, _mm_add_epi16(_mm_and_si128(old, lowBits), words[k]));
            }
        }
        dlPasteRows12Plain(in + x, width - x, out + x * kChannelsPerPixel);
    }
}

#endif
