// Image warping through the inverse affine transform, and footprint sampling:
// when a destination pixel covers more than one source pixel along either
// axis, a separable tent area filter replaces the point samplers so that
// shrinking does not alias.
#include <algorithm>
#include <cmath>

#include "ImageXfmZel.h"
#include "XfmPointRuns.h"

namespace {

const double kMaxTentRadius = 15.0;   // bounds the cost of extreme reductions
const double kWindowLimit = 1 << 30;  // keeps absurd windows inside int range

inline bool usesAreaFilter(int mode) { return mode >= XFM_MODE_LINEAR && mode <= XFM_MODE_LANCZOS; }

inline double tentRadius(double r) {
    return r > kMaxTentRadius ? kMaxTentRadius : std::max(1.0, r);
}

inline int windowEdge(double v) {
    return static_cast<int>(std::min(kWindowLimit, std::max(-kWindowLimit, v)));
}

inline unsigned short roundAreaValue(double v) {
    return static_cast<unsigned short>(std::min(v, static_cast<double>(kZelFull15)) + 0.5);
}

}  // namespace

void ImageXfmZel::apply(ImageZel* src, ImageZel* dst, int firstRow, int lastRow) {
    if (src == nullptr || dst == nullptr) return;
    const double a = inverse[0], b = inverse[1], c = inverse[2], d = inverse[3], e = inverse[4],
                 f = inverse[5];
    const double r = 1.0 / inverseW;
    // Footprint: lengths of the images of the destination's unit steps in the source.
    const double rx = std::sqrt(a * a + b * b) * r;
    const double ry = std::sqrt(c * c + d * d) * r;
    if (firstRow > lastRow) return;
    firstRow = std::max(firstRow, 0);
    lastRow = std::min(lastRow, dst->height - 1);
    const bool shrinking = rx > 1.0 || ry > 1.0;
    if (shrinking) {
        const bool area = usesAreaFilter(mode);
        for (int y = firstRow; y <= lastRow; ++y) {
            PixelZel* out = dst->rows[y];
            for (int x = 0; x < dst->width; ++x) {
                const double sx = (a * x + c * y + e) * r;
                const double sy = (b * x + d * y + f) * r;
                out[x] =
                    area ? triangle_sample_down(src, sx, sy, rx, ry) : nearest_sample(src, sx, sy);
            }
        }
        return;
    }
    // The point path: a run of positions per row, sampled as sample() would.
    XfmPointRun run(*this, src);
    for (int y = firstRow; y <= lastRow; ++y)
        run.sample(XfmAffinePositions{a, b, c, d, e, f, r, y}, dst->width, dst->rows[y]);
}

void ImageXfmZel::apply(ImageZel& src, ImageZel& dst, int firstRow, int lastRow) {
    apply(&src, &dst, firstRow, lastRow);
}

// Unknown modes give black on the point path but the nearest pixel on the
// shrinking path; the difference is deliberate.
PixelZel ImageXfmZel::sample_image(ImageZel* img, double x, double y, double rx, double ry) {
    if (img == nullptr) return PixelZel();
    if (rx <= 1.0 && ry <= 1.0) return sample(img, x, y);
    return usesAreaFilter(mode) ? triangle_sample_down(img, x, y, rx, ry)
                                : nearest_sample(img, x, y);
}

PixelZel ImageXfmZel::sample_image(ImageZel& img, double x, double y, double rx, double ry) {
    return sample_image(&img, x, y, rx, ry);
}

PixelZel ImageXfmZel::sample_down(ImageZel* img, double x, double y, double rx, double ry) {
    if (img == nullptr) return PixelZel();
    return usesAreaFilter(mode) ? triangle_sample_down(img, x, y, rx, ry)
                                : nearest_sample(img, x, y);
}

// Separable tent of radii Rx, Ry (the footprint limited to 1..15) over the
// window x - rx .. x + rx, y - ry .. y + ry (the unlimited radii). Inside the
// image the weights are normalised by their sums; across the border by the
// nominal tent areas, so missing pixels count as zero and the result fades
// to transparent black as the point samplers do.
PixelZel ImageXfmZel::triangle_sample_down(ImageZel* img, double x, double y, double rx,
                                           double ry) {
    if (img == nullptr) return PixelZel();
    const double left = std::floor(x - rx), right = std::ceil(x + rx);
    const double top = std::floor(y - ry), bottom = std::ceil(y + ry);
    if (!(right >= 0) || !(left < img->width) || !(bottom >= 0) || !(top < img->height))
        return PixelZel();
    const int ix0 = windowEdge(left), ix1 = windowEdge(right);
    const int iy0 = windowEdge(top), iy1 = windowEdge(bottom);
    const double dx = 1.0 / tentRadius(rx);
    const double dy = 1.0 / tentRadius(ry);
    const double u0 = (x - ix0) * dx;
    double v = (y - iy0) * dy;
    double tr = 0, tg = 0, tb = 0, ta = 0;

    const bool interior = ix0 >= 0 && iy0 >= 0 && ix1 < img->width && iy1 < img->height;
    if (interior) {
        double totalWeight = 0;
        for (int j = iy0; j <= iy1; ++j, v -= dy) {
            const double wy = 1.0 - std::fabs(v);
            if (!(wy > 0)) continue;
            const PixelZel* row = img->rows[j];
            double sr = 0, sg = 0, sb = 0, sa = 0, rowWeight = 0;
            double u = u0;
            for (int i = ix0; i <= ix1; ++i, u -= dx) {
                const double wx = 1.0 - std::fabs(u);
                if (!(wx > 0)) continue;
                const PixelZel& p = row[i];
                sr += wx * p.red;
                sg += wx * p.green;
                sb += wx * p.blue;
                sa += wx * p.alpha;
                rowWeight += wx;
            }
            if (rowWeight > 0) {
                tr += wy * (sr / rowWeight);
                tg += wy * (sg / rowWeight);
                tb += wy * (sb / rowWeight);
                ta += wy * (sa / rowWeight);
            }
            totalWeight += wy;
        }
        if (totalWeight > 0) {
            tr /= totalWeight;
            tg /= totalWeight;
            tb /= totalWeight;
            ta /= totalWeight;
        } else {
            tr = tg = tb = ta = 0;
        }
    } else {
        for (int j = iy0; j <= iy1; ++j, v -= dy) {
            const double wy = 1.0 - std::fabs(v);
            if (j < 0 || j >= img->height || !(wy > 0)) continue;
            const PixelZel* row = img->rows[j];
            double sr = 0, sg = 0, sb = 0, sa = 0;
            double u = u0;
            for (int i = ix0; i <= ix1; ++i, u -= dx) {
                const double wx = 1.0 - std::fabs(u);
                if (i < 0 || i >= img->width || !(wx > 0)) continue;
                const PixelZel& p = row[i];
                sr += wx * p.red;
                sg += wx * p.green;
                sb += wx * p.blue;
                sa += wx * p.alpha;
            }
            tr += sr * dx * wy;
            tg += sg * dx * wy;
            tb += sb * dx * wy;
            ta += sa * dx * wy;
        }
        tr *= dy;
        tg *= dy;
        tb *= dy;
        ta *= dy;
    }
    PixelZel out;
    out.red = roundAreaValue(tr);
    out.green = roundAreaValue(tg);
    out.blue = roundAreaValue(tb);
    out.alpha = roundAreaValue(ta);
    return out;
}
