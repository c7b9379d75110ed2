// ButtonControlZel: a push button. It has no value; the plug-in's callback for
// it runs from the host binding. Bound by its control number only.
#pragma once

#include "ControlZel.h"

class ButtonControlZel : public ControlZel {
  public:
    ButtonControlZel() = default;

    void bind(int number) { bindNumber(number); }

  private:
    // A button cannot be greyed out; the field is only refreshed.
    void greyOut(bool) override { updateField(number_); }
};
