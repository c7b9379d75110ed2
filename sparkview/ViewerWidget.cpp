// The viewer: frame texture, overlay commands, pointer and keys.
#include "ViewerWidget.h"

#include <dlfcn.h>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QOpenGLFunctions_2_1>
#include <QOpenGLVersionFunctionsFactory>
#include <QWheelEvent>
#include <cmath>
#include <cstring>

namespace {
const double kWheelNotch = 120.0;  // angle delta of one wheel step
const float kPenDown = 1.0f;       // pressure while the left button is held
const float kBackground = 0.18f;   // grey around the frame

// Host viewer cursors: 1 the viewer's own, 14 dragging a handle, 20 over a handle.
Qt::CursorShape cursorFor(int kind) {
    switch (kind) {
        case 14:
            return Qt::ClosedHandCursor;
        case 20:
            return Qt::OpenHandCursor;
        default:
            return Qt::CrossCursor;
    }
}

// The library a function lives in.
std::string libraryOf(const void* function) {
    Dl_info found;
    if (!function || !dladdr(function, &found) || !found.dli_fname) return "";
    return found.dli_fname;
}

// A GL entry point of the context, refusing the simulated host's own
// recording functions (which would forward back here).
template <class F>
bool resolve(QOpenGLContext* context, const char* name, F& out, QString* missing) {
    out = reinterpret_cast<F>(context->getProcAddress(name));
    static const std::string host =
        libraryOf(reinterpret_cast<const void*>(&simhost::setGlForward));
    if (out && libraryOf(reinterpret_cast<const void*>(out)) == host) out = nullptr;
    if (!out && missing->isEmpty()) *missing = name;
    return out != nullptr;
}

QString resolveAll(QOpenGLContext* c, simhost::GlForward& g) {
    QString missing;
    resolve(c, "glBegin", g.begin, &missing);
    resolve(c, "glEnd", g.end, &missing);
    resolve(c, "glVertex2f", g.vertex2f, &missing);
    resolve(c, "glVertex2i", g.vertex2i, &missing);
    resolve(c, "glVertex3f", g.vertex3f, &missing);
    resolve(c, "glColor3f", g.color3f, &missing);
    resolve(c, "glColor4f", g.color4f, &missing);
    resolve(c, "glColor3us", g.color3us, &missing);
    resolve(c, "glColor4us", g.color4us, &missing);
    resolve(c, "glLoadIdentity", g.loadIdentity, &missing);
    resolve(c, "glTranslatef", g.translatef, &missing);
    resolve(c, "glScalef", g.scalef, &missing);
    resolve(c, "glPushMatrix", g.pushMatrix, &missing);
    resolve(c, "glPopMatrix", g.popMatrix, &missing);
    resolve(c, "glMatrixMode", g.matrixMode, &missing);
    resolve(c, "glOrtho", g.ortho, &missing);
    resolve(c, "glViewport", g.viewport, &missing);
    resolve(c, "glFlush", g.flush, &missing);
    resolve(c, "glLineWidth", g.lineWidth, &missing);
    resolve(c, "glPointSize", g.pointSize, &missing);
    resolve(c, "glEnable", g.enable, &missing);
    resolve(c, "glDisable", g.disable, &missing);
    resolve(c, "glBlendFunc", g.blendFunc, &missing);
    resolve(c, "glLineStipple", g.lineStipple, &missing);
    resolve(c, "glRasterPos2f", g.rasterPos2f, &missing);
    return missing;
}
}  // namespace

ViewerWidget::ViewerWidget(QWidget* parent) : QOpenGLWidget(parent) {
    setFormat(surfaceFormat());
    setAccessibleName("Viewer");
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setCursor(Qt::CrossCursor);
    setMinimumSize(320, 240);
}

ViewerWidget::~ViewerWidget() {
    setRealGl(nullptr);
    if (texture_ && context()) {
        makeCurrent();
        gl_->glDeleteTextures(1, &texture_);
        doneCurrent();
    }
}

QSurfaceFormat ViewerWidget::surfaceFormat() {
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setVersion(2, 1);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    return format;
}

