// Fuzz target: the amplitude file reader fed any bytes as a file. Beyond not
// crashing, every key it delivers must hold a finite value, and a refusal
// must name a block among those read.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "AmplitudeFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    std::FILE* file = fmemopen(const_cast<uint8_t*>(data), size, "r");
    if (file == nullptr) return 0;
    const ZelAmplitudeResult read = zelReadAmplitudeFile(file);
    std::fclose(file);
    for (const ZelAmplitudeKey& key : read.keys) {
        if (!std::isfinite(key.value)) std::abort();
    }
    const bool refused = read.status == ZelAmplitudeRead::kKeyOutOfRange ||
                         read.status == ZelAmplitudeRead::kValueNotFinite;
    if (refused && read.block != static_cast<long long>(read.keys.size()) + 1) std::abort();
    if (read.status == ZelAmplitudeRead::kNoHeader && !read.keys.empty()) std::abort();
    return 0;
}
