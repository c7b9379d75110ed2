// Taking down and playing back the plug-in's overlay drawing.
#include "OverlayCapture.h"

#include <atomic>
#include <mutex>

namespace {
thread_local GlCommands* captureTarget = nullptr;
std::atomic<const simhost::GlForward*> realGl{nullptr};

// Appends the call when this thread captures; otherwise calls the real entry.
template <class F, class... Args>
void route(GlCommand::Op op, F simhost::GlForward::*member, Args... args) {
    if (GlCommands* target = captureTarget) {
        GlCommand command;
        command.op = op;
        const double values[] = {static_cast<double>(args)..., 0.0};
        for (size_t i = 0; i + 1 < sizeof values / sizeof values[0] && i < 6; ++i)
            command.a[i] = values[i];
        target->push_back(command);
        return;
    }
    const simhost::GlForward* real = realGl.load();
    if (real && real->*member) (real->*member)(args...);
}

using G = simhost::GlForward;
using C = GlCommand;

simhost::GlForward capturingTable() {
    simhost::GlForward t;
    t.begin = [](unsigned mode) { route(C::Begin, &G::begin, mode); };
    t.end = [] { route(C::End, &G::end); };
    t.vertex2f = [](float x, float y) { route(C::Vertex2f, &G::vertex2f, x, y); };
    t.vertex2i = [](int x, int y) { route(C::Vertex2i, &G::vertex2i, x, y); };
    t.vertex3f = [](float x, float y, float z) { route(C::Vertex3f, &G::vertex3f, x, y, z); };
    t.color3f = [](float r, float g, float b) { route(C::Color3f, &G::color3f, r, g, b); };
    t.color4f = [](float r, float g, float b, float a) {
        route(C::Color4f, &G::color4f, r, g, b, a);
    };
    t.color3us = [](unsigned short r, unsigned short g, unsigned short b) {
        route(C::Color3us, &G::color3us, r, g, b);
    };
    t.color4us = [](unsigned short r, unsigned short g, unsigned short b, unsigned short a) {
        route(C::Color4us, &G::color4us, r, g, b, a);
    };
    t.loadIdentity = [] { route(C::LoadIdentity, &G::loadIdentity); };
    t.translatef = [](float x, float y, float z) { route(C::Translatef, &G::translatef, x, y, z); };
    t.scalef = [](float x, float y, float z) { route(C::Scalef, &G::scalef, x, y, z); };
    t.pushMatrix = [] { route(C::PushMatrix, &G::pushMatrix); };
    t.popMatrix = [] { route(C::PopMatrix, &G::popMatrix); };
    t.matrixMode = [](unsigned mode) { route(C::MatrixMode, &G::matrixMode, mode); };
    t.ortho = [](double l, double r, double b, double tp, double n, double f) {
        route(C::Ortho, &G::ortho, l, r, b, tp, n, f);
    };
    t.viewport = [](int x, int y, int w, int h) { route(C::Viewport, &G::viewport, x, y, w, h); };
    t.flush = [] { route(C::Flush, &G::flush); };
    t.lineWidth = [](float w) { route(C::LineWidth, &G::lineWidth, w); };
    t.pointSize = [](float s) { route(C::PointSize, &G::pointSize, s); };
    t.enable = [](unsigned c) { route(C::Enable, &G::enable, c); };
    t.disable = [](unsigned c) { route(C::Disable, &G::disable, c); };
    t.blendFunc = [](unsigned s, unsigned d) { route(C::BlendFunc, &G::blendFunc, s, d); };
    t.lineStipple = [](int f, unsigned short p) { route(C::LineStipple, &G::lineStipple, f, p); };
    t.rasterPos2f = [](float x, float y) { route(C::RasterPos2f, &G::rasterPos2f, x, y); };
    return t;
}
}  // namespace

void installOverlayCapture() {
    static const simhost::GlForward table = capturingTable();
    static std::once_flag once;
    std::call_once(once, [] { simhost::setGlForward(&table); });
}

void setRealGl(const simhost::GlForward* table) { realGl.store(table); }

CaptureScope::CaptureScope(GlCommands* into) : previous_(captureTarget) { captureTarget = into; }

CaptureScope::~CaptureScope() { captureTarget = previous_; }

namespace {
float f(double v) { return static_cast<float>(v); }
int i(double v) { return static_cast<int>(v); }
unsigned u(double v) { return static_cast<unsigned>(v); }
unsigned short us(double v) { return static_cast<unsigned short>(v); }

template <class F, class... Args>
void call(F fn, Args... args) {
    if (fn) fn(args...);
}

void replayOne(const GlCommand& c, const simhost::GlForward& gl) {
    const double* a = c.a;
    switch (c.op) {
        case C::Begin:
            return call(gl.begin, u(a[0]));
        case C::End:
            return call(gl.end);
        case C::Vertex2f:
            return call(gl.vertex2f, f(a[0]), f(a[1]));
        case C::Vertex2i:
            return call(gl.vertex2i, i(a[0]), i(a[1]));
        case C::Vertex3f:
            return call(gl.vertex3f, f(a[0]), f(a[1]), f(a[2]));
        case C::Color3f:
            return call(gl.color3f, f(a[0]), f(a[1]), f(a[2]));
        case C::Color4f:
            return call(gl.color4f, f(a[0]), f(a[1]), f(a[2]), f(a[3]));
        case C::Color3us:
            return call(gl.color3us, us(a[0]), us(a[1]), us(a[2]));
        case C::Color4us:
            return call(gl.color4us, us(a[0]), us(a[1]), us(a[2]), us(a[3]));
        case C::LoadIdentity:
            return call(gl.loadIdentity);
        case C::Translatef:
            return call(gl.translatef, f(a[0]), f(a[1]), f(a[2]));
        case C::Scalef:
            return call(gl.scalef, f(a[0]), f(a[1]), f(a[2]));
        case C::PushMatrix:
            return call(gl.pushMatrix);
        case C::PopMatrix:
            return call(gl.popMatrix);
        case C::MatrixMode:
            return call(gl.matrixMode, u(a[0]));
        case C::Ortho:
            return call(gl.ortho, a[0], a[1], a[2], a[3], a[4], a[5]);
        case C::Viewport:
            return call(gl.viewport, i(a[0]), i(a[1]), i(a[2]), i(a[3]));
        case C::Flush:
            return call(gl.flush);
        case C::LineWidth:
            return call(gl.lineWidth, f(a[0]));
        case C::PointSize:
            return call(gl.pointSize, f(a[0]));
        case C::Enable:
            return call(gl.enable, u(a[0]));
        case C::Disable:
            return call(gl.disable, u(a[0]));
        case C::BlendFunc:
            return call(gl.blendFunc, u(a[0]), u(a[1]));
        case C::LineStipple:
            return call(gl.lineStipple, i(a[0]), us(a[1]));
        case C::RasterPos2f:
            return call(gl.rasterPos2f, f(a[0]), f(a[1]));
    }
}
}  // namespace

void replayCommands(const GlCommands& commands, const simhost::GlForward& gl) {
    for (const GlCommand& command : commands) replayOne(command, gl);
}