void ViewerWidget::initializeGL() {
    QOpenGLContext* context = QOpenGLWidget::context();
    gl_ = context ? QOpenGLVersionFunctionsFactory::get<QOpenGLFunctions_2_1>(context) : nullptr;
    if (!gl_ || context->isOpenGLES()) {
        glError_ =
            "no OpenGL 2.1 with the compatibility profile (the plug-in draws in immediate "
            "mode)";
    } else {
        const QString missing = resolveAll(context, real_);
        if (!missing.isEmpty()) glError_ = "OpenGL lacks the entry point " + missing;
    }
    glReady_ = glError_.isEmpty();
    if (!glReady_) {
        emit glFailed(glError_);
        return;
    }
    setRealGl(&real_);
    gl_->glGenTextures(1, &texture_);
}

void ViewerWidget::resizeGL(int width, int height) {
    geometry_.setViewerSize(width, height);
    if (placed_) placementChanged();
}

ViewPlacement ViewerWidget::placement() const {
    ViewPlacement view;
    view.originX = geometry_.originX();
    view.originY = geometry_.originY();
    view.scale = geometry_.scale();
    view.zoomArgument = geometry_.zoomArgument();
    return view;
}

void ViewerWidget::placementChanged() {
    emit viewChanged(placement());
    update();
}

void ViewerWidget::setFrames(std::shared_ptr<const DisplayFrame> result,
                             std::shared_ptr<const DisplayFrame> input) {
    const bool resized =
        !result_ || result_->width != result->width || result_->height != result->height;
    result_ = std::move(result);
    input_ = std::move(input);
    textureStale_ = true;
    if (resized) {
        geometry_.setViewerSize(static_cast<int>(width() * devicePixelRatioF()),
                                static_cast<int>(height() * devicePixelRatioF()));
        geometry_.setFrameSize(result_->width, result_->height);
        geometry_.fit();
        placed_ = true;
        placementChanged();
    }
    update();
}

void ViewerWidget::setOverlay(std::shared_ptr<const GlCommands> commands,
                              const ViewPlacement& view) {
    overlay_ = std::move(commands);
    overlayView_ = view;
    update();
}

void ViewerWidget::setHostCursor(int kind) { setCursor(cursorFor(kind)); }

void ViewerWidget::fit() {
    geometry_.fit();
    placementChanged();
}

void ViewerWidget::oneToOne() {
    geometry_.oneToOne();
    placementChanged();
}

void ViewerWidget::toggleInput() {
    showInput_ = !showInput_;
    textureStale_ = true;
    emit shownChanged(showInput_);
    update();
}

void ViewerWidget::uploadFrame() {
    const DisplayFrame* shown = showInput_ && input_ ? input_.get() : result_.get();
    if (!shown || shown->empty()) return;
    gl_->glBindTexture(GL_TEXTURE_2D, texture_);
    gl_->glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    // Rows bottom first, as a texture's t runs up.
    gl_->glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, shown->width, shown->height, 0, GL_RGB,
                      GL_UNSIGNED_BYTE, shown->rgb.data());
    textureStale_ = false;
}

void ViewerWidget::drawFrame() {
    if (!result_) return;
    if (textureStale_) uploadFrame();
    const double s = geometry_.scale();
    // Frame pixel (i, j) covers origin + (i - 0.5 .. i + 0.5) * scale.
    const double left = geometry_.originX() - 0.5 * s;
    const double bottom = geometry_.originY() - 0.5 * s;
    const double right = left + result_->width * s;
    const double top = bottom + result_->height * s;
    const GLint filter = s >= 1.0 ? GL_NEAREST : GL_LINEAR;
    gl_->glBindTexture(GL_TEXTURE_2D, texture_);
    gl_->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    gl_->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    gl_->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl_->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    gl_->glEnable(GL_TEXTURE_2D);
    gl_->glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    gl_->glBegin(GL_QUADS);
    gl_->glTexCoord2f(0.0f, 0.0f);
    gl_->glVertex2d(left, bottom);
    gl_->glTexCoord2f(1.0f, 0.0f);
    gl_->glVertex2d(right, bottom);
    gl_->glTexCoord2f(1.0f, 1.0f);
    gl_->glVertex2d(right, top);
    gl_->glTexCoord2f(0.0f, 1.0f);
    gl_->glVertex2d(left, top);
    gl_->glEnd();
    gl_->glDisable(GL_TEXTURE_2D);
}

