// How each program that describes a lens places its pixels and normalises its
// radius: the one place these facts are written. Every conversion in
// lensdata/ reads them from here. Four questions per convention:
//   - pixel centre: which coordinate the centre of the first pixel has;
//   - y direction: whether y grows down the picture (rows from the top) or up;
//   - normalisation radius: the pixel distance that counts as radius 1;
//   - mapping direction: what the polynomial maps to what.
// Positions are in pixels of a frame `width` x `height` unless said otherwise.
//
// Straightlux (this plug-in; its model and its address map in lens/):
//   - pixel centre: pixel (i, j) is the point (i, j), no half-pixel offset.
//   - y up: the host's frame buffers hold the bottom row first, so row j
//     counts from the bottom and a picture file's top row r is j = H - 1 - r.
//     "Centre Y" is therefore a fraction of the height from the bottom.
//   - centre: "Centre X" / 100 x width, "Centre Y" / 100 x height; 50 % is
//     W / 2, half a pixel right of (and above) the frame's middle (W - 1) / 2.
//   - radius 1: half the frame diagonal, R = sqrt(0.25 W^2 + 0.25 H^2).
//   - direction: the polynomial p (1 + k1 r^2 + k2 r^4) ("MapUndistortedTo-
//     Distorted") is the Add pass's address map: output pixel p shows the
//     input at F(p). The Remove pass's map is its inverse: output p shows the
//     input at F^-1(p). Read as a lens, in the plug-in's own use (Remove
//     corrects a plate, Add distorts a clean picture) F carries a point of the
//     distorted plate to its corrected place: the opposite direction to
//     OpenCV's and lensfun's polynomials. A lens polynomial D taken over
//     unchanged (F = D) therefore corrects a plate in Mode Add and distorts
//     in Mode Remove.
//   Source: the plug-in's model (lens/StraightluxModel.h) and passes
//   (lens/StraightluxAddressMap.cpp); the row order: simhost/Viewer.h and
//   tools/HostPixels.h.
//
// OpenCV (calib3d):
//   - pixel centre: integer coordinates are pixel centres; (0, 0) is the
//     centre of the top-left pixel (cv::remap and cv::initUndistortRectifyMap
//     index maps this way).
//   - y down (row 0 is the top row).
//   - radius 1: the focal length; x' = (u - cx) / fx, y' = (v - cy) / fy, so
//     fx != fy normalises the two axes differently.
//   - direction: undistorted -> distorted: x'' = x' (1 + k1 r^2 + k2 r^4 +
//     k3 r^6) / (1 + k4 r^2 + k5 r^4 + k6 r^6) + 2 p1 x' y' + p2 (r^2 + 2 x'^2)
//     (y'' likewise with p1 and p2 exchanged), u = fx x'' + cx; this is what
//     cv::projectPoints computes.
//   Source: OpenCV documentation, "Camera Calibration and 3D Reconstruction"
//   (calib3d module), the detailed description of the pinhole camera model
//   with distortion.
//
// lensfun (0.3, lfModifier; checked by calling the library, see the tests):
//   - pixel centre: integer coordinates are pixel centres, (0, 0) the
//     top-left pixel; the centre of distortion is ((W - 1) / 2, (H - 1) / 2)
//     plus the lens's centre shift (CenterX, CenterY) times half the shorter
//     of W - 1 and H - 1.
//   - y down.
//   - radius 1: the half-diagonal of the frame, hypot((W - 1) / 2, (H - 1) / 2),
//     times crop / (calibration crop x sqrt(1 + aspect^2)), where crop is the
//     camera's crop factor and the calibration's crop factor and aspect ratio
//     (long side over short, >= 1) are the lens entry's <cropfactor> and
//     <aspect-ratio>. On a frame of the calibration's shape and crop that is
//     half the shorter side. The "real focal length" of a calibration does
//     not enter the distortion models.
//   - direction: undistorted -> distorted (lfLensCalibDistortion): poly3
//     r_d = r_u (1 - k1 + k1 r_u^2), poly5 r_d = r_u (1 + k1 r_u^2 + k2 r_u^4),
//     ptlens r_d = r_u (a r_u^3 + b r_u^2 + c r_u + 1 - a - b - c).
//     lfModifier::ApplyGeometryDistortion on a correcting modifier gives, for
//     each corrected pixel, the distorted position to sample.
//   Source: lensfun's documentation of lfDistortionModel, lfLensCalib-
//   Distortion and lfModifier (lensfun.h); centre and radius measured from
//   lfModifier::ApplyGeometryDistortion (tests/lensdata).
//
// ST-maps (compositors' STMap nodes; oiiotool --st_warp with flip_t=1):
//   - pixel centre: s = (x + 0.5) / W, t = (y + 0.5) / H: the centre of
//     the first pixel is half a pixel in; s = t = 0 is the frame's corner.
//   - y up: t = 0 is the bottom edge (file row r is y = H - 1 - r).
//   - radius: none (positions are fractions of the source frame).
//   - direction: output -> source: each output pixel holds the source
//     position it shows, R = s, G = t, B = 0.
//   Source: Foundry Nuke's STMap node documentation; OpenImageIO's
//   ImageBufAlgo::st_warp documentation (its t grows downwards unless
//   flip_t is set).
#pragma once

#include <cmath>

namespace lensconv {

// Straightlux: the centre in pixels from its control in percent, and back
// (the host binding divides the field by 100; the model multiplies by the size).
inline double straightluxCentreFromPercent(double percent, int size) {
    return size * (percent / 100.0);
}
inline double straightluxPercentFromCentre(double centre, int size) {
    return centre / size * 100.0;
}

// Rows: between a top-first convention (OpenCV, lensfun, picture files) and
// Straightlux's bottom-first rows, both with integer pixel centres.
inline double flipRows(double y, int height) { return (height - 1) - y; }

// ST-map values from a Straightlux source position, and back.
inline double stFromPixel(double x, int size) { return (x + 0.5) / size; }
inline double pixelFromSt(double s, int size) { return s * size - 0.5; }

// lensfun: the centre of distortion and the radius that counts as 1, for a
// frame of width x height taken with a camera of crop factor `crop`, from a
// lens calibrated at `calibrationCrop` and `calibrationAspect` with a centre
// shift (shiftX, shiftY). Top-first rows.
inline double lensfunHalfShortSide(int width, int height) {
    return 0.5 * ((width < height ? width : height) - 1);
}
inline double lensfunCentreX(int width, int height, double shiftX) {
    return 0.5 * (width - 1) + shiftX * lensfunHalfShortSide(width, height);
}
inline double lensfunCentreY(int width, int height, double shiftY) {
    return 0.5 * (height - 1) + shiftY * lensfunHalfShortSide(width, height);
}
inline double lensfunUnitRadius(int width, int height, double crop, double calibrationCrop,
                                double calibrationAspect) {
    return std::hypot(0.5 * (width - 1), 0.5 * (height - 1)) * crop /
           (calibrationCrop * std::sqrt(1.0 + calibrationAspect * calibrationAspect));
}

}  // namespace lensconv
