#include "ColourControlZel.h"

#include <cstdint>

#include "PixelZel.h"

namespace {
constexpr int kChannelShift = 7;  // 15-bit channel <-> 8-bit byte
constexpr unsigned kByteMask = 0xFF;
constexpr uint32_t kOpaqueAlpha = 0xFF000000u;  // top byte of every written word
constexpr double kPercentPerStep = 2.55;        // 8-bit value per percent
constexpr int kChannelCount = 3;

unsigned packedByte(uint32_t word, int channel) { return (word >> (8 * channel)) & kByteMask; }
}  // namespace

void ColourControlZel::bind(int number, unsigned long* swatch, float* redField, float* greenField,
                            float* blueField) {
    bindNumber(number);
    const bool channels = redField != nullptr && greenField != nullptr && blueField != nullptr;
    word_ = swatch;
    channelFields_[0] = channels ? redField : nullptr;
    channelFields_[1] = channels ? greenField : nullptr;
    channelFields_[2] = channels ? blueField : nullptr;
}

// c -> (c << 7) | (c >> 1) spreads a byte over 15 bits, so 255 becomes 32767.
void ColourControlZel::Sync() {
    if (word_ == nullptr) return;
    const uint32_t packed = static_cast<uint32_t>(*word_);
    unsigned short* channels[kChannelCount] = {&red, &green, &blue};
    for (int i = 0; i < kChannelCount; ++i) {
        const unsigned c = packedByte(packed, i);
        *channels[i] = static_cast<unsigned short>((c << kChannelShift) | (c >> 1));
    }
    alpha = kZelFull15;
}

// Only the channel fields can be greyed out; without them nothing is updated.
void ColourControlZel::greyOut(bool) {
    if (!hasChannelFields()) return;
    for (int i = 1; i <= kChannelCount; ++i) updateField(number_ + i);
    updateField(number_);
}

void ColourControlZel::showFields(bool hidden) {
    showField(number_, hidden);
    if (!hasChannelFields()) return;
    for (int i = 1; i < kChannelCount; ++i) showField(number_ + i, hidden);
    showField(number_ + kChannelCount, hidden);
}

void ColourControlZel::SetValue(double /*time*/, unsigned short r, unsigned short g,
                                unsigned short b, unsigned short /*a*/) {
    if (word_ == nullptr) return;
    const unsigned steps[kChannelCount] = {static_cast<unsigned>(r) >> kChannelShift,
                                           static_cast<unsigned>(g) >> kChannelShift,
                                           static_cast<unsigned>(b) >> kChannelShift};
    *word_ = (steps[0] & kByteMask) | (steps[1] & kByteMask) << 8 | (steps[2] & kByteMask) << 16 |
             kOpaqueAlpha;
    // The percentage fields take the shifted channel before it is cut to a
    // byte; the swatch's own number is not updated.
    if (hasChannelFields()) {
        for (int i = 0; i < kChannelCount; ++i) {
            if (channelFields_[i] != nullptr) {
                *channelFields_[i] = static_cast<float>(steps[i] / kPercentPerStep);
            }
        }
        for (int i = 1; i <= kChannelCount; ++i) updateField(number_ + i);
    }
    Sync();
}

// Only shifts back, without filling the low bits as Sync does, so 255 reads
// as 32640: a known asymmetry, kept.
void ColourControlZel::GetValue(double /*time*/, unsigned short& r, unsigned short& g,
                                unsigned short& b, unsigned short& a) const {
    const uint32_t packed = word_ != nullptr ? static_cast<uint32_t>(*word_) : 0;
    r = static_cast<unsigned short>(packedByte(packed, 0) << kChannelShift);
    g = static_cast<unsigned short>(packedByte(packed, 1) << kChannelShift);
    b = static_cast<unsigned short>(packedByte(packed, 2) << kChannelShift);
    a = kZelFull15;
}
