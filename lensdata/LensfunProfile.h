// Lens profiles from the lensfun database in and out: a profile found by
// camera maker, camera model, lens and focal length and interpolated by
// liblensfun itself, converted into the plug-in's controls; and a set-up
// written as a lensfun database entry (poly5) that darktable and other
// lensfun programs read. lfModifier computes the lens wherever it is sampled.
// Conventions (centre, radius, rows) are in LensConventions.h.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "LensConversion.h"
#include "LensDataStatus.h"
#include "LensSetup.h"

struct lfDatabase;
struct lfLens;

// The loaded database; loading reads every XML file once (about a second).
class LensfunDatabase {
  public:
    LensfunDatabase();
    ~LensfunDatabase();
    LensfunDatabase(const LensfunDatabase&) = delete;
    LensfunDatabase& operator=(const LensfunDatabase&) = delete;

    // The database Debian installs (liblensfun-data-v1).
    LensDataStatus loadInstalled();
    // One database text held in memory (a lensfun XML file's contents).
    LensDataStatus loadText(const std::string& xml);
    const lfDatabase* get() const { return database_; }

  private:
    lfDatabase* database_;
};

struct LensfunProfile {
    std::string cameraName;  // as the database names them
    std::string lensName;
    float focal = 0.0f;                   // millimetres
    float cameraCrop = 1.0f;              // the camera's crop factor
    int model = 0;                        // lfDistortionModel of the calibration
    float terms[3] = {0.0f, 0.0f, 0.0f};  // interpolated by lensfun at `focal`
    std::shared_ptr<lfLens> lens;         // a copy, for lfModifier
};

// --from-lensfun "MAKER" "MODEL" "LENS" FOCAL.
LensDataStatus findLensfunProfile(const LensfunDatabase& database, const std::string& maker,
                                  const std::string& model, const std::string& lens, double focal,
                                  LensfunProfile& profile);
// A database lens at a focal length with a given camera crop factor (the
// database walk, and entries read back).
LensDataStatus lensfunProfileOf(const lfLens& lens, double focal, double cameraCrop,
                                LensfunProfile& profile);
// The profile's lens on a width x height frame.
ReferenceLens lensfunReference(const LensfunProfile& profile, int32_t width, int32_t height);
LensDataStatus convertFromLensfun(const LensfunProfile& profile, int32_t width, int32_t height,
                                  CorrectingMode mode, LensConversion& conversion);

struct LensfunExport {
    std::string xml;  // a whole lensfun database file holding the one lens
    bool exact = false;
    double k1 = 0.0, k2 = 0.0;
    Residual residual;  // plate pixels, measured through lensfun reading `xml` back
};
// --to-lensfun: the set-up's correcting map (its Mode) as a poly5 lens, for
// frames of width x height from a camera of crop factor `crop`, at `focal` mm.
LensDataStatus convertToLensfun(const LensSetup& setup, int32_t width, int32_t height, double focal,
                                double crop, const std::string& lensName, LensfunExport& result);
