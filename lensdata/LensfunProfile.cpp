#include "LensfunProfile.h"

#include <lensfun/lensfun.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>

#include "LensConventions.h"
#include "StMap.h"
#include "Straightlux.h"

namespace {

// Aperture and focus distance only steer vignetting; distortion ignores them.
constexpr float kAnyAperture = 8.0f;
constexpr float kAnyDistance = 1000.0f;
constexpr float kNoScale = 1.0f;  // 0 would ask lensfun to autoscale
constexpr char kContext[] = "lensdata";

template <typename T>
struct LensfunList {
    const T** items;
    explicit LensfunList(const T** list) : items(list) {}
    ~LensfunList() { lf_free(items); }
    LensfunList(const LensfunList&) = delete;
    LensfunList& operator=(const LensfunList&) = delete;
    const T* first() const { return items != nullptr ? items[0] : nullptr; }
};

std::string textOf(const char* maker, const char* model) {
    std::string text = maker != nullptr ? maker : "";
    if (model != nullptr) text += (text.empty() ? "" : " ") + std::string(model);
    return text;
}

// Lensfun's pixels (rows from the top) and the plug-in's, both ways.
tagDPT2 flipped(tagDPT2 p, int32_t height) { return {p.x, lensconv::flipRows(p.y, height)}; }

// Every point through a modifier, one at a time (lensfun takes float positions).
void applyModifier(const lfModifier& modifier, int32_t height, std::vector<tagDPT2>& points) {
    for (tagDPT2& p : points) {
        const tagDPT2 q = flipped(p, height);
        float out[2] = {0.0f, 0.0f};
        if (!modifier.ApplyGeometryDistortion(static_cast<float>(q.x), static_cast<float>(q.y), 1,
                                              1, out)) {
            out[0] = static_cast<float>(q.x);
            out[1] = static_cast<float>(q.y);
        }
        p = flipped(tagDPT2{out[0], out[1]}, height);
    }
}

std::shared_ptr<lfModifier> makeModifier(const LensfunProfile& profile, int32_t width,
                                         int32_t height, bool reverse) {
    auto modifier =
        std::make_shared<lfModifier>(profile.lens.get(), profile.cameraCrop, width, height);
    modifier->Initialize(profile.lens.get(), LF_PF_F32, profile.focal, kAnyAperture, kAnyDistance,
                         kNoScale, profile.lens->Type, LF_MODIFY_DISTORTION, reverse);
    return modifier;
}

std::string escapeXml(const std::string& text) {
    std::string out;
    for (char ch : text) {
        switch (ch) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out += ch;
        }
    }
    return out;
}

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

}  // namespace

LensfunDatabase::LensfunDatabase() : database_(new lfDatabase) {}
LensfunDatabase::~LensfunDatabase() { delete database_; }

LensDataStatus LensfunDatabase::loadInstalled() {
    if (database_->Load() != LF_NO_ERROR || database_->GetLenses() == nullptr ||
        database_->GetLenses()[0] == nullptr)
        return LensDataStatus::fail(
            LensDataFailure::kNoDatabase,
            "cannot load the lensfun database (Debian package liblensfun-data-v1)");
    return LensDataStatus::success();
}

LensDataStatus LensfunDatabase::loadText(const std::string& xml) {
    if (database_->Load(kContext, xml.data(), xml.size()) != LF_NO_ERROR)
        return LensDataStatus::fail(LensDataFailure::kUnreadableFile,
                                    "lensfun cannot read the lens database text");
    return LensDataStatus::success();
}

