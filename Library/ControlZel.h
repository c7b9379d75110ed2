// ControlZel: the base of the plug-in's typed controls. A control is the
// plug-in's view of one (or a few) fields on the host's setup page: it holds
// the host's control number and pointers into the host's records, caches the
// value in the plug-in's units, writes new values back and shows, hides and
// greys out the field. Plug-in units: fractions of the frame for positions and
// sizes (the host shows percentages), 15-bit colour channels (0..32767),
// degrees, 1-based list items (the host counts from 0). A time below 0.0 asks
// for the cached value; 0.0 or more (or NaN) reads the host's animation curve.
//
// The records belong to the host interface; a control never frees them and
// reports no errors. An unbound control (null record) ignores value calls.
#pragma once

#include <spark.h>

#include "ControlAuxRecords.h"

// Bytes of a host text field's buffer, terminator included.
constexpr int kZelTextCapacity = sizeof(SparkStringStruct::Value);

class ControlZel {
  public:
    ControlZel() = default;
    ControlZel(const ControlZel&) = delete;
    ControlZel& operator=(const ControlZel&) = delete;

    virtual void Sync() {}
    virtual void Disable(bool disabled);
    virtual void Hide(bool hidden);
    virtual void ResetKeyframes() {}
    virtual void EnableKeyframes() {}

    // Raw binding done once at start-up: the host control number and the
    // kind's records (see each kind's typed Bind for what they are). Leaves
    // spareFlag at 0 and continueToDefault at 1.
    void Bind(int number, void* primary, void* second = nullptr, void* third = nullptr);

    int Number() const { return number_; }
    bool IsDisabled() const { return disabled_; }
    bool IsHidden() const { return hidden_; }

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

    static bool UsesCache(double time) { return time < 0.0; }
    static float CurveValue(int number, double time);
    static void UpdateField(int number);
    static void ShowField(int number, bool hidden);

    // Shared by the kinds whose primary is one float record and whose second
    // is its saved range (Float, Angle, Size).
    void BindFloatField(int number, SparkFloatStruct* record, ZelAuxFloatRange* saved);
    void DisableFloatField(bool disabled);

    // Text copy into a host text buffer (Text, File), cut to the buffer's size.
    static void CopyText(char* destination, const char* source);

    int number_ = 0;
    void* primary_ = nullptr;
    void* second_ = nullptr;
    void* third_ = nullptr;
    float* channelFields_[3] = {nullptr, nullptr, nullptr};  // Colour: red, green, blue
    bool disabled_ = false;
    bool hidden_ = false;
};
