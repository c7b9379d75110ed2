// Putting lens fields back to their defaults: the host page's "Reset", the
// lens page's "Reset   " button and the start of the automatic fit all come
// here, each with its own list and order of fields.
#include "Straightlux.h"

namespace {

using LensField = Straightlux::LensField;

// The field's control, and so its host record, back to the control table's
// default.
void resetControl(StraightluxInfo& info, LensField field) {
    switch (field) {
#define STRAIGHTLUX_FLOAT(Name, N, member)                                                \
    case LensField::k##Name:                                                              \
        info.member.SetValue(Straightlux::kCachedTime, k##Name##Control.pluginDefault()); \
        break;
#define STRAIGHTLUX_POSITION(Name, NX, NY, member)                                        \
    case LensField::k##Name:                                                              \
        info.member.SetValue(Straightlux::kCachedTime, k##Name##XControl.pluginDefault(), \
                             k##Name##YControl.pluginDefault());                          \
        break;
#define STRAIGHTLUX_MENU(Name, N, member)                                               \
    case LensField::k##Name:                                                            \
        info.member.SetValue(Straightlux::kCachedTime, k##Name##Control.defaultItem()); \
        break;
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback)
#include "StraightluxControls.def"
    }
}

// The model field that a lens field drives, back to the same default.
void resetModel(Straightlux& lens, LensField field) {
    switch (field) {
        case LensField::kRadial1:
            lens.radial1 = static_cast<float>(kRadial1Control.pluginDefault());
            break;
        case LensField::kRadial2:
            lens.radial2 = static_cast<float>(kRadial2Control.pluginDefault());
            break;
        case LensField::kXCurvature:
            lens.xCurvature = static_cast<float>(kXCurvatureControl.pluginDefault());
            break;
        case LensField::kYCurvature:
            lens.yCurvature = static_cast<float>(kYCurvatureControl.pluginDefault());
            break;
        case LensField::kCentre:
            // The control holds fractions of the frame, the model pixels.
            lens.centreX = static_cast<float>(kCentreXControl.pluginDefault() * lens.width);
            lens.centreY = static_cast<float>(kCentreYControl.pluginDefault() * lens.height);
            break;
        case LensField::kSqueeze:
            lens.squeeze = static_cast<float>(kSqueezeControl.pluginDefault());
            break;
        case LensField::kSampling:
            lens.sampling = kSamplingControl.defaultItem();
            break;
        case LensField::kMagnify:
            lens.magnify = static_cast<float>(kMagnifyControl.pluginDefault());
            break;
        case LensField::kLineEdit:
            lens.lastLineEdit = kLineEditControl.defaultItem();
            break;
        case LensField::kMode:
            lens.mode = kModeControl.defaultItem();
            break;
        case LensField::kView:
            break;  // only a way of looking: no model field
    }
}

}  // namespace

void Straightlux::resetLens(const LensField* fields, int count, ResetScope scope) {
    for (int i = 0; i < count; ++i) {
        if (scope == ResetScope::kFieldsAndModel) resetModel(*this, fields[i]);
        resetControl(info, fields[i]);
    }
}