LensDataStatus lensfunProfileOf(const lfLens& lens, double focal, double cameraCrop,
                                LensfunProfile& profile) {
    const std::string name = textOf(lf_mlstr_get(lens.Maker), lf_mlstr_get(lens.Model));
    if (!std::isfinite(focal) || !(focal > 0.0))
        return LensDataStatus::fail(LensDataFailure::kBadValue,
                                    "the focal length must be a number of millimetres above 0");
    // Outside the lens's range (or its calibrations', which may reach a
    // little past it) lensfun would extrapolate; a typing error is likelier.
    double shortest = lens.MinFocal, longest = lens.MaxFocal;
    for (int i = 0; lens.CalibDistortion != nullptr && lens.CalibDistortion[i] != nullptr; ++i) {
        shortest = std::min<double>(shortest, lens.CalibDistortion[i]->Focal);
        longest = std::max<double>(longest, lens.CalibDistortion[i]->Focal);
    }
    if (shortest > 0.0 && longest > 0.0 && (focal < shortest || focal > longest)) {
        std::ostringstream text;
        text << "focal length " << focal << " mm is outside " << name << "'s range " << shortest
             << ".." << longest << " mm";
        return LensDataStatus::fail(LensDataFailure::kBadValue, text.str());
    }
    lfLensCalibDistortion distortion = {LF_DIST_MODEL_NONE, 0.0f, {0.0f, 0.0f, 0.0f}};
    if (!lens.InterpolateDistortion(static_cast<float>(focal), distortion) ||
        distortion.Model == LF_DIST_MODEL_NONE)
        return LensDataStatus::fail(LensDataFailure::kNoDistortion,
                                    "lensfun has no distortion calibration for " + name);
    LensfunProfile p;
    p.lensName = name;
    p.focal = static_cast<float>(focal);
    p.cameraCrop = static_cast<float>(cameraCrop);
    p.model = distortion.Model;
    for (int i = 0; i < 3; ++i) p.terms[i] = distortion.Terms[i];
    p.lens = std::make_shared<lfLens>(lens);
    profile = p;
    return LensDataStatus::success();
}

LensDataStatus findLensfunProfile(const LensfunDatabase& database, const std::string& maker,
                                  const std::string& model, const std::string& lens, double focal,
                                  LensfunProfile& profile) {
    const LensfunList<lfCamera> cameras(database.get()->FindCameras(maker.c_str(), model.c_str()));
    const lfCamera* camera = cameras.first();
    if (camera == nullptr)
        return LensDataStatus::fail(LensDataFailure::kUnknownCamera,
                                    "lensfun knows no camera \"" + maker + "\" \"" + model + "\"");
    const LensfunList<lfLens> lenses(database.get()->FindLenses(camera, nullptr, lens.c_str()));
    const lfLens* found = lenses.first();
    if (found == nullptr)
        return LensDataStatus::fail(
            LensDataFailure::kUnknownLens,
            "lensfun knows no lens \"" + lens + "\" for the " +
                textOf(lf_mlstr_get(camera->Maker), lf_mlstr_get(camera->Model)));
    LensfunProfile p;
    LensDataStatus status = lensfunProfileOf(*found, focal, camera->CropFactor, p);
    if (!status.ok()) return status;
    p.cameraName = textOf(lf_mlstr_get(camera->Maker), lf_mlstr_get(camera->Model));
    profile = p;
    return LensDataStatus::success();
}

ReferenceLens lensfunReference(const LensfunProfile& profile, int32_t width, int32_t height) {
    ReferenceLens lens;
    const lfLens& l = *profile.lens;
    lens.centre = flipped(tagDPT2{lensconv::lensfunCentreX(width, height, l.CenterX),
                                  lensconv::lensfunCentreY(width, height, l.CenterY)},
                          height);
    const std::shared_ptr<lfModifier> correcting = makeModifier(profile, width, height, false);
    const std::shared_ptr<lfModifier> distorting = makeModifier(profile, width, height, true);
    lens.distort = [correcting, height](std::vector<tagDPT2>& points) {
        applyModifier(*correcting, height, points);
    };
    lens.undistort = [distorting, height](std::vector<tagDPT2>& points) {
        applyModifier(*distorting, height, points);
    };
    if (profile.model == LF_DIST_MODEL_POLY5) {
        lens.radialOnly = true;
        lens.terms.k1 = profile.terms[0];
        lens.terms.k2 = profile.terms[1];
        lens.unitRadius = lensconv::lensfunUnitRadius(width, height, profile.cameraCrop,
                                                      l.CropFactor, l.AspectRatio);
    }
    return lens;
}

LensDataStatus convertFromLensfun(const LensfunProfile& profile, int32_t width, int32_t height,
                                  CorrectingMode mode, LensConversion& conversion) {
    LensDataStatus status = checkFrameSize(width, height);
    if (!status.ok()) return status;
    return convertReference(lensfunReference(profile, width, height), width, height, mode,
                            conversion);
}

