#include "DLImageRows.h"

#include <algorithm>

#include "DLPixelFormulas.h"
#include "ImageZel.h"

namespace {

constexpr long kChannelsPerPixel = 3;  // host pixels are red, green, blue

// The two host formats: one host sample per channel and its mapping.
struct Host8 {
    using Sample = unsigned char;
    static unsigned short toChannel(Sample s) { return hostByteToChannel(s); }
    static Sample fromChannel(unsigned short v, Sample) { return channelToHostByte(v); }
};

struct Host12 {
    using Sample = unsigned short;
    static unsigned short toChannel(Sample s) { return hostWordToChannel(s); }
    static Sample fromChannel(unsigned short v, Sample old) { return channelToHostWord(v, old); }
};

template <class Format>
void readPixel(const typename Format::Sample* in, unsigned short alpha, PixelZel& out) {
    out.red = Format::toChannel(in[0]);
    out.green = Format::toChannel(in[1]);
    out.blue = Format::toChannel(in[2]);
    out.alpha = alpha;
}

template <class Format>
void writePixel(const PixelZel& in, typename Format::Sample* out) {
    out[0] = Format::fromChannel(in.red, out[0]);
    out[1] = Format::fromChannel(in.green, out[1]);
    out[2] = Format::fromChannel(in.blue, out[2]);
}

// Host column or row sampled for image column or row k: factor / 2 + k * factor.
// The image may reach past the last sample (its size was rounded up to an
// even number, at least 2); such a padding row or column repeats the nearest
// sampled one, the last, so that every image pixel is written and nothing
// depends on what the allocator left there. A side too short for any sample
// takes its last host row or column.
long sampledSource(long k, int factor, long size) {
    const long first = factor >> 1;
    if (first >= size) return size - 1;
    const long lastSampled = (size - 1 - first) / factor;
    return first + (k < lastSampled ? k : lastSampled) * factor;
}

// Image row or column that host row or column k repeats.
long replicatedSource(long k, int factor, int imageSize) {
    return std::min<long>(k / factor, imageSize - 1);
}

template <class Format>
void copyRows(const typename Format::Sample* buffer, long width, ImageZel* image, long first,
              long last) {
    for (long y = first; y <= last; ++y) {
        const typename Format::Sample* in = buffer + y * width * kChannelsPerPixel;
        PixelZel* out = image->rows[y];
        for (long x = 0; x < width; ++x)
            readPixel<Format>(in + x * kChannelsPerPixel, kDLAlphaFull, out[x]);
    }
}

template <class Format>
void copyRowsSampled(const typename Format::Sample* buffer, long width, long height, int factor,
                     unsigned short alpha, ImageZel* image, long first, long last) {
    for (long j = first; j <= last; ++j) {
        const long sy = sampledSource(j, factor, height);
        const typename Format::Sample* in = buffer + sy * width * kChannelsPerPixel;
        PixelZel* out = image->rows[j];
        for (long i = 0; i < image->width; ++i) {
            const long sx = sampledSource(i, factor, width);
            readPixel<Format>(in + sx * kChannelsPerPixel, alpha, out[i]);
        }
    }
}

template <class Format>
void pasteRows(ImageZel* image, typename Format::Sample* buffer, long first, long last) {
    const long width = image->width;
    for (long y = first; y <= last; ++y) {
        const PixelZel* in = image->rows[y];
        typename Format::Sample* out = buffer + y * width * kChannelsPerPixel;
        for (long x = 0; x < width; ++x) writePixel<Format>(in[x], out + x * kChannelsPerPixel);
    }
}

template <class Format>
void pasteRowsReplicated(ImageZel* image, typename Format::Sample* buffer, int width, int factor,
                         long first, long last) {
    for (long y = first; y <= last; ++y) {
        const PixelZel* in = image->rows[replicatedSource(y, factor, image->height)];
        typename Format::Sample* out = buffer + y * width * kChannelsPerPixel;
        for (long x = 0; x < width; ++x) {
            writePixel<Format>(in[replicatedSource(x, factor, image->width)],
                               out + x * kChannelsPerPixel);
        }
    }
}

}  // namespace

int dlEffectiveFactor(int factor) { return factor < 1 ? 1 : factor; }

void dlCopyRows8(const unsigned char* buffer, long width, ImageZel* image, long first, long last) {
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) return dlCopyRows8Avx2(buffer, width, image, first, last);
#endif
    copyRows<Host8>(buffer, width, image, first, last);
}

void dlCopyRows8Plain(const unsigned char* in, long count, PixelZel* out) {
    for (long x = 0; x < count; ++x)
        readPixel<Host8>(in + x * kChannelsPerPixel, kDLAlphaFull, out[x]);
}

void dlCopyRows12(const unsigned short* buffer, long width, ImageZel* image, long first,
                  long last) {
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) return dlCopyRows12Avx2(buffer, width, image, first, last);
#endif
    copyRows<Host12>(buffer, width, image, first, last);
}

void dlCopyRows12Plain(const unsigned short* in, long count, PixelZel* out) {
    for (long x = 0; x < count; ++x)
        readPixel<Host12>(in + x * kChannelsPerPixel, kDLAlphaFull, out[x]);
}

void dlCopyRowsSampled8(const unsigned char* buffer, long width, long height, int factor,
                        unsigned short alpha, ImageZel* image, long first, long last) {
    copyRowsSampled<Host8>(buffer, width, height, factor, alpha, image, first, last);
}

void dlCopyRowsSampled12(const unsigned short* buffer, long width, long height, int factor,
                         unsigned short alpha, ImageZel* image, long first, long last) {
    copyRowsSampled<Host12>(buffer, width, height, factor, alpha, image, first, last);
}

void dlPasteRows8(ImageZel* image, unsigned char* buffer, long first, long last) {
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) return dlPasteRows8Avx2(image, buffer, first, last);
#endif
    pasteRows<Host8>(image, buffer, first, last);
}

void dlPasteRows8Plain(const PixelZel* in, long count, unsigned char* out) {
    for (long x = 0; x < count; ++x) writePixel<Host8>(in[x], out + x * kChannelsPerPixel);
}

void dlPasteRows12(ImageZel* image, unsigned short* buffer, long first, long last) {
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) return dlPasteRows12Avx2(image, buffer, first, last);
#endif
    pasteRows<Host12>(image, buffer, first, last);
}

void dlPasteRows12Plain(const PixelZel* in, long count, unsigned short* out) {
    for (long x = 0; x < count; ++x) writePixel<Host12>(in[x], out + x * kChannelsPerPixel);
}

void dlPasteRowsReplicated8(ImageZel* image, unsigned char* buffer, int width, int factor,
                            long first, long last) {
    pasteRowsReplicated<Host8>(image, buffer, width, factor, first, last);
}

void dlPasteRowsReplicated12(ImageZel* image, unsigned short* buffer, int width, int factor,
                             long first, long last) {
    pasteRowsReplicated<Host12>(image, buffer, width, factor, first, last);
}
