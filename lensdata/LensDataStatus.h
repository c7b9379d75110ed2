// The outcome of a lens-data operation: ok, or a failure kind with a message
// for the user. Nothing in lensdata/ prints or exits; the caller maps the
// kind to its exit code (the comments say which kind of code each is).
#pragma once

#include <string>
#include <utility>

enum class LensDataFailure {
    kNone,
    kBadValue,          // usage: a value outside its control's range, not finite, or a bad size
    kBadOverscan,       // usage: overscan outside 0..100 or not finite
    kUnreadableFile,    // input: missing or not parseable calibration file
    kMissingField,      // input: a calibration without a field the conversion needs
    kBadCalibration,    // input: a field present but not finite or not meaningful
    kSizeMismatch,      // input: the frame size does not fit the calibration's
    kUnknownCamera,     // input: no such camera in the lensfun database
    kUnknownLens,       // input: no such lens (for that camera) in the database
    kNoDistortion,      // input: the lens has no distortion calibration
    kNotRepresentable,  // input: the converted lens falls outside the plug-in's controls
    kNoDatabase,        // input: the lensfun database could not be loaded
    kOutOfMemory,       // memory: the map could not be allocated
};

struct LensDataStatus {
    LensDataFailure failure = LensDataFailure::kNone;
    std::string message;

    bool ok() const { return failure == LensDataFailure::kNone; }
    static LensDataStatus success() { return {}; }
    static LensDataStatus fail(LensDataFailure kind, std::string text) {
        return LensDataStatus{kind, std::move(text)};
    }
};
