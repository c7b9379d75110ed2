// Drawing the sequence progress bar.
#include "ProgressBar.h"

#include <unistd.h>

#include <cmath>
#include <cstdio>

namespace {
const int kBarCells = 30;
const int kSecondsPerMinute = 60;
const int kSecondsPerHour = 3600;

// "0:08", "12:34", "1:02:03".
std::string durationText(double seconds) {
    const long whole = static_cast<long>(std::ceil(seconds));
    char text[32];
    if (whole >= kSecondsPerHour)
        std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", whole / kSecondsPerHour,
                      whole % kSecondsPerHour / kSecondsPerMinute, whole % kSecondsPerMinute);
    else
        std::snprintf(text, sizeof text, "%ld:%02ld", whole / kSecondsPerMinute,
                      whole % kSecondsPerMinute);
    return text;
}
}  // namespace

std::string progressLine(int done, int total, unsigned frame, double seconds) {
    const int filled = total > 0 ? done * kBarCells / total : kBarCells;
    const std::string bar = std::string(filled, '#') + std::string(kBarCells - filled, '.');
    char text[160];
    std::snprintf(text, sizeof text, "[%s] %d/%d frames (frame %u)", bar.c_str(), done, total,
                  frame);
    std::string line = text;
    if (done > 0 && seconds > 0) {
        // The rate so far; what is left at that rate.
        const double rate = done / seconds;
        std::snprintf(text, sizeof text, "  %.1f fps  %s left", rate,
                      durationText((total - done) / rate).c_str());
        line += text;
    }
    return line;
}

ProgressBar::ProgressBar(int totalFrames) : ProgressBar(totalFrames, -1) {}

ProgressBar::ProgressBar(int totalFrames, int shown)
    : total_(totalFrames),
      shown_(totalFrames > 1 && (shown > 0 || (shown < 0 && isatty(STDERR_FILENO)))),
      start_(std::chrono::steady_clock::now()) {}

void ProgressBar::advance(int done, unsigned frame) {
    if (!shown_) return;
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    // Cleared to the end of the line: the text may have become shorter.
    std::fprintf(stderr, "\r%s\033[K", progressLine(done, total_, frame, seconds).c_str());
    std::fflush(stderr);
    drawn_ = true;
}

void ProgressBar::finish() {
    if (!drawn_) return;
    std::fputc('\n', stderr);
    drawn_ = false;
}
