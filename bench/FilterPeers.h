// The filter library beside OpenCV on the same 2K frame (2048x1556), single
// thread on both sides (cv::setNumThreads(1); the host offers one processor,
// no fork): Gaussian blur at sigma 2 and 10 (ours exact and recursive
// against cv::GaussianBlur with its own kernel size, 4 sigma either side for
// float, the same as ours), the Sobel gradient (ours gives dx and dy in one
// pass, against two cv::Sobel calls scaled by 1/8 as ours), all on float32
// single-channel pictures with the replicate border; and Canny: ours on the
// float picture (Sobel, L2 magnitude, hysteresis, sub-pixel points, no
// pre-blur) against cv::Canny on the same picture in 8 bits (it takes no
// float input) with the L2 magnitude and the same thresholds on its scale.
#pragma once

#include <benchmark/benchmark.h>

#include <cmath>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "FloatImageZel.h"
#include "RatioReporter.h"
#include "ZelCanny.h"
#include "ZelGaussianBlur.h"
#include "ZelGradient.h"
#include "ZelHost.h"

namespace filterpeers {

constexpr int kWidth = 2048;
constexpr int kHeight = 1556;
constexpr float kCannyLow = 0.02f;  // ours; OpenCV's are these times 255 * 8
constexpr float kCannyHigh = 0.06f;
constexpr double kOpenCvMagnitudeScale = 255.0 * 8.0;

inline std::string name(const std::string& what) {
    return what + "/" + std::to_string(kWidth) + "x" + std::to_string(kHeight) + "/1thread";
}

// Shapes with edges in every direction on a ramp, with some texture; 0..1,
// already in 8-bit steps so that OpenCV's 8-bit Canny sees the same picture.
inline cv::Mat frame32() {
    cv::Mat frame(kHeight, kWidth, CV_32FC1);
    for (int y = 0; y < kHeight; ++y) {
        float* row = frame.ptr<float>(y);
        for (int x = 0; x < kWidth; ++x) {
            double v = 0.2 + 0.3 * x / kWidth + 0.03 * std::sin(x * 0.31 + y * 0.17);
            const double cx = (x % 256) - 128.0, cy = (y % 256) - 128.0;
            if (cx * cx + cy * cy < 70.0 * 70.0) v += 0.35;
            if (((x / 97) + (y / 61)) % 3 == 0) v -= 0.12;
            v = std::min(1.0, std::max(0.0, v));
            row[x] = static_cast<float>(std::round(v * 255.0) / 255.0);
        }
    }
    return frame;
}

inline FloatImageZel ourFrame(const cv::Mat& frame) {
    FloatImageZel image(kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y) {
        const float* row = frame.ptr<float>(y);
        std::copy(row, row + kWidth, image.row(y));
    }
    return image;
}

// The bands run one after the other on the calling thread.
inline void oneProcessor() {
    ZelHost& host = zelHost();
    host.frame.processors = 1;
    host.fork = nullptr;
    host.share = nullptr;
}

inline void finish(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kWidth) * kHeight);
}

inline void opencvGaussian(benchmark::State& state, double sigma) {
    cv::setNumThreads(1);
    const cv::Mat in = frame32();
    cv::Mat out;
    cv::GaussianBlur(in, out, cv::Size(0, 0), sigma, sigma, cv::BORDER_REPLICATE);
    for (auto _ : state) {
        cv::GaussianBlur(in, out, cv::Size(0, 0), sigma, sigma, cv::BORDER_REPLICATE);
        benchmark::DoNotOptimize(out.data);
        benchmark::ClobberMemory();
    }
    finish(state);
}

