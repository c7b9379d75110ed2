// TEMPORARY: the control callbacks do nothing until the lens core is in place.
#include "Straightlux.h"

void Straightlux::ResetCB(ControlZel&, double) {}
void Straightlux::AutoCB(ControlZel&, double) {}
void Straightlux::KillLinesCB(ControlZel&, double) {}
void Straightlux::LineEditCB(ControlZel&, double) {}
