#include "ZelSharpen.h"

#include <cmath>

#include "ZelBand.h"
#include "ZelGaussianBlur.h"

bool zelUnsharpMask(const FloatImageZel& in, FloatImageZel& out, float sigma, float amount,
                    float threshold) {
    if (!in.hasPixels()) return false;
    FloatImageZel blurred;
    if (!zelGaussianBlur(in, blurred, sigma)) return false;
    if (&in != &out && !out.resize(in.width(), in.height())) return false;
    zelForEachBand(in.height(), [&](long first, long last) {
        for (long y = first; y <= last; ++y) {
            const float* src = in.row(y);
            const float* blur = blurred.row(y);
            float* dst = out.row(y);
            for (long x = 0; x < in.width(); ++x) {
                const float detail = src[x] - blur[x];
                dst[x] = std::fabs(detail) > threshold ? src[x] + amount * detail : src[x];
            }
        }
    });
    return true;
}
