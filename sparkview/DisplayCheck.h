// DisplayCheck: whether a window can open, asked before one is made, so that
// a missing display or OpenGL is one line and exit 9 instead of an abort.
//
// checkDisplay() runs before the application object: the X display named by
// DISPLAY must answer (unless QT_QPA_PLATFORM names a platform that needs
// none). checkOpenGl() runs after it: a context of the viewer's format
// (OpenGL 2.1, compatibility profile) must be made current, and the gl*
// calls a plug-in resolves from this process must be the simulated host's.
#pragma once

#include "RunStatus.h"

RunStatus checkDisplay();
RunStatus checkOpenGl();