LensDataStatus convertToLensfun(const LensSetup& setup, int32_t width, int32_t height, double focal,
                                double crop, const std::string& lensName, LensfunExport& result) {
    LensDataStatus status = checkFrameSize(width, height);
    if (!status.ok()) return status;
    status = checkSetup(setup);
    if (!status.ok()) return status;
    if (!std::isfinite(focal) || !(focal > 0.0) || !std::isfinite(crop) || !(crop > 0.0))
        return LensDataStatus::fail(LensDataFailure::kBadValue,
                                    "the focal length and the crop factor must be above 0");

    // The entry is calibrated on this frame's shape at this crop, so the
    // radius 1 is lensfun's for the frame itself.
    const double aspect = static_cast<double>(std::max(width, height)) / std::min(width, height);
    const double unit = lensconv::lensfunUnitRadius(width, height, crop, crop, aspect);
    const StraightluxModel model = modelOf(setup, width, height);
    const tagDPT2 centre = flipped(tagDPT2{model.centreX, model.centreY}, height);
    const double half = lensconv::lensfunHalfShortSide(width, height);
    const double shiftX = (centre.x - lensconv::lensfunCentreX(width, height, 0.0)) / half;
    const double shiftY = (centre.y - lensconv::lensfunCentreY(width, height, 0.0)) / half;

    LensfunExport out;
    out.exact = setup.mode == LensMode::kAdd && model.squeeze == 1.0f && model.xCurvature == 0.0f &&
                model.yCurvature == 0.0f && !Straightlux::magnifies(setup.magnify);
    if (out.exact) {
        const double scale =
            (unit / model.makeInversePlan().R) * (unit / model.makeInversePlan().R);
        out.k1 = model.radial1 * scale;
        out.k2 = model.radial2 * scale * scale;
    } else {
        const StMapSampler sampler(setup, width, height);
        std::vector<PointPair> pairs;
        for (const tagDPT2& p : frameGrid(width, height, kConversionGridPoints)) {
            const tagDPT2 source =
                sampler.sourceOf(static_cast<int32_t>(p.x), static_cast<int32_t>(p.y));
            pairs.push_back(PointPair{flipped(p, height), flipped(source, height)});
        }
        const RadialTerms terms = fitRadialTerms(pairs, centre, unit);
        out.k1 = terms.k1;
        out.k2 = terms.k2;
    }

    const std::string name = lensName.empty() ? std::string("Straightlux lens") : lensName;
    std::ostringstream xml;
    xml << "<lensdatabase version=\"1\">\n"
        << "    <lens>\n"
        << "        <maker>Straightlux</maker>\n"
        << "        <model>" << escapeXml(name) << "</model>\n"
        << "        <mount>Generic</mount>\n"
        << "        <cropfactor>" << number(crop) << "</cropfactor>\n"
        << "        <aspect-ratio>" << number(aspect) << "</aspect-ratio>\n";
    if (shiftX != 0.0 || shiftY != 0.0)
        xml << "        <center x=\"" << number(shiftX) << "\" y=\"" << number(shiftY) << "\"/>\n";
    xml << "        <calibration>\n"
        << "            <distortion model=\"poly5\" focal=\"" << number(focal) << "\" k1=\""
        << number(out.k1) << "\" k2=\"" << number(out.k2) << "\"/>\n"
        << "        </calibration>\n"
        << "    </lens>\n"
        << "</lensdatabase>\n";
    out.xml = xml.str();

    // Measured through lensfun reading the entry back, as a lensfun program will.
    LensfunDatabase readBack;
    status = readBack.loadText(out.xml);
    if (!status.ok()) return status;
    const lfLens* const* lenses = readBack.get()->GetLenses();
    if (lenses == nullptr || lenses[0] == nullptr)
        return LensDataStatus::fail(LensDataFailure::kUnreadableFile,
                                    "lensfun does not read back the written entry");
    LensfunProfile profile;
    status = lensfunProfileOf(*lenses[0], focal, crop, profile);
    if (!status.ok()) return status;
    out.residual =
        correctionResidual(setup, width, height, lensfunReference(profile, width, height));
    result = out;
    return LensDataStatus::success();
}
