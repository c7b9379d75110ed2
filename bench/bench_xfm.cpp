// Resampling costs: nanoseconds per point sample for each mode and
// arithmetic, warping a 2048x1556 frame zoomed by 1.1 (point path) and by
// 0.5 (area path), and scaling 2048x1556 to half size and back.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "ImageXfmZel.h"

namespace {

const int kFrameW = 2048, kFrameH = 1556;

std::unique_ptr<ImageZel> makeFrame(int w, int h) {
    std::unique_ptr<ImageZel> img(new ImageZel(w, h, 1.0f, nullptr, nullptr));
    unsigned state = 12345;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            state = state * 1103515245u + 12345u;
            PixelZel& p = img->rows[y][x];
            p.red = static_cast<unsigned short>((state >> 9) & 0x7fff);
            p.green = static_cast<unsigned short>((x * 16) & 0x7fff);
            p.blue = static_cast<unsigned short>((y * 16) & 0x7fff);
            p.alpha = 32767;
        }
    return img;
}

void BM_Sample(benchmark::State& state) {
    const int mode = static_cast<int>(state.range(0));
    const int arith = static_cast<int>(state.range(1));
    auto img = makeFrame(512, 512);
    ImageXfmZel xfm;
    xfm.sampleMode(mode);
    xfm.set_arithmetic(arith);
    // A raster walk with varied fractions, as a warp or an address map reads.
    std::vector<double> xs, ys;
    for (int i = 0; i < 4096; ++i) {
        xs.push_back(3.0 + (i % 500) + (i % 97) / 97.0);
        ys.push_back(3.0 + (i / 500) + (i % 89) / 89.0);
    }
    for (auto _ : state) {
        for (size_t i = 0; i < xs.size(); ++i)
            benchmark::DoNotOptimize(xfm.sample(img.get(), xs[i], ys[i]));
    }
    state.counters["per_sample"] =
        benchmark::Counter(static_cast<double>(state.iterations() * xs.size()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_Sample)
    ->ArgNames({"mode", "arith"})
    ->ArgsProduct({{1, 2, 3, 4, 5, 6}, {XFM_ARITH_DOUBLE, XFM_ARITH_FIXED}});

void BM_ApplyZoom(benchmark::State& state) {
    const double zoom = state.range(0) / 10.0;
    const int mode = static_cast<int>(state.range(1));
    auto src = makeFrame(kFrameW, kFrameH);
    auto dst = makeFrame(kFrameW, kFrameH);
    ImageXfmZel xfm;
    xfm.sampleMode(mode);
    xfm.translate(kFrameW * 0.5, kFrameH * 0.5);
    xfm.scale(zoom, zoom);
    xfm.translate(-kFrameW * 0.5, -kFrameH * 0.5);
    xfm.set_transform(1);
    for (auto _ : state) xfm.apply(src.get(), dst.get(), 0, kFrameH - 1);
    state.counters["per_pixel"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kFrameW * kFrameH,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_ApplyZoom)
    ->ArgNames({"zoom10", "mode"})
    ->Args({11, 4})
    ->Args({11, 2})
    ->Args({5, 4})
    ->Unit(benchmark::kMillisecond);

void BM_ScaleImage(benchmark::State& state) {
    const bool down = state.range(0) != 0;
    const int mode = static_cast<int>(state.range(1));
    auto full = makeFrame(kFrameW, kFrameH);
    auto half = makeFrame(kFrameW / 2, kFrameH / 2);
    ImageXfmZel xfm;
    xfm.sampleMode(mode);
    for (auto _ : state) {
        int ok = down ? xfm.scale_image(full.get(), half.get())
                      : xfm.scale_image(half.get(), full.get());
        benchmark::DoNotOptimize(ok);
    }
}
BENCHMARK(BM_ScaleImage)
    ->ArgNames({"down", "mode"})
    ->Args({1, 3})
    ->Args({0, 3})
    ->Args({1, 2})
    ->Args({0, 2})
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
