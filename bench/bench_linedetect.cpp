// Automatic lines on a 2K frame (2048x1152): the detector alone (1 and 2
// processors), and detection plus the fit as sparkrun --lines auto
// --autofind does it: the lines found, drawn in the real plug-in's viewer
// through the simulated host (Auto Preview off, so a click renders nothing)
// and AutoFind pressed (the lines of the previous run deleted first). The frame is a facade (a
// frame, windows in rows and columns, oblique bars) drawn through a known lens (Radial1 0.1,
// Radial2 0.02), blurred and grainy. Loading the plug-in and showing the frame are not timed.
// Counters: lines and points found, and the fitted model's largest displacement from the true one
// within 0.7 of the half-diagonal.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "ControlAssignments.h"
#include "LineDetection.h"
#include "SparkSession.h"
#include "ViewerActions.h"
#include "linedetect/DistortedScenes.h"

namespace {

const int kWidth = 2048;
const int kHeight = 1152;
const double kRadial1 = 0.1;
const double kRadial2 = 0.02;
const int kHostDepth12Bits = 48;

const FilePixels& facade() {
    static const FilePixels picture = [] {
        TestScene s;
        s.width = kWidth;
        s.height = kHeight;
        s.k1 = kRadial1;
        s.k2 = kRadial2;
        s.rectangle(30, 30, 2018, 1122, 0.6f);
        for (int i = 0; i < 6; ++i)
            for (int j = 0; j < 3; ++j)
                s.rectangle(120 + 320 * i, 110 + 330 * j, 330 + 320 * i, 330 + 330 * j, 0.15f);
        for (int i = 0; i < 6; ++i) {
            const double x = 100 + 330 * i;
            s.polygon({{x, 1100}, {x + 25, 1100}, {x + 325, 700}, {x + 300, 700}}, 0.9f);
        }
        const FloatImageZel drawn = s.draw(1.0f, 0.01, 3);
        FilePixels p;
        p.width = kWidth;
        p.height = kHeight;
        p.bitsPerSample = 16;
        for (long i = 0; i < drawn.count(); ++i) {
            const uint16_t v = static_cast<uint16_t>(
                std::lround(std::clamp(drawn.data()[i], 0.0f, 1.0f) * 65535.0f));
            p.words.insert(p.words.end(), {v, v, v});
        }
        return p;
    }();
    return picture;
}

void BM_DetectLines(benchmark::State& state) {
    const FilePixels& picture = facade();
    const int processors = static_cast<int>(state.range(0));
    LinesFound found;
    for (auto _ : state) {
        if (!detectPictureLines(picture, "facade", &found, processors).ok())
            state.SkipWithError("no lines");
    }
    size_t points = 0;
    for (const auto& line : found.lines.lines) points += line.size();
    state.counters["lines"] = static_cast<double>(found.lines.lines.size());
    state.counters["points"] = static_cast<double>(points);
}

double fittedDisplacement(const SparkSession& session) {
    auto value = [&](const char* name) {
        const Control* c = session.controls().named(name, ControlKind::Float);
        return c ? static_cast<double>(static_cast<SparkFloatStruct*>(c->record)->Value) : 0.0;
    };
    return modelDisplacement(kWidth, kHeight, value("Radial1"), value("Radial2"), kRadial1,
                             kRadial2);
}

void BM_DetectAndFit(benchmark::State& state) {
    setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
    const FilePixels& picture = facade();
    const int processors = static_cast<int>(state.range(0));
    // One plug-in for the process (the simulated host loads one); the lines
    // of the previous iteration are deleted (KillLines) before each.
    static SparkSession session(true, processors);
    static RunStatus started = [&] {
        RunStatus status = session.load(STRAIGHTLUX_PLUGIN);
        if (status.ok()) status = session.start(kWidth, kHeight, kHostDepth12Bits, 1.0f, "");
        if (status.ok())
            status =
                applyControlValues({"Auto Preview=off", "Mode=Remove"}, {}, session.controls());
        return status;
    }();
    if (!started.ok()) {
        state.SkipWithError(started.message.c_str());
        return;
    }
    ViewerActions actions(session, 1, 1);
    if (!actions.check(true, true, false).ok() || !actions.show(picture).ok()) {
        state.SkipWithError("the viewer did not show the frame");
        return;
    }
    const Control* kill = session.controls().named("KillLines", ControlKind::Button);
    double displacement = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        if (kill) session.plugin().callback(kill->symbol, 1, session.viewerInfo(1, 1));
        session.relayMessages();
        state.ResumeTiming();
        LinesFound found;
        std::string fitted;
        if (!detectPictureLines(picture, "facade", &found, processors).ok() ||
            !actions.drawLines(found.lines).ok() || !actions.autoFind(&fitted).ok())
            state.SkipWithError("detection or fit failed");
        state.PauseTiming();
        displacement = fittedDisplacement(session);
        state.ResumeTiming();
    }
    state.counters["displacement_px"] = displacement;
}

}  // namespace

BENCHMARK(BM_DetectLines)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_DetectAndFit)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
BENCHMARK_MAIN();
