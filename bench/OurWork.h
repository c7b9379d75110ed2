// The plug-in's own work, timed beside its peers in bench_peers and named the
// same way ("ours/remove_map/2048x1556/1thread"): the Remove- and Add-mode
// address maps, one frame resampled from a cached map with the sharp cubic
// kernel (ProcessFrame), and a whole 12-bit SparkProcess of the real plug-in
// through the simulated host with a cached map, without and with a magnify
// pass, and the four stages of the latter run alone (conversion in,
// resample, magnify, conversion out). Thread counts are the processors the host offers: the
// framework's bands run on that many threads, forked per call as the host
// forks them.
#pragma once

#include <SimHost.h>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "DLImageConversion.h"
#include "ImageXfmZel.h"
#include "ImageZel.h"
#include "Straightlux.h"
#include "ZelHost.h"

namespace ours {

constexpr float kRadial1 = 0.1f;  // the peers' coefficients
constexpr float kRadial2 = 0.02f;
constexpr double kMagnify = 1.1;  // the whole frame's magnify pass
constexpr int kFullValue = 32767;
constexpr int kDepth12 = 48;  // host frame depth of 12-bit work
constexpr unsigned long kShareLength = 1000;

// The framework's fork in this process: one thread per processor, each told
// its share, as the host does it.
inline int& workerIndex() {
    thread_local int index = 0;
    return index;
}

inline void useProcessors(int processors) {
    ZelHost& host = zelHost();
    host.frame.processors = processors;
    host.fork = [](void (*worker)(void*), void* job) {
        std::vector<std::thread> threads;
        for (int index = 0; index < zelHost().frame.processors; ++index) {
            threads.emplace_back([worker, job, index] {
                workerIndex() = index;
                worker(job);
            });
        }
        for (std::thread& thread : threads) thread.join();
    };
    host.share = [](unsigned long* offset, unsigned long* length) {
        *offset = static_cast<unsigned long>(workerIndex()) * kShareLength;
        *length = kShareLength;
    };
}

// A plug-in object set up for a frame, as the host binding leaves it.
struct Lens {
    Lens(int width, int height, double magnify) {
        setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
        StraightluxInfo& c = lens.info;
        c.centre.setCached(0.5, 0.5);
        c.squeeze.setCached(1.0);
        c.radial1.setCached(kRadial1);
        c.radial2.setCached(kRadial2);
        c.magnify.setCached(magnify);
        c.sampling.setCached(kSamplingSharpCubic);
        c.mode.setCached(kModeRemove);
        c.view.setCached(kViewResult);
        lens.width = width;
        lens.height = height;
        lens.centreX = 0.5f * width;
        lens.centreY = 0.5f * height;
        lens.radial1 = kRadial1;
        lens.radial2 = kRadial2;
    }
    // The plug-in leaves its resampler to the library's lifetime; not here.
    ~Lens() { delete lens.xfm; }
    Straightlux lens;
};

// Pixel values that say where they came from, as in the peers' frame.
inline std::unique_ptr<ImageZel> codedImage(int width, int height) {
    std::unique_ptr<ImageZel> image(new ImageZel(width, height, 1.0f, nullptr, nullptr));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto v = static_cast<unsigned short>((x * 7 + y * 13) & kFullValue);
            image->rows[y][x] = PixelZel{v, v, v, kFullValue};
        }
    return image;
}

inline std::vector<unsigned short> codedHostFrame12(int width, int height) {
    std::vector<unsigned short> words(static_cast<size_t>(width) * height * 3);
    for (size_t i = 0; i < words.size(); ++i)
        words[i] = static_cast<unsigned short>(((i / 3 * 7) & 4095) << 4);
    return words;
}

inline void map(benchmark::State& state, int width, int height, bool add, int threads) {
    useProcessors(threads);
    Lens bench(width, height, 1.0);
    // A rebuild reuses the map of the same size; its first filling (page
    // faults of a fresh allocation) is not what is timed.
    bench.lens.ComputeAddressMap(add);
    for (auto _ : state) {
        bench.lens.ComputeAddressMap(add);
        benchmark::DoNotOptimize(bench.lens.addressMap);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * width * height);
    if (!add) state.counters["corrections"] = bench.lens.iterationTotal;
}

