// OverlayCapture: the plug-in's overlay drawing, taken down as a list of
// OpenGL commands on the thread that calls the plug-in and drawn later, in
// the viewer's own GL context on the interface thread.
//
// The plug-in's gl* calls resolve to the simulated host's, which forward to
// the table given to simhost::setGlForward (simhost/GlForward.h). This unit
// installs one table for the whole program: on a thread inside a
// CaptureScope each call is appended to that scope's list; on any other
// thread it is passed to the real OpenGL entry points of the current context
// (setRealGl, filled from the viewer's context), so that a library calling
// a gl* function that resolved to the host's still reaches real GL.
// Arguments are kept as they were given (frame units under the plug-in's
// own glTranslatef / glScalef).
#pragma once

#include <GlForward.h>

#include <vector>

struct GlCommand {
    enum Op {
        Begin,
        End,
        Vertex2f,
        Vertex2i,
        Vertex3f,
        Color3f,
        Color4f,
        Color3us,
        Color4us,
        LoadIdentity,
        Translatef,
        Scalef,
        PushMatrix,
        PopMatrix,
        MatrixMode,
        Ortho,
        Viewport,
        Flush,
        LineWidth,
        PointSize,
        Enable,
        Disable,
        BlendFunc,
        LineStipple,
        RasterPos2f,
    };
    Op op = Flush;
    double a[6] = {0, 0, 0, 0, 0, 0};
};

using GlCommands = std::vector<GlCommand>;

// Installs the capturing table with simhost (once; later calls do nothing).
void installOverlayCapture();

// The real entry points for calls made outside a capture; null: dropped.
void setRealGl(const simhost::GlForward* table);

// While alive, this thread's host gl* calls append to *into.
class CaptureScope {
  public:
    explicit CaptureScope(GlCommands* into);
    ~CaptureScope();
    CaptureScope(const CaptureScope&) = delete;
    CaptureScope& operator=(const CaptureScope&) = delete;

  private:
    GlCommands* previous_;
};

// Plays the commands through a table of real entry points (null entries skipped).
void replayCommands(const GlCommands& commands, const simhost::GlForward& gl);
