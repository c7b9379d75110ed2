#include "FloatImageZel.h"

#include <cstring>

#include "zel_heap.h"

namespace {

constexpr const char* kSource = "Library/ZelFilter";

}  // namespace

FloatImageZel::FloatImageZel(int width, int height) { resize(width, height); }

FloatImageZel::FloatImageZel(FloatImageZel&& other) noexcept
    : pixels_(other.pixels_), width_(other.width_), height_(other.height_) {
    other.pixels_ = nullptr;
    other.width_ = other.height_ = 0;
}

FloatImageZel& FloatImageZel::operator=(FloatImageZel&& other) noexcept {
    if (this != &other) {
        release();
        pixels_ = other.pixels_;
        width_ = other.width_;
        height_ = other.height_;
        other.pixels_ = nullptr;
        other.width_ = other.height_ = 0;
    }
    return *this;
}

FloatImageZel::~FloatImageZel() { release(); }

void FloatImageZel::release() {
    if (pixels_ != nullptr) ZEL_IMAGE_FREE(kSource, pixels_);
    pixels_ = nullptr;
    width_ = height_ = 0;
}

bool FloatImageZel::resize(int width, int height) {
    if (width == width_ && height == height_ && pixels_ != nullptr) return true;
    release();
    if (width <= 0 || height <= 0) return false;
    const size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(height) * sizeof(float);
    pixels_ = static_cast<float*>(ZEL_IMAGE_MALLOC(kSource, bytes));
    if (pixels_ == nullptr) return false;
    std::memset(pixels_, 0, bytes);
    width_ = width;
    height_ = height;
    return true;
}

bool FloatImageZel::copyTo(FloatImageZel& out) const {
    if (&out == this) return hasPixels();
    if (!hasPixels() || !out.resize(width_, height_)) return false;
    std::memcpy(out.pixels_, pixels_, static_cast<size_t>(count()) * sizeof(float));
    return true;
}

void FloatImageZel::fill(float value) {
    for (long i = 0; i < count(); ++i) pixels_[i] = value;
}
