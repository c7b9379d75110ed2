#include "ZelChannels.h"

#include "ZelBand.h"
#include "ZelChannelScale.h"
#include "ZelColour.h"

namespace {

unsigned short& channelOf(PixelZel& p, ZelChannel c) {
    switch (c) {
        case ZelChannel::kRed:
            return p.red;
        case ZelChannel::kGreen:
            return p.green;
        case ZelChannel::kBlue:
            return p.blue;
        default:
            return p.alpha;
    }
}

bool prepared(const ImageZel& in, FloatImageZel& out) {
    return in.hasPixels() && out.resize(in.width, in.height);
}

}  // namespace

bool zelExtractChannel(const ImageZel& in, ZelChannel channel, FloatImageZel& out) {
    if (!prepared(in, out)) return false;
    zelForEachBand(in.height, [&](long first, long last) {
        for (long y = first; y <= last; ++y) {
            PixelZel* src = in.rows[y];
            float* dst = out.row(y);
            for (long x = 0; x < in.width; ++x)
                dst[x] = zelChannelFraction(channelOf(src[x], channel));
        }
    });
    return true;
}

bool zelStoreChannel(const FloatImageZel& in, ZelChannel channel, ImageZel& out) {
    if (!in.hasPixels() || !out.hasPixels() || in.width() != out.width || in.height() != out.height)
        return false;
    zelForEachBand(out.height, [&](long first, long last) {
        for (long y = first; y <= last; ++y) {
            const float* src = in.row(y);
            PixelZel* dst = out.rows[y];
            for (long x = 0; x < out.width; ++x)
                channelOf(dst[x], channel) = zelFractionChannel(src[x]);
        }
    });
    return true;
}

bool zelMixChannels(const ImageZel& in, const ZelChannelMix& mix, FloatImageZel& out) {
    if (!prepared(in, out)) return false;
    zelForEachBand(in.height, [&](long first, long last) {
        for (long y = first; y <= last; ++y) {
            const PixelZel* src = in.rows[y];
            float* dst = out.row(y);
            for (long x = 0; x < in.width; ++x) {
                const PixelZel& p = src[x];
                dst[x] =
                    mix.red * zelChannelFraction(p.red) + mix.green * zelChannelFraction(p.green) +
                    mix.blue * zelChannelFraction(p.blue) + mix.alpha * zelChannelFraction(p.alpha);
            }
        }
    });
    return true;
}

bool zelLuminance(const ImageZel& in, FloatImageZel& out) {
    ZelChannelMix mix;
    mix.red = kZelLumaRed;
    mix.green = kZelLumaGreen;
    mix.blue = kZelLumaBlue;
    return zelMixChannels(in, mix, out);
}
