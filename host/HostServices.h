// Fills the framework's host service (ZelHost) with the host's own functions.
// Done when the plug-in is loaded and again at start-up; calling it twice is
// harmless.
#pragma once

void installHostServices();