inline void ourGaussian(benchmark::State& state, float sigma, bool recursive) {
    oneProcessor();
    const FloatImageZel in = ourFrame(frame32());
    FloatImageZel out;
    auto blur = [&] {
        return recursive ? zelGaussianBlurRecursive(in, out, sigma)
                         : zelGaussianBlurExact(in, out, sigma);
    };
    if (!blur()) state.SkipWithError("blur refused");
    for (auto _ : state) {
        blur();
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    finish(state);
}

inline void opencvSobel(benchmark::State& state) {
    cv::setNumThreads(1);
    const cv::Mat in = frame32();
    cv::Mat dx, dy;
    for (auto _ : state) {
        cv::Sobel(in, dx, CV_32F, 1, 0, 3, 0.125, 0.0, cv::BORDER_REPLICATE);
        cv::Sobel(in, dy, CV_32F, 0, 1, 3, 0.125, 0.0, cv::BORDER_REPLICATE);
        benchmark::DoNotOptimize(dx.data);
        benchmark::DoNotOptimize(dy.data);
        benchmark::ClobberMemory();
    }
    finish(state);
}

inline void ourSobel(benchmark::State& state) {
    oneProcessor();
    const FloatImageZel in = ourFrame(frame32());
    FloatImageZel dx, dy;
    zelGradient(in, ZelGradientOperator::kSobel, dx, dy);
    for (auto _ : state) {
        zelGradient(in, ZelGradientOperator::kSobel, dx, dy);
        benchmark::DoNotOptimize(dx.data());
        benchmark::DoNotOptimize(dy.data());
        benchmark::ClobberMemory();
    }
    finish(state);
}

inline void opencvCanny(benchmark::State& state) {
    cv::setNumThreads(1);
    cv::Mat in8;
    frame32().convertTo(in8, CV_8U, 255.0);
    cv::Mat edges;
    const double low = kCannyLow * kOpenCvMagnitudeScale, high = kCannyHigh * kOpenCvMagnitudeScale;
    for (auto _ : state) {
        cv::Canny(in8, edges, low, high, 3, true);
        benchmark::DoNotOptimize(edges.data);
        benchmark::ClobberMemory();
    }
    state.counters["edge_pixels"] = cv::countNonZero(edges);
    finish(state);
}

inline void ourCanny(benchmark::State& state) {
    oneProcessor();
    const FloatImageZel in = ourFrame(frame32());
    ZelEdges edges;
    ZelCannySettings settings;
    settings.sigma = 0.0f;
    settings.low = kCannyLow;
    settings.high = kCannyHigh;
    zelCanny(in, settings, edges);
    for (auto _ : state) {
        zelCanny(in, settings, edges);
        benchmark::DoNotOptimize(edges.points.data());
        benchmark::ClobberMemory();
    }
    state.counters["edge_pixels"] = static_cast<double>(edges.points.size());
    finish(state);
}

template <class Run>
void add(const std::string& what, Run run) {
    benchmark::RegisterBenchmark(name(what).c_str(), run)
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
}

inline void registerAll() {
    for (int sigma : {2, 10}) {
        const std::string s = std::to_string(sigma);
        add("opencv/GaussianBlur_32FC1_sigma" + s,
            [sigma](benchmark::State& st) { opencvGaussian(st, sigma); });
        add("ours/gaussian_exact_32FC1_sigma" + s,
            [sigma](benchmark::State& st) { ourGaussian(st, static_cast<float>(sigma), false); });
        add("ours/gaussian_recursive_32FC1_sigma" + s,
            [sigma](benchmark::State& st) { ourGaussian(st, static_cast<float>(sigma), true); });
    }
    add("opencv/Sobel_32FC1_dx_and_dy", opencvSobel);
    add("ours/sobel_32FC1_dx_and_dy", ourSobel);
    add("opencv/Canny_8UC1_L2", opencvCanny);
    add("ours/canny_32FC1_subpixel", ourCanny);
}

inline std::vector<RatioPair> ratioPairs() {
    std::vector<RatioPair> pairs;
    for (const char* sigma : {"2", "10"}) {
        const std::string peer = name(std::string("opencv/GaussianBlur_32FC1_sigma") + sigma);
        for (const char* form : {"exact", "recursive"})
            pairs.push_back({name(std::string("ours/gaussian_") + form + "_32FC1_sigma" + sigma),
                             peer, 1.0, "target <= 1.5"});
    }
    pairs.push_back({name("ours/sobel_32FC1_dx_and_dy"), name("opencv/Sobel_32FC1_dx_and_dy"), 1.0,
                     "target <= 1.5"});
    pairs.push_back(
        {name("ours/canny_32FC1_subpixel"), name("opencv/Canny_8UC1_L2"), 1.0, "target <= 2"});
    return pairs;
}

}  // namespace filterpeers
