// sparkview: the plug-in's interactive viewer on the simulated host. This
// file parses and checks the command line, checks that a window can open,
// and starts the window (sparkview/). See viewUsageText() for the command
// line and RunStatus.h for the exit codes.
#include <OutputFile.h>

#include <QApplication>
#include <QSurfaceFormat>
#include <cstdio>

#include "DisplayCheck.h"
#include "ImageFiles.h"
#include "LayoutReport.h"
#include "MainWindow.h"
#include "ProcessSignals.h"
#include "ReaderProcess.h"
#include "ViewCommandLine.h"
#include "ViewerWidget.h"

namespace {
int failure(const RunStatus& status) {
    std::fprintf(stderr, "sparkview: %s\n", status.message.c_str());
    if (status.code == ExitCode::Usage) std::fputs("(sparkview --help shows the usage)\n", stderr);
    return static_cast<int>(status.code);
}

int runWindow(int argc, char** argv, const RunOptions& options) {
    QSurfaceFormat::setDefaultFormat(ViewerWidget::surfaceFormat());
    QApplication application(argc, argv);
    QApplication::setApplicationName("sparkview");
    const RunStatus gl = checkOpenGl();
    if (!gl.ok()) return failure(gl);
    installOverlayCapture();
    MainWindow window(options);
    int settled = 0;
    QObject::connect(&window, &MainWindow::settled, &window,
                     [&window, &settled] { writeLayoutReport(window, ++settled); });
    window.resize(1280, 800);
    window.show();
    return application.exec();
}
}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::string(argv[1]) == kReaderProcessArgument) return serveReaderRequests();
    safeio::setTemporaryTag("sparkview");
    installProcessSignals();
    configureImageLibrary();
    RunOptions options;
    RunStatus status = parseViewCommandLine(argc, argv, &options);
    if (!status.ok()) return failure(status);
    if (options.mode == RunMode::Help) {
        std::fputs(viewUsageText(), stdout);
        return 0;
    }
    status = checkDisplay();
    if (!status.ok()) return failure(status);
    try {
        return runWindow(argc, argv, options);
    } catch (const std::exception& error) {
        return failure(
            RunStatus::failure(ExitCode::Internal, std::string("internal error: ") + error.what()));
    }
}
