// The plug-in's peers on the same frames, so that our figures can be read
// against them in one run: OpenCV's undistortion map (k1, k2 only, CV_32FC1
// maps) and remap of 16-bit RGBA frames (cubic and linear, 1 and 2 threads),
// lensfun's poly5 model through a modifier over the whole frame (forward and
// reverse, 1 thread), and the memory floor of a resampling pass: reading an
// 8-byte pixel and an 8-byte map entry and writing an 8-byte pixel, 24 bytes a
// pixel, at 1 and 2 threads. Frame sizes 2048x1556 (2K full aperture) and
// 4096x2160 (4K DCI); real time throughout.
//
// Beside them the plug-in's own work (OurWork.h): its Remove and Add maps,
// ProcessFrame from a cached map with the sharp cubic kernel, and a whole
// 12-bit SparkProcess of the real plug-in through the simulated host with its
// four stages, at 1 and 2 threads (processors the host offers).
//
// The filter library beside OpenCV's filters (FilterPeers.h): Gaussian blur,
// Sobel and Canny on a 2K float frame, single thread.
//
// After the runs it prints ratios of pairs of results. ratioPairs() is the one
// place that lists them: each of ours against its peer, the whole frame
// against the memory floor, and each of ours at 4K against 2K per pixel.
#include <benchmark/benchmark.h>
#include <lensfun.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <thread>
#include <vector>

#include "FilterPeers.h"
#include "OurWork.h"
#include "RatioReporter.h"

