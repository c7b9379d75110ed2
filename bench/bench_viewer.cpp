// sparkview's latency: from a control change in the window to the new frame
// on screen (the plug-in's thread renders, the viewer uploads and draws it
// and the frame is swapped), on a 2K 12-bit frame (2048x1556, 16-bit TIFF)
// with the processors the host offers (2 by default; STRAIGHTLUX_THREADS).
// Changing "Centre X" rebuilds the plug-in's address map; "Radial1" too.
// Needs a display with OpenGL: run it as `xvfb-run -a build/default/bench_viewer`.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <cstdlib>
#include <memory>

#include "ImageFiles.h"
#include "MainWindow.h"
#include "OverlayCapture.h"
#include "ReaderProcess.h"
#include "SessionWorker.h"
#include "ViewerWidget.h"

namespace {
const int kWidth = 2048;
const int kHeight = 1556;

struct Rig {
    QTemporaryDir folder;
    std::unique_ptr<MainWindow> window;
};
Rig* rig = nullptr;

size_t indexOf(const char* name) {
    const auto& d = rig->window->worker().descriptions();
    for (size_t i = 0; i < d.size(); ++i)
        if (d[i].name == name) return i;
    return d.size();
}

// Waits until the worker has nothing to do and the viewer swapped a frame
// that arrived after `since`.
void waitForScreen() {
    MainWindow& w = *rig->window;
    bool arrived = false, swapped = false;
    auto a = QObject::connect(&w.worker(), &SessionWorker::frameReady, [&] { arrived = true; });
    auto b = QObject::connect(&w.viewer(), &QOpenGLWidget::frameSwapped, [&] {
        if (arrived) swapped = true;
    });
    while (!swapped) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    QObject::disconnect(a);
    QObject::disconnect(b);
}

void changeToScreen(benchmark::State& state, const char* control, double a, double b) {
    const size_t index = indexOf(control);
    bool flip = false;
    for (auto _ : state) {
        flip = !flip;
        rig->window->worker().setNumber(index, flip ? b : a);
        waitForScreen();
    }
}

void BM_CentreXToScreen(benchmark::State& state) { changeToScreen(state, "Centre X", 50.0, 52.0); }
void BM_Radial1ToScreen(benchmark::State& state) { changeToScreen(state, "Radial1", 0.05, 0.08); }
BENCHMARK(BM_CentreXToScreen)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);
BENCHMARK(BM_Radial1ToScreen)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);

bool makeRig(int argc, char** argv) {
    rig = new Rig;
    const std::string image = rig->folder.filePath("plate.tif").toStdString();
    RgbSamples samples;
    samples.type = SampleType::Sixteen;
    samples.sixteens.resize(static_cast<size_t>(kWidth) * kHeight * 3);
    for (size_t i = 0; i < samples.sixteens.size(); ++i)
        samples.sixteens[i] = static_cast<uint16_t>((i * 2654435761u) >> 16);
    if (!writeImage(image, kWidth, kHeight, samples).ok()) return false;
    RunOptions options;
    options.viewer = true;
    options.quiet = true;
    options.pluginPath = STRAIGHTLUX_PLUGIN;
    const char* threads = std::getenv("STRAIGHTLUX_THREADS");
    options.processors = threads ? std::atoi(threads) : 2;
    options.files = {image};
    rig->window = std::make_unique<MainWindow>(options);
    rig->window->resize(1280, 800);
    rig->window->show();
    (void)argc;
    (void)argv;
    waitForScreen();
    return true;
}
}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::string(argv[1]) == kReaderProcessArgument) return serveReaderRequests();
    if (!std::getenv("DISPLAY")) {
        std::fprintf(stderr, "bench_viewer needs a display: run it under xvfb-run -a\n");
        return 9;
    }
    QSurfaceFormat::setDefaultFormat(ViewerWidget::surfaceFormat());
    QApplication app(argc, argv);
    configureImageLibrary();
    installOverlayCapture();
    if (!makeRig(argc, argv)) return 3;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    rig->window.reset();
    return 0;
}
