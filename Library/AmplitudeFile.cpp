#include "AmplitudeFile.h"

ZelAmplitudeRead zelReadAmplitudeFile(std::FILE* file,
                                      void (*deliver)(void* context, const ZelAmplitudeKey& key),
                                      void* context) {
    int channel = 0;
    int size = 0;
    if (std::fscanf(file, "Channel Amplitude %d:\n\tSize %d\n", &channel, &size) != 2) {
        return ZelAmplitudeRead::kNoHeader;
    }
    // A negative size never counts down to 0: blocks are read until one fails
    // to scan or the file ends. Counted wide so that it cannot overflow.
    long long remaining = size;
    while (remaining-- != 0) {
        ZelAmplitudeKey key;
        if (std::fscanf(file, "\tKey %d\n\t\tFrame %d\n\t\tValue %f\n\t\tEnd\n", &key.key,
                        &key.frame, &key.value) != 3) {
            break;
        }
        deliver(context, key);
    }
    return ZelAmplitudeRead::kRead;
}
