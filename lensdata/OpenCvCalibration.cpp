#include "OpenCvCalibration.h"

#include <sys/stat.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>
#include <opencv2/core/utils/logger.hpp>
#include <sstream>

#include "LensConventions.h"
#include "StMap.h"
#include "Straightlux.h"

namespace {

const char* const kMatrixNames[] = {"camera_matrix", "cameraMatrix"};
const char* const kDistortionNames[] = {"distortion_coefficients", "dist_coeffs", "distCoeffs",
                                        "dist_coefs"};
const char* const kSizeNames[] = {"image_size", "imageSize"};
constexpr int kDistortionCounts[] = {4, 5, 8, 12, 14};
// Refining the inverse of a lens: enough passes to reach a thousandth of a pixel.
constexpr int kUndistortIterations = 200;
constexpr double kUndistortEpsilon = 1e-12;

template <size_t N>
cv::FileNode firstNode(const cv::FileStorage& fs, const char* const (&names)[N]) {
    for (const char* name : names) {
        cv::FileNode node = fs[name];
        if (!node.empty()) return node;
    }
    return cv::FileNode();
}

template <size_t N>
std::string listOf(const char* const (&names)[N]) {
    std::string text;
    for (size_t i = 0; i < N; ++i) text += (i ? ", " : "") + std::string(names[i]);
    return text;
}

LensDataStatus missing(const std::string& what) {
    return LensDataStatus::fail(LensDataFailure::kMissingField, "the calibration has no " + what);
}

LensDataStatus readStorage(cv::FileStorage& fs, OpenCvCalibration& calibration) {
    OpenCvCalibration c;
    const cv::FileNode matrixNode = firstNode(fs, kMatrixNames);
    if (matrixNode.empty()) return missing("camera matrix (" + listOf(kMatrixNames) + ")");
    cv::Mat matrix;
    matrixNode >> matrix;
    if (matrix.rows != 3 || matrix.cols != 3)
        return LensDataStatus::fail(LensDataFailure::kBadCalibration,
                                    "the camera matrix is not 3x3");
    matrix.convertTo(matrix, CV_64F);
    c.fx = matrix.at<double>(0, 0);
    c.skew = matrix.at<double>(0, 1);
    c.cx = matrix.at<double>(0, 2);
    c.fy = matrix.at<double>(1, 1);
    c.cy = matrix.at<double>(1, 2);

    const cv::FileNode distortionNode = firstNode(fs, kDistortionNames);
    if (distortionNode.empty())
        return missing("distortion coefficients (" + listOf(kDistortionNames) + ")");
    cv::Mat distortion;
    distortionNode >> distortion;
    distortion.convertTo(distortion, CV_64F);
    c.distortion.assign(distortion.begin<double>(), distortion.end<double>());
    bool countKnown = false;
    for (int n : kDistortionCounts) countKnown = countKnown || c.distortion.size() == size_t(n);
    if (!countKnown) {
        std::ostringstream text;
        text << "the calibration has " << c.distortion.size()
             << " distortion coefficients; OpenCV uses 4, 5, 8, 12 or 14";
        return LensDataStatus::fail(LensDataFailure::kBadCalibration, text.str());
    }

    const cv::FileNode widthNode = fs["image_width"], heightNode = fs["image_height"];
    const cv::FileNode sizeNode = firstNode(fs, kSizeNames);
    if (!widthNode.empty() && !heightNode.empty()) {
        c.width = static_cast<int32_t>(static_cast<double>(widthNode));
        c.height = static_cast<int32_t>(static_cast<double>(heightNode));
    } else if (sizeNode.isSeq() && sizeNode.size() == 2) {
        c.width = static_cast<int32_t>(static_cast<double>(sizeNode[0]));
        c.height = static_cast<int32_t>(static_cast<double>(sizeNode[1]));
    } else {
        return missing("image size (image_width and image_height, or " + listOf(kSizeNames) + ")");
    }

    const double values[] = {c.fx, c.fy, c.cx, c.cy, c.skew};
    bool finite = true;
    for (double v : values) finite = finite && std::isfinite(v);
    for (double v : c.distortion) finite = finite && std::isfinite(v);
    if (!finite)
        return LensDataStatus::fail(LensDataFailure::kBadCalibration,
                                    "the calibration holds a value that is not a finite number");
    if (!(c.fx > 0.0) || !(c.fy > 0.0))
        return LensDataStatus::fail(LensDataFailure::kBadCalibration,
                                    "the calibration's focal lengths fx and fy must be above 0");
    if (c.width < 1 || c.height < 1) {
        std::ostringstream text;
        text << "the calibration's image size " << c.width << "x" << c.height << " is not valid";
        return LensDataStatus::fail(LensDataFailure::kBadCalibration, text.str());
    }
    calibration = c;
    return LensDataStatus::success();
}

LensDataStatus openAndRead(const std::string& source, int flags, const std::string& label,
                           OpenCvCalibration& calibration) {
    // OpenCV's own log would repeat on the console what the status says.
    cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
    try {
        cv::FileStorage fs(source, flags);
        if (!fs.isOpened())
            return LensDataStatus::fail(LensDataFailure::kUnreadableFile,
                                        "cannot open the calibration " + label);
        return readStorage(fs, calibration);
    } catch (const cv::Exception& e) {
        return LensDataStatus::fail(LensDataFailure::kUnreadableFile,
                                    "cannot read the calibration " + label + ": " + e.msg);
    }
}

cv::Mat cameraMatrixOf(const OpenCvCalibration& c) {
    return (cv::Mat_<double>(3, 3) << c.fx, c.skew, c.cx, 0.0, c.fy, c.cy, 0.0, 0.0, 1.0);
}

// Between the plug-in's pixels and OpenCV's (rows from the top), both ways.
tagDPT2 toOpenCv(tagDPT2 p, int32_t height) { return {p.x, lensconv::flipRows(p.y, height)}; }

// Pure k1 k2: no tangential or higher terms, square pixels, no skew.
bool radialOnly(const OpenCvCalibration& c) {
    for (size_t i = 2; i < c.distortion.size(); ++i)
        if (c.distortion[i] != 0.0) return false;
    return c.fx == c.fy && c.skew == 0.0;
}

}  // namespace

