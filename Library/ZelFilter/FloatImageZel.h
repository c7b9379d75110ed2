// FloatImageZel: the filter library's working picture, one channel of
// single-precision values, width x height stored row after row with no
// padding. Values are fractions of the 15-bit full value (0 black, 1 full)
// when they come from an ImageZel channel, but any float is allowed, so
// differences and gradients keep their sign. Pixel centres sit at integer
// positions: column x at x, row y at y (rows run in memory order). Memory
// comes from the image allocator tagged "Library/ZelFilter" and is zeroed
// when allocated, so no value is ever read uninitialised.
#pragma once

class FloatImageZel {
  public:
    FloatImageZel() = default;
    // An image of the size, zero-filled; hasPixels() is false if it could not be allocated.
    FloatImageZel(int width, int height);
    FloatImageZel(FloatImageZel&& other) noexcept;
    FloatImageZel& operator=(FloatImageZel&& other) noexcept;
    FloatImageZel(const FloatImageZel&) = delete;
    FloatImageZel& operator=(const FloatImageZel&) = delete;
    ~FloatImageZel();

    // Makes the image width x height. The pixels are kept when the size is
    // already that (their values are then left as they were), else the block
    // is replaced by a zero-filled one. False when the size is not positive
    // or the allocator failed (the image is then empty).
    bool resize(int width, int height);
    // A deep copy into `out` (resized to this size); false on allocation failure.
    bool copyTo(FloatImageZel& out) const;
    void fill(float value);

    bool hasPixels() const { return pixels_ != nullptr; }
    int width() const { return width_; }
    int height() const { return height_; }
    long count() const { return static_cast<long>(width_) * height_; }
    float* data() { return pixels_; }
    const float* data() const { return pixels_; }
    float* row(long y) { return pixels_ + y * width_; }
    const float* row(long y) const { return pixels_ + y * width_; }
    float at(long x, long y) const { return pixels_[y * width_ + x]; }
    bool sameSize(const FloatImageZel& other) const {
        return width_ == other.width_ && height_ == other.height_;
    }

  private:
    void release();

    float* pixels_ = nullptr;
    int width_ = 0;
    int height_ = 0;
};
