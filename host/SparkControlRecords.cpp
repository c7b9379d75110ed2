#include "SparkControlRecords.h"

#include "AmplitudeImport.h"
#include "ControlCallbacks.h"
#include "HelpTopic.h"
#include "SparkText.h"

namespace {

constexpr unsigned int kNoFlags = 0;

// Each record from its description; constant-initialised, so the host finds
// the records filled in as soon as the library is loaded.
template <class Record>
constexpr Record makeRecord(const ControlDescriptor& c, SparkCallbackFunc callback);

template <>
constexpr SparkFloatStruct makeRecord(const ControlDescriptor& c, SparkCallbackFunc callback) {
    return SparkFloatStruct{c.defaultValue,     c.min,   c.max, c.increment, kNoFlags,
                            sparkText(c.title), callback};
}

template <>
constexpr SparkUserFloatStruct makeRecord(const ControlDescriptor& c, SparkCallbackFunc callback) {
    return SparkUserFloatStruct{c.defaultValue,     c.min,    c.max, c.increment, kNoFlags,
                                sparkText(c.title), callback, 0};
}

template <>
constexpr SparkPupStruct makeRecord(const ControlDescriptor& c, SparkCallbackFunc callback) {
    SparkPupStruct record{c.defaultIndex, c.entryCount, callback, {}};
    for (int i = 0; i < c.entryCount; ++i) record.Titles[i] = sparkText(c.entries[i]);
    return record;
}

template <>
constexpr SparkPushStruct makeRecord(const ControlDescriptor& c, SparkCallbackFunc callback) {
    return SparkPushStruct{sparkText(c.title), callback};
}

template <>
constexpr SparkBooleanStruct makeRecord(const ControlDescriptor& c, SparkCallbackFunc callback) {
    return SparkBooleanStruct{static_cast<char>(c.defaultValue), sparkText(c.title), callback};
}

}  // namespace

// Centre X and Y share dlcb_13, deliberately: both fields are one position.
// The amplitude channel has no callback.
extern "C" {
#define STRAIGHTLUX_RECORD(Name, Kind, N, callback) \
    Spark##Kind##Struct Spark##Kind##N =            \
        makeRecord<Spark##Kind##Struct>(k##Name##Control, callback);
#include "StraightluxControls.def"
}  // extern "C"
