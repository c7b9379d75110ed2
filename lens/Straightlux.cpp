#include "Straightlux.h"

#include <cmath>

#include "ImageXfmZel.h"
#include "ImageZel.h"
#include "PolyLineSet2DZel.h"
#include "StraightluxSource.h"
#include "ZelBand.h"
#include "zel_heap.h"

namespace {

// A magnification within this distance of 1 is treated as exactly 1: no pass.
constexpr double kMagnifyDeadBand = 0.01;
// set_transform: invert the composed matrix.
constexpr int kInvertTransform = 1;
constexpr float kUnitGain = 1.0f;
constexpr double kHalf = 0.5;

// Unordered comparison: a NaN on either side counts as a change.
bool differs(float now, float before) { return !(now == before); }

}  // namespace

Straightlux::Straightlux() : xfm(new ImageXfmZel), lines(new PolyLineSet2DZel) {}

// xfm is left alone on purpose: the one plug-in object lives as long as the
// library, and the resampler with it.
Straightlux::~Straightlux() {
    if (addressMap != nullptr) ZEL_IMAGE_FREE(kStraightluxSource, addressMap);
    delete scratch;
    delete lines;
    freeErrorPoints();
}

void Straightlux::freeErrorPoints() {
    if (errorPoints != nullptr) ZEL_FREE(kStraightluxSource, errorPoints);
    errorPoints = nullptr;
    errorPointCount = 0;
}

void Straightlux::ProcessFrame() {
    ImageZel* in = input.image;
    ImageZel* out = output.image;
    // Without both pictures there is nothing to read or write.
    if (in == nullptr || out == nullptr) return;

    width = out->width;
    height = out->height;
    frameAspect = static_cast<float>(out->pixelAspect);
    frameScale = static_cast<float>(out->secondScale);
    normScale = 1.0f;

    loadControls(info.centre.x, info.centre.y, info.squeeze.value, info.radial1.value,
                 info.radial2.value, info.xCurvature.value, info.yCurvature.value);
    magnify = static_cast<float>(info.magnify.value);
    sampling = info.sampling.value;
    mode = info.mode.value;

    // The input view leaves the map and the saved values as they are.
    if (info.view.value == kViewInput) {
        out->CopyValues(in, kUnitGain, kUnitGain, kUnitGain, kUnitGain);
        return;
    }

    if (addressMap == nullptr || ControlsChanged()) ComputeAddressMap(mode == kModeAdd);

    if (addressMap != nullptr && xfm != nullptr && scratch != nullptr) {
        if (magnifies(magnify)) {
            // Resampled into scratch and magnified into the output: the same
            // bytes as resampling into the output, magnifying into scratch and
            // copying that back, one copy of the frame fewer.
            resamplePass(*in, *scratch);
            magnifyPass(*scratch, *out);
        } else {
            resamplePass(*in, *out);
        }
    }

    SaveControlValues();
}

// Output pixel (i, j) shows the input at map entry j * width + i; the rows
// run in bands over the host's processors.
void Straightlux::resamplePass(ImageZel& in, ImageZel& to) {
    xfm->reset();
    xfm->sampleMode(sampling);
    zelForEachBand(height, [this, &in, &to](long first, long last) {
        xfm->sample_map(&in, addressMap, &to, static_cast<int>(first), static_cast<int>(last));
    });
}

// A magnify within the dead band of 1 is treated as exactly 1: no pass.
bool Straightlux::magnifies(float magnify) {
    return std::fabs(static_cast<double>(magnify) - 1.0) > kMagnifyDeadBand;
}

// Zoom about the frame centre: read from the right, the steps move the centre
// to the origin, scale, and move it back.
void Straightlux::composeMagnify(ImageXfmZel& xfm, int32_t frameWidth, int32_t frameHeight,
                                 float magnify) {
    xfm.translate(kHalf * frameWidth, kHalf * frameHeight);
    xfm.scale(magnify, magnify);
    xfm.translate(-kHalf * frameWidth, -kHalf * frameHeight);
    xfm.set_transform(kInvertTransform);
}

// Bands of output rows.
void Straightlux::magnifyPass(ImageZel& from, ImageZel& to) {
    xfm->reset();
    xfm->sampleMode(sampling);
    composeMagnify(*xfm, width, height, magnify);
    zelForEachBand(height, [this, &from, &to](long first, long last) {
        xfm->apply(from, to, static_cast<int>(first), static_cast<int>(last));
    });
}

// The tests run in this order and stop at the first difference. Sampling and
// Magnify do not enter the map, yet a change of either rebuilds it: kept so.
bool Straightlux::ControlsChanged() {
    if (addressMap == nullptr || dirty) return true;
    if (width != savedWidth || height != savedHeight) return true;
    if (differs(centreX, saved.centreX) || differs(centreY, saved.centreY)) return true;
    if (differs(normScale, saved.normScale) || differs(squeeze, saved.squeeze)) return true;
    if (differs(radial1, saved.radial1) || differs(radial2, saved.radial2)) return true;
    if (differs(xCurvature, saved.xCurvature) || differs(yCurvature, saved.yCurvature)) return true;
    if (sampling != saved.sampling) return true;
    if (differs(magnify, saved.magnify)) return true;
    return mode != saved.mode;
}

void Straightlux::SaveControlValues() {
    dirty = false;
    savedWidth = width;
    savedHeight = height;
    saved = SavedValues{centreX,    centreY,    normScale, squeeze, radial1, radial2,
                        xCurvature, yCurvature, sampling,  magnify, mode};
}

void Straightlux::RenderOverlay() { renderStraightluxOverlay(overlayParts); }

void Straightlux::HandleInteraction(InterType type, float x, float y) {
    handleStraightluxInteraction(overlayParts, type, x, y);
}
