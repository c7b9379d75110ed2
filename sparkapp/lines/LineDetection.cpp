// The line detector on the programs' pictures.
#include "LineDetection.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <thread>

#include "LineDetector.h"
#include "ZelChannels.h"
#include "ZelColour.h"
#include "ZelHost.h"

namespace {
const double kFullWord = 65535.0;

thread_local unsigned long t_share = 0;

// The framework's fork service on threads of this process, for the time a
// frame's pixels are worked on; the previous service is put back after.
class ThreadedBands {
  public:
    explicit ThreadedBands(int processors) : saved_(zelHost()) {
        ZelHost& host = zelHost();
        host.frame.processors = std::max(1, processors);
        s_processors = host.frame.processors;
        host.fork = processors > 1 ? fork : nullptr;
        host.share = processors > 1 ? share : nullptr;
    }
    ~ThreadedBands() { zelHost() = saved_; }
    ThreadedBands(const ThreadedBands&) = delete;
    ThreadedBands& operator=(const ThreadedBands&) = delete;

  private:
    static void fork(void (*worker)(void*), void* job) {
        std::vector<std::thread> threads;
        for (int i = 1; i < s_processors; ++i)
            threads.emplace_back([worker, job, i] {
                t_share = static_cast<unsigned long>(i);
                worker(job);
            });
        t_share = 0;
        worker(job);
        for (std::thread& thread : threads) thread.join();
    }
    static void share(unsigned long* offset, unsigned long* length) {
        *offset = t_share;
        *length = 1;
    }

    static inline int s_processors = 1;
    ZelHost saved_;
};

bool luminanceOf(const FilePixels& picture, FloatImageZel& out) {
    if (!out.resize(picture.width, picture.height)) return false;
    const size_t count = static_cast<size_t>(picture.width) * picture.height;
    float* y = out.data();
    for (size_t i = 0; i < count; ++i) {
        double r, g, b;
        if (picture.isFloat) {
            r = std::clamp(picture.reals[3 * i], 0.0f, 1.0f);
            g = std::clamp(picture.reals[3 * i + 1], 0.0f, 1.0f);
            b = std::clamp(picture.reals[3 * i + 2], 0.0f, 1.0f);
        } else {
            r = picture.words[3 * i] / kFullWord;
            g = picture.words[3 * i + 1] / kFullWord;
            b = picture.words[3 * i + 2] / kFullWord;
        }
        y[i] = static_cast<float>(kZelLumaRed * r + kZelLumaGreen * g + kZelLumaBlue * b);
    }
    return true;
}

RunStatus outOfMemory(const std::string& name) {
    return RunStatus::failure(ExitCode::Memory, "out of memory while looking for lines in " + name);
}
}  // namespace

struct LineDetectionPool::Frames {
    std::vector<FramePieces> pieces;
    LineDetectSettings settings;
    ZelEdges edges;
    std::string firstName;

    RunStatus addLuminance(const FloatImageZel& luminance, const std::string& name,
                           int processors) {
        if (pieces.empty()) {
            settings = lineSettingsFor(luminance.width(), luminance.height());
            firstName = name;
        } else if (luminance.width() != pieces.front().width ||
                   luminance.height() != pieces.front().height) {
            return RunStatus::failure(
                ExitCode::Input, name + " is " + std::to_string(luminance.width()) + "x" +
                                     std::to_string(luminance.height()) + ", but " + firstName +
                                     " is " + std::to_string(pieces.front().width) + "x" +
                                     std::to_string(pieces.front().height) +
                                     ": the frames pooled for lines must have one size");
        }
        pieces.emplace_back();
        ThreadedBands bands(processors);
        if (!findEdgePieces(luminance, settings, edges, pieces.back())) return outOfMemory(name);
        return RunStatus::success();
    }
};

LineDetectionPool::LineDetectionPool(int processors)
    : frames_(new Frames), processors_(processors) {}

LineDetectionPool::~LineDetectionPool() { delete frames_; }

RunStatus LineDetectionPool::add(const FilePixels& picture, const std::string& name) {
    FloatImageZel luminance;
    if (!luminanceOf(picture, luminance)) return outOfMemory(name);
    return frames_->addLuminance(luminance, name, processors_);
}

RunStatus LineDetectionPool::add(const ImageZel& picture, const std::string& name) {
    FloatImageZel luminance;
    if (!zelLuminance(picture, luminance)) return outOfMemory(name);
    return frames_->addLuminance(luminance, name, processors_);
}

RunStatus LineDetectionPool::select(const std::string& what, LinesFound* found) {
    found->detection = selectLines(frames_->pieces, frames_->settings);
    found->lines.lines.clear();
    for (const Polyline& line : found->detection.lines) {
        std::vector<LinePoint> points;
        for (const PlanePoint& p : line) points.push_back({p.x, p.y});
        found->lines.lines.push_back(std::move(points));
    }
    const LineDetection& d = found->detection;
    if (found->lines.lines.empty() && !d.tooLittle.empty())
        return RunStatus::failure(ExitCode::Input,
                                  "no usable straight line found in " + what + ": only " +
                                      std::to_string(d.tooLittle.size()) +
                                      " short line(s), too little for a fit (a line is a long, "
                                      "sharp edge of something straight in the world)");
    if (found->lines.lines.empty())
        return RunStatus::failure(
            ExitCode::Input,
            "no usable straight line found in " + what +
                " (a line is a long, sharp edge of something straight in the world; flat, noisy, "
                "foliage-only and out-of-focus pictures have none)");
    return RunStatus::success();
}

RunStatus detectPictureLines(const FilePixels& picture, const std::string& name, LinesFound* found,
                             int processors) {
    LineDetectionPool pool(processors);
    RunStatus status = pool.add(picture, name);
    if (status.ok()) status = pool.select(name, found);
    return status;
}

RunStatus detectPictureLines(const ImageZel& picture, const std::string& name, LinesFound* found,
                             int processors) {
    LineDetectionPool pool(processors);
    RunStatus status = pool.add(picture, name);
    if (status.ok()) status = pool.select(name, found);
    return status;
}

std::string rejectionReport(const LineDetection& detection) {
    std::string text;
    char buffer[256];
    for (const RejectedLine& line : detection.rejected) {
        if (line.points.empty()) continue;
        const char* unit = line.why == LineRejection::kTextured ? "" : " px";
        const char* what = "";
        switch (line.why) {
            case LineRejection::kOutlier:
                what = " from straight under the model";
                break;
            case LineRejection::kTooCurved:
                what = " radius";
                break;
            case LineRejection::kBlurred:
                what = " blur";
                break;
            case LineRejection::kTextured:
                what = " of the pixels beside it are edges";
                break;
            case LineRejection::kClustered:
                what = " from a parallel line kept";
                break;
        }
        std::snprintf(buffer, sizeof buffer,
                      "rejected: %s (%.3g%s%s), %zu points from (%.1f, %.1f) to (%.1f, %.1f)\n",
                      rejectionName(line.why), line.measure, unit, what, line.points.size(),
                      line.points.front().x, line.points.front().y, line.points.back().x,
                      line.points.back().y);
        text += buffer;
    }
    return text;
}