namespace {

// The radial coefficients of bench_lens, on a radius of 1 at half the frame
// diagonal (lensfun applies them on its own normalisation).
constexpr double kRadial1 = 0.1;
constexpr double kRadial2 = 0.02;
constexpr int kFullValue = 32767;
constexpr int kBytesPerFloorPixel = 24;

// A lens described in code for lensfun: no database file needed.
constexpr float kFocalMm = 50.0f;
constexpr float kAperture = 2.8f;
constexpr float kFocusMetres = 1000.0f;

struct FrameSize {
    int width;
    int height;
    int64_t pixels() const { return static_cast<int64_t>(width) * height; }
};

const FrameSize kSizes[] = {{2048, 1556}, {4096, 2160}};

// "opencv/remap_cubic_16UC4/2048x1556/2threads": the key of a result.
std::string resultName(const std::string& what, FrameSize size, int threads) {
    return what + "/" + std::to_string(size.width) + "x" + std::to_string(size.height) + "/" +
           std::to_string(threads) + (threads == 1 ? "thread" : "threads");
}

// Pixel values that say where they came from, as in bench_lens.
cv::Mat testFrame(FrameSize size) {
    cv::Mat frame(size.height, size.width, CV_16UC4);
    for (int y = 0; y < size.height; ++y) {
        auto* row = frame.ptr<cv::Vec4w>(y);
        for (int x = 0; x < size.width; ++x) {
            const auto v = static_cast<uint16_t>((x * 7 + y * 13) & kFullValue);
            row[x] = cv::Vec4w(v, v, v, kFullValue);
        }
    }
    return frame;
}

// Focal length of half the diagonal, centre in the middle: k1, k2 on the same radius as ours.
void undistortMaps(FrameSize size, cv::Mat& mapX, cv::Mat& mapY) {
    const double focal = 0.5 * std::hypot(size.width, size.height);
    const cv::Matx33d camera(focal, 0, 0.5 * size.width, 0, focal, 0.5 * size.height, 0, 0, 1);
    const cv::Vec4d coefficients(kRadial1, kRadial2, 0, 0);
    cv::initUndistortRectifyMap(camera, coefficients, cv::noArray(), camera,
                                cv::Size(size.width, size.height), CV_32FC1, mapX, mapY);
}

void opencvMap(benchmark::State& state, FrameSize size) {
    cv::setNumThreads(1);
    cv::Mat mapX, mapY;
    undistortMaps(size, mapX, mapY);  // the maps' first allocation is not timed
    for (auto _ : state) {
        undistortMaps(size, mapX, mapY);
        benchmark::DoNotOptimize(mapX.data);
        benchmark::DoNotOptimize(mapY.data);
    }
    state.SetItemsProcessed(state.iterations() * size.pixels());
}

void opencvRemap(benchmark::State& state, FrameSize size, int interpolation, int threads) {
    cv::setNumThreads(threads);
    cv::Mat mapX, mapY;
    undistortMaps(size, mapX, mapY);
    const cv::Mat in = testFrame(size);
    cv::Mat out(size.height, size.width, CV_16UC4);
    cv::remap(in, out, mapX, mapY, interpolation, cv::BORDER_CONSTANT);  // fault the output in
    for (auto _ : state) {
        cv::remap(in, out, mapX, mapY, interpolation, cv::BORDER_CONSTANT);
        benchmark::DoNotOptimize(out.data);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * size.pixels());
}

// reverse false: the poly5 polynomial itself, from corrected to distorted
// positions (removing distortion); true: its inverse, solved per pixel (adding it).
void lensfunPoly5(benchmark::State& state, FrameSize size, bool reverse) {
    lfLens lens;
    lens.Type = LF_RECTILINEAR;
    lens.CropFactor = 1.0f;
    lens.AspectRatio = static_cast<float>(size.width) / static_cast<float>(size.height);
    lens.MinFocal = kFocalMm;
    lens.MaxFocal = kFocalMm;
    lfLensCalibDistortion calibration = {};
    calibration.Model = LF_DIST_MODEL_POLY5;
    calibration.Focal = kFocalMm;
    calibration.Terms[0] = static_cast<float>(kRadial1);
    calibration.Terms[1] = static_cast<float>(kRadial2);
    lens.AddCalibDistortion(&calibration);

    lfModifier modifier(&lens, lens.CropFactor, size.width, size.height);
    const int applied = modifier.Initialize(&lens, LF_PF_U16, kFocalMm, kAperture, kFocusMetres,
                                            1.0f, LF_RECTILINEAR, LF_MODIFY_DISTORTION, reverse);
    if (!(applied & LF_MODIFY_DISTORTION)) {
        state.SkipWithError("lensfun did not take the poly5 distortion");
        return;
    }
    // x, y per pixel (8 bytes, like a map entry of ours).
    std::vector<float> positions(static_cast<size_t>(size.pixels()) * 2);
    for (auto _ : state) {
        modifier.ApplyGeometryDistortion(0.0f, 0.0f, size.width, size.height, positions.data());
        benchmark::DoNotOptimize(positions.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * size.pixels());
}

void streamPixels(const uint64_t* in, const uint64_t* map, uint64_t* out, size_t first,
                  size_t end) {
    for (size_t i = first; i < end; ++i) out[i] = in[i] ^ map[i];
}

// The least a resampling pass can cost: each pixel's input, map entry and
// output touched once, in order (the output's cache lines are also read
// before they are written, as in any pass that does not bypass the cache).
void memoryFloor(benchmark::State& state, FrameSize size, int threads) {
    const size_t pixels = static_cast<size_t>(size.pixels());
    std::vector<uint64_t> in(pixels, 0x7fff7fff7fff7fffULL);
    std::vector<uint64_t> map(pixels, 0x3f8000003f800000ULL);
    std::vector<uint64_t> out(pixels);
    for (auto _ : state) {
        std::vector<std::thread> helpers;
        const size_t share = pixels / threads;
        for (int t = 1; t < threads; ++t) {
            const size_t first = share * t;
            const size_t end = t == threads - 1 ? pixels : first + share;
            helpers.emplace_back(streamPixels, in.data(), map.data(), out.data(), first, end);
        }
        streamPixels(in.data(), map.data(), out.data(), 0, threads == 1 ? pixels : share);
        for (std::thread& helper : helpers) helper.join();
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * size.pixels());
    state.SetBytesProcessed(state.iterations() * size.pixels() * kBytesPerFloorPixel);
}

template <class Run>
void add(const std::string& name, Run run) {
    benchmark::RegisterBenchmark(name.c_str(), run)->UseRealTime()->Unit(benchmark::kMillisecond);
}

void registerPeers() {
    for (const FrameSize size : kSizes) {
        add(resultName("opencv/initUndistortRectifyMap", size, 1),
            [size](benchmark::State& s) { opencvMap(s, size); });
        for (int threads : {1, 2}) {
            add(resultName("opencv/remap_cubic_16UC4", size, threads),
                [size, threads](benchmark::State& s) {
                    opencvRemap(s, size, cv::INTER_CUBIC, threads);
                });
            add(resultName("opencv/remap_linear_16UC4", size, threads),
                [size, threads](benchmark::State& s) {
                    opencvRemap(s, size, cv::INTER_LINEAR, threads);
                });
        }
        add(resultName("lensfun/poly5_forward", size, 1),
            [size](benchmark::State& s) { lensfunPoly5(s, size, false); });
        add(resultName("lensfun/poly5_reverse", size, 1),
            [size](benchmark::State& s) { lensfunPoly5(s, size, true); });
        for (int threads : {1, 2})
            add(resultName("floor/stream_24_bytes_per_pixel", size, threads),
                [size, threads](benchmark::State& s) { memoryFloor(s, size, threads); });
    }
}

// Ours, in the order of the table in the README.
const char* const kOurs[] = {"ours/remove_map",
                             "ours/add_map",
                             "ours/ProcessFrame_SharpCubic_cached_map",
                             "ours/SparkProcess_12bit_cached_map",
                             "ours/SparkProcess_12bit_cached_map_magnify",
                             "ours/SparkProcess_stage1_conversion_in",
                             "ours/SparkProcess_stage2_resample",
                             "ours/SparkProcess_stage3_magnify",
                             "ours/SparkProcess_stage4_conversion_out"};

void registerOurs() {
    using ours::Stage;
    for (const FrameSize size : kSizes) {
        const int w = size.width, h = size.height;
        for (int threads : {1, 2}) {
            add(resultName(kOurs[0], size, threads),
                [w, h, threads](benchmark::State& s) { ours::map(s, w, h, false, threads); });
            add(resultName(kOurs[1], size, threads),
                [w, h, threads](benchmark::State& s) { ours::map(s, w, h, true, threads); });
            add(resultName(kOurs[2], size, threads),
                [w, h, threads](benchmark::State& s) { ours::processFrame(s, w, h, threads); });
            add(resultName(kOurs[3], size, threads), [w, h, threads](benchmark::State& s) {
                ours::sparkProcess(s, w, h, threads, 1.0);
            });
            add(resultName(kOurs[4], size, threads), [w, h, threads](benchmark::State& s) {
                ours::sparkProcess(s, w, h, threads, ours::kMagnify);
            });
            const Stage stages[] = {Stage::kConversionIn, Stage::kResample, Stage::kMagnify,
                                    Stage::kConversionOut};
            for (int k = 0; k < 4; ++k) {
                const Stage which = stages[k];
                add(resultName(kOurs[5 + k], size, threads),
                    [w, h, which, threads](benchmark::State& s) {
                        ours::stage(s, w, h, which, threads);
                    });
            }
        }
    }
}

// Every pair whose ratio is printed: ours against the peer doing the same
// job at the same size and thread count (ours first), the whole frame
// against the memory floor, each peer against the floor, and ours at 4K
// against 2K divided by the pixel ratio (1.00: the cost scales with pixels).
std::vector<RatioPair> ratioPairs() {
    std::vector<RatioPair> pairs;
    for (const FrameSize size : kSizes) {
        pairs.push_back({resultName("ours/remove_map", size, 1),
                         resultName("lensfun/poly5_reverse", size, 1), 1.0, "target <= 0.5"});
        pairs.push_back({resultName("ours/add_map", size, 1),
                         resultName("opencv/initUndistortRectifyMap", size, 1)});
        for (int threads : {1, 2}) {
            pairs.push_back({resultName("ours/ProcessFrame_SharpCubic_cached_map", size, threads),
                             resultName("opencv/remap_cubic_16UC4", size, threads), 1.0,
                             "target <= 0.5"});
        }
        for (const char* whole :
             {"ours/SparkProcess_12bit_cached_map", "ours/SparkProcess_12bit_cached_map_magnify"}) {
            for (int threads : {1, 2}) {
                pairs.push_back(
                    {resultName(whole, size, threads),
                     resultName("floor/stream_24_bytes_per_pixel", size, threads), 1.0,
                     size.width == 2048 && threads == 2 ? "target: whole frame <= 30 ms" : ""});
            }
        }
    }
    for (const FrameSize size : kSizes) {
        for (int threads : {1, 2}) {
            const std::string floor = resultName("floor/stream_24_bytes_per_pixel", size, threads);
            for (const char* peer : {"opencv/remap_cubic_16UC4", "opencv/remap_linear_16UC4"})
                pairs.push_back({resultName(peer, size, threads), floor});
        }
        const std::string floor = resultName("floor/stream_24_bytes_per_pixel", size, 1);
        for (const char* peer :
             {"opencv/initUndistortRectifyMap", "lensfun/poly5_forward", "lensfun/poly5_reverse"})
            pairs.push_back({resultName(peer, size, 1), floor});
    }
    const FrameSize small = kSizes[0], large = kSizes[1];
    const double pixelRatio = static_cast<double>(large.pixels()) / small.pixels();
    for (const char* what : kOurs)
        for (int threads : {1, 2})
            pairs.push_back({resultName(what, large, threads), resultName(what, small, threads),
                             pixelRatio, "per pixel, target <= 1.2"});
    return pairs;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::AddCustomContext("OpenCV", cv::getVersionString());
    benchmark::AddCustomContext("OpenCV default threads", std::to_string(cv::getNumThreads()));
    benchmark::AddCustomContext("lensfun", std::to_string(LF_VERSION_MAJOR) + "." +
                                               std::to_string(LF_VERSION_MINOR) + "." +
                                               std::to_string(LF_VERSION_MICRO));
    registerPeers();
    registerOurs();
    filterpeers::registerAll();
    RatioReporter reporter(isatty(fileno(stdout)) != 0);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::vector<RatioPair> pairs = ratioPairs();
    for (const RatioPair& pair : filterpeers::ratioPairs()) pairs.push_back(pair);
    reporter.printRatios(pairs);
    benchmark::Shutdown();
    return 0;
}
