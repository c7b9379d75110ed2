#include "ControlBinding.h"

// The controls are bound here, in host control order (6, 7, 8, 9, 13, 16, 17,
// 18, 20, 21, 22, 23, 24, 27): number, host record, auxiliary record.
// Nothing to bind until the plug-in's control objects and records exist.
void BindControls() {}

// Host values are copied into the controls here: floats 6, 7, 8, 9, 16, 18 as
// they stand, the centre as percent / 100, lists 17, 20, 23, 24 as index + 1.
// Nothing to copy until the plug-in's control objects and records exist.
void CopyHostValuesToControls() {}
