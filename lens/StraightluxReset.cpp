// Putting lens fields back to their defaults: the host page's "Reset", the
// lens page's "Reset   " button and the start of the automatic fit all come
// here, each with its own list and order of fields.
#include "Straightlux.h"

namespace {

constexpr double kCachedTime = -1.0;

}  // namespace

void Straightlux::resetLens(const LensField* fields, int count, ResetScope scope) {
    const bool model = scope == ResetScope::kFieldsAndModel;
    for (int i = 0; i < count; ++i) {
        switch (fields[i]) {
            case LensField::kRadial1:
                if (model) radial1 = static_cast<float>(kRadial1Control.pluginDefault());
                info.radial1.SetValue(kCachedTime, kRadial1Control.pluginDefault());
                break;
            case LensField::kRadial2:
                if (model) radial2 = static_cast<float>(kRadial2Control.pluginDefault());
                info.radial2.SetValue(kCachedTime, kRadial2Control.pluginDefault());
                break;
            case LensField::kXCurvature:
                if (model) xCurvature = static_cast<float>(kXCurvatureControl.pluginDefault());
                info.xCurvature.SetValue(kCachedTime, kXCurvatureControl.pluginDefault());
                break;
            case LensField::kYCurvature:
                if (model) yCurvature = static_cast<float>(kYCurvatureControl.pluginDefault());
                info.yCurvature.SetValue(kCachedTime, kYCurvatureControl.pluginDefault());
                break;
            case LensField::kCentre:
                // The control holds fractions of the frame, the model pixels.
                if (model) {
                    centreX = static_cast<float>(kCentreXControl.pluginDefault() * width);
                    centreY = static_cast<float>(kCentreYControl.pluginDefault() * height);
                }
                info.centre.SetValue(kCachedTime, kCentreXControl.pluginDefault(),
                                     kCentreYControl.pluginDefault());
                break;
            case LensField::kSqueeze:
                if (model) squeeze = static_cast<float>(kSqueezeControl.pluginDefault());
                info.squeeze.SetValue(kCachedTime, kSqueezeControl.pluginDefault());
                break;
            case LensField::kSampling:
                if (model) sampling = kSamplingControl.defaultItem();
                info.sampling.SetValue(kCachedTime, kSamplingControl.defaultItem());
                break;
            case LensField::kMagnify:
                if (model) magnify = static_cast<float>(kMagnifyControl.pluginDefault());
                info.magnify.SetValue(kCachedTime, kMagnifyControl.pluginDefault());
                break;
            case LensField::kLineEdit:
                if (model) lastLineEdit = kLineEditControl.defaultItem();
                info.lineEdit.SetValue(kCachedTime, kLineEditControl.defaultItem());
                break;
            case LensField::kMode:
                if (model) mode = kModeControl.defaultItem();
                info.mode.SetValue(kCachedTime, kModeControl.defaultItem());
                break;
            case LensField::kView:
                info.view.SetValue(kCachedTime, kViewControl.defaultItem());
                break;
        }
    }
}
