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

using simhost::argText;

namespace {
using GLenum = unsigned int;
using GLfloat = float;
using GLdouble = double;
using GLint = int;
using GLsizei = int;
using GLushort = unsigned short;

void recordGl(const char* name, std::vector<std::string> args) {
    simhost::Host::instance().record(name, std::move(args));
}

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
    recordGl("glBegin", {argText(mode)});
    if (auto f = forwarded(&simhost::GlForward::begin)) f(mode);
}
void glEnd(void) {
    recordGl("glEnd", {});
    if (auto f = forwarded(&simhost::GlForward::end)) f();
}

void glVertex2f(GLfloat x, GLfloat y) {
    recordGl("glVertex2f", {argText(x), argText(y)});
    if (auto f = forwarded(&simhost::GlForward::vertex2f)) f(x, y);
}
void glVertex2i(GLint x, GLint y) {
    recordGl("glVertex2i", {argText(x), argText(y)});
    if (auto f = forwarded(&simhost::GlForward::vertex2i)) f(x, y);
}
void glVertex3f(GLfloat x, GLfloat y, GLfloat z) {
    recordGl("glVertex3f", {argText(x), argText(y), argText(z)});
    if (auto f = forwarded(&simhost::GlForward::vertex3f)) f(x, y, z);
}

void glColor3f(GLfloat r, GLfloat g, GLfloat b) {
    recordGl("glColor3f", {argText(r), argText(g), argText(b)});
    if (auto f = forwarded(&simhost::GlForward::color3f)) f(r, g, b);
}
void glColor4f(GLfloat r, GLfloat g, GLfloat b, GLfloat a) {
    recordGl("glColor4f", {argText(r), argText(g), argText(b), argText(a)});
    if (auto f = forwarded(&simhost::GlForward::color4f)) f(r, g, b, a);
}
void glColor3us(GLushort r, GLushort g, GLushort b) {
    recordGl("glColor3us", {argText(int{r}), argText(int{g}), argText(int{b})});
    if (auto f = forwarded(&simhost::GlForward::color3us)) f(r, g, b);
}
void glColor4us(GLushort r, GLushort g, GLushort b, GLushort a) {
    recordGl("glColor4us", {argText(int{r}), argText(int{g}), argText(int{b}), argText(int{a})});
    if (auto f = forwarded(&simhost::GlForward::color4us)) f(r, g, b, a);
}

void glLoadIdentity(void) {
    recordGl("glLoadIdentity", {});
    if (auto f = forwarded(&simhost::GlForward::loadIdentity)) f();
}
void glTranslatef(GLfloat x, GLfloat y, GLfloat z) {
    recordGl("glTranslatef", {argText(x), argText(y), argText(z)});
    if (auto f = forwarded(&simhost::GlForward::translatef)) f(x, y, z);
}
void glScalef(GLfloat x, GLfloat y, GLfloat z) {
    recordGl("glScalef", {argText(x), argText(y), argText(z)});
    if (auto f = forwarded(&simhost::GlForward::scalef)) f(x, y, z);
}
void glPushMatrix(void) {
    recordGl("glPushMatrix", {});
    if (auto f = forwarded(&simhost::GlForward::pushMatrix)) f();
}
void glPopMatrix(void) {
    recordGl("glPopMatrix", {});
    if (auto f = forwarded(&simhost::GlForward::popMatrix)) f();
}
void glMatrixMode(GLenum mode) {
    recordGl("glMatrixMode", {argText(mode)});
    if (auto f = forwarded(&simhost::GlForward::matrixMode)) f(mode);
}
void glOrtho(GLdouble left, GLdouble right, GLdouble bottom, GLdouble top, GLdouble zNear,
             GLdouble zFar) {
    recordGl("glOrtho", {argText(left), argText(right), argText(bottom), argText(top),
                         argText(zNear), argText(zFar)});
    if (auto f = forwarded(&simhost::GlForward::ortho)) f(left, right, bottom, top, zNear, zFar);
}
void glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    recordGl("glViewport", {argText(x), argText(y), argText(width), argText(height)});
    if (auto f = forwarded(&simhost::GlForward::viewport)) f(x, y, width, height);
}

void glFlush(void) {
    recordGl("glFlush", {});
    if (auto f = forwarded(&simhost::GlForward::flush)) f();
}
void glLineWidth(GLfloat width) {
    recordGl("glLineWidth", {argText(width)});
    if (auto f = forwarded(&simhost::GlForward::lineWidth)) f(width);
}
void glPointSize(GLfloat size) {
    recordGl("glPointSize", {argText(size)});
    if (auto f = forwarded(&simhost::GlForward::pointSize)) f(size);
}
void glEnable(GLenum capability) {
    recordGl("glEnable", {argText(capability)});
    if (auto f = forwarded(&simhost::GlForward::enable)) f(capability);
}
void glDisable(GLenum capability) {
    recordGl("glDisable", {argText(capability)});
    if (auto f = forwarded(&simhost::GlForward::disable)) f(capability);
}
void glBlendFunc(GLenum source, GLenum destination) {
    recordGl("glBlendFunc", {argText(source), argText(destination)});
    if (auto f = forwarded(&simhost::GlForward::blendFunc)) f(source, destination);
}
void glLineStipple(GLint factor, GLushort pattern) {
    recordGl("glLineStipple", {argText(factor), argText(int{pattern})});
    if (auto f = forwarded(&simhost::GlForward::lineStipple)) f(factor, pattern);
}
void glRasterPos2f(GLfloat x, GLfloat y) {
    recordGl("glRasterPos2f", {argText(x), argText(y)});
    if (auto f = forwarded(&simhost::GlForward::rasterPos2f)) f(x, y);
}

}  // extern "C"
