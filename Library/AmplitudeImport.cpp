#include "AmplitudeImport.h"

#include <cstdio>

#include "ZelSleep.h"

namespace {

constexpr int kAmplitudeChannel = 93;
constexpr int kChannelEditorControl = 0;  // channel 93 has no field on the pages
constexpr int kMessagePauseSeconds = 2;

char kUnableToOpen[] = "Unable to open file";
char kNotControlFile[] = "Not a valid control file";
char kEveryFile[] = "";

void tellUser(char* message) {
    sparkMessage(message);
    zelSleepSeconds(kMessagePauseSeconds);
}

}  // namespace

unsigned long* import_aiff_CB(int, SparkInfoStruct) {
    char directory[FILENAME_MAX] = "";
    sparkWorkingDir(directory);
    directory[FILENAME_MAX - 1] = '\0';
    sparkFileBrowserDisplay(directory, kEveryFile, aiff_file_CB);
    return nullptr;
}

void aiff_file_CB(char* path) {
    std::FILE* file = path != nullptr ? std::fopen(path, "r") : nullptr;
    if (file == nullptr) {
        tellUser(kUnableToOpen);
        return;
    }
    int channel = 0;
    int size = 0;
    if (std::fscanf(file, "Channel Amplitude %d:\n\tSize %d\n", &channel, &size) != 2) {
        tellUser(kNotControlFile);
        std::fclose(file);
        return;
    }
    // A negative size never counts down to 0: blocks are read until one fails
    // to scan or the file ends. Counted wide so that it cannot overflow.
    long long remaining = size;
    while (remaining-- != 0) {
        int key = 0;
        int frame = 0;
        float value = 0.0f;
        if (std::fscanf(file, "\tKey %d\n\t\tFrame %d\n\t\tValue %f\n\t\tEnd\n", &key, &frame,
                        &value) != 3) {
            break;
        }
        sparkSetCurveKey(kChannelEditorControl, kAmplitudeChannel, key, value);
    }
    std::fclose(file);
}
