// Drawing the sequence progress bar.
#include "ProgressBar.h"

#include <unistd.h>

#include <cstdio>
#include <string>

namespace {
const int kBarCells = 30;
}

ProgressBar::ProgressBar(int totalFrames)
    : total_(totalFrames), shown_(totalFrames > 1 && isatty(STDERR_FILENO)) {}

void ProgressBar::advance(int done, unsigned frame) {
    if (!shown_) return;
    const int filled = total_ > 0 ? done * kBarCells / total_ : kBarCells;
    const std::string bar = std::string(filled, '#') + std::string(kBarCells - filled, '.');
    std::fprintf(stderr, "\r[%s] %d/%d frames (frame %u)", bar.c_str(), done, total_, frame);
    std::fflush(stderr);
    drawn_ = true;
}

void ProgressBar::finish() {
    if (!drawn_) return;
    std::fputc('\n', stderr);
    drawn_ = false;
}
