// Straightlux: the lens-correction plug-in object (one per loaded library, the
// host binding's Instance). This is still the pass-through stage: the output
// frame is the input frame unchanged; the lens model, address map and fit are
// being put in place behind the same interface.
#pragma once

#include "PluginZel.h"
#include "StraightluxInfo.h"

class ControlZel;

class Straightlux : public PluginZel {
public:
    void ProcessFrame() override;
    // The host binding syncs the controls itself; nothing to push back.
    void SyncControls() override {}

    // Control callbacks, called by the host binding with the control and the frame.
    void ResetCB(ControlZel& control, double frame);
    void AutoCB(ControlZel& control, double frame);
    void KillLinesCB(ControlZel& control, double frame);
    void LineEditCB(ControlZel& control, double frame);

    StraightluxInfo info;
};
