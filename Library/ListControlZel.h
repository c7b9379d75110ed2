// ListControlZel: a pop-up menu. The plug-in counts items from 1, the host's
// menu record from 0. A ZelAuxList keeps the menu's entry count while the
// menu is greyed out (shrunk to one entry).
#pragma once

#include <cstdint>

#include "ControlZel.h"

class ListControlZel : public ControlZel {
  public:
    ListControlZel() = default;

    void Sync() override;

    // Binds and saves the menu's current entry count into saved.
    void bind(int number, ZelListField field, ZelAuxList* saved);

    // Writes the host index (item - 1) straight away; the time is ignored.
    void SetValue(double time, long item);
    // Reads the host index as an item number, which also becomes the cache.
    void GetValue(double time, long& item);
    void setCached(long item) { value = static_cast<int32_t>(item); }

    int32_t value = 1;  // 1-based item, as of the last Sync

  private:
    void greyOut(bool disabled) override;

    ZelListField field_;
    ZelAuxList* saved_ = nullptr;
};
