#include "PrintError.h"

#include <cstdio>

#include "ZelHost.h"
#include "ZelSleep.h"

namespace {

constexpr int kReadingPauseSeconds = 2;

}  // namespace

void PrintError(const char* text) {
    zelHostMessage(text);
    zelSleepSeconds(kReadingPauseSeconds);
    std::fprintf(stderr, "SPARK_MESSAGE::\t%s\n", text);
}
