#include "DLImageConversion.h"

#include <cstdio>
#include <new>

#include "DLImageRows.h"
#include "DLPixelFormulas.h"
#include "ImageZel.h"
#include "ZelBand.h"

namespace {

// Sub-sampled size: size / factor rounded up to an even number, and at least
// 2 (the next even number above 0), so that a side shorter than the factor
// still makes a picture.
long sampledSize(long size, int factor) {
    const long q = size / factor;
    if (q < 1) return 2;
    return q % 2 == 0 ? q : q + 1;
}

void clearWords(ImageZel* image) {
    for (unsigned int& word : image->words) word = 0;
}

// Steps shared by both host formats: the image to fill (the reused one or a
// new one) with its fields set for this frame.
// A new image whose pixels or rows could not be allocated is given up: null.
ImageZel* newImage(long width, long height, int factor) {
    ImageZel* image =
        new (std::nothrow) ImageZel(width, height, static_cast<float>(factor), nullptr, nullptr);
    if (image != nullptr && !image->hasPixels()) {
        delete image;
        image = nullptr;
    }
    return image;
}

ImageZel* prepareImage(long width, long height, double aspect, int factor, ImageZel* reuse) {
    ImageZel* image = reuse;
    if (factor == 1) {
        if (image == nullptr) {
            image = newImage(width, height, factor);
            if (image == nullptr) return nullptr;
            clearWords(image);
        }
    } else {
        if (image == nullptr) {
            image = newImage(sampledSize(width, factor), sampledSize(height, factor), factor);
            if (image == nullptr) return nullptr;
        }
        clearWords(image);
    }
    image->pixelAspect = aspect;
    image->secondScale = 1.0;
    image->sizeFactor = static_cast<float>(factor);
    return image;
}

// Both depths: the image prepared (or reused) for the factor, then filled in
// bands; full resolution fills the host's rows, sub-sampled the image's.
template <class Word, class CopyFull, class CopySampled>
ImageZel* convertFromHost(Word* buffer, long width, long height, double aspect, int factor,
                          ImageZel* reuse, int copyPixels, CopyFull copyFull,
                          CopySampled copySampled) {
    factor = dlEffectiveFactor(factor);
    if (buffer == nullptr) return nullptr;
    ImageZel* image = prepareImage(width, height, aspect, factor, reuse);
    if (image == nullptr || copyPixels == 0) return image;
    zelForEachBand(factor == 1 ? height : image->height, [=](long first, long last) {
        if (factor == 1) {
            copyFull(image, first, last);
        } else {
            copySampled(image, factor, first, last);
        }
    });
    return image;
}

}  // namespace

ImageZel* ConvertFromDLImage8(unsigned char* buffer, long width, long height, double aspect,
                              int factor, ImageZel* reuse, int copyPixels) {
    return convertFromHost(
        buffer, width, height, aspect, factor, reuse, copyPixels,
        [=](ImageZel* image, long first, long last) {
            dlCopyRows8(buffer, width, image, first, last);
        },
        [=](ImageZel* image, int sampling, long first, long last) {
            dlCopyRowsSampled8(buffer, width, height, sampling, kDLAlphaFull, image, first, last);
        });
}

ImageZel* ConvertFromDLImage12(unsigned short* buffer, long width, long height, double aspect,
                               int factor, ImageZel* reuse, int copyPixels) {
    return convertFromHost(
        buffer, width, height, aspect, factor, reuse, copyPixels,
        [=](ImageZel* image, long first, long last) {
            dlCopyRows12(buffer, width, image, first, last);
        },
        [=](ImageZel* image, int sampling, long first, long last) {
            // Sub-sampled 12-bit pixels get alpha 65535, unlike every other path; kept.
            dlCopyRowsSampled12(buffer, width, height, sampling, kDLAlphaSubSampled12, image, first,
                                last);
        });
}

long DLImageSide(long hostSide, int factor) {
    factor = dlEffectiveFactor(factor);
    return factor == 1 ? hostSide : sampledSize(hostSide, factor);
}

void ConvertToDLImage8(ImageZel* image, unsigned char* buffer, int width, int height, int factor) {
    factor = dlEffectiveFactor(factor);
    if (buffer == nullptr || image == nullptr) return;
    if (factor == 1) {
        zelForEachBand(image->height,
                       [=](long first, long last) { dlPasteRows8(image, buffer, first, last); });
    } else {
        zelForEachBand(height, [=](long first, long last) {
            dlPasteRowsReplicated8(image, buffer, width, factor, first, last);
        });
    }
}

void ConvertToDLImage12(ImageZel* image, unsigned short* buffer, int width, int height, int factor,
                        int truncate) {
    if (truncate) {
        std::puts("Truncating 12bit image to 10 bits.");
        if (image != nullptr) {
            // The image itself keeps the masked values.
            zelForEachBand(image->height, [image](long first, long last) {
                for (long y = first; y <= last; ++y) {
                    PixelZel* row = image->rows[y];
                    for (int x = 0; x < image->width; ++x) {
                        row[x].red &= kDLTruncate10Mask;
                        row[x].green &= kDLTruncate10Mask;
                        row[x].blue &= kDLTruncate10Mask;
                    }
                }
            });
        }
    }
    factor = dlEffectiveFactor(factor);
    if (buffer == nullptr || image == nullptr) return;
    if (factor == 1) {
        zelForEachBand(image->height,
                       [=](long first, long last) { dlPasteRows12(image, buffer, first, last); });
    } else {
        zelForEachBand(height, [=](long first, long last) {
            dlPasteRowsReplicated12(image, buffer, width, factor, first, last);
        });
    }
}
