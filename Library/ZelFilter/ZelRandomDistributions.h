// Distributions on the seeded generators of ZelRandom.h, written out here
// (not the standard library's, whose outputs differ between libraries) so a
// seed gives the same numbers everywhere:
// - uniform float in [0, 1): the top 24 bits of next32() times 2^-24;
// - uniform double in [0, 1): the top 53 bits of next64() times 2^-53;
// - uniform integer in [0, n): Lemire's multiply-and-reject on next32(),
//   exactly uniform;
// - standard normal: Marsaglia's polar method on two uniform doubles in
//   (-1, 1), with zelPortableLog and the correctly rounded square root; the
//   second value of each pair is dropped, so a draw is self-contained;
// - shuffles (Fisher-Yates from the end) and k distinct indices of n
//   (Floyd's method, in the order drawn), for random sample consensus.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

// Natural logarithm from + - * / alone (frexp splits off the exponent), so it
// is the same on every IEEE machine; within a few units in the last place.
// 0 gives -infinity, negative numbers and NaN give NaN.
double zelPortableLog(double x);

template <class Generator>
float zelUniformFloat(Generator& g) {
    return static_cast<float>(g.next32() >> 8) * 0x1p-24f;
}

template <class Generator>
double zelUniformDouble(Generator& g) {
    return static_cast<double>(g.next64() >> 11) * 0x1p-53;
}

// n must be at least 1.
template <class Generator>
uint32_t zelUniformBelow(Generator& g, uint32_t n) {
    uint64_t product = static_cast<uint64_t>(g.next32()) * n;
    uint32_t low = static_cast<uint32_t>(product);
    if (low < n) {
        // Reject the 2^32 mod n draws that would favour the small results.
        const uint32_t threshold = static_cast<uint32_t>(-n) % n;
        while (low < threshold) {
            product = static_cast<uint64_t>(g.next32()) * n;
            low = static_cast<uint32_t>(product);
        }
    }
    return static_cast<uint32_t>(product >> 32);
}

template <class Generator>
double zelNormal(Generator& g) {
    for (;;) {
        const double u = 2.0 * zelUniformDouble(g) - 1.0;
        const double v = 2.0 * zelUniformDouble(g) - 1.0;
        const double s = u * u + v * v;
        if (s > 0.0 && s < 1.0) return u * std::sqrt(-2.0 * zelPortableLog(s) / s);
    }
}

template <class Generator, class T>
void zelShuffle(Generator& g, T* items, size_t count) {
    for (size_t i = count; i > 1; --i) {
        const size_t j = zelUniformBelow(g, static_cast<uint32_t>(i));
        std::swap(items[i - 1], items[j]);
    }
}

// k distinct values of 0 .. n-1 into out[0 .. k-1] (all n of them when
// k > n); returns how many. Quadratic in k, meant for the few points of a
// model hypothesis.
template <class Generator>
uint32_t zelSampleDistinct(Generator& g, uint32_t n, uint32_t k, uint32_t* out) {
    if (k > n) k = n;
    uint32_t taken = 0;
    for (uint32_t j = n - k; j < n; ++j) {
        const uint32_t t = zelUniformBelow(g, j + 1);
        bool seen = false;
        for (uint32_t i = 0; i < taken; ++i) seen = seen || out[i] == t;
        out[taken++] = seen ? j : t;
    }
    return taken;
}
