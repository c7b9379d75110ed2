// OpenGL 1.x immediate-mode calls, recorded and, under a viewer, drawn.
//
// A plug-in's overlay drawing resolves these from the host process, which
// owns the GL context; here each call lands in the recorded call list with
// its arguments, so tests can read back what was drawn. While a viewer
// context is current (Viewer.h) the call is also passed on to the real GL
// of that context (GlForward.h). Enumerants print as decimal numbers.
#include <atomic>

#include "CallText.h"
#include "GlForward.h"
#include "SimHost.h"

namespace {
using GLenum = unsigned int;
using GLfloat = float;
using GLdouble = double;
using GLint = int;
using GLsizei = int;
using GLushort = unsigned short;

std::atomic<const simhost::GlForward*> forwardTable{nullptr};

// The real entry point `member` of the current viewer context, or null.
template <class F>
F forwarded(F simhost::GlForward::*member) {
    const simhost::GlForward* table = forwardTable.load();
    return table ? table->*member : nullptr;
}
}  // namespace

const simhost::GlForward* simhost::glForward() { return forwardTable.load(); }
void simhost::setGlForward(const GlForward* table) { forwardTable.store(table); }

extern "C" {

void glBegin(GLenum mode) {
    simhost::note("glBegin", mode);
    if (auto f = forwarded(&simhost::GlForward::begin)) f(mode);
}
void glEnd(void) {
    simhost::note("glEnd");
    if (auto f = forwarded(&simhost::GlForward::end)) f();
}

void glVertex2f(GLfloat x, GLfloat y) {
    simhost::note("glVertex2f", x, y);
    if (auto f = forwarded(&simhost::GlForward::vertex2f)) f(x, y);
}
void glVertex2i(GLint x, GLint y) {
    simhost::note("glVertex2i", x, y);
    if (auto f = forwarded(&simhost::GlForward::vertex2i)) f(x, y);
}
void glVertex3f(GLfloat x, GLfloat y, GLfloat z) {
    simhost::note("glVertex3f", x, y, z);
    if (auto f = forwarded(&simhost::GlForward::vertex3f)) f(x, y, z);
}

void glColor3f(GLfloat r, GLfloat g, GLfloat b) {
    simhost::note("glColor3f", r, g, b);
    if (auto f = forwarded(&simhost::GlForward::color3f)) f(r, g, b);
}
void glColor4f(GLfloat r, GLfloat g, GLfloat b, GLfloat a) {
    simhost::note("glColor4f", r, g, b, a);
    if (auto f = forwarded(&simhost::GlForward::color4f)) f(r, g, b, a);
}
void glColor3us(GLushort r, GLushort g, GLushort b) {
    simhost::note("glColor3us", int{r}, int{g}, int{b});
    if (auto f = forwarded(&simhost::GlForward::color3us)) f(r, g, b);
}
void glColor4us(GLushort r, GLushort g, GLushort b, GLushort a) {
    simhost::note("glColor4us", int{r}, int{g}, int{b}, int{a});
    if (auto f = forwarded(&simhost::GlForward::color4us)) f(r, g, b, a);
}

void glLoadIdentity(void) {
    simhost::note("glLoadIdentity");
    if (auto f = forwarded(&simhost::GlForward::loadIdentity)) f();
}
void glTranslatef(GLfloat x, GLfloat y, GLfloat z) {
    simhost::note("glTranslatef", x, y, z);
    if (auto f = forwarded(&simhost::GlForward::translatef)) f(x, y, z);
}
void glScalef(GLfloat x, GLfloat y, GLfloat z) {
    simhost::note("glScalef", x, y, z);
    if (auto f = forwarded(&simhost::GlForward::scalef)) f(x, y, z);
}
void glPushMatrix(void) {
    simhost::note("glPushMatrix");
    if (auto f = forwarded(&simhost::GlForward::pushMatrix)) f();
}
void glPopMatrix(void) {
    simhost::note("glPopMatrix");
    if (auto f = forwarded(&simhost::GlForward::popMatrix)) f();
}
void glMatrixMode(GLenum mode) {
    simhost::note("glMatrixMode", mode);
    if (auto f = forwarded(&simhost::GlForward::matrixMode)) f(mode);
}
void glOrtho(GLdouble left, GLdouble right, GLdouble bottom, GLdouble top, GLdouble zNear,
             GLdouble zFar) {
    simhost::note("glOrtho", left, right, bottom, top, zNear, zFar);
    if (auto f = forwarded(&simhost::GlForward::ortho)) f(left, right, bottom, top, zNear, zFar);
}
void glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    simhost::note("glViewport", x, y, width, height);
    if (auto f = forwarded(&simhost::GlForward::viewport)) f(x, y, width, height);
}

void glFlush(void) {
    simhost::note("glFlush");
    if (auto f = forwarded(&simhost::GlForward::flush)) f();
}
void glLineWidth(GLfloat width) {
    simhost::note("glLineWidth", width);
    if (auto f = forwarded(&simhost::GlForward::lineWidth)) f(width);
}
void glPointSize(GLfloat size) {
    simhost::note("glPointSize", size);
    if (auto f = forwarded(&simhost::GlForward::pointSize)) f(size);
}
void glEnable(GLenum capability) {
    simhost::note("glEnable", capability);
    if (auto f = forwarded(&simhost::GlForward::enable)) f(capability);
}
void glDisable(GLenum capability) {
    simhost::note("glDisable", capability);
    if (auto f = forwarded(&simhost::GlForward::disable)) f(capability);
}
void glBlendFunc(GLenum source, GLenum destination) {
    simhost::note("glBlendFunc", source, destination);
    if (auto f = forwarded(&simhost::GlForward::blendFunc)) f(source, destination);
}
void glLineStipple(GLint factor, GLushort pattern) {
    simhost::note("glLineStipple", factor, int{pattern});
    if (auto f = forwarded(&simhost::GlForward::lineStipple)) f(factor, pattern);
}
void glRasterPos2f(GLfloat x, GLfloat y) {
    simhost::note("glRasterPos2f", x, y);
    if (auto f = forwarded(&simhost::GlForward::rasterPos2f)) f(x, y);
}

}  // extern "C"
