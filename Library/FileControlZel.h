// FileControlZel: a file name picked through a browse button. The button is
// the control's number; the name's text field (whose buffer this control reads
// and writes) is always at number + 7. Reading the name strips every
// white-space character out of the host's buffer itself.
#pragma once

#include "ControlZel.h"

// Fixed distance from the browse button to its text field.
constexpr int kZelFileTextFieldOffset = 7;

class FileControlZel : public ControlZel {
  public:
    FileControlZel() = default;

    void Sync() override;

    // number is the button's; field is the text field at number + 7.
    void bind(int number, ZelTextField field);

    // Copies text into the host buffer (unless it is that buffer); time ignored.
    void SetValue(double time, char* text);
    // Compacts the host's buffer in place and hands it out as the cache.
    void GetValue(double time, char*& out);

    char* value = nullptr;

  private:
    // The button is refreshed; the text field keeps its state.
    void greyOut(bool) override { updateField(number_); }
    void showFields(bool hidden) override;

    ZelTextField field_;
};
