// Conversion between the host's packed frame buffers and ImageZel pictures.
// Host formats: 8/10-bit mode, 3 bytes a pixel (red, green, blue, 0..255);
// 12-bit mode, three 16-bit words a pixel with the 12-bit value in the top 12
// bits. Rows follow each other without padding (stride = width pixels). Image
// channels are 15-bit (0..32767). A proxy factor above 1 point-sub-samples on
// the way in and replicates each image pixel over a factor x factor block on
// the way out; a factor below 1 counts as 1. Used by the host binding's frame
// driver and by the framework's random frame access.
//
// "DL" is the host's own prefix for its frame buffers and for the globals a
// plug-in keeps about them: a DL image is a frame as the host stores it. The
// conversions (DLImageConversion, DLImageRows, DLPixelFormulas) and the host
// binding's DLwidth, DLheight, DLscalesr, DLnumProc and DL_Sync_Ctrl keep the
// host's names.
#pragma once

class ImageZel;

// Returns the reused image or a new one (created with new), or null for a null
// buffer or when a new image's memory could not be had. With copyPixels 0 only
// the image's size and fields are set up.
ImageZel* ConvertFromDLImage8(unsigned char* buffer, long width, long height, double aspect,
                              int factor, ImageZel* reuse, int copyPixels);
ImageZel* ConvertFromDLImage12(unsigned short* buffer, long width, long height, double aspect,
                               int factor, ImageZel* reuse, int copyPixels);

// The side of the picture made from a host side at a proxy factor: the side
// itself at factor 1 (or below), else side / factor rounded up to an even
// number, at least 2. A picture to reuse must have these sides.
long DLImageSide(long hostSide, int factor);

// width and height are the host frame's; a null buffer does nothing.
void ConvertToDLImage8(ImageZel* image, unsigned char* buffer, int width, int height, int factor);
// truncate != 0 first masks the image's colour channels to 10 significant bits.
void ConvertToDLImage12(ImageZel* image, unsigned short* buffer, int width, int height, int factor,
                        int truncate);
