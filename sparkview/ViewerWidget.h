// ViewerWidget: the host's viewer. Shows the frame (the plug-in's result or
// its input) and draws the plug-in's overlay over it with real OpenGL, in a
// context of the compatibility profile so that the plug-in's immediate-mode
// drawing works; turns the pointer into the host's viewer events.
//
// Placement and units are ViewerGeometry's (screen pixels from the lower
// left, frame units y up). The overlay arrives as commands drawn by the
// plug-in for one placement (SessionWorker); until the commands for the
// current placement arrive, the last ones are drawn moved and scaled to it.
//
// Mouse: the left button is the pen (press, drag, release; moves without a
// button are sent too, so that highlights and the pen cursor follow); the
// middle button pans; the wheel zooms about the pointer. Keys: F fit,
// 1 one-to-one, Tab input/result, Left and Right the previous and next
// frame (the viewer keeps Tab; Shift+Tab leaves it).
#pragma once

#include <GlForward.h>

#include <QOpenGLWidget>
#include <memory>

#include "DisplayFrame.h"
#include "OverlayCapture.h"
#include "SessionWorker.h"
#include "ViewerGeometry.h"

class QOpenGLFunctions_2_1;

class ViewerWidget : public QOpenGLWidget {
    Q_OBJECT
  public:
    explicit ViewerWidget(QWidget* parent = nullptr);
    ~ViewerWidget() override;

    // The surface format every viewer asks for: OpenGL 2.1, compatibility profile.
    static QSurfaceFormat surfaceFormat();

    void setFrames(std::shared_ptr<const DisplayFrame> result,
                   std::shared_ptr<const DisplayFrame> input);
    void setOverlay(std::shared_ptr<const GlCommands> commands, const ViewPlacement& view);
    void setHostCursor(int kind);
    void fit();
    void oneToOne();
    void toggleInput();
    bool showingInput() const { return showInput_; }
    const ViewerGeometry& geometry() const { return geometry_; }
    ViewPlacement placement() const;
    // Whether the GL context is usable; the message says why not.
    bool glReady() const { return glReady_; }
    QString glError() const { return glError_; }

  signals:
    void pointerEvent(SessionWorker::PointerEvent event, ViewPlacement view, int sx, int sy,
                      float x, float y, float pressure);
    void viewChanged(ViewPlacement view);
    void stepFrame(int by);
    void shownChanged(bool input);
    void glFailed(QString why);

  protected:
    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    ScreenPoint screenOf(const QPointF& position) const;
    void sendPointer(SessionWorker::PointerEvent event, const QPointF& position, float pressure);
    void placementChanged();
    void uploadFrame();
    void drawFrame();
    void drawOverlay();

    ViewerGeometry geometry_;
    bool placed_ = false;  // fitted once a frame arrived
    std::shared_ptr<const DisplayFrame> result_;
    std::shared_ptr<const DisplayFrame> input_;
    bool showInput_ = false;
    bool textureStale_ = false;
    unsigned texture_ = 0;
    std::shared_ptr<const GlCommands> overlay_;
    ViewPlacement overlayView_;
    QOpenGLFunctions_2_1* gl_ = nullptr;
    simhost::GlForward real_;
    bool glReady_ = false;
    QString glError_;
    bool penDown_ = false;
    bool panning_ = false;
    QPointF panFrom_;
};
