// Lens plug-in costs: building the Remove-mode map (a Newton solve per pixel)
// and the Add-mode map (the single-precision forward formula per pixel),
// processing one frame from a cached map with the sharp cubic kernel (with and
// without the magnify pass), and the automatic fit of k1, k2 to 10 lines of 12
// points. Frame sizes: 2048x1556 (2K full aperture) and 4096x2160 (4K DCI).
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "ImageXfmZel.h"
#include "ImageZel.h"
#include "PolyLineSet2DZel.h"
#include "Straightlux.h"

namespace {

constexpr float kRadial1 = 0.1f;
constexpr float kRadial2 = 0.02f;

// A plug-in object set up for a frame of the given size; it frees its
// resampler here, which the plug-in itself leaves to the library's lifetime.
struct BenchLens {
    BenchLens(int width, int height, double magnify = 1.0) {
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
    ~BenchLens() { delete lens.xfm; }
    Straightlux lens;
};

void MapBench(benchmark::State& state, bool add) {
    BenchLens bench(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    bench.lens.ComputeAddressMap(add);  // the allocation's page faults are not timed
    for (auto _ : state) {
        bench.lens.ComputeAddressMap(add);
        benchmark::DoNotOptimize(bench.lens.addressMap);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
    // Remove mode: the mean Newton corrections per pixel.
    if (!add) state.counters["corrections"] = bench.lens.iterationTotal;
}

void BM_RemoveMap(benchmark::State& state) { MapBench(state, false); }
void BM_AddMap(benchmark::State& state) { MapBench(state, true); }

// range(2): magnify in thousandths.
void BM_ProcessFrame(benchmark::State& state) {
    const int width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    BenchLens bench(width, height, state.range(2) / 1000.0);
    ImageZel in(width, height, 1.0f, nullptr, nullptr), out(width, height, 1.0f, nullptr, nullptr);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto v = static_cast<unsigned short>((x * 7 + y * 13) & 32767);
            in.rows[y][x] = PixelZel{v, v, v, 32767};
        }
    bench.lens.input.image = &in;
    bench.lens.output.image = &out;
    bench.lens.ProcessFrame();  // builds the map; the timed frames reuse it
    for (auto _ : state) {
        bench.lens.ProcessFrame();
        benchmark::DoNotOptimize(out.pixels);
    }
    state.SetItemsProcessed(state.iterations() * width * height);
}

void BM_OptimizeK1K2(benchmark::State& state) {
    const int width = 2048, height = 1556;
    BenchLens bench(width, height);
    // Lines that the k1, k2 model carries onto straight rows and columns.
    for (int l = 0; l < 10; ++l) {
        PolyLine2DZel* line = bench.lens.lines->new_line(l);
        for (int n = 0; n < 12; ++n) {
            const double t = 0.05 + 0.9 * n / 11.0;
            const double across = 0.08 + 0.84 * (l / 2) / 4.0;
            const tagDPT2 straight = (l % 2 == 0) ? tagDPT2{t * width, across * height}
                                                  : tagDPT2{across * width, t * height};
            tagDPT2 drawn = straight;
            bench.lens.MapDistortedToUndistorted(straight, drawn);
            line->add_point(tagDPT2{drawn.x / width, drawn.y / height});
        }
    }
    for (auto _ : state) benchmark::DoNotOptimize(bench.lens.OptimizeK1K2());
}

}  // namespace

BENCHMARK(BM_RemoveMap)->Args({2048, 1556})->Args({4096, 2160})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AddMap)->Args({2048, 1556})->Args({4096, 2160})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ProcessFrame)
    ->Args({2048, 1556, 1000})
    ->Args({2048, 1556, 1100})
    ->Args({4096, 2160, 1000})
    ->Args({4096, 2160, 1100})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OptimizeK1K2)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
