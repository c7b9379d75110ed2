// Checking for a display and for OpenGL.
#include "DisplayCheck.h"

#include <GlForward.h>
#include <dlfcn.h>
#include <xcb/xcb.h>

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions_2_1>
#include <QOpenGLVersionFunctionsFactory>
#include <cstdlib>
#include <string>

#include "ViewerWidget.h"

namespace {
RunStatus noWindow(const std::string& text) { return RunStatus::failure(ExitCode::Display, text); }

std::string libraryOf(const void* function) {
    Dl_info found;
    if (!function || !dladdr(function, &found) || !found.dli_fname) return "";
    return found.dli_fname;
}
}  // namespace

RunStatus checkDisplay() {
    const char* platform = std::getenv("QT_QPA_PLATFORM");
    if (platform && *platform && std::string(platform).rfind("xcb", 0) != 0)
        return RunStatus::success();
    const char* display = std::getenv("DISPLAY");
    if (!display || !*display)
        return noWindow("no display: DISPLAY is not set (run it on a desktop, or under xvfb-run)");
    xcb_connection_t* connection = xcb_connect(display, nullptr);
    const bool failed = xcb_connection_has_error(connection) != 0;
    xcb_disconnect(connection);
    if (failed) return noWindow(std::string("cannot open the display ") + display);
    return RunStatus::success();
}

RunStatus checkOpenGl() {
    // The plug-in's gl* calls must reach the simulated host, which passes them on.
    void* begin = dlsym(RTLD_DEFAULT, "glBegin");
    const std::string host = libraryOf(reinterpret_cast<const void*>(&simhost::setGlForward));
    if (libraryOf(begin) != host)
        return RunStatus::failure(ExitCode::Internal,
                                  "glBegin resolves to " + libraryOf(begin) +
                                      ", not to the simulated host: the program is linked in "
                                      "the wrong order");
    QOpenGLContext context;
    context.setFormat(ViewerWidget::surfaceFormat());
    if (!context.create()) return noWindow("no OpenGL: cannot create a context");
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    if (!context.makeCurrent(&surface)) return noWindow("no OpenGL: cannot use a context");
    const bool compatible =
        !context.isOpenGLES() &&
        QOpenGLVersionFunctionsFactory::get<QOpenGLFunctions_2_1>(&context) != nullptr &&
        context.getProcAddress("glBegin") != nullptr;
    context.doneCurrent();
    if (!compatible)
        return noWindow(
            "no OpenGL 2.1 with the compatibility profile: the plug-in's overlay draws in "
            "immediate mode");
    return RunStatus::success();
}
