// ProgressBar: a one-line progress bar on standard error for frame sequences,
// with the frames per second so far and the time left at that rate. By
// default it is drawn only when standard error is a terminal and there is
// more than one frame, so that logs and pipes get no control characters;
// the caller may switch it on or off (--progress, --no-progress).
#pragma once

#include <chrono>
#include <string>

class ProgressBar {
  public:
    explicit ProgressBar(int totalFrames);
    // shown: -1 on a terminal only, 0 never, 1 always (more than one frame).
    ProgressBar(int totalFrames, int shown);
    // After a frame: done frames so far and the number of the last one.
    void advance(int done, unsigned frame);
    // Ends the line (also after a failure, so that a message starts clean).
    void finish();

  private:
    int total_;
    bool shown_;
    bool drawn_ = false;
    std::chrono::steady_clock::time_point start_;
};

// The bar's text after `done` of `total` frames in `seconds`:
// "[###.....] 3/24 frames (frame 1003)  2.5 fps  0:08 left".
std::string progressLine(int done, int total, unsigned frame, double seconds);
