// ProgressBar: a one-line progress bar on standard error for frame sequences,
// drawn only when standard error is a terminal and there is more than one
// frame; otherwise it stays silent so that logs and pipes get no control
// characters.
#pragma once

class ProgressBar {
  public:
    explicit ProgressBar(int totalFrames);
    // After a frame: done frames so far and the number of the last one.
    void advance(int done, unsigned frame);
    // Ends the line (also after a failure, so that a message starts clean).
    void finish();

  private:
    int total_;
    bool shown_;
    bool drawn_ = false;
};
