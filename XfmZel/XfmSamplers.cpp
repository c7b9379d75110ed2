// Point samplers: nearest, bilinear and the separable 5-point kernel sampler,
// each in floating and fixed point. Pixels outside the image count as zero,
// so samples fade to transparent black at the border. Position comparisons
// are made in doubles before any integer conversion so that far-away or
// non-finite positions give black instead of overflowing.
#include <cmath>

#include "ImageXfmZel.h"

namespace {

const int kFull = kZelFull15;
const int kBilinearBits = 13;  // fractional bits of the fixed-point bilinear weights
const double kBilinearOne = 1 << kBilinearBits;
const int kMid = kXfmKernelSteps;      // table index of distance 1
const int kFar = 2 * kXfmKernelSteps;  // table index of distance 2

inline int clampFull(int v) { return v < 0 ? 0 : (v > kFull ? kFull : v); }

inline unsigned short roundClampedDouble(double v) {
    if (v < 0.0) v = 0.0;
    if (v > kFull) v = kFull;
    return static_cast<unsigned short>(v + 0.5);
}

inline const PixelZel* pixelOrNull(const ImageZel* img, int x, int y) {
    if (x < 0 || x >= img->width || y < 0 || y >= img->height) return nullptr;
    return &img->rows[y][x];
}

// Tap weights at distances -2..+2 from the integer part; the tap at -2 is
// used only at integer positions (frac 0), where every kernel is 0 anyway.
template <typename W>
inline void tapWeights(const W* K, int frac, W* w) {
    w[0] = frac == 0 ? K[kFar] : 0;
    w[1] = K[kMid + frac];
    w[2] = K[frac];
    w[3] = K[kMid - frac];
    w[4] = K[kFar - frac];
}

// Checked adds per-pixel bounds tests; without them the whole 5x5
// neighbourhood must lie inside the image. Both give the same result.
// H = (sum of pixel * weight along the row) >> 13, V = (sum of H * row weight) >> 13.
template <bool Checked>
PixelZel fivePointFixed(const ImageZel* img, const int32_t* K, int x0, int y0, int fx, int fy) {
    int32_t wx[5], wy[5];
    tapWeights(K, fx, wx);
    tapWeights(K, fy, wy);
    const int firstX = fx == 0 ? 0 : 1;
    const int firstY = fy == 0 ? 0 : 1;
    int32_t vr = 0, vg = 0, vb = 0, va = 0;
    for (int r = firstY; r < 5; ++r) {
        const int yy = y0 - 2 + r;
        if (Checked && (yy < 0 || yy >= img->height)) continue;
        const PixelZel* row = img->rows[yy];
        int32_t sr = 0, sg = 0, sb = 0, sa = 0;
        for (int k = firstX; k < 5; ++k) {
            const int xx = x0 - 2 + k;
            if (Checked && (xx < 0 || xx >= img->width)) continue;
            const PixelZel& p = row[xx];
            const int32_t w = wx[k];
            sr += p.red * w;
            sg += p.green * w;
            sb += p.blue * w;
            sa += p.alpha * w;
        }
        const int32_t w = wy[r];
        vr += (sr >> kXfmFixedBits) * w;
        vg += (sg >> kXfmFixedBits) * w;
        vb += (sb >> kXfmFixedBits) * w;
        va += (sa >> kXfmFixedBits) * w;
    }
    PixelZel out;
    out.red = static_cast<unsigned short>(clampFull(vr >> kXfmFixedBits));
    out.green = static_cast<unsigned short>(clampFull(vg >> kXfmFixedBits));
    out.blue = static_cast<unsigned short>(clampFull(vb >> kXfmFixedBits));
    out.alpha = static_cast<unsigned short>(clampFull(va >> kXfmFixedBits));
    return out;
}

template <bool Checked>
PixelZel fivePointDouble(const ImageZel* img, const double* K, int x0, int y0, int fx, int fy) {
    double wx[5], wy[5];
    tapWeights(K, fx, wx);
    tapWeights(K, fy, wy);
    const int firstX = fx == 0 ? 0 : 1;
    const int firstY = fy == 0 ? 0 : 1;
    double vr = 0, vg = 0, vb = 0, va = 0;
    for (int r = firstY; r < 5; ++r) {
        const int yy = y0 - 2 + r;
        if (Checked && (yy < 0 || yy >= img->height)) continue;
        const PixelZel* row = img->rows[yy];
        double sr = 0, sg = 0, sb = 0, sa = 0;
        for (int k = firstX; k < 5; ++k) {
            const int xx = x0 - 2 + k;
            if (Checked && (xx < 0 || xx >= img->width)) continue;
            const PixelZel& p = row[xx];
            const double w = wx[k];
            sr += p.red * w;
            sg += p.green * w;
            sb += p.blue * w;
            sa += p.alpha * w;
        }
        const double w = wy[r];
        vr += sr * w;
        vg += sg * w;
        vb += sb * w;
        va += sa * w;
    }
    PixelZel out;
    out.red = roundClampedDouble(vr);
    out.green = roundClampedDouble(vg);
    out.blue = roundClampedDouble(vb);
    out.alpha = roundClampedDouble(va);
    return out;
}

// Common set-up of the 5-point samplers: false when the neighbourhood misses
// the image entirely; otherwise the integer parts, table indices and whether
// the fast interior path applies.
struct FivePointPlace {
    int x0, y0, fx, fy;
    bool interior;
};

bool placeFivePoint(const ImageZel* img, double x, double y, FivePointPlace& at) {
    const double xf = std::floor(x), yf = std::floor(y);
    if (!(yf - 2 < img->height) || !(yf + 2 >= 0) || !(xf - 2 < img->width) || !(xf + 2 >= 0))
        return false;
    at.x0 = static_cast<int>(xf);
    at.y0 = static_cast<int>(yf);
    at.fx = static_cast<int>((x - xf) * kXfmKernelSteps);
    at.fy = static_cast<int>((y - yf) * kXfmKernelSteps);
    at.interior =
        at.x0 - 2 >= 0 && at.x0 + 2 < img->width && at.y0 - 2 >= 0 && at.y0 + 2 < img->height;
    return true;
}

// The four bilinear neighbours with zero padding; false when all miss.
struct BilinearPlace {
    int x0, y0;
    double xf, yf;
    PixelZel p00, p10, p01, p11;
};

bool placeBilinear(const ImageZel* img, double x, double y, BilinearPlace& at) {
    at.xf = std::floor(x);
    at.yf = std::floor(y);
    if (!(at.xf < img->width) || !(at.xf + 1 >= 0) || !(at.yf < img->height) || !(at.yf + 1 >= 0))
        return false;
    at.x0 = static_cast<int>(at.xf);
    at.y0 = static_cast<int>(at.yf);
    const PixelZel zero;
    const PixelZel* p;
    at.p00 = (p = pixelOrNull(img, at.x0, at.y0)) ? *p : zero;
    at.p10 = (p = pixelOrNull(img, at.x0 + 1, at.y0)) ? *p : zero;
    at.p01 = (p = pixelOrNull(img, at.x0, at.y0 + 1)) ? *p : zero;
    at.p11 = (p = pixelOrNull(img, at.x0 + 1, at.y0 + 1)) ? *p : zero;
    return true;
}

// top = p00 + ((p10 - p00) * fx >> 13), bottom likewise, v = top + ((bottom - top) * fy >> 13).
inline unsigned short bilinearFixed(int p00, int p10, int p01, int p11, int fx, int fy) {
    const int top = p00 + (((p10 - p00) * fx) >> kBilinearBits);
    const int bottom = p01 + (((p11 - p01) * fx) >> kBilinearBits);
    const int v = top + (((bottom - top) * fy) >> kBilinearBits);
    return static_cast<unsigned short>(v > kFull ? kFull : v);
}

inline unsigned short bilinearDouble(double p00, double p10, double p01, double p11, double fx,
                                     double fy) {
    const double top = p00 + (p10 - p00) * fx;
    const double bottom = p01 + (p11 - p01) * fx;
    double v = top + (bottom - top) * fy;
    if (v > kFull) v = kFull;  // only the top is clamped
    return static_cast<unsigned short>(v + 0.5);
}

}  // namespace

