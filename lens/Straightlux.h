// Straightlux: the lens-correction plug-in object. This is the pass-through
// stage of the plug-in: the output frame is the input frame unchanged, so the
// host binding can be run end to end before the lens model is in place.
#pragma once

#include "PluginZel.h"

class Straightlux : public PluginZel {
public:
    void ProcessFrame() override;
};
