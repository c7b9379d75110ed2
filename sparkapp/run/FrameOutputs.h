// FrameOutputs: the frame loop's writing behind. Writer threads take the
// frames the plug-in returned, convert them to file samples, encode them
// into exclusively created temporaries and sync them, while the plug-in
// works on the next frames; the temporaries are then renamed over their
// outputs strictly in frame order.
//
// A failure (a full disk, a writer error) at frame k: every frame before k
// is still committed whole, k and every frame after it are not (their
// temporaries removed), and the failure with the lowest frame is the one
// reported. A fixed number of host frames circulates between the loop and
// the writers (the loop waits for a free one), so memory stays flat.
//
// After each commit, in frame order: the watcher's call (FrameLoop.h), from
// the writer thread, and the --verbose line and the progress bar, printed by
// the loop's thread (report).
#pragma once

#include <OutputFile.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "FloatEncoding.h"
#include "HostPixels.h"
#include "ProgressBar.h"
#include "RunStatus.h"

// One frame written, as the writers report it.
struct FrameWritten {
    size_t done = 0;  // frames written so far
    size_t total = 0;
    unsigned frame = 0;
    std::string path;
};

struct OutputSettings {
    int width = 0;
    int height = 0;
    int depth = 0;
    FloatEncoding encoding = FloatEncoding::Linear;
    SampleType type = SampleType::Eight;  // of every output (they share one format)
    bool dpx = false;                     // the outputs are DPX files
    size_t total = 0;                     // frames in the run
    bool verbose = false;
    int progress = -1;  // ProgressBar's shown
    std::function<void(const FrameWritten&)> written;
};

class FrameOutputs {
  public:
    FrameOutputs(const OutputSettings& settings, size_t frameWords, int writers);
    ~FrameOutputs();  // finishes
    FrameOutputs(const FrameOutputs&) = delete;
    FrameOutputs& operator=(const FrameOutputs&) = delete;

    // Hands frame `index` (rendered into *rendered) to the writers for path;
    // *rendered gets a free host frame back (waiting for one if need be).
    void submit(size_t index, unsigned frame, const std::string& path, const std::string& dateTime,
                FrameOrigin origin, const std::string& animated, HostFrame* rendered);
    // True once a frame failed: the loop stops handing in frames.
    bool failed();
    // Prints what the writers have reported since (the --verbose lines, the
    // progress bar): on the loop's thread, between the plug-in's calls,
    // whose console redirection (PluginConsole) would swallow it otherwise.
    void report();
    // Waits for every frame handed in and reports them; the failure of the
    // lowest frame, if any.
    RunStatus finish();

  private:
    struct Job {
        size_t index = 0;
        unsigned frame = 0;
        std::string path;
        std::string dateTime;
        FrameOrigin origin;
        std::string animated;
        HostFrame pixels;
    };

    struct Report {
        size_t done = 0;
        unsigned frame = 0;
        std::string line;  // --verbose
    };

    void writer();
    void write(Job& job, RgbSamples& samples);
    RunStatus guardedEncode(Job& job, safeio::OutputFile& file, RgbSamples& samples);
    RunStatus encode(Job& job, safeio::OutputFile& file, RgbSamples& samples);
    bool writeDpxRows(const Job& job, safeio::OutputFile& file, RunStatus* status);
    void commitInTurn(const Job& job, safeio::OutputFile& file, RunStatus status);
    void fail(size_t index, const RunStatus& status);

    OutputSettings settings_;
    ProgressBar progress_;
    std::vector<HostFrame> free_;
    std::deque<Job> queue_;
    std::vector<Report> reports_;
    std::vector<std::thread> writers_;
    std::mutex lock_;
    std::condition_variable changed_;
    size_t nextCommit_ = 0;  // the index whose turn it is
    size_t handedIn_ = 0;
    size_t failedAt_ = ~size_t(0);
    RunStatus failure_;
    bool closing_ = false;
    bool finished_ = false;
};
