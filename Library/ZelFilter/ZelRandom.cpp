#include "ZelRandom.h"

namespace {

constexpr uint64_t kGoldenGamma = 0x9e3779b97f4a7c15ULL;
constexpr uint64_t kMix1 = 0xbf58476d1ce4e5b9ULL;
constexpr uint64_t kMix2 = 0x94d049bb133111ebULL;
constexpr uint64_t kPcgMultiplier = 6364136223846793005ULL;

inline uint64_t rotateLeft(uint64_t x, int k) { return (x << k) | (x >> (64 - k)); }

}  // namespace

uint64_t ZelSplitMix64::next64() {
    uint64_t z = (state_ += kGoldenGamma);
    z = (z ^ (z >> 30)) * kMix1;
    z = (z ^ (z >> 27)) * kMix2;
    return z ^ (z >> 31);
}

// The reference seeding: zero state, odd increment from the stream, one step,
// add the seed, one more step.
ZelPcg32::ZelPcg32(uint64_t seed, uint64_t stream) : increment_((stream << 1u) | 1u) {
    next32();
    state_ += seed;
    next32();
}

uint32_t ZelPcg32::next32() {
    const uint64_t old = state_;
    state_ = old * kPcgMultiplier + increment_;
    const uint32_t xorshifted = static_cast<uint32_t>(((old >> 18u) ^ old) >> 27u);
    const uint32_t rotation = static_cast<uint32_t>(old >> 59u);
    return (xorshifted >> rotation) | (xorshifted << ((32u - rotation) & 31u));
}

uint64_t ZelPcg32::next64() {
    const uint64_t high = next32();
    return (high << 32) | next32();
}

ZelXoshiro256::ZelXoshiro256(uint64_t seed) {
    ZelSplitMix64 mix(seed);
    for (uint64_t& word : s_) word = mix.next64();
}

uint64_t ZelXoshiro256::next64() {
    const uint64_t result = rotateLeft(s_[1] * 5, 7) * 9;
    const uint64_t t = s_[1] << 17;
    s_[2] ^= s_[0];
    s_[3] ^= s_[1];
    s_[1] ^= s_[2];
    s_[0] ^= s_[3];
    s_[2] ^= t;
    s_[3] = rotateLeft(s_[3], 45);
    return result;
}
