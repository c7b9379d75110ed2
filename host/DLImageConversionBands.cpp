#include "DLImageConversionBands.h"

#include <spark.h>

#include "DLImageRows.h"
#include "DLPixelFormulas.h"
#include "ImageZel.h"
#include "ZelBand.h"

namespace {

struct Band {
    long first = 0;
    long last = -1;
};

// The calling worker's rows out of count.
Band workerBand(int bands, long count) {
    unsigned long offset = 0;
    unsigned long length = 0;
    sparkMpInfo(&offset, &length);
    Band band;
    zelBandRows(zelBandIndex(offset, length), bands, count, band.first, band.last);
    return band;
}

}  // namespace

void mp_copy_pixel_data(unsigned char* buffer, ImageZel* image, int* bands) {
    const Band band = workerBand(*bands, image->height);
    dlCopyRows8(buffer, image->width, image, band.first, band.last);
}

void mp_copy_pixel_data_scale(unsigned char* buffer, ImageZel* image, int* bands, int* width,
                              int* height, int* factor) {
    const Band band = workerBand(*bands, image->height);
    dlCopyRowsSampled8(buffer, *width, *height, dlEffectiveFactor(*factor), kDLAlphaFull, image,
                       band.first, band.last);
}

void mp_copy_pixel_data_deep12(unsigned short* buffer, ImageZel* image, int* bands) {
    const Band band = workerBand(*bands, image->height);
    dlCopyRows12(buffer, image->width, image, band.first, band.last);
}

void mp_copy_pixel_data_scale_deep12(unsigned short* buffer, ImageZel* image, int* bands,
                                     int* width, int* height, int* factor) {
    const Band band = workerBand(*bands, image->height);
    dlCopyRowsSampled12(buffer, *width, *height, dlEffectiveFactor(*factor), kDLAlphaFull, image,
                        band.first, band.last);
}

void mp_paste_pixel_data(unsigned char* buffer, ImageZel* image, int* bands) {
    const Band band = workerBand(*bands, image->height);
    dlPasteRows8(image, buffer, band.first, band.last);
}

void mp_paste_pixel_data_scale(unsigned char* buffer, ImageZel* image, int* bands, int* width,
                               int* height, int* factor) {
    const Band band = workerBand(*bands, *height);
    dlPasteRowsReplicated8(image, buffer, *width, dlEffectiveFactor(*factor), band.first,
                           band.last);
}

void mp_paste_pixel_data_deep12(unsigned short* buffer, ImageZel* image, int* bands) {
    const Band band = workerBand(*bands, image->height);
    dlPasteRows12(image, buffer, band.first, band.last);
}

void mp_paste_pixel_data_scale_deep12(unsigned short* buffer, ImageZel* image, int* bands,
                                      int* width, int* height, int* factor) {
    const Band band = workerBand(*bands, *height);
    dlPasteRowsReplicated12(image, buffer, *width, dlEffectiveFactor(*factor), band.first,
                            band.last);
}
