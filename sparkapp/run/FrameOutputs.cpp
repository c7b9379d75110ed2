// Writing frames behind the plug-in, committed in order.
#include "FrameOutputs.h"

#include <cstdio>
#include <new>
#include <stdexcept>

#include "DpxFastPath.h"
#include "FrameMemory.h"
#include "ImageFiles.h"
#include "OutputPaths.h"
#include "ReaderProcess.h"

FrameOutputs::FrameOutputs(const OutputSettings& settings, size_t frameWords, int writers)
    : settings_(settings), progress_(static_cast<int>(settings.total), settings.progress) {
    for (int i = 0; i < writers; ++i) free_.emplace_back(frameWords);
    for (int i = 0; i < writers; ++i) writers_.emplace_back(&FrameOutputs::writer, this);
}

FrameOutputs::~FrameOutputs() { finish(); }

void FrameOutputs::submit(size_t index, unsigned frame, const std::string& path,
                          const std::string& dateTime, FrameOrigin origin,
                          const std::string& animated, HostFrame* rendered) {
    std::unique_lock<std::mutex> hold(lock_);
    Job job;
    job.index = index;
    job.frame = frame;
    job.path = path;
    job.dateTime = dateTime;
    job.origin = origin;
    job.animated = animated;
    job.pixels.swap(*rendered);
    queue_.push_back(std::move(job));
    ++handedIn_;
    changed_.notify_all();
    changed_.wait(hold, [this] { return !free_.empty(); });
    rendered->swap(free_.back());
    free_.pop_back();
}

bool FrameOutputs::failed() {
    std::lock_guard<std::mutex> hold(lock_);
    return failedAt_ != ~size_t(0);
}

RunStatus FrameOutputs::finish() {
    {
        std::unique_lock<std::mutex> hold(lock_);
        if (finished_) return failure_;
        changed_.wait(hold, [this] { return nextCommit_ == handedIn_; });
        closing_ = true;
    }
    changed_.notify_all();
    for (std::thread& writer : writers_) writer.join();
    finished_ = true;
    report();
    progress_.finish();
    return failure_;
}

void FrameOutputs::writer() {
    RgbSamples samples;  // kept from frame to frame: its room is made once
    std::unique_lock<std::mutex> hold(lock_);
    for (;;) {
        changed_.wait(hold, [this] { return closing_ || !queue_.empty(); });
        if (queue_.empty()) return;
        Job job = std::move(queue_.front());
        queue_.pop_front();
        hold.unlock();
        write(job, samples);
        hold.lock();
    }
}

void FrameOutputs::fail(size_t index, const RunStatus& status) {
    std::lock_guard<std::mutex> hold(lock_);
    if (index < failedAt_) {
        failedAt_ = index;
        failure_ = status;
    }
}

// 16-bit DPX goes from the host frame to the file a block of rows at a
// time (DpxFastPath.h): no frame of samples in between. False when it does
// not apply.
bool FrameOutputs::writeDpxRows(const Job& job, safeio::OutputFile& file, RunStatus* status) {
    if (!settings_.dpx || settings_.type != SampleType::Sixteen) return false;
    const auto* host = reinterpret_cast<const unsigned char*>(job.pixels.data());
    const OutputSettings& out = settings_;
    const bool fast = writeDpxFast(
        baseOf(job.path), out.width, out.height,
        [host, &out](int row, uint16_t* to) {
            readHostRowSixteen(host, out.width, out.height, out.depth, row, to);
        },
        job.dateTime, file);
    if (fast && !file.failure().empty())
        *status = RunStatus::failure(ExitCode::Output,
                                     "cannot write " + job.path + ": " + file.failure());
    return fast;
}

