// Image scaling: resizes a whole image to the destination's size with the
// current kernel in two separable passes (horizontal into a temporary image,
// then vertical), each run through mp_exec. Unlike the point samplers the
// scaler replicates edge pixels, and it stretches the kernel when shrinking.
// Output sample k sits at input position k * ratio, so the first and last
// pixels of input and output coincide.
#include <cmath>
#include <cstring>
#include <new>

#include "ImageXfmZel.h"

namespace {

const double kFull = kZelFull15;

inline unsigned short roundClamped(double v) {
    if (v < 0.0) v = 0.0;
    if (v > kFull) v = kFull;
    return static_cast<unsigned short>(v + 0.5);
}

inline const XfmScaleParams& paramsOf(void* argument) {
    return static_cast<ImageXfmZel*>(argument)->scaling;
}

// Reads input sample i of a line: along a row (stride 1) or down a column.
struct Line {
    const ImageZel* img;
    int fixed;  // the row (horizontal) or the column (vertical)
    bool vertical;
    int count;  // input count

    // Taps beyond either end repeat the edge pixel.
    const PixelZel& at(int i) const {
        if (i < 0) i = 0;
        if (i >= count) i = count - 1;
        return vertical ? img->rows[i][fixed] : img->rows[fixed][i];
    }
};

// Enlarging: taps ceil(c - R) .. floor(c + R), weight kernel[|trunc((i - c) * 512)|],
// sums not normalised.
PixelZel enlargeSample(const XfmScaleParams& p, const Line& line, int k) {
    const double c = k * p.ratio;
    const int R = p.radius;
    const int first = static_cast<int>(std::ceil(c - R));
    const int last = static_cast<int>(std::floor(c + R));
    double sr = 0, sg = 0, sb = 0, sa = 0;
    for (int i = first; i <= last; ++i) {
        const int t = static_cast<int>((i - c) * kXfmKernelSteps);
        const double w = p.kernelTable[t < 0 ? -t : t];
        const PixelZel& px = line.at(i);
        sr += w * px.red;
        sg += w * px.green;
        sb += w * px.blue;
        sa += w * px.alpha;
    }
    PixelZel out;
    out.red = roundClamped(sr);
    out.green = roundClamped(sg);
    out.blue = roundClamped(sb);
    out.alpha = roundClamped(sa);
    return out;
}

// Shrinking: the kernel stretched by the ratio, taps ceil(c - R*ratio) ..
// floor(c + R*ratio), index |trunc((1/ratio) * (i - c) * 512)|, sums divided
// by the weight sum (unconditionally).
PixelZel shrinkSample(const XfmScaleParams& p, const Line& line, int k) {
    const double c = k * p.ratio;
    const double reach = p.radius * p.ratio;
    const double stretch = 1.0 / p.ratio;
    const int first = static_cast<int>(std::ceil(c - reach));
    const int last = static_cast<int>(std::floor(c + reach));
    double sr = 0, sg = 0, sb = 0, sa = 0, weight = 0;
    for (int i = first; i <= last; ++i) {
        int t = static_cast<int>(stretch * (i - c) * kXfmKernelSteps);
        if (t < 0) t = -t;
        if (t >= kXfmKernelSize) t = kXfmKernelSize - 1;
        const double w = p.kernelTable[t];
        const PixelZel& px = line.at(i);
        sr += w * px.red;
        sg += w * px.green;
        sb += w * px.blue;
        sa += w * px.alpha;
        weight += w;
    }
    PixelZel out;
    out.red = roundClamped(sr / weight);
    out.green = roundClamped(sg / weight);
    out.blue = roundClamped(sb / weight);
    out.alpha = roundClamped(sa / weight);
    return out;
}

template <PixelZel (*Sampler)(const XfmScaleParams&, const Line&, int)>
void scaleRows(void* argument, int first, int last) {
    const XfmScaleParams& p = paramsOf(argument);
    for (int y = first; y <= last; ++y) {
        const Line line{p.passSource, y, false, p.inCount};
        PixelZel* out = p.passDest->rows[y];
        for (int k = 0; k < p.outCount; ++k) out[k] = Sampler(p, line, k);
    }
}

template <PixelZel (*Sampler)(const XfmScaleParams&, const Line&, int)>
void scaleColumns(void* argument, int first, int last) {
    const XfmScaleParams& p = paramsOf(argument);
    for (int x = first; x <= last; ++x) {
        const Line line{p.passSource, x, true, p.inCount};
        for (int k = 0; k < p.outCount; ++k) p.passDest->rows[k][x] = Sampler(p, line, k);
    }
}

void copyWhole(const XfmScaleParams& p) {
    for (int y = 0; y < p.passSource->height; ++y)
        std::memcpy(p.passDest->rows[y], p.passSource->rows[y],
                    p.passSource->width * sizeof(PixelZel));
}

// A ratio needs both counts above 1 when they differ.
inline bool ratioDefined(int in, int out) { return in == out || (in > 1 && out > 1); }

}  // namespace

