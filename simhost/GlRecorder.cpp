// OpenGL 1.x immediate-mode calls, recorded instead of drawn.
//
// A plug-in's overlay drawing resolves these from the host process, which
// owns the GL context; here each call lands in the recorded call list with
// its arguments, so tests can read back what was drawn. No GL library is
// involved. Enumerants print as decimal numbers.
#include "CallText.h"
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
}  // namespace

extern "C" {

void glBegin(GLenum mode) { recordGl("glBegin", {argText(mode)}); }
void glEnd(void) { recordGl("glEnd", {}); }

void glVertex2f(GLfloat x, GLfloat y) { recordGl("glVertex2f", {argText(x), argText(y)}); }
void glVertex2i(GLint x, GLint y) { recordGl("glVertex2i", {argText(x), argText(y)}); }
void glVertex3f(GLfloat x, GLfloat y, GLfloat z) {
    recordGl("glVertex3f", {argText(x), argText(y), argText(z)});
}

void glColor3f(GLfloat r, GLfloat g, GLfloat b) {
    recordGl("glColor3f", {argText(r), argText(g), argText(b)});
}
void glColor4f(GLfloat r, GLfloat g, GLfloat b, GLfloat a) {
    recordGl("glColor4f", {argText(r), argText(g), argText(b), argText(a)});
}
void glColor3us(GLushort r, GLushort g, GLushort b) {
    recordGl("glColor3us", {argText(int{r}), argText(int{g}), argText(int{b})});
}
void glColor4us(GLushort r, GLushort g, GLushort b, GLushort a) {
    recordGl("glColor4us", {argText(int{r}), argText(int{g}), argText(int{b}), argText(int{a})});
}

void glLoadIdentity(void) { recordGl("glLoadIdentity", {}); }
void glTranslatef(GLfloat x, GLfloat y, GLfloat z) {
    recordGl("glTranslatef", {argText(x), argText(y), argText(z)});
}
void glScalef(GLfloat x, GLfloat y, GLfloat z) {
    recordGl("glScalef", {argText(x), argText(y), argText(z)});
}
void glPushMatrix(void) { recordGl("glPushMatrix", {}); }
void glPopMatrix(void) { recordGl("glPopMatrix", {}); }
void glMatrixMode(GLenum mode) { recordGl("glMatrixMode", {argText(mode)}); }
void glOrtho(GLdouble left, GLdouble right, GLdouble bottom, GLdouble top, GLdouble zNear,
             GLdouble zFar) {
    recordGl("glOrtho", {argText(left), argText(right), argText(bottom), argText(top),
                         argText(zNear), argText(zFar)});
}
void glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    recordGl("glViewport", {argText(x), argText(y), argText(width), argText(height)});
}

void glFlush(void) { recordGl("glFlush", {}); }
void glLineWidth(GLfloat width) { recordGl("glLineWidth", {argText(width)}); }
void glPointSize(GLfloat size) { recordGl("glPointSize", {argText(size)}); }
void glEnable(GLenum capability) { recordGl("glEnable", {argText(capability)}); }
void glDisable(GLenum capability) { recordGl("glDisable", {argText(capability)}); }
void glBlendFunc(GLenum source, GLenum destination) {
    recordGl("glBlendFunc", {argText(source), argText(destination)});
}
void glLineStipple(GLint factor, GLushort pattern) {
    recordGl("glLineStipple", {argText(factor), argText(int{pattern})});
}
void glRasterPos2f(GLfloat x, GLfloat y) { recordGl("glRasterPos2f", {argText(x), argText(y)}); }

}  // extern "C"
