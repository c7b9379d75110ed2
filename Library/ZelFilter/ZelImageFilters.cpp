#include "ZelImageFilters.h"

#include "ZelChannels.h"
#include "ZelGaussianBlur.h"
#include "ZelSharpen.h"

namespace {

const ZelChannel kChannels[] = {ZelChannel::kRed, ZelChannel::kGreen, ZelChannel::kBlue,
                                ZelChannel::kAlpha};

// Channel by channel: each is read before it is written, so out may be in.
template <class Filter>
bool eachChannel(const ImageZel& in, ImageZel& out, Filter filter) {
    if (!in.hasPixels() || !out.hasPixels() || in.width != out.width || in.height != out.height)
        return false;
    FloatImageZel channel;
    FloatImageZel filtered;
    for (ZelChannel c : kChannels) {
        if (!zelExtractChannel(in, c, channel) || !filter(channel, filtered) ||
            !zelStoreChannel(filtered, c, out))
            return false;
    }
    return true;
}

}  // namespace

bool zelBlurImage(const ImageZel& in, ImageZel& out, float sigma) {
    return eachChannel(in, out, [sigma](const FloatImageZel& c, FloatImageZel& f) {
        return zelGaussianBlur(c, f, sigma);
    });
}

bool zelSharpenImage(const ImageZel& in, ImageZel& out, float sigma, float amount,
                     float threshold) {
    return eachChannel(in, out, [=](const FloatImageZel& c, FloatImageZel& f) {
        return zelUnsharpMask(c, f, sigma, amount, threshold);
    });
}