PixelZel ImageXfmZel::sample(ImageZel* img, double x, double y) {
    if (img == nullptr) return PixelZel();
    switch (mode) {
        case XFM_MODE_NEAREST:
            return nearest_sample(img, x, y);
        case XFM_MODE_LINEAR:
            return arithmetic == XFM_ARITH_DOUBLE ? bilinear_sample(img, x, y)
                                                  : bilinear_sample_integer(img, x, y);
        case XFM_MODE_CUBIC:
        case XFM_MODE_SHARP_CUBIC:
        case XFM_MODE_BSPLINE:
        case XFM_MODE_LANCZOS:
            return arithmetic == XFM_ARITH_DOUBLE ? general_5_point_sample(img, x, y)
                                                  : general_5_point_sample_integer(img, x, y);
        default:
            return PixelZel();
    }
}

// Position + 0.5 truncated toward zero: positions in (-1.5, -0.5) also fetch
// column (or row) 0; that is the required behaviour.
PixelZel ImageXfmZel::nearest_sample(ImageZel* img, double x, double y) {
    const double xs = x + 0.5, ys = y + 0.5;
    if (!(xs > -1.0) || !(xs < img->width) || !(ys > -1.0) || !(ys < img->height))
        return PixelZel();
    return img->rows[static_cast<int>(ys)][static_cast<int>(xs)];
}

