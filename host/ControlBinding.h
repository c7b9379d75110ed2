// The link between the plug-in's control objects and the host's control
// records. BindControls runs once at start-up; CopyHostValuesToControls runs
// before every frame and puts the host values into the controls' cached
// values in plug-in units (fractions for positions, 1-based list items).
#pragma once

void BindControls();
void CopyHostValuesToControls();
