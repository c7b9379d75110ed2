// Seeded random-number generators whose output is the same on every machine
// and compiler: only 64-bit integer arithmetic of published algorithms.
// - ZelSplitMix64: Steele, Lea and Flood's SplitMix64 (also seeds the others).
// - ZelPcg32: O'Neill's PCG32 (XSH RR, 64-bit state), a seed and a stream;
//   seed 42, stream 54 gives 0xa15c02b7, 0x7b47f409, ... as in its reference.
// - ZelXoshiro256: Blackman and Vigna's xoshiro256**, its state filled by
//   four SplitMix64 outputs of the seed.
// Each has next32() and next64(); the distributions (ZelRandomDistributions.h)
// work on any of them.
#pragma once

#include <cstdint>

class ZelSplitMix64 {
  public:
    explicit ZelSplitMix64(uint64_t seed) : state_(seed) {}
    uint64_t next64();
    uint32_t next32() { return static_cast<uint32_t>(next64() >> 32); }

  private:
    uint64_t state_;
};

class ZelPcg32 {
  public:
    explicit ZelPcg32(uint64_t seed, uint64_t stream = kDefaultStream);
    uint32_t next32();
    // Two outputs, the first in the high half.
    uint64_t next64();

    static constexpr uint64_t kDefaultStream = 0xda3e39cb94b95bdbULL;

  private:
    uint64_t state_ = 0;
    uint64_t increment_ = 0;
};

class ZelXoshiro256 {
  public:
    explicit ZelXoshiro256(uint64_t seed);
    uint64_t next64();
    uint32_t next32() { return static_cast<uint32_t>(next64() >> 32); }

  private:
    uint64_t s_[4];
};
