// Amplitude files: plain-text lists of channel keys prepared elsewhere. The
// file reads, white space matching any run of white space:
//   Channel Amplitude <channel>:
//       Size <n>
//   then n blocks of
//       Key <key>  Frame <frame>  Value <value>  End
// The header's channel number is read and not used. A negative size reads
// blocks until one does not scan; a malformed block ends the reading quietly
// with the keys read so far already delivered.
#pragma once

#include <cstdio>

struct ZelAmplitudeKey {
    int key = 0;    // the key number, which the import uses as the key's time
    int frame = 0;  // read and not used
    float value = 0.0f;
};

enum class ZelAmplitudeRead {
    kRead,      // the header scanned; every complete block was delivered
    kNoHeader,  // not an amplitude file: nothing delivered
};

// Reads the file from its current position and calls deliver(context, key)
// for each complete key block, in file order.
ZelAmplitudeRead zelReadAmplitudeFile(std::FILE* file,
                                      void (*deliver)(void* context, const ZelAmplitudeKey& key),
                                      void* context);
