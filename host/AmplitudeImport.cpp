#include "AmplitudeImport.h"

#include <cstdio>

#include "AmplitudeFile.h"
#include "EntryGuard.h"
#include "StraightluxControlTable.h"
#include "ZelSleep.h"

namespace {

constexpr int kMessagePauseSeconds = 2;

char kUnableToOpen[] = "Unable to open file";
char kNotControlFile[] = "Not a valid control file";
char kEveryFile[] = "";

void tellUser(char* message) {
    sparkMessage(message);
    zelSleepSeconds(kMessagePauseSeconds);
}

// The key number, not the frame, is the key's time, and every key goes to
// channel 93 whatever the file's channel says: both deliberate, so that files
// numbered by frame load as they are.
void setAmplitudeKey(void*, const ZelAmplitudeKey& key) {
    sparkSetCurveKey(SPARK_CE_CONTROL, kAmplitudeControl.number, key.key, key.value);
}

void importFile(char* path) {
    std::FILE* file = path != nullptr ? std::fopen(path, "r") : nullptr;
    if (file == nullptr) {
        tellUser(kUnableToOpen);
        return;
    }
    if (zelReadAmplitudeFile(file, setAmplitudeKey, nullptr) == ZelAmplitudeRead::kNoHeader) {
        tellUser(kNotControlFile);
    }
    std::fclose(file);
}

}  // namespace

unsigned long* import_aiff_CB(int, SparkInfoStruct) {
    return guardedCallback([] {
        char directory[FILENAME_MAX] = "";
        sparkWorkingDir(directory);
        directory[FILENAME_MAX - 1] = '\0';
        sparkFileBrowserDisplay(directory, kEveryFile, aiff_file_CB);
        return static_cast<unsigned long*>(nullptr);
    });
}

void aiff_file_CB(char* path) {
    guardedCall([path] { importFile(path); });
}
