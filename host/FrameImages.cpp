#include "FrameImages.h"

#include "ImageZel.h"

ImageZel* FrameImages::reusable(Role role, long width, long height) {
    ImageZel* image = kept_[role].get();
    if (image != nullptr && image->width == width && image->height == height) return image;
    kept_[role].reset();
    return nullptr;
}

void FrameImages::keep(Role role, ImageZel* image) {
    if (kept_[role].get() == image) return;
    kept_[role].reset(image);
}

void FrameImages::releaseAll() {
    for (std::unique_ptr<ImageZel>& image : kept_) image.reset();
}

// Made at the first frame, so it is destroyed before the heap it frees into.
FrameImages& frameImages() {
    static FrameImages images;
    return images;
}
