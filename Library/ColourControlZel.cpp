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

void ColourControlZel::Bind(int number, SparkColorStruct* swatch, SparkFloatStruct* redField,
                            SparkFloatStruct* greenField, SparkFloatStruct* blueField) {
    const bool channels = redField != nullptr && greenField != nullptr && blueField != nullptr;
    ControlZel::Bind(number, swatch != nullptr ? &swatch->Color : nullptr,
                     channels ? &redField->Value : nullptr);
    channelFields_[0] = channels ? &redField->Value : nullptr;
    channelFields_[1] = channels ? &greenField->Value : nullptr;
    channelFields_[2] = channels ? &blueField->Value : nullptr;
}

// c -> (c << 7) | (c >> 1) spreads a byte over 15 bits, so 255 becomes 32767.
void ColourControlZel::Sync() {
    if (word() == nullptr) return;
    const uint32_t packed = static_cast<uint32_t>(*word());
    unsigned short* channels[kChannelCount] = {&red, &green, &blue};
    for (int i = 0; i < kChannelCount; ++i) {
        const unsigned c = packedByte(packed, i);
        *channels[i] = static_cast<unsigned short>((c << kChannelShift) | (c >> 1));
    }
    alpha = kZelFull15;
}

void ColourControlZel::Disable(bool disabled) {
    if (disabled_ == disabled) {
        disabled_ = disabled;
        return;
    }
    if (HasChannelFields()) {
        for (int i = 1; i <= kChannelCount; ++i) UpdateField(number_ + i);
        UpdateField(number_);
    }
    disabled_ = disabled;
}

void ColourControlZel::Hide(bool hidden) {
    hidden_ = hidden;
    ShowField(number_, hidden);
    if (!HasChannelFields()) return;
    for (int i = 1; i < kChannelCount; ++i) ShowField(number_ + i, hidden);
    ShowField(number_ + kChannelCount, hidden);
}

void ColourControlZel::SetValue(double /*time*/, unsigned short r, unsigned short g,
                                unsigned short b, unsigned short /*a*/) {
    if (word() == nullptr) return;
    const unsigned steps[kChannelCount] = {static_cast<unsigned>(r) >> kChannelShift,
                                           static_cast<unsigned>(g) >> kChannelShift,
                                           static_cast<unsigned>(b) >> kChannelShift};
    *word() = (steps[0] & kByteMask) | (steps[1] & kByteMask) << 8 | (steps[2] & kByteMask) << 16 |
              kOpaqueAlpha;
    // The percentage fields take the shifted channel before it is cut to a
    // byte; the swatch's own number is not updated.
    if (HasChannelFields()) {
        for (int i = 0; i < kChannelCount; ++i) {
            if (channelFields_[i] != nullptr) {
                *channelFields_[i] = static_cast<float>(steps[i] / kPercentPerStep);
            }
        }
        for (int i = 1; i <= kChannelCount; ++i) UpdateField(number_ + i);
    }
    Sync();
}

// Only shifts back, without filling the low bits as Sync does, so 255 reads
// as 32640: a known asymmetry, kept.
void ColourControlZel::GetValue(double /*time*/, unsigned short& r, unsigned short& g,
                                unsigned short& b, unsigned short& a) const {
    const uint32_t packed = word() != nullptr ? static_cast<uint32_t>(*word()) : 0;
    r = static_cast<unsigned short>(packedByte(packed, 0) << kChannelShift);
    g = static_cast<unsigned short>(packedByte(packed, 1) << kChannelShift);
    b = static_cast<unsigned short>(packedByte(packed, 2) << kChannelShift);
    a = kZelFull15;
}