// Encodes the frame into file (opened for it); the host frame goes back to
// the free ones as soon as it is no longer read.
RunStatus FrameOutputs::encode(Job& job, safeio::OutputFile& file, RgbSamples& samples) {
    RunStatus status;
    const bool fast = writeDpxRows(job, file, &status);
    if (!fast)
        readHostFrame(reinterpret_cast<const unsigned char*>(job.pixels.data()), settings_.width,
                      settings_.height, settings_.depth, settings_.type, settings_.encoding,
                      &samples);
    {
        std::lock_guard<std::mutex> hold(lock_);
        free_.push_back(std::move(job.pixels));
    }
    changed_.notify_all();
    if (fast) return status;
    return encodeImage(job.path, settings_.width, settings_.height, samples, job.dateTime, file, 1,
                       job.origin);
}

// Nothing thrown may leave a writer's thread: it becomes the frame's failure.
RunStatus FrameOutputs::guardedEncode(Job& job, safeio::OutputFile& file, RgbSamples& samples) {
    try {
        return encode(job, file, samples);
    } catch (const std::bad_alloc&) {
        file.discard();
        return RunStatus::failure(ExitCode::Memory, "out of memory while writing " + job.path);
    } catch (const std::exception& error) {
        file.discard();
        return RunStatus::failure(ExitCode::Internal,
                                  "internal error while writing " + job.path + ": " + error.what());
    }
}

void FrameOutputs::write(Job& job, RgbSamples& samples) {
    safeio::OutputFile file;
    RunStatus status;
    std::string reason;
    if (failed()) {
        status = RunStatus::failure(ExitCode::Output, "an earlier frame failed");
    } else if (!file.open(job.path, &reason)) {
        status = RunStatus::failure(ExitCode::Output, "cannot write " + job.path + ": " + reason);
    } else {
        status = guardedEncode(job, file, samples);
        // To the disk now; only the rename waits for the frames before.
        if (status.ok() && !file.sync())
            status = RunStatus::failure(ExitCode::Output,
                                        "cannot write " + job.path + ": " + file.failure());
    }
    if (!job.pixels.empty()) {
        std::lock_guard<std::mutex> hold(lock_);
        free_.push_back(std::move(job.pixels));
    }
    changed_.notify_all();
    if (!status.ok()) fail(job.index, status);
    commitInTurn(job, file, status);
}

void FrameOutputs::commitInTurn(const Job& job, safeio::OutputFile& file, RunStatus status) {
    std::unique_lock<std::mutex> hold(lock_);
    changed_.wait(hold, [&] { return nextCommit_ == job.index; });
    const bool allowed = status.ok() && job.index < failedAt_;
    // Only the frame whose turn it is commits: the lock is not needed for it.
    hold.unlock();
    std::string reason;
    const bool written = allowed && file.commit(&reason);
    if (!written) file.discard();
    hold.lock();
    if (allowed && !written && job.index < failedAt_) {
        failedAt_ = job.index;
        failure_ = RunStatus::failure(ExitCode::Output, "cannot write " + job.path + ": " + reason);
    }
    ++nextCommit_;
    if (written) {
        Report report;
        report.done = nextCommit_;
        report.frame = job.frame;
        if (settings_.verbose)
            report.line = "frame " + std::to_string(job.frame) + ": " + job.path +
                          (job.animated.empty() ? "" : "  ") + job.animated +
                          "  (peak memory: tool " + memoryText(peakMemory()) + ", reader " +
                          memoryText(readerPeakMemory()) + "; reader between frames " +
                          memoryText(readerIdleMemory()) + ")";
        reports_.push_back(std::move(report));
        if (settings_.written)
            settings_.written(FrameWritten{nextCommit_, settings_.total, job.frame, job.path});
    }
    changed_.notify_all();
}

void FrameOutputs::report() {
    std::vector<Report> reports;
    {
        std::lock_guard<std::mutex> hold(lock_);
        reports.swap(reports_);
    }
    for (const Report& report : reports) {
        if (!report.line.empty()) std::printf("%s\n", report.line.c_str());
        progress_.advance(static_cast<int>(report.done), report.frame);
    }
    // A program that follows the --verbose lines through a pipe sees each frame as it is written.
    if (!reports.empty() && settings_.verbose) std::fflush(stdout);
}