void ViewerWidget::drawOverlay() {
    if (!overlay_ || overlay_->empty()) return;
    // Commands drawn for another placement: move and scale them to this one.
    const ViewPlacement now = placement();
    const double k = now.scale / overlayView_.scale;
    gl_->glMatrixMode(GL_PROJECTION);
    gl_->glPushMatrix();
    gl_->glTranslated(now.originX, now.originY, 0.0);
    gl_->glScaled(k, k, 1.0);
    gl_->glTranslated(-overlayView_.originX, -overlayView_.originY, 0.0);
    gl_->glMatrixMode(GL_MODELVIEW);
    gl_->glPushMatrix();
    replayCommands(*overlay_, real_);
    gl_->glMatrixMode(GL_MODELVIEW);
    gl_->glPopMatrix();
    gl_->glMatrixMode(GL_PROJECTION);
    gl_->glPopMatrix();
    gl_->glMatrixMode(GL_MODELVIEW);
}

void ViewerWidget::paintGL() {
    if (!glReady_) return;
    const int w = static_cast<int>(width() * devicePixelRatioF());
    const int h = static_cast<int>(height() * devicePixelRatioF());
    gl_->glViewport(0, 0, w, h);
    gl_->glClearColor(kBackground, kBackground, kBackground, 1.0f);
    gl_->glClear(GL_COLOR_BUFFER_BIT);
    // Screen pixels from the lower left, integers at pixel centres.
    gl_->glMatrixMode(GL_PROJECTION);
    gl_->glLoadIdentity();
    gl_->glOrtho(-0.5, w - 0.5, -0.5, h - 0.5, -1.0, 1.0);
    gl_->glMatrixMode(GL_MODELVIEW);
    gl_->glLoadIdentity();
    drawFrame();
    drawOverlay();
}

ScreenPoint ViewerWidget::screenOf(const QPointF& position) const {
    const double ratio = devicePixelRatioF();
    const double deviceHeight = std::floor(height() * ratio);
    // Qt's rows run down from the top; the viewer's screen pixels up from the bottom.
    return {std::floor(position.x() * ratio),
            deviceHeight - 1.0 - std::floor(position.y() * ratio)};
}

void ViewerWidget::sendPointer(SessionWorker::PointerEvent event, const QPointF& position,
                               float pressure) {
    if (!result_) return;
    const ScreenPoint screen = screenOf(position);
    const ScreenPoint frame = geometry_.frameFromScreen(screen);
    emit pointerEvent(event, placement(), static_cast<int>(screen.x), static_cast<int>(screen.y),
                      static_cast<float>(frame.x), static_cast<float>(frame.y), pressure);
}

bool ViewerWidget::event(QEvent* event) {
    // Tab switches the view here instead of moving the focus.
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Tab && key->modifiers() == Qt::NoModifier) {
            toggleInput();
            return true;
        }
    }
    return QOpenGLWidget::event(event);
}

void ViewerWidget::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_F:
            fit();
            break;
        case Qt::Key_1:
            oneToOne();
            break;
        case Qt::Key_Left:
            emit stepFrame(-1);
            break;
        case Qt::Key_Right:
            emit stepFrame(1);
            break;
        default:
            QOpenGLWidget::keyPressEvent(event);
    }
}

void ViewerWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton) {
        panning_ = true;
        panFrom_ = event->position();
    } else if (event->button() == Qt::LeftButton) {
        penDown_ = true;
        sendPointer(SessionWorker::PointerEvent::Press, event->position(), kPenDown);
    }
}

void ViewerWidget::mouseMoveEvent(QMouseEvent* event) {
    if (panning_) {
        const double ratio = devicePixelRatioF();
        const QPointF moved = (event->position() - panFrom_) * ratio;
        const int dx = static_cast<int>(std::lround(moved.x()));
        const int dy = static_cast<int>(std::lround(moved.y()));
        if (dx || dy) {
            panFrom_ += QPointF(dx, dy) / ratio;
            geometry_.pan(dx, -dy);
            placementChanged();
        }
    }
    if (penDown_)
        sendPointer(SessionWorker::PointerEvent::Drag, event->position(), kPenDown);
    else if (!panning_)
        sendPointer(SessionWorker::PointerEvent::Move, event->position(), 0.0f);
}

void ViewerWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton) {
        panning_ = false;
    } else if (event->button() == Qt::LeftButton && penDown_) {
        penDown_ = false;
        sendPointer(SessionWorker::PointerEvent::Release, event->position(), 0.0f);
    }
}

void ViewerWidget::wheelEvent(QWheelEvent* event) {
    const double notches = event->angleDelta().y() / kWheelNotch;
    if (notches == 0.0 || !result_) return;
    geometry_.zoomAbout(screenOf(event->position()), std::pow(ViewerGeometry::kWheelStep, notches));
    placementChanged();
}
