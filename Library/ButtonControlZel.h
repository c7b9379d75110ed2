// ButtonControlZel: a push button. It has no value; the plug-in's callback for
// it runs from the host binding. Bound to the button's SparkPushStruct.
#pragma once

#include "ControlZel.h"

class ButtonControlZel : public ControlZel {
  public:
    ButtonControlZel() = default;

    void Disable(bool disabled) override;
    void Hide(bool hidden) override;

    using ControlZel::Bind;
    void Bind(int number, SparkPushStruct* record) { ControlZel::Bind(number, record); }
};
