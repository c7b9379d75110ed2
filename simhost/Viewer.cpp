// The viewer: an OSMesa context per picture, the host's projection, the
// plug-in's overlay drawn through the forwarded gl* calls, rows read back
// top first.
#include "Viewer.h"

#include <GL/osmesa.h>
#include <dlfcn.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "GlForward.h"
#include "SimHost.h"

namespace simhost {

namespace {

// The OSMesa library, loaded once with RTLD_LOCAL so that its gl* symbols
// never take the place of the host's recording ones, and kept loaded.
struct OsMesa {
    bool ok = false;
    std::string error;
    OSMesaContext (*createContextExt)(GLenum, GLint, GLint, GLint, OSMesaContext) = nullptr;
    GLboolean (*makeCurrent)(OSMesaContext, void*, GLenum, GLsizei, GLsizei) = nullptr;
    void (*destroyContext)(OSMesaContext) = nullptr;
    OSMESAproc (*getProcAddress)(const char*) = nullptr;
    GlForward gl;  // what the host's gl* calls forward to
    // Used by the viewer alone, to prepare and read the picture.
    void (*clearColor)(GLfloat, GLfloat, GLfloat, GLfloat) = nullptr;
    void (*clear)(GLbitfield) = nullptr;
    void (*finish)() = nullptr;
    void (*pixelStorei)(GLenum, GLint) = nullptr;
    void (*windowPos2i)(GLint, GLint) = nullptr;
    void (*drawPixels)(GLsizei, GLsizei, GLenum, GLenum, const void*) = nullptr;
};

template <class F>
bool fetchOsMesa(void* library, const char* name, F& out) {
    out = reinterpret_cast<F>(dlsym(library, name));
    return out != nullptr;
}

template <class F>
void fetchGl(const OsMesa& m, void* library, const char* name, F& out) {
    OSMESAproc proc = m.getProcAddress(name);
    out = proc ? reinterpret_cast<F>(proc) : reinterpret_cast<F>(dlsym(library, name));
}

// The GL entry points the plug-in's drawing is forwarded to, and the few the
// viewer calls itself.
void fetchGlCalls(OsMesa& m, void* library) {
    GlForward& gl = m.gl;
    fetchGl(m, library, "glBegin", gl.begin);
    fetchGl(m, library, "glEnd", gl.end);
    fetchGl(m, library, "glVertex2f", gl.vertex2f);
    fetchGl(m, library, "glVertex2i", gl.vertex2i);
    fetchGl(m, library, "glVertex3f", gl.vertex3f);
    fetchGl(m, library, "glColor3f", gl.color3f);
    fetchGl(m, library, "glColor4f", gl.color4f);
    fetchGl(m, library, "glColor3us", gl.color3us);
    fetchGl(m, library, "glColor4us", gl.color4us);
    fetchGl(m, library, "glLoadIdentity", gl.loadIdentity);
    fetchGl(m, library, "glTranslatef", gl.translatef);
    fetchGl(m, library, "glScalef", gl.scalef);
    fetchGl(m, library, "glPushMatrix", gl.pushMatrix);
    fetchGl(m, library, "glPopMatrix", gl.popMatrix);
    fetchGl(m, library, "glMatrixMode", gl.matrixMode);
    fetchGl(m, library, "glOrtho", gl.ortho);
    fetchGl(m, library, "glViewport", gl.viewport);
    fetchGl(m, library, "glFlush", gl.flush);
    fetchGl(m, library, "glLineWidth", gl.lineWidth);
    fetchGl(m, library, "glPointSize", gl.pointSize);
    fetchGl(m, library, "glEnable", gl.enable);
    fetchGl(m, library, "glDisable", gl.disable);
    fetchGl(m, library, "glBlendFunc", gl.blendFunc);
    fetchGl(m, library, "glLineStipple", gl.lineStipple);
    fetchGl(m, library, "glRasterPos2f", gl.rasterPos2f);
    fetchGl(m, library, "glClearColor", m.clearColor);
    fetchGl(m, library, "glClear", m.clear);
    fetchGl(m, library, "glFinish", m.finish);
    fetchGl(m, library, "glPixelStorei", m.pixelStorei);
    fetchGl(m, library, "glWindowPos2i", m.windowPos2i);
    fetchGl(m, library, "glDrawPixels", m.drawPixels);
}

OsMesa load() {
    OsMesa m;
    // Mesa's llvmpipe rasterises on worker threads that live until the
    // process ends, where the leak checker's stop-the-world has been seen to
    // crash on them. With none it rasterises on the drawing thread, which is
    // quick enough for overlays. A value the user set is kept.
    setenv("LP_NUM_THREADS", "0", 0);
    void* library = nullptr;
    for (const char* name : {"libOSMesa.so.8", "libOSMesa.so.6", "libOSMesa.so"}) {
        library = dlopen(name, RTLD_NOW | RTLD_LOCAL);
        if (library) break;
    }
    if (!library) {
        const char* why = dlerror();
        m.error = std::string("cannot load the OSMesa library (install libosmesa6-dev): ") +
                  (why ? why : "not found");
        return m;
    }
    if (!fetchOsMesa(library, "OSMesaCreateContextExt", m.createContextExt) ||
        !fetchOsMesa(library, "OSMesaMakeCurrent", m.makeCurrent) ||
        !fetchOsMesa(library, "OSMesaDestroyContext", m.destroyContext) ||
        !fetchOsMesa(library, "OSMesaGetProcAddress", m.getProcAddress)) {
        m.error = "the OSMesa library lacks its context functions";
        return m;
    }
    fetchGlCalls(m, library);
    const GlForward& gl = m.gl;
    if (!gl.viewport || !gl.matrixMode || !gl.loadIdentity || !gl.ortho || !m.clearColor ||
        !m.clear || !m.finish || !m.pixelStorei || !m.windowPos2i || !m.drawPixels) {
        m.error = "the OSMesa library lacks the OpenGL calls the viewer needs";
        return m;
    }
    m.ok = true;
    return m;
}

OsMesa& osMesa() {
    static OsMesa m = load();
    return m;
}

bool fail(std::string* error, const std::string& message) {
    if (error) *error = message;
    return false;
}

// Ends forwarding and releases the context however the drawing ends.
struct ContextScope {
    const OsMesa& m;
    OSMesaContext context;
    ~ContextScope() {
        setGlForward(nullptr);
        m.makeCurrent(nullptr, nullptr, 0, 0, 0);
        m.destroyContext(context);
    }
};

// The background spread over the picture, bottom row first as GL takes it.
std::vector<unsigned char> backgroundRows(const ViewerImage& frame, long width, long height,
                                          double xScale, double yScale) {
    std::vector<unsigned char> out(static_cast<size_t>(width) * height * 4);
    for (long row = 0; row < height; ++row) {
        const long frameY = std::min<long>(frame.height - 1, static_cast<long>(row / yScale));
        for (long column = 0; column < width; ++column) {
            const long frameX = std::min<long>(frame.width - 1, static_cast<long>(column / xScale));
            std::memcpy(&out[(static_cast<size_t>(row) * width + column) * 4],
                        frame.framePixel(static_cast<int>(frameX), static_cast<int>(frameY)), 4);
        }
    }
    return out;
}

}  // namespace

float Viewer::zoomArgument() const { return scale_ >= 1.0f ? scale_ : -1.0f / scale_; }

bool Viewer::available(std::string* error) {
    const OsMesa& m = osMesa();
    if (!m.ok) return fail(error, m.error);
    return true;
}

bool Viewer::render(Plugin& plugin, const SparkInfoStruct& info, ViewerImage& picture,
                    std::string* error, const ViewerImage* background) const {
    return render([&plugin](const SparkInfoStruct& at, float zoom) { plugin.overlay(at, zoom); },
                  info, picture, error, background);
}

namespace {
// Screen pixels, the picture's lower-left corner half a frame pixel below and
// left of the frame's origin: frame point (i, j) is the centre of frame pixel
// (i, j). The background, when there is one, fills the picture first.
void prepareScreen(const OsMesa& m, long w, long h, double xScale, double scale,
                   const ViewerImage* background) {
    const GlForward& gl = m.gl;
    gl.viewport(0, 0, static_cast<int>(w), static_cast<int>(h));
    gl.matrixMode(GL_PROJECTION);
    gl.loadIdentity();
    const double half = 0.5 * scale;
    gl.ortho(-0.5 * xScale, w - 0.5 * xScale, -half, h - half, -1.0, 1.0);
    gl.matrixMode(GL_MODELVIEW);
    gl.loadIdentity();
    m.clearColor(0.0f, 0.0f, 0.0f, 0.0f);
    m.clear(GL_COLOR_BUFFER_BIT);
    if (!background) return;
    const std::vector<unsigned char> rows = backgroundRows(*background, w, h, xScale, scale);
    m.pixelStorei(GL_UNPACK_ALIGNMENT, 1);
    m.windowPos2i(0, 0);
    m.drawPixels(static_cast<GLsizei>(w), static_cast<GLsizei>(h), GL_RGBA, GL_UNSIGNED_BYTE,
                 rows.data());
}

// OSMesa keeps row 0 at the bottom; the picture is top row first.
void takePicture(const std::vector<unsigned char>& buffer, long w, long h, ViewerImage& picture) {
    picture.width = static_cast<int>(w);
    picture.height = static_cast<int>(h);
    picture.rgba.assign(buffer.size(), 0);
    const size_t rowBytes = static_cast<size_t>(w) * 4;
    for (long r = 0; r < h; ++r)
        std::memcpy(&picture.rgba[r * rowBytes], &buffer[(h - 1 - r) * rowBytes], rowBytes);
}
}  // namespace

bool Viewer::render(const OverlayCall& overlay, const SparkInfoStruct& info, ViewerImage& picture,
                    std::string* error, const ViewerImage* background) const {
    const OsMesa& m = osMesa();
    if (!m.ok) return fail(error, m.error);
    if (!(scale_ > 0.0f) || !std::isfinite(scale_)) {
        return fail(error, "viewer scale must be above 0, not " + std::to_string(scale_));
    }
    const double ratio = Host::instance().viewerRatio;
    const double xScale = ratio * scale_;
    const double width = std::round(info.FrameWidth * xScale);
    const double height = std::round(info.FrameHeight * static_cast<double>(scale_));
    if (!(width >= 1 && height >= 1 && width <= kMaxPictureSide && height <= kMaxPictureSide)) {
        return fail(error, "viewer picture of " + std::to_string(static_cast<long>(width)) + "x" +
                               std::to_string(static_cast<long>(height)) +
                               " pixels is outside 1.." + std::to_string(kMaxPictureSide) +
                               " a side");
    }
    const long w = static_cast<long>(width);
    const long h = static_cast<long>(height);
    if (background &&
        (background->width != info.FrameWidth || background->height != info.FrameHeight ||
         background->rgba.size() !=
             static_cast<size_t>(background->width) * background->height * 4)) {
        return fail(error, "viewer background must be a " + std::to_string(info.FrameWidth) + "x" +
                               std::to_string(info.FrameHeight) + " RGBA picture");
    }

    std::vector<unsigned char> buffer(static_cast<size_t>(w) * h * 4);
    OSMesaContext context = m.createContextExt(OSMESA_RGBA, 0, 0, 0, nullptr);
    if (!context) return fail(error, "OSMesa could not create a context");
    ContextScope scope{m, context};
    if (!m.makeCurrent(context, buffer.data(), GL_UNSIGNED_BYTE, static_cast<GLsizei>(w),
                       static_cast<GLsizei>(h))) {
        return fail(error, "OSMesa could not make its context current");
    }
    prepareScreen(m, w, h, xScale, static_cast<double>(scale_), background);
    SparkInfoStruct at = info;
    at.FrameBufferX = 0;
    at.FrameBufferY = 0;
    setGlForward(&m.gl);
    overlay(at, zoomArgument());
    setGlForward(nullptr);
    m.finish();
    takePicture(buffer, w, h, picture);
    return true;
}

}  // namespace simhost
