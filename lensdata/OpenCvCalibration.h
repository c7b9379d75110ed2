// OpenCV camera calibrations in and out: read from OpenCV's own FileStorage
// files (YAML, XML or JSON), converted into the plug-in's controls for a
// frame size, and written back from a set-up as FileStorage YAML. Pixels
// follow OpenCV's conventions here (integer centres, rows from the top; see
// LensConventions.h); cv::projectPoints and cv::undistortPoints compute the
// lens wherever it is sampled.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "LensConversion.h"
#include "LensDataStatus.h"
#include "LensSetup.h"

struct OpenCvCalibration {
    int32_t width = 0;  // the image size the calibration was made at
    int32_t height = 0;
    double fx = 0.0, fy = 0.0, cx = 0.0, cy = 0.0, skew = 0.0;
    // k1 k2 p1 p2 [k3 [k4 k5 k6 [s1 s2 s3 s4 [taux tauy]]]]: 4, 5, 8, 12 or 14 values.
    std::vector<double> distortion;
};

// Reads the camera matrix ("camera_matrix" or "cameraMatrix"), the distortion
// ("distortion_coefficients", "dist_coeffs", "distCoeffs" or "dist_coefs")
// and the size ("image_width" and "image_height", or "image_size" /
// "imageSize" as [width, height]).
LensDataStatus readOpenCvCalibration(const std::string& path, OpenCvCalibration& calibration);
// The same from a FileStorage text held in memory.
LensDataStatus parseOpenCvCalibration(const std::string& text, OpenCvCalibration& calibration);

// The calibration for a frame of width x height: the same when the size is
// the calibration's (or 0 x 0), rescaled when only the resolution differs,
// refused (kSizeMismatch) when the shape differs.
LensDataStatus fitOpenCvCalibrationToFrame(const OpenCvCalibration& calibration, int32_t width,
                                           int32_t height, OpenCvCalibration& scaled);
// The lens of a calibration already at its frame's size, for conversions.
ReferenceLens openCvReference(const OpenCvCalibration& calibration);

// --from-opencv: width and height 0 take the calibration's size.
LensDataStatus convertFromOpenCv(const OpenCvCalibration& calibration, int32_t width,
                                 int32_t height, CorrectingMode mode, LensConversion& conversion);

struct OpenCvExport {
    OpenCvCalibration calibration;
    bool exact = false;
    Residual residual;  // plate pixels between the set-up's correction and OpenCV's
};
// --to-opencv: the set-up's correcting map (its Mode) as a calibration with
// fx = fy = focalPixels, the centre from the set-up, k1 k2 and p1 = p2 = k3 = 0.
LensDataStatus convertToOpenCv(const LensSetup& setup, int32_t width, int32_t height,
                               double focalPixels, OpenCvExport& result);
// FileStorage YAML of an export, the residual included as plain fields.
std::string formatOpenCvCalibration(const OpenCvExport& result);
