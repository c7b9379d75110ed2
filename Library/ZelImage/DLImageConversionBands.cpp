#include "DLImageConversionBands.h"

#include "DLImageRows.h"
#include "DLPixelFormulas.h"
#include "ImageZel.h"
#include "ZelBand.h"

namespace {

// The calling worker's rows out of count.
ZelRowBand workerBand(int bands, long count) { return zelCurrentBand(bands, count); }

}  // namespace

void mp_copy_pixel_data(unsigned char* buffer, ImageZel* image, int* bands) {
    const ZelRowBand band = workerBand(*bands, image->height);
    dlCopyRows8(buffer, image->width, image, band.first, band.last);
}

void mp_copy_pixel_data_scale(unsigned char* buffer, ImageZel* image, int* bands, int* width,
                              int* height, int* factor) {
    const ZelRowBand band = workerBand(*bands, image->height);
    dlCopyRowsSampled8(buffer, *width, *height, dlEffectiveFactor(*factor), kDLAlphaFull, image,
                       band.first, band.last);
}

void mp_copy_pixel_data_deep12(unsigned short* buffer, ImageZel* image, int* bands) {
    const ZelRowBand band = workerBand(*bands, image->height);
    dlCopyRows12(buffer, image->width, image, band.first, band.last);
}

void mp_copy_pixel_data_scale_deep12(unsigned short* buffer, ImageZel* image, int* bands,
                                     int* width, int* height, int* factor) {
    const ZelRowBand band = workerBand(*bands, image->height);
    dlCopyRowsSampled12(buffer, *width, *height, dlEffectiveFactor(*factor), kDLAlphaFull, image,
                        band.first, band.last);
}

void mp_paste_pixel_data(unsigned char* buffer, ImageZel* image, int* bands) {
    const ZelRowBand band = workerBand(*bands, image->height);
    dlPasteRows8(image, buffer, band.first, band.last);
}

void mp_paste_pixel_data_scale(unsigned char* buffer, ImageZel* image, int* bands, int* width,
                               int* height, int* factor) {
    const ZelRowBand band = workerBand(*bands, *height);
    dlPasteRowsReplicated8(image, buffer, *width, dlEffectiveFactor(*factor), band.first,
                           band.last);
}

void mp_paste_pixel_data_deep12(unsigned short* buffer, ImageZel* image, int* bands) {
    const ZelRowBand band = workerBand(*bands, image->height);
    dlPasteRows12(image, buffer, band.first, band.last);
}

void mp_paste_pixel_data_scale_deep12(unsigned short* buffer, ImageZel* image, int* bands,
                                      int* width, int* height, int* factor) {
    const ZelRowBand band = workerBand(*bands, *height);
    dlPasteRowsReplicated12(image, buffer, *width, dlEffectiveFactor(*factor), band.first,
                            band.last);
}