int ImageXfmZel::scale_image(ImageZel* src, ImageZel* dst) {
    if (src == nullptr || dst == nullptr) return 0;
    if (src->width < 1 || src->height < 1 || dst->width < 1 || dst->height < 1) return 0;
    scaling = XfmScaleParams();
    scaling.passSource = src;
    scaling.passDest = dst;
    scaling.radius = kernelRadius;
    scaling.kernelTable = kernel;
    if (src == dst) return 1;
    if (src->width == dst->width && src->height == dst->height) {
        scaling.outCount = src->width;
        scaling.inCount = src->width;
        mp_exec(mp_copy_all, src->height);
        return 1;
    }
    // Refused rather than dividing by zero in the ratio.
    if (!ratioDefined(src->width, dst->width) || !ratioDefined(src->height, dst->height)) return 0;

    ImageZel* temp = new (std::nothrow) ImageZel(dst->width, src->height, 1.0f, nullptr, nullptr);
    if (temp == nullptr) return 0;
    if (temp->pixels == nullptr || temp->rows == nullptr) {
        delete temp;
        return 0;
    }
    scaling.temporary = temp;

    scaling.passSource = src;
    scaling.passDest = temp;
    scaling.outCount = temp->width;
    scaling.inCount = src->width;
    if (temp->width == src->width) {
        mp_exec(mp_copy_horiz, src->height);
    } else {
        scaling.ratio = (src->width - 1.0) / (temp->width - 1.0);
        mp_exec(temp->width <= src->width ? mp_scale_image_horiz_down : mp_scale_image_horiz_up,
                src->height);
    }

    scaling.passSource = temp;
    scaling.passDest = dst;
    scaling.outCount = dst->height;
    scaling.inCount = temp->height;
    if (dst->height == temp->height) {
        mp_exec(mp_copy_vert, temp->width);
    } else {
        scaling.ratio = (temp->height - 1.0) / (dst->height - 1.0);
        mp_exec(dst->height <= temp->height ? mp_scale_image_vert_down : mp_scale_image_vert_up,
                temp->width);
    }

    scaling.temporary = nullptr;
    delete temp;
    return 1;
}

// The three copy workers ignore their band and copy the whole pass source,
// so every band repeats the full copy; the result is the same.
void ImageXfmZel::mp_copy_all(void* argument, int, int) { copyWhole(paramsOf(argument)); }

void ImageXfmZel::mp_copy_horiz(void* argument, int, int) { copyWhole(paramsOf(argument)); }

void ImageXfmZel::mp_copy_vert(void* argument, int, int) { copyWhole(paramsOf(argument)); }

void ImageXfmZel::mp_scale_image_horiz_up(void* argument, int first, int last) {
    scaleRows<enlargeSample>(argument, first, last);
}

void ImageXfmZel::mp_scale_image_horiz_down(void* argument, int first, int last) {
    scaleRows<shrinkSample>(argument, first, last);
}

void ImageXfmZel::mp_scale_image_vert_up(void* argument, int first, int last) {
    scaleColumns<enlargeSample>(argument, first, last);
}

void ImageXfmZel::mp_scale_image_vert_down(void* argument, int first, int last) {
    scaleColumns<shrinkSample>(argument, first, last);
}
