// ImageZel: the framework's one picture type, width x height PixelZel values
// stored row after row with no padding, plus a row-pointer table (rows[y] is
// the first pixel of row y). Pixel channels are 15-bit (0..32767). Pixel
// centres sit at integer positions. Pixel memory comes from the image
// allocator tagged "Library/ZelImage"; an image either owns its pixel block or
// borrows it from the caller. Every float-to-integer conversion truncates.
#pragma once

#include "PixelZel.h"

struct renderop_tag;  // caller's render operation: stored and handed on, never read

// An object hung on an image; deleted with the image.
struct ZelImageAttachment {
    virtual ~ZelImageAttachment() = default;
};

class ImageZel {
  public:
    ImageZel(long width, long height, float aspect, PixelZel* pixels, renderop_tag* op);
    ImageZel(int width, int height, float aspect, PixelZel* pixels, renderop_tag* op);
    ImageZel(ImageZel& other);  // deep copy; the copy always owns its pixels
    ImageZel& operator=(const ImageZel&) = delete;
    ~ImageZel();

    // 15-bit fixed-point bilinear sample; neighbours outside contribute nothing.
    void PointSampleB(float x, float y, PixelZel& out);
    void PointSampleD(float x, float y, PixelZel& out);
    void PointSampleW(float x, float y, PixelZel& out);
    // Point sample at the centre of the area.
    void AreaSampleB(float x1, float y1, float x2, float y2, PixelZel& out);
    void AreaSampleD(float x1, float y1, float x2, float y2, PixelZel& out);
    void AreaSampleW(float x1, float y1, float x2, float y2, PixelZel& out);
    void AreaSampleStart() {}
    void AreaSampleEnd() {}

    void Fill(unsigned short r, unsigned short g, unsigned short b, unsigned short a);
    void FillChannel(unsigned short value, unsigned short channel);  // channel 0..3
    void ApplyLUT(unsigned short* lr, unsigned short* lg, unsigned short* lb, unsigned short* la);
    void CopyValues(ImageZel* src, float kr, float kg, float kb, float ka);
    // this := other * amount + this * (1 - amount), per channel, truncated.
    void InBlend(float amount, ImageZel* other);
    // Runs fn(first, last) over count rows split into bands on the host's processors.
    void MultiProcess(void (ImageZel::*fn)(long first, long last), long count);
    int AbortRender() { return 0; }
    // False when the allocator could not give the pixel block or the row table.
    bool hasPixels() const {
        return width > 0 && height > 0 && pixels != nullptr && rows != nullptr;
    }

    PixelZel* pixels;
    int ownsPixels;
    unsigned char filterStorage[412];  // filter library's working storage; left uninitialised
    unsigned int opParams[16];         // scratch of banded operations; zeroed by constructors
    PixelZel** rows;
    int width;
    int height;
    double pixelAspect;
    double secondScale;
    unsigned int words[4];
    unsigned int reserved1;
    float sizeFactor;  // 720 / width after construction; the proxy factor after host conversion
    renderop_tag* renderOp;
    unsigned int reserved2;
    ZelImageAttachment* attached;
    unsigned int reserved3;
    PixelZel background;

  private:
    void construct(long width, long height, PixelZel* pixels, renderop_tag* op);
    void rebuildRows();  // rows[y] := pixels + y * width
};
