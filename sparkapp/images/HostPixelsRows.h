// HostPixelsRows: the row kernels of HostPixels, each in a plain form and,
// on x86-64, an AVX2 form compiled for that extension alone and chosen at
// run time when the processor has it. Both forms give the same bytes: the
// AVX2 forms do the plain formulas of HostPixels.h in exact integer lanes,
// and the float ones the same single float operations in the same order
// (no fused multiply-add). STRAIGHTLUX_PLAIN_CPU (anything but "0") keeps
// the plain forms, as it does in the plug-in.
//
// Host words hold the 12-bit value above 4 zero bits; n counts samples.
#pragma once

#include <cstddef>
#include <cstdint>

struct HostRowKernels {
    // file samples -> host row
    void (*wordsToTwelve)(const uint16_t* from, size_t n, uint16_t* to);
    void (*floatsToTwelve)(const float* from, size_t n, uint16_t* to);
    void (*wordsToEight)(const uint16_t* from, size_t n, uint8_t* to);
    void (*floatsToEight)(const float* from, size_t n, uint8_t* to);
    // host row -> file samples
    void (*twelveToSixteen)(const uint16_t* from, size_t n, uint16_t* to);
    void (*twelveToFloats)(const uint16_t* from, size_t n, float* to);
};

// The plain kernels, and the AVX2 ones (null members where there is none).
const HostRowKernels& plainHostRows();
const HostRowKernels& avx2HostRows();

// The kernels in use: AVX2 when the processor has it and the environment
// does not ask for the plain forms.
const HostRowKernels& hostRows();

// Tests: true forces the plain forms, false goes back to the processor's choice.
void forcePlainHostRows(bool plain);
