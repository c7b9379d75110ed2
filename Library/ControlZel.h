// ControlZel: the base of the plug-in's typed controls. A control is the
// plug-in's view of one (or a few) fields on the host's setup page: it holds
// the host's control number and views of the host's field records (see
// ControlFields.h), caches the value in the plug-in's units, writes new values
// back and shows, hides and greys out the field. Plug-in units: fractions of
// the frame for positions and sizes (the host shows percentages), 15-bit
// colour channels (0..32767), degrees, 1-based list items (the host counts
// from 0). A time below 0.0 asks for the cached value; 0.0 or more (or NaN)
// reads the host's animation curve. Host calls go through ZelHost.
//
// The records belong to the host; a control never frees them and reports no
// errors. An unbound control (null view) ignores value calls.
#pragma once

#include "ControlAuxRecords.h"
#include "ControlFields.h"

class ControlZel {
  public:
    ControlZel() = default;
    ControlZel(const ControlZel&) = delete;
    ControlZel& operator=(const ControlZel&) = delete;

    virtual void Sync() {}
    // Greys the field(s) out or back in. When the state does not change
    // nothing happens (no host call); otherwise the kind greys its fields
    // (greyOut) and then the flag is stored.
    virtual void Disable(bool disabled);
    // Stores the flag, always, then shows or hides the kind's fields.
    virtual void Hide(bool hidden);
    virtual void ResetKeyframes() {}
    virtual void EnableKeyframes() {}

    int number() const { return number_; }
    bool isDisabled() const { return disabled_; }
    bool isHidden() const { return hidden_; }

    // Cleared at binding; nothing in the framework reads it.
    unsigned char spareFlag = 0;
    // Set at binding: a control callback continues to the host's default
    // handling (viewer redraw or re-render) only while this is set.
    unsigned char continueToDefault = 0;
    // Set by every constructor; no control operation changes it.
    bool enabledByDefault = true;

  protected:
    // Controls are members of the plug-in object, never deleted through the base.
    ~ControlZel() = default;

    // What every kind's bind does first: the number, and the two flags.
    void bindNumber(int number);

    static bool usesCache(double time) { return time < 0.0; }
    static float curveValue(int number, double time);
    static void updateField(int number);
    static void showField(int number, bool hidden);

    // What greying out does to the kind's fields, host updates included;
    // called by Disable on a change only. The base has nothing to grey.
    virtual void greyOut(bool disabled) { (void)disabled; }
    // Shows or hides the kind's fields on the host: by default the control's
    // own field; kinds with more fields override it.
    virtual void showFields(bool hidden) { showField(number_, hidden); }

    // Greys a float field out by collapsing its range onto its value, and
    // brings back the saved range (Float, Angle, Size); updates the field.
    void greyFloatField(bool disabled, const ZelFloatField& field, const ZelAuxFloatRange* saved);
    static void saveRange(const ZelFloatField& field, ZelAuxFloatRange* saved);

    // Text copy into a host text buffer (Text, File), cut to the buffer's size.
    static void copyText(const ZelTextField& destination, const char* source);

    int number_ = 0;
    bool disabled_ = false;
    bool hidden_ = false;
};