LensDataStatus readOpenCvCalibration(const std::string& path, OpenCvCalibration& calibration) {
    // Only a regular file: a pipe or a device would hang the read or never end it.
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        return LensDataStatus::fail(
            LensDataFailure::kUnreadableFile,
            "cannot open the calibration " + path + ": " + std::strerror(errno));
    if (!S_ISREG(status.st_mode))
        return LensDataStatus::fail(LensDataFailure::kUnreadableFile,
                                    "the calibration " + path + " is not a regular file");
    return openAndRead(path, cv::FileStorage::READ, path, calibration);
}

LensDataStatus parseOpenCvCalibration(const std::string& text, OpenCvCalibration& calibration) {
    return openAndRead(text, cv::FileStorage::READ | cv::FileStorage::MEMORY, "text", calibration);
}

LensDataStatus fitOpenCvCalibrationToFrame(const OpenCvCalibration& calibration, int32_t width,
                                           int32_t height, OpenCvCalibration& scaled) {
    if (width == 0 && height == 0) {
        width = calibration.width;
        height = calibration.height;
    }
    LensDataStatus status = checkFrameSize(width, height);
    if (!status.ok()) return status;
    const double sx = static_cast<double>(width) / calibration.width;
    const double sy = static_cast<double>(height) / calibration.height;
    // The same shape within a pixel's rounding: a scaled copy of the calibration.
    if (std::fabs(sx * calibration.height - height) >= 1.0 ||
        std::fabs(sy * calibration.width - width) >= 1.0) {
        std::ostringstream text;
        text << "the calibration was made at " << calibration.width << "x" << calibration.height
             << " and does not fit a " << width << "x" << height
             << " frame; give a frame size of the same shape (a scaled or the same resolution), "
                "or calibrate at this size";
        return LensDataStatus::fail(LensDataFailure::kSizeMismatch, text.str());
    }
    OpenCvCalibration c = calibration;
    c.width = width;
    c.height = height;
    // Pixel centres stay centres: the frame's edges scale, (0, 0) is half a pixel in.
    c.fx = calibration.fx * sx;
    c.skew = calibration.skew * sx;
    c.cx = (calibration.cx + 0.5) * sx - 0.5;
    c.fy = calibration.fy * sy;
    c.cy = (calibration.cy + 0.5) * sy - 0.5;
    scaled = c;
    return LensDataStatus::success();
}

