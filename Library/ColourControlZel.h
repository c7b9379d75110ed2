// ColourControlZel: a colour swatch, optionally with three percentage fields
// for red, green and blue at number + 1, + 2, + 3. The plug-in works in 15-bit
// channels (0..32767); the swatch's packed word holds 8-bit channels, red in
// the lowest byte, then green, then blue, the top byte alpha (always written
// as 255); a percentage field holds the 8-bit value / 2.55.
#pragma once

#include "ControlZel.h"

class ColourControlZel : public ControlZel {
  public:
    ColourControlZel() = default;

    void Sync() override;
    void ResetKeyframes() override {}   // the host owns the keys
    void EnableKeyframes() override {}  // the host owns the keys

    // Binds the swatch's packed word and, when all three are given, the values
    // of the channel fields.
    void bind(int number, unsigned long* swatch, float* redField = nullptr,
              float* greenField = nullptr, float* blueField = nullptr);
    bool hasChannelFields() const { return channelFields_[0] != nullptr; }

    // Writes the swatch (and channel fields) straight away; the time and the
    // alpha argument are ignored.
    void SetValue(double time, unsigned short r, unsigned short g, unsigned short b,
                  unsigned short a);
    void GetValue(double time, unsigned short& r, unsigned short& g, unsigned short& b,
                  unsigned short& a) const;

    unsigned short red = 0;
    unsigned short green = 0;
    unsigned short blue = 0;
    unsigned short alpha = 0;

  private:
    void greyOut(bool disabled) override;
    void showFields(bool hidden) override;

    unsigned long* word_ = nullptr;
    float* channelFields_[3] = {nullptr, nullptr, nullptr};  // red, green, blue
};
