// Band forms of the host buffer conversion, for the host's fork service:
// hand one of these to the host's fork call with pointers to its arguments;
// each forked worker converts its own band of rows (its band from the host's
// share report, bands sized as by zelForEachBand) with the same per-pixel mapping as the
// whole-frame conversions, and bands write disjoint rows. Copies fill image
// rows and set alpha 32767; pastes write host rows. bands is the number of
// bands to split into (normally DLnumProc); width, height and factor describe
// the host frame and the proxy factor (below 1 counts as 1).
#pragma once

class ImageZel;

// Host to image; the plain forms take a host frame of the image's own size.
void mp_copy_pixel_data(unsigned char* buffer, ImageZel* image, int* bands);
void mp_copy_pixel_data_scale(unsigned char* buffer, ImageZel* image, int* bands, int* width,
                              int* height, int* factor);
void mp_copy_pixel_data_deep12(unsigned short* buffer, ImageZel* image, int* bands);
void mp_copy_pixel_data_scale_deep12(unsigned short* buffer, ImageZel* image, int* bands,
                                     int* width, int* height, int* factor);

// Image to host.
void mp_paste_pixel_data(unsigned char* buffer, ImageZel* image, int* bands);
void mp_paste_pixel_data_scale(unsigned char* buffer, ImageZel* image, int* bands, int* width,
                               int* height, int* factor);
void mp_paste_pixel_data_deep12(unsigned short* buffer, ImageZel* image, int* bands);
void mp_paste_pixel_data_scale_deep12(unsigned short* buffer, ImageZel* image, int* bands,
                                      int* width, int* height, int* factor);
