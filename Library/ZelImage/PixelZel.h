// PixelZel: one pixel of four unsigned 16-bit channels, red, green, blue, alpha.
// Working range 0..32767 (15-bit precision, 32768 nominal full value); the
// operations that clamp, clamp to 32767. The HSV helpers use 16383 (not 16384)
// as the fraction scale on purpose: results must match that arithmetic.
#pragma once

#include <cstdint>

constexpr unsigned short kZelFull15 = 32767;  // full 15-bit channel value

struct PixelZel {
    unsigned short red = 0;
    unsigned short green = 0;
    unsigned short blue = 0;
    unsigned short alpha = 0;

    void GetHSV(unsigned short& H, unsigned short& S, unsigned short& V) const;
    void SetHSV(unsigned short H, unsigned short S, unsigned short V);
    unsigned short GetLuminance() const;
    void SetLuminance(unsigned short Y);
};

static_assert(sizeof(PixelZel) == 8, "pixels are 8 bytes, stored contiguously");
