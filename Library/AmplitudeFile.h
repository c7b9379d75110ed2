// Amplitude files: plain-text lists of channel keys prepared elsewhere. The
// file reads, white space matching any run of white space:
//   Channel Amplitude <channel>:
//       Size <n>
//   then n blocks of
//       Key <key>  Frame <frame>  Value <value>  End
// The header's channel number is read and not used. A negative size reads
// blocks until one does not scan; a malformed or missing block ends the
// reading quietly with the keys read so far. A key number that does not fit
// a frame number (32-bit) or a value that is not a finite single-precision
// number makes the whole file unusable: the reading stops and says which
// block.
#pragma once

#include <cstdio>
#include <vector>

struct ZelAmplitudeKey {
    int key = 0;    // the key number, which the import uses as the key's time
    int frame = 0;  // read and not used
    float value = 0.0f;
};

enum class ZelAmplitudeRead {
    kRead,            // the header scanned; keys holds every complete block
    kNoHeader,        // not an amplitude file
    kKeyOutOfRange,   // block `block` has a key number beyond 32 bits
    kValueNotFinite,  // block `block` has a NaN or infinite value
};

struct ZelAmplitudeResult {
    ZelAmplitudeRead status = ZelAmplitudeRead::kNoHeader;
    long long block = 0;  // 1-based block of a refusal
    std::vector<ZelAmplitudeKey> keys;
};

// Reads the file from its current position.
ZelAmplitudeResult zelReadAmplitudeFile(std::FILE* file);
