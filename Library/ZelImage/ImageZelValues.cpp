#include <cstring>

#include "ImageZel.h"
#include "ZelBand.h"
#include "ZelBlendRows.h"

namespace {

constexpr unsigned short kChannelCount = 4;

// Truncates toward zero and clamps to the 15-bit working range.
unsigned short clampToFull15(float v) {
    if (!(v > 0.0f)) return 0;
    if (v >= static_cast<float>(kZelFull15)) return kZelFull15;
    return static_cast<unsigned short>(static_cast<int>(v));
}

}  // namespace

void ImageZel::Fill(unsigned short r, unsigned short g, unsigned short b, unsigned short a) {
    if (height < 1 || width < 1) return;
    PixelZel value;
    value.red = r;
    value.green = g;
    value.blue = b;
    value.alpha = a;
    for (int x = 0; x < width; ++x) rows[0][x] = value;
    const size_t rowBytes = static_cast<size_t>(width) * sizeof(PixelZel);
    for (int y = 1; y < height; ++y) std::memcpy(rows[y], rows[0], rowBytes);
}

void ImageZel::FillChannel(unsigned short value, unsigned short channel) {
    if (channel >= kChannelCount) return;
    for (int y = 0; y < height; ++y) {
        PixelZel* row = rows[y];
        for (int x = 0; x < width; ++x) {
            switch (channel) {
                case 0:
                    row[x].red = value;
                    break;
                case 1:
                    row[x].green = value;
                    break;
                case 2:
                    row[x].blue = value;
                    break;
                default:
                    row[x].alpha = value;
                    break;
            }
        }
    }
}

void ImageZel::ApplyLUT(unsigned short* lr, unsigned short* lg, unsigned short* lb,
                        unsigned short* la) {
    if (lr == nullptr || lg == nullptr || lb == nullptr || la == nullptr) return;
    for (int y = 0; y < height; ++y) {
        PixelZel* row = rows[y];
        for (int x = 0; x < width; ++x) {
            PixelZel& p = row[x];
            p.red = lr[p.red];
            p.green = lg[p.green];
            p.blue = lb[p.blue];
            p.alpha = la[p.alpha];
        }
    }
}

// The source's size drives the loops; the caller guarantees this image is at
// least as large. Unit factors copy bytes unchanged, so values above 32767 survive.
void ImageZel::CopyValues(ImageZel* src, float kr, float kg, float kb, float ka) {
    if (src == nullptr) return;
    const bool unchanged = kr == 1.0f && kg == 1.0f && kb == 1.0f && ka == 1.0f;
    const size_t rowBytes = static_cast<size_t>(src->width) * sizeof(PixelZel);
    for (int y = 0; y < src->height; ++y) {
        const PixelZel* from = src->rows[y];
        PixelZel* to = rows[y];
        if (unchanged) {
            std::memcpy(to, from, rowBytes);
            continue;
        }
        for (int x = 0; x < src->width; ++x) {
            to[x].red = clampToFull15(from[x].red * kr);
            to[x].green = clampToFull15(from[x].green * kg);
            to[x].blue = clampToFull15(from[x].blue * kb);
            to[x].alpha = clampToFull15(from[x].alpha * ka);
        }
    }
}

// Rows in bands over the host's processors; each band blends its own rows.
void ImageZel::InBlend(float amount, ImageZel* other) {
    if (other == nullptr) return;
    const float keep = 1.0f - amount;
    zelForEachBand(height, [this, other, amount, keep](long first, long last) {
        for (long y = first; y <= last; ++y)
            zelBlendRow(rows[y], other->rows[y], width, amount, keep);
    });
}
