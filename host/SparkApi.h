// The one header through which the host binding sees the host: the host's C
// interface (records, control records, imported functions; ours in sparkapi/,
// or the host's own header when the build points at it) and the OpenGL 1.x
// calls of the viewer overlay, which resolve from the host process too.
// Nothing outside host/ includes this.
#pragma once

#include <spark.h>

extern "C" {
void glBegin(unsigned int mode);
void glEnd(void);
void glVertex2f(float x, float y);
void glColor3f(float red, float green, float blue);
void glLoadIdentity(void);
void glTranslatef(float x, float y, float z);
void glScalef(float x, float y, float z);
void glFlush(void);
}
