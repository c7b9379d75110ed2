#include "PrintError.h"

#include <spark.h>

#include <cstdio>

#include "ZelSleep.h"

namespace {

constexpr int kReadingPauseSeconds = 2;

}  // namespace

void PrintError(const char* text) {
    // The host's prototype takes a plain char*; it only reads the text.
    sparkMessage(const_cast<char*>(text));
    zelSleepSeconds(kReadingPauseSeconds);
    std::fprintf(stderr, "SPARK_MESSAGE::\t%s\n", text);
}
