// File pictures to and from the viewer's 8-bit RGBA pictures.
#include "ViewerPictures.h"

namespace {
const int kRgbaChannels = 4;
const unsigned char kOpaque = 255;
}  // namespace

simhost::ViewerImage viewerBackground(const FilePixels& picture) {
    simhost::ViewerImage image;
    image.width = picture.width;
    image.height = picture.height;
    const size_t pixels = static_cast<size_t>(picture.width) * picture.height;
    image.rgba.resize(pixels * kRgbaChannels);
    for (size_t p = 0; p < pixels; ++p) {
        for (int c = 0; c < kRgbChannels; ++c) {
            const size_t at = p * kRgbChannels + c;
            const int v = picture.isFloat ? eightFromFloat(picture.reals[at])
                                          : eightFromSixteen(picture.words[at]);
            image.rgba[p * kRgbaChannels + c] = static_cast<unsigned char>(v);
        }
        image.rgba[p * kRgbaChannels + kRgbChannels] = kOpaque;
    }
    return image;
}

RgbSamples viewerSamples(const simhost::ViewerImage& picture, SampleType type) {
    RgbSamples samples;
    samples.type = type;
    const size_t pixels = static_cast<size_t>(picture.width) * picture.height;
    const size_t count = pixels * kRgbChannels;
    switch (type) {
        case SampleType::Eight:
            samples.eights.resize(count);
            break;
        case SampleType::Sixteen:
            samples.sixteens.resize(count);
            break;
        case SampleType::Float:
            samples.floats.resize(count);
            break;
    }
    for (size_t p = 0; p < pixels; ++p) {
        for (int c = 0; c < kRgbChannels; ++c) {
            const int v = picture.rgba[p * kRgbaChannels + c];
            const size_t at = p * kRgbChannels + c;
            switch (type) {
                case SampleType::Eight:
                    samples.eights[at] = static_cast<uint8_t>(v);
                    break;
                case SampleType::Sixteen:
                    samples.sixteens[at] = static_cast<uint16_t>(sixteenFromEight(v));
                    break;
                case SampleType::Float:
                    samples.floats[at] = floatFromEight(v);
                    break;
            }
        }
    }
    return samples;
}
