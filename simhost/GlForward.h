// Forwarding of the simulated host's OpenGL calls to a real GL context.
//
// The host's gl* functions (GlRecorder.cpp) always record the call; while a
// viewer context is current (Viewer::render) they also pass it on to the real
// GL entry points of that context, held in this table. The entry points come
// from the OSMesa library loaded privately (RTLD_LOCAL), so they never clash
// with the host's own gl* definitions. A null entry is skipped.
#pragma once

namespace simhost {

struct GlForward {
    void (*begin)(unsigned int mode) = nullptr;
    void (*end)() = nullptr;
    void (*vertex2f)(float x, float y) = nullptr;
    void (*vertex2i)(int x, int y) = nullptr;
    void (*vertex3f)(float x, float y, float z) = nullptr;
    void (*color3f)(float r, float g, float b) = nullptr;
    void (*color4f)(float r, float g, float b, float a) = nullptr;
    void (*color3us)(unsigned short r, unsigned short g, unsigned short b) = nullptr;
    void (*color4us)(unsigned short r, unsigned short g, unsigned short b,
                     unsigned short a) = nullptr;
    void (*loadIdentity)() = nullptr;
    void (*translatef)(float x, float y, float z) = nullptr;
    void (*scalef)(float x, float y, float z) = nullptr;
    void (*pushMatrix)() = nullptr;
    void (*popMatrix)() = nullptr;
    void (*matrixMode)(unsigned int mode) = nullptr;
    void (*ortho)(double left, double right, double bottom, double top, double zNear,
                  double zFar) = nullptr;
    void (*viewport)(int x, int y, int width, int height) = nullptr;
    void (*flush)() = nullptr;
    void (*lineWidth)(float width) = nullptr;
    void (*pointSize)(float size) = nullptr;
    void (*enable)(unsigned int capability) = nullptr;
    void (*disable)(unsigned int capability) = nullptr;
    void (*blendFunc)(unsigned int source, unsigned int destination) = nullptr;
    void (*lineStipple)(int factor, unsigned short pattern) = nullptr;
    void (*rasterPos2f)(float x, float y) = nullptr;
};

// The table of the current viewer context, or null (record only).
const GlForward* glForward();
void setGlForward(const GlForward* table);

}  // namespace simhost
