#include "ZelColourImages.h"

#include "ZelBand.h"
#include "ZelChannelScale.h"
#include "ZelColour.h"

namespace {

bool sameSize(const ImageZel& a, const ImageZel& b) {
    return a.hasPixels() && b.hasPixels() && a.width == b.width && a.height == b.height;
}

ZelRgb rgbOf(const PixelZel& p) {
    return ZelRgb{zelChannelFraction(p.red), zelChannelFraction(p.green),
                  zelChannelFraction(p.blue)};
}

template <class PixelFn>
void eachPixel(const ImageZel& in, ImageZel& out, PixelFn fn) {
    zelForEachBand(in.height, [&](long first, long last) {
        for (long y = first; y <= last; ++y) {
            const PixelZel* src = in.rows[y];
            PixelZel* dst = out.rows[y];
            for (long x = 0; x < in.width; ++x) dst[x] = fn(src[x]);
        }
    });
}

}  // namespace

bool zelImageRgbToHsv(const ImageZel& in, ImageZel& out) {
    if (!sameSize(in, out)) return false;
    eachPixel(in, out, [](const PixelZel& p) {
        const ZelHsv hsv = zelRgbToHsv(rgbOf(p));
        PixelZel q;
        q.red = zelFractionChannel(hsv.hue);
        q.green = zelFractionChannel(hsv.saturation);
        q.blue = zelFractionChannel(hsv.value);
        q.alpha = p.alpha;
        return q;
    });
    return true;
}

bool zelImageHsvToRgb(const ImageZel& in, ImageZel& out) {
    if (!sameSize(in, out)) return false;
    eachPixel(in, out, [](const PixelZel& p) {
        const ZelHsv hsv{zelChannelFraction(p.red), zelChannelFraction(p.green),
                         zelChannelFraction(p.blue)};
        const ZelRgb rgb = zelHsvToRgb(hsv);
        PixelZel q;
        q.red = zelFractionChannel(rgb.red);
        q.green = zelFractionChannel(rgb.green);
        q.blue = zelFractionChannel(rgb.blue);
        q.alpha = p.alpha;
        return q;
    });
    return true;
}

bool zelImageToLumaDifferences(const ImageZel& in, FloatImageZel& luma,
                               FloatImageZel& blueDifference, FloatImageZel& redDifference) {
    if (!in.hasPixels() || !luma.resize(in.width, in.height) ||
        !blueDifference.resize(in.width, in.height) || !redDifference.resize(in.width, in.height))
        return false;
    zelForEachBand(in.height, [&](long first, long last) {
        for (long y = first; y <= last; ++y) {
            const PixelZel* src = in.rows[y];
            float* ly = luma.row(y);
            float* lb = blueDifference.row(y);
            float* lr = redDifference.row(y);
            for (long x = 0; x < in.width; ++x) {
                const ZelLumaDifferences d = zelRgbToLumaDifferences(rgbOf(src[x]));
                ly[x] = d.luma;
                lb[x] = d.blueDifference;
                lr[x] = d.redDifference;
            }
        }
    });
    return true;
}

bool zelImageFromLumaDifferences(const FloatImageZel& luma, const FloatImageZel& blueDifference,
                                 const FloatImageZel& redDifference, ImageZel& out) {
    if (!luma.hasPixels() || !luma.sameSize(blueDifference) || !luma.sameSize(redDifference) ||
        !blueDifference.hasPixels() || !redDifference.hasPixels() || !out.hasPixels() ||
        out.width != luma.width() || out.height != luma.height())
        return false;
    zelForEachBand(out.height, [&](long first, long last) {
        for (long y = first; y <= last; ++y) {
            const float* ly = luma.row(y);
            const float* lb = blueDifference.row(y);
            const float* lr = redDifference.row(y);
            PixelZel* dst = out.rows[y];
            for (long x = 0; x < out.width; ++x) {
                const ZelRgb rgb = zelLumaDifferencesToRgb(ZelLumaDifferences{ly[x], lb[x], lr[x]});
                dst[x].red = zelFractionChannel(rgb.red);
                dst[x].green = zelFractionChannel(rgb.green);
                dst[x].blue = zelFractionChannel(rgb.blue);
            }
        }
    });
    return true;
}
