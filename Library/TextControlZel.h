// TextControlZel: a text field, read and written through its host buffer. The
// cached text pointer is set only by GetValue (it then points at the host's
// buffer); Sync copies into it once it is set.
#pragma once

#include "ControlZel.h"

class TextControlZel : public ControlZel {
  public:
    TextControlZel() = default;

    void Sync() override;
    // Disable only stores the flag: there is nothing to grey out.

    void bind(int number, ZelTextField field);

    // Copies text into the host buffer (unless it is that buffer); time ignored.
    void SetValue(double time, char* text);
    // Hands out the host's buffer, which also becomes the cache.
    void GetValue(double time, char*& out);

    char* value = nullptr;

  private:
    ZelTextField field_;
};
