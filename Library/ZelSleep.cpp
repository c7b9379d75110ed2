#include "ZelSleep.h"

#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

constexpr const char* kSleepScaleVariable = "STRAIGHTLUX_SLEEP_SCALE";

double sleepScale() {
    const char* text = std::getenv(kSleepScaleVariable);
    if (text == nullptr || *text == '\0') return 1.0;
    char* end = nullptr;
    const double scale = std::strtod(text, &end);
    if (end == text) return 1.0;
    return scale > 0.0 ? scale : 0.0;
}

}  // namespace

void zelSleepSeconds(int seconds) {
    const double duration = seconds * sleepScale();
    if (duration <= 0.0) return;
    std::this_thread::sleep_for(std::chrono::duration<double>(duration));
}
