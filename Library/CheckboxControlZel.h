// CheckboxControlZel: an on/off field, read and written through the value byte
// of its host record. It may own an exclusion group: check boxes that are
// switched off (not re-synced) when this one is set to exactly 1.
#pragma once

#include <cstdint>

#include "ControlZel.h"

class CheckboxControlZel : public ControlZel {
  public:
    CheckboxControlZel() = default;

    void Sync() override;
    void Disable(bool disabled) override;

    // Binds to the record's value byte; group may be null.
    void bind(int number, char* valueByte, ZelExclusionGroup* group = nullptr);

    // Writes the host byte straight away; the time is ignored.
    void SetValue(double time, long newValue);
    void GetValue(double time, long& out) const;  // the cached value, 0 or 1
    void setCached(bool on) { value = on; }

    // The host byte as it stood at the last Disable call, widened.
    int32_t savedByDisable() const { return savedByDisable_; }

    bool value = false;  // as of the last Sync

  private:
    // A check box cannot be greyed out; the field is only refreshed.
    void greyOut(bool) override { updateField(number_); }

    char* valueByte_ = nullptr;
    ZelExclusionGroup* group_ = nullptr;
    int32_t savedByDisable_ = 0;
};
