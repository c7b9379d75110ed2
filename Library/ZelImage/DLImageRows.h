// Row-range workers of the host buffer conversion, shared by the whole-frame
// conversions and their band forms. Rows are inclusive ranges; host buffers
// are packed RGB with a stride of width pixels (3 bytes or 3 words a pixel).
// The sub-sampled copy takes host row and column factor / 2 + k * factor for
// image row and column k; image rows and columns past the last sample repeat
// the last sampled one (a side shorter than factor / 2 + 1 takes its last
// host row or column); the
// replicating paste gives host pixel (x, y) the image pixel
// (min(x / factor, width - 1), min(y / factor, height - 1)).
#pragma once

#include "ZelCpu.h"

class ImageZel;
struct PixelZel;

int dlEffectiveFactor(int factor);  // factors below 1 count as 1

// Host to image at full resolution: host rows first..last into the same image rows.
void dlCopyRows8(const unsigned char* buffer, long width, ImageZel* image, long first, long last);
void dlCopyRows12(const unsigned short* buffer, long width, ImageZel* image, long first, long last);

// Host to image, point sub-sampled: image rows first..last.
void dlCopyRowsSampled8(const unsigned char* buffer, long width, long height, int factor,
                        unsigned short alpha, ImageZel* image, long first, long last);
void dlCopyRowsSampled12(const unsigned short* buffer, long width, long height, int factor,
                         unsigned short alpha, ImageZel* image, long first, long last);

// Image to host at full resolution: image rows first..last; the host stride is
// the image width.
void dlPasteRows8(ImageZel* image, unsigned char* buffer, long first, long last);
void dlPasteRows12(ImageZel* image, unsigned short* buffer, long first, long last);

// The full-resolution rows come in a plain and an AVX2 form that give the
// same values (chosen by zelUseAvx2); the plain ones convert `count` pixels
// of one row.
void dlCopyRows8Plain(const unsigned char* in, long count, PixelZel* out);
void dlPasteRows8Plain(const PixelZel* in, long count, unsigned char* out);
void dlCopyRows12Plain(const unsigned short* in, long count, PixelZel* out);
void dlPasteRows12Plain(const PixelZel* in, long count, unsigned short* out);
#if ZEL_AVX2_FORMS
void dlCopyRows8Avx2(const unsigned char* buffer, long width, ImageZel* image, long first,
                     long last);
void dlPasteRows8Avx2(ImageZel* image, unsigned char* buffer, long first, long last);
void dlCopyRows12Avx2(const unsigned short* buffer, long width, ImageZel* image, long first,
                      long last);
void dlPasteRows12Avx2(ImageZel* image, unsigned short* buffer, long first, long last);
#endif

// Image to host, replicated: host rows first..last of a width x height frame.
void dlPasteRowsReplicated8(ImageZel* image, unsigned char* buffer, int width, int factor,
                            long first, long last);
void dlPasteRowsReplicated12(ImageZel* image, unsigned short* buffer, int width, int factor,
                             long first, long last);
