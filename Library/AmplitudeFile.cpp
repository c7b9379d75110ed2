#include "AmplitudeFile.h"

#include <climits>
#include <cmath>

ZelAmplitudeResult zelReadAmplitudeFile(std::FILE* file) {
    ZelAmplitudeResult result;
    int channel = 0;
    // Read wide: a size or key written beyond 32 bits is seen for what it is
    // instead of wrapping (the library saturates what does not fit 64 bits).
    long long size = 0;
    if (std::fscanf(file, "Channel Amplitude %d:\n\tSize %lld\n", &channel, &size) != 2) {
        return result;
    }
    result.status = ZelAmplitudeRead::kRead;
    // A negative size never counts down to 0: blocks are read until one fails
    // to scan or the file ends.
    long long remaining = size;
    while (remaining-- != 0) {
        long long key = 0;
        long long frame = 0;
        float value = 0.0f;
        if (std::fscanf(file, "\tKey %lld\n\t\tFrame %lld\n\t\tValue %f\n\t\tEnd\n", &key, &frame,
                        &value) != 3) {
            break;
        }
        const long long block = static_cast<long long>(result.keys.size()) + 1;
        if (key < INT_MIN || key > INT_MAX) {
            result.status = ZelAmplitudeRead::kKeyOutOfRange;
            result.block = block;
            return result;
        }
        if (!std::isfinite(value)) {
            result.status = ZelAmplitudeRead::kValueNotFinite;
            result.block = block;
            return result;
        }
        ZelAmplitudeKey read;
        read.key = static_cast<int>(key);
        read.frame = frame < INT_MIN || frame > INT_MAX ? 0 : static_cast<int>(frame);
        read.value = value;
        result.keys.push_back(read);
    }
    return result;
}
