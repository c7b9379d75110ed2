// Motion values from a second clip.
#include <new>

#include "ImageZel.h"
#include "PluginZel.h"

namespace {

constexpr float kTrackScale = 256.0f;  // motion values are stored in 1/256 pixel
constexpr int kHighByteShift = 7;      // a 15-bit channel's top 8 bits

// A motion component packed into two channels: the low channel's top byte and
// the high channel shifted up one bit, read as a signed 16-bit number.
float trackComponent(unsigned short low, unsigned short high) {
    const unsigned int packed = (low >> kHighByteShift) | (high * 2u);
    return static_cast<short>(static_cast<unsigned short>(packed)) / kTrackScale;
}

}  // namespace

float* PluginZel::GetTrackData(SourceZel* clip, double frame) {
    const int width = clip->image->width;
    const int height = clip->image->height;
    ImageZel* image = new (std::nothrow) ImageZel(width, height, 1.0f, nullptr, nullptr);
    float* values = new (std::nothrow) float[2 * static_cast<long>(width) * height];
    // Without memory for the picture or the values there is nothing to give.
    if (image == nullptr || values == nullptr || !image->hasPixels()) {
        delete image;
        delete[] values;
        return nullptr;
    }

    // The clip's frame numbering runs at twice the given rate, deliberately.
    clip->GetValue(2.0 * frame, image);
    if (image == nullptr) {
        delete[] values;
        return nullptr;
    }

    trackImage = image;
    trackValues = values;
    MultiProcess(&PluginZel::mp_ImgToTV, height);
    trackImage = nullptr;
    trackValues = nullptr;

    delete image;
    return values;
}

void PluginZel::mp_ImgToTV(long first, long last) {
    const int width = trackImage->width;
    for (long y = first; y <= last; ++y) {
        const PixelZel* row = trackImage->rows[y];
        float* out = trackValues + 2 * (y * width);
        for (int x = 0; x < width; ++x) {
            out[2 * x] = trackComponent(row[x].red, row[x].green);
            out[2 * x + 1] = trackComponent(row[x].blue, row[x].alpha);
        }
    }
}
