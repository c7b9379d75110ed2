#include "AmplitudeImport.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
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

// The reason a file is refused, on the host's error line: "Amplitude import
// refused: <path> <reason>".
void refuse(const char* path, const char* reason, long long block = 0) {
    char message[FILENAME_MAX + 160];
    if (block > 0) {
        std::snprintf(message, sizeof message, "Amplitude import refused: %s key %lld %s", path,
                      block, reason);
    } else {
        std::snprintf(message, sizeof message, "Amplitude import refused: %s %s", path, reason);
    }
    sparkError(message);
}

// Opens the file for reading only when it is a regular file or a folder (a
// folder opens and then yields no header, as any unreadable text does): a
// FIFO or device would block the host or never end.
std::FILE* openAmplitudeFile(const char* path, bool& special) {
    special = false;
    if (path == nullptr) return nullptr;
    const int fd = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return nullptr;
    struct stat info;
    if (fstat(fd, &info) != 0 || !(S_ISREG(info.st_mode) || S_ISDIR(info.st_mode))) {
        special = true;
        close(fd);
        return nullptr;
    }
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    std::FILE* file = fdopen(fd, "r");
    if (file == nullptr) close(fd);
    return file;
}

void importFile(char* path) {
    bool special = false;
    std::FILE* file = openAmplitudeFile(path, special);
    if (special) {
        refuse(path, "is not a regular file");
        return;
    }
    if (file == nullptr) {
        tellUser(kUnableToOpen);
        return;
    }
    const ZelAmplitudeResult read = zelReadAmplitudeFile(file);
    std::fclose(file);
    switch (read.status) {
        case ZelAmplitudeRead::kNoHeader:
            tellUser(kNotControlFile);
            return;
        case ZelAmplitudeRead::kKeyOutOfRange:
            refuse(path, "has a key number beyond 32 bits", read.block);
            return;
        case ZelAmplitudeRead::kValueNotFinite:
            refuse(path, "has a value that is not a finite number", read.block);
            return;
        case ZelAmplitudeRead::kRead:
            break;
    }
    // The key number, not the frame, is the key's time, and every key goes to
    // channel 93 whatever the file's channel says: both deliberate, so that
    // files numbered by frame load as they are.
    for (const ZelAmplitudeKey& key : read.keys) {
        sparkSetCurveKey(SPARK_CE_CONTROL, kAmplitudeControl.number, key.key, key.value);
    }
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