PixelZel ImageXfmZel::bilinear_sample(ImageZel* img, double x, double y) {
    BilinearPlace at;
    if (!placeBilinear(img, x, y, at)) return PixelZel();
    const double fx = x - at.x0, fy = y - at.y0;
    PixelZel out;
    out.red = bilinearDouble(at.p00.red, at.p10.red, at.p01.red, at.p11.red, fx, fy);
    out.green = bilinearDouble(at.p00.green, at.p10.green, at.p01.green, at.p11.green, fx, fy);
    out.blue = bilinearDouble(at.p00.blue, at.p10.blue, at.p01.blue, at.p11.blue, fx, fy);
    out.alpha = bilinearDouble(at.p00.alpha, at.p10.alpha, at.p01.alpha, at.p11.alpha, fx, fy);
    return out;
}

PixelZel ImageXfmZel::bilinear_sample_integer(ImageZel* img, double x, double y) {
    BilinearPlace at;
    if (!placeBilinear(img, x, y, at)) return PixelZel();
    const int fx = static_cast<int>((x - at.x0) * kBilinearOne);
    const int fy = static_cast<int>((y - at.y0) * kBilinearOne);
    PixelZel out;
    out.red = bilinearFixed(at.p00.red, at.p10.red, at.p01.red, at.p11.red, fx, fy);
    out.green = bilinearFixed(at.p00.green, at.p10.green, at.p01.green, at.p11.green, fx, fy);
    out.blue = bilinearFixed(at.p00.blue, at.p10.blue, at.p01.blue, at.p11.blue, fx, fy);
    out.alpha = bilinearFixed(at.p00.alpha, at.p10.alpha, at.p01.alpha, at.p11.alpha, fx, fy);
    return out;
}

PixelZel ImageXfmZel::general_5_point_sample(ImageZel* img, double x, double y) {
    FivePointPlace at;
    if (!placeFivePoint(img, x, y, at)) return PixelZel();
    return at.interior ? fivePointDouble<false>(img, kernel, at.x0, at.y0, at.fx, at.fy)
                       : fivePointDouble<true>(img, kernel, at.x0, at.y0, at.fx, at.fy);
}

PixelZel ImageXfmZel::general_5_point_sample_integer(ImageZel* img, double x, double y) {
    FivePointPlace at;
    if (!placeFivePoint(img, x, y, at)) return PixelZel();
    return at.interior ? fivePointFixed<false>(img, kernelFixed, at.x0, at.y0, at.fx, at.fy)
                       : fivePointFixed<true>(img, kernelFixed, at.x0, at.y0, at.fx, at.fy);
}
