#include "ImageZel.h"

#include <cstring>

#include "zel_heap.h"

namespace {

constexpr const char* kSource = "Library/ZelImage";
// Reference width of the size factor: a 720-pixel-wide frame has factor 1.
constexpr float kReferenceWidth = 720.0f;

}  // namespace

ImageZel::ImageZel(long width, long height, float /*aspect*/, PixelZel* pixels, renderop_tag* op) {
    construct(width, height, pixels, op);
}

// The aspect argument is accepted and ignored on purpose; the host conversions
// set the pixel aspect afterwards.
ImageZel::ImageZel(int width, int height, float /*aspect*/, PixelZel* pixels, renderop_tag* op) {
    construct(width, height, pixels, op);
}

void ImageZel::construct(long w, long h, PixelZel* px, renderop_tag* op) {
    background = PixelZel();
    width = static_cast<int>(w);
    height = static_cast<int>(h);
    std::memset(opParams, 0, sizeof opParams);
    sizeFactor = kReferenceWidth / static_cast<float>(w);
    renderOp = op;
    pixelAspect = 1.0;
    secondScale = 1.0;
    std::memset(words, 0, sizeof words);
    attached = nullptr;

    if (px != nullptr) {
        pixels = px;
        ownsPixels = 0;
    } else {
        pixels = static_cast<PixelZel*>(
            ZEL_IMAGE_MALLOC(kSource, static_cast<size_t>(w) * h * sizeof(PixelZel)));
        ownsPixels = 1;
    }
    rows = static_cast<PixelZel**>(ZEL_MALLOC(kSource, static_cast<size_t>(h) * sizeof(PixelZel*)));
    rebuildRows();
}

// The copy always owns its pixels, even when the source borrowed its own.
ImageZel::ImageZel(ImageZel& other) {
    background = PixelZel();
    std::memset(opParams, 0, sizeof opParams);
    width = other.width;
    height = other.height;
    sizeFactor = other.sizeFactor;
    renderOp = other.renderOp;
    pixelAspect = other.pixelAspect;
    secondScale = other.secondScale;
    std::memcpy(words, other.words, sizeof words);

    const size_t bytes = static_cast<size_t>(width) * height * sizeof(PixelZel);
    pixels = static_cast<PixelZel*>(ZEL_IMAGE_MALLOC(kSource, bytes));
    rows = static_cast<PixelZel**>(
        ZEL_MALLOC(kSource, static_cast<size_t>(height) * sizeof(PixelZel*)));
    if (pixels != nullptr && other.pixels != nullptr) std::memcpy(pixels, other.pixels, bytes);
    rebuildRows();
    ownsPixels = 1;
    attached = nullptr;
}

ImageZel::~ImageZel() {
    if (pixels != nullptr && ownsPixels) ZEL_IMAGE_FREE(kSource, pixels);
    if (rows != nullptr) ZEL_FREE(kSource, rows);
    delete attached;
}

void ImageZel::rebuildRows() {
    if (rows == nullptr) return;
    for (int y = 0; y < height; ++y)
        rows[y] = pixels != nullptr ? pixels + static_cast<long>(y) * width : nullptr;
}