// One frame from the cached map: the resample alone (magnify 1).
inline void processFrame(benchmark::State& state, int width, int height, int threads) {
    useProcessors(threads);
    Lens bench(width, height, 1.0);
    const std::unique_ptr<ImageZel> in = codedImage(width, height);
    ImageZel out(width, height, 1.0f, nullptr, nullptr);
    bench.lens.input.image = in.get();
    bench.lens.output.image = &out;
    bench.lens.ProcessFrame();  // builds the map; the timed frames reuse it
    for (auto _ : state) {
        bench.lens.ProcessFrame();
        benchmark::DoNotOptimize(out.pixels);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * width * height);
}

enum class Stage { kConversionIn, kResample, kMagnify, kConversionOut };

// One stage of the whole frame below, run alone the way SparkProcess runs it.
inline void stage(benchmark::State& state, int width, int height, Stage which, int threads) {
    useProcessors(threads);
    Lens bench(width, height, kMagnify);
    std::vector<unsigned short> host = codedHostFrame12(width, height);
    std::unique_ptr<ImageZel> in(
        ConvertFromDLImage12(host.data(), width, height, 1.0, 1, nullptr, 1));
    ImageZel out(width, height, 1.0f, nullptr, nullptr);
    bench.lens.input.image = in.get();
    bench.lens.output.image = &out;
    bench.lens.ProcessFrame();  // the map, scratch and the magnify settings
    for (auto _ : state) {
        switch (which) {
            case Stage::kConversionIn:
                ConvertFromDLImage12(host.data(), width, height, 1.0, 1, in.get(), 1);
                break;
            case Stage::kResample:
                bench.lens.resamplePass(*in, *bench.lens.scratch);
                break;
            case Stage::kMagnify:
                bench.lens.magnifyPass(*bench.lens.scratch, out);
                break;
            case Stage::kConversionOut:
                ConvertToDLImage12(&out, host.data(), width, height, 1, 0);
                break;
        }
        benchmark::DoNotOptimize(host.data());
        benchmark::DoNotOptimize(out.pixels);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * width * height);
}

// The real plug-in, loaded by the simulated host once for the whole run.
inline simhost::Plugin* loadedPlugin() {
    static simhost::Plugin* plugin = [] {
        setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
        auto* loaded = new simhost::Plugin;
        std::string error;
        if (!loaded->load(STRAIGHTLUX_PLUGIN, &error)) {
            std::fprintf(stderr, "bench: %s\n", error.c_str());
            delete loaded;
            return static_cast<simhost::Plugin*>(nullptr);
        }
        return loaded;
    }();
    return plugin;
}

// A whole 12-bit frame through SparkProcess: conversions, resample from the
// cached map (sharp cubic), the magnify pass when magnify is not 1, no blend.
inline void sparkProcess(benchmark::State& state, int width, int height, int threads,
                         double magnify) {
    simhost::Plugin* plugin = loadedPlugin();
    if (plugin == nullptr) {
        state.SkipWithError("the plug-in did not load");
        return;
    }
    simhost::Host& host = simhost::Host::instance();
    host.reset();
    host.processors = threads;
    const SparkInfoStruct info = host.makeInfo(width, height, kDepth12);
    // The start-up banner would break into the results table.
    std::fflush(stdout);
    const int console = dup(STDOUT_FILENO);
    const int nowhere = open("/dev/null", O_WRONLY);
    if (nowhere >= 0) dup2(nowhere, STDOUT_FILENO);
    plugin->initialise(info);
    std::fflush(stdout);
    if (console >= 0) dup2(console, STDOUT_FILENO);
    if (console >= 0) close(console);
    if (nowhere >= 0) close(nowhere);
    plugin->record<SparkFloatStruct>("SparkFloat6")->Value = kRadial1;
    plugin->record<SparkFloatStruct>("SparkFloat7")->Value = kRadial2;
    plugin->record<SparkFloatStruct>("SparkFloat18")->Value = static_cast<float>(magnify);
    plugin->record<SparkPupStruct>("SparkPup17")->Value = kSamplingSharpCubic - 1;
    simhost::FrameBuffer& input = host.setBuffer(2, width, height, kDepth12);
    const std::vector<unsigned short> words = codedHostFrame12(width, height);
    std::copy(words.begin(), words.end(), input.words());
    host.setBuffer(1, width, height, kDepth12);
    if (plugin->process(info) == nullptr) {  // builds the map
        state.SkipWithError("SparkProcess returned no frame");
        return;
    }
    for (auto _ : state) {
        host.clearCalls();  // the host's call record would grow without end
        benchmark::DoNotOptimize(plugin->process(info));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * width * height);
}

}  // namespace ours
