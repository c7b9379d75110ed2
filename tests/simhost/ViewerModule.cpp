// A stand-in plug-in for the viewer tests. Its overlay sets the model-view
// matrix as a host binding does (origin, then the zoom, a reduction coded
// as a negative number) and draws with the host's gl* calls: a red line
// along frame row y = 10, a green line along column x = 5 and a blue square
// over frame pixel (20, 10). Its SparkInteract keeps the arguments of every
// call in exported arrays for the test to read.
#include <spark.h>

#define MODULE_EXPORT __attribute__((visibility("default")))

extern "C" {
// Resolved from the host process, as a plug-in's GL calls are.
void glBegin(unsigned int mode);
void glEnd(void);
void glVertex2f(float x, float y);
void glColor3f(float r, float g, float b);
void glLoadIdentity(void);
void glTranslatef(float x, float y, float z);
void glScalef(float x, float y, float z);
void glFlush(void);
}

namespace {
constexpr unsigned kLines = 0x0001;
constexpr unsigned kPolygon = 0x0009;
}  // namespace

extern "C" {

MODULE_EXPORT unsigned int SparkInitialise(SparkInfoStruct) { return 1; }

MODULE_EXPORT void SparkOverlay(SparkInfoStruct info, float zoom) {
    const float scale = zoom < 1.0f ? 1.0f / -zoom : zoom;
    glLoadIdentity();
    glTranslatef(static_cast<float>(info.FrameBufferX), static_cast<float>(info.FrameBufferY),
                 0.0f);
    glScalef(scale, scale, 1.0f);
    const float right = static_cast<float>(info.FrameWidth - 1);
    const float top = static_cast<float>(info.FrameHeight - 1);
    glColor3f(1.0f, 0.0f, 0.0f);
    glBegin(kLines);
    glVertex2f(0.0f, 10.0f);
    glVertex2f(right, 10.0f);
    glEnd();
    glColor3f(0.0f, 1.0f, 0.0f);
    glBegin(kLines);
    glVertex2f(5.0f, 0.0f);
    glVertex2f(5.0f, top);
    glEnd();
    glColor3f(0.0f, 0.0f, 1.0f);
    glBegin(kPolygon);
    glVertex2f(19.5f, 9.5f);
    glVertex2f(20.5f, 9.5f);
    glVertex2f(20.5f, 10.5f);
    glVertex2f(19.5f, 10.5f);
    glEnd();
    glFlush();
}

// Per call: SX, SY, pressure, VX, VY, zoom.
MODULE_EXPORT float interactCalls[16][6];
MODULE_EXPORT int interactCount = 0;

MODULE_EXPORT unsigned long* SparkInteract(SparkInfoStruct, int sx, int sy, float pressure,
                                           float vx, float vy, float zoom) {
    if (interactCount < 16) {
        float* call = interactCalls[interactCount];
        call[0] = static_cast<float>(sx);
        call[1] = static_cast<float>(sy);
        call[2] = pressure;
        call[3] = vx;
        call[4] = vy;
        call[5] = zoom;
    }
    ++interactCount;
    return nullptr;
}

}  // extern "C"