ReferenceLens openCvReference(const OpenCvCalibration& c) {
    ReferenceLens lens;
    const int32_t height = c.height;
    lens.centre = toOpenCv(tagDPT2{c.cx, c.cy}, height);
    const cv::Mat matrix = cameraMatrixOf(c);
    const cv::Mat distortion(c.distortion, true);
    lens.distort = [c, matrix, distortion, height](std::vector<tagDPT2>& points) {
        if (points.empty()) return;
        // The undistorted pixel as a point on the plane z = 1, projected.
        std::vector<cv::Point3d> rays;
        rays.reserve(points.size());
        for (const tagDPT2& p : points) {
            const tagDPT2 q = toOpenCv(p, height);
            const double y = (q.y - c.cy) / c.fy;
            rays.emplace_back((q.x - c.cx - c.skew * y) / c.fx, y, 1.0);
        }
        std::vector<cv::Point2d> projected;
        const cv::Mat zero = cv::Mat::zeros(3, 1, CV_64F);
        cv::projectPoints(rays, zero, zero, matrix, distortion, projected);
        for (size_t i = 0; i < points.size(); ++i)
            points[i] = toOpenCv(tagDPT2{projected[i].x, projected[i].y}, height);
    };
    lens.undistort = [matrix, distortion, height](std::vector<tagDPT2>& points) {
        if (points.empty()) return;
        std::vector<cv::Point2d> in, out;
        in.reserve(points.size());
        for (const tagDPT2& p : points) {
            const tagDPT2 q = toOpenCv(p, height);
            in.emplace_back(q.x, q.y);
        }
        cv::undistortPoints(in, out, matrix, distortion, cv::noArray(), matrix,
                            cv::TermCriteria(cv::TermCriteria::COUNT | cv::TermCriteria::EPS,
                                             kUndistortIterations, kUndistortEpsilon));
        for (size_t i = 0; i < points.size(); ++i)
            points[i] = toOpenCv(tagDPT2{out[i].x, out[i].y}, height);
    };
    if (radialOnly(c)) {
        lens.radialOnly = true;
        lens.terms.k1 = c.distortion[0];
        lens.terms.k2 = c.distortion[1];
        lens.unitRadius = c.fx;
    }
    return lens;
}

LensDataStatus convertFromOpenCv(const OpenCvCalibration& calibration, int32_t width,
                                 int32_t height, CorrectingMode mode, LensConversion& conversion) {
    OpenCvCalibration scaled;
    LensDataStatus status = fitOpenCvCalibrationToFrame(calibration, width, height, scaled);
    if (!status.ok()) return status;
    return convertReference(openCvReference(scaled), scaled.width, scaled.height, mode, conversion);
}

LensDataStatus convertToOpenCv(const LensSetup& setup, int32_t width, int32_t height,
                               double focalPixels, OpenCvExport& result) {
    LensDataStatus status = checkFrameSize(width, height);
    if (!status.ok()) return status;
    status = checkSetup(setup);
    if (!status.ok()) return status;
    if (!(focalPixels > 0.0) || !std::isfinite(focalPixels))
        return LensDataStatus::fail(LensDataFailure::kBadValue,
                                    "the focal length in pixels must be a number above 0");

    const StraightluxModel model = modelOf(setup, width, height);
    OpenCvExport out;
    OpenCvCalibration& c = out.calibration;
    c.width = width;
    c.height = height;
    c.fx = c.fy = focalPixels;
    const tagDPT2 centre = toOpenCv(tagDPT2{model.centreX, model.centreY}, height);
    c.cx = centre.x;
    c.cy = centre.y;
    c.distortion.assign(5, 0.0);

    // Add corrects through the polynomial itself: only its radius changes.
    const bool exact = setup.mode == LensMode::kAdd && model.squeeze == 1.0f &&
                       model.xCurvature == 0.0f && model.yCurvature == 0.0f &&
                       !Straightlux::magnifies(setup.magnify);
    const StMapSampler sampler(setup, width, height);
    const std::vector<tagDPT2> grid = frameGrid(width, height, kConversionGridPoints);
    if (exact) {
        const double scale =
            (focalPixels / model.makeInversePlan().R) * (focalPixels / model.makeInversePlan().R);
        c.distortion[0] = model.radial1 * scale;
        c.distortion[1] = model.radial2 * scale * scale;
    } else {
        std::vector<PointPair> pairs;
        pairs.reserve(grid.size());
        for (const tagDPT2& p : grid) {
            const tagDPT2 source =
                sampler.sourceOf(static_cast<int32_t>(p.x), static_cast<int32_t>(p.y));
            pairs.push_back(PointPair{toOpenCv(p, height), toOpenCv(source, height)});
        }
        const RadialTerms terms = fitRadialTerms(pairs, tagDPT2{c.cx, c.cy}, focalPixels);
        c.distortion[0] = terms.k1;
        c.distortion[1] = terms.k2;
    }
    out.exact = exact;
    out.residual = correctionResidual(setup, width, height, openCvReference(c));
    result = out;
    return LensDataStatus::success();
}

std::string formatOpenCvCalibration(const OpenCvExport& result) {
    const OpenCvCalibration& c = result.calibration;
    cv::FileStorage fs(".yml", cv::FileStorage::WRITE | cv::FileStorage::MEMORY);
    fs << "image_width" << c.width;
    fs << "image_height" << c.height;
    fs << "camera_matrix" << cameraMatrixOf(c);
    fs << "distortion_coefficients" << cv::Mat(c.distortion, true).reshape(1, 1);
    fs << "conversion_exact" << static_cast<int>(result.exact);
    fs << "largest_residual_px" << result.residual.largest;
    fs << "rms_residual_px" << result.residual.rms;
    return fs.releaseAndGetString();
}
