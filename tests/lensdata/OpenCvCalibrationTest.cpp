// OpenCV calibrations in and out, with cv::projectPoints as the reference:
// the convention on a hand-computed case, k1 k2 with fx = fy exactly at 2K
// (and back through the writer), fitted lenses within their reported
// residual, the file forms and node names, and bad input.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>
#include <random>

#include "OpenCvCalibration.h"
#include "StMap.h"

namespace {

constexpr int kWidth2K = 2048, kHeight2K = 1080;

OpenCvCalibration calibration(int width, int height, double f, double cx, double cy,
                              std::vector<double> distortion, double fy = 0.0) {
    OpenCvCalibration c;
    c.width = width;
    c.height = height;
    c.fx = f;
    c.fy = fy > 0.0 ? fy : f;
    c.cx = cx;
    c.cy = cy;
    c.distortion = std::move(distortion);
    return c;
}

// cv::projectPoints of an undistorted pixel (OpenCV's rows from the top).
cv::Point2d projected(const OpenCvCalibration& c, double u, double v) {
    const cv::Mat k = (cv::Mat_<double>(3, 3) << c.fx, 0, c.cx, 0, c.fy, c.cy, 0, 0, 1);
    std::vector<cv::Point3d> ray = {{(u - c.cx) / c.fx, (v - c.cy) / c.fy, 1.0}};
    std::vector<cv::Point2d> out;
    const cv::Mat zero = cv::Mat::zeros(3, 1, CV_64F);
    cv::projectPoints(ray, zero, zero, k, cv::Mat(c.distortion, true), out);
    return out[0];
}

// The largest distance, over a grid of OpenCV pixels, between where the
// set-up's ST-map samples and where cv::projectPoints puts the point.
double largestStMapError(const LensSetup& setup, const OpenCvCalibration& c, int step) {
    StMap map;
    EXPECT_TRUE(makeStMap(setup, c.width, c.height, 0.0, map).ok());
    double largest = 0.0;
    for (int v = 0; v < c.height; v += step)
        for (int u = 0; u < c.width; u += step) {
            // OpenCV row v is file row v: the ST-map's rows run from the top too.
            const float* st = map.rgb.data() + (size_t(v) * map.width + u) * 3;
            const double x = st[0] * c.width - 0.5;
            const double y = (c.height - 1) - (st[1] * c.height - 0.5);
            const cv::Point2d want = projected(c, u, v);
            largest = std::max(largest, std::hypot(x - want.x, y - want.y));
        }
    return largest;
}

}  // namespace

TEST(OpenCvCalibration, ConventionByHand) {
    // fx = fy = 1000, centre (959.5, 539.5), k1 = 0.1: the undistorted pixel
    // 500 to the right of the centre has x' = 0.5 and lands at
    // 959.5 + 1000 * 0.5 * (1 + 0.1 * 0.25) = 1472; its row, 539.5 from the
    // top, is 1079 - 539.5 = 539.5 from the bottom.
    const OpenCvCalibration c = calibration(1920, 1080, 1000, 959.5, 539.5, {0.1, 0, 0, 0});
    ReferenceLens lens = openCvReference(c);
    std::vector<tagDPT2> points = {{1459.5, 539.5}, {959.5, 1079.0 - 39.5}};
    lens.distort(points);
    EXPECT_NEAR(points[0].x, 1472.0, 1e-9);
    EXPECT_NEAR(points[0].y, 539.5, 1e-9);
    // 500 above the centre on the picture (row 39.5 from the top): y' = -0.5.
    EXPECT_NEAR(points[1].y, 1079.0 - (539.5 - 512.5), 1e-9);
    EXPECT_NEAR(lens.centre.y, 539.5, 1e-12);
    // Back through the inverse.
    lens.undistort(points);
    EXPECT_NEAR(points[0].x, 1459.5, 1e-6);

    // A scaled frame keeps pixel centres: 959.5 at 1920 is 1919.5 at 3840.
    OpenCvCalibration scaled;
    ASSERT_TRUE(fitOpenCvCalibrationToFrame(c, 3840, 2160, scaled).ok());
    EXPECT_DOUBLE_EQ(scaled.cx, 1919.5);
    EXPECT_DOUBLE_EQ(scaled.fx, 2000.0);
}

TEST(OpenCvCalibration, RadialK1K2IsExactAt2KAndSurvivesTheWriter) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int trial = 0; trial < 6; ++trial) {
        const double f = 1200 + 1300 * unit(random);
        const OpenCvCalibration c =
            calibration(kWidth2K, kHeight2K, f, 1023.5 + 60 * (unit(random) - 0.5),
                        539.5 + 40 * (unit(random) - 0.5),
                        {-0.3 + 0.5 * unit(random), -0.1 + 0.2 * unit(random), 0.0, 0.0});
        LensConversion conversion;
        ASSERT_TRUE(convertFromOpenCv(c, 0, 0, CorrectingMode::kAdd, conversion).ok());
        EXPECT_TRUE(conversion.exact);
        EXPECT_EQ(conversion.setup.mode, LensMode::kAdd);
        EXPECT_LT(conversion.residual.largest, 0.01);
        const double mapError = largestStMapError(conversion.setup, c, 37);
        EXPECT_LT(mapError, 0.01) << "trial " << trial;

        // The writer, read back by OpenCV, projects as the original does.
        OpenCvExport exported;
        ASSERT_TRUE(convertToOpenCv(conversion.setup, kWidth2K, kHeight2K, f, exported).ok());
        EXPECT_TRUE(exported.exact);
        OpenCvCalibration back;
        ASSERT_TRUE(parseOpenCvCalibration(formatOpenCvCalibration(exported), back).ok());
        double largest = 0.0;
        for (int v = 0; v < kHeight2K; v += 41)
            for (int u = 0; u < kWidth2K; u += 41) {
                const cv::Point2d a = projected(c, u, v), b = projected(back, u, v);
                largest = std::max(largest, std::hypot(a.x - b.x, a.y - b.y));
            }
        EXPECT_LT(largest, 0.01) << "trial " << trial;
        EXPECT_LT(exported.residual.largest, 0.01);
        std::printf("k1 k2 at 2K: ST-map vs projectPoints %.5f px, writer round trip %.6f px\n",
                    mapError, largest);
    }
}

TEST(OpenCvCalibration, FittedLensesStayWithinTheirReportedResidual) {
    const OpenCvCalibration lenses[] = {
        calibration(kWidth2K, kHeight2K, 1500, 1030, 530, {-0.2, 0.05, 0.001, -0.0005, 0.01}),
        calibration(kWidth2K, kHeight2K, 1500, 1023.5, 539.5, {-0.15, 0.02, 0, 0}, 1512),
        calibration(kWidth2K, kHeight2K, 1800, 1023.5, 539.5, {-0.1, 0.02, 0, 0, -0.03}),
    };
    for (const OpenCvCalibration& c : lenses) {
        for (CorrectingMode mode : {CorrectingMode::kAdd, CorrectingMode::kRemove}) {
            LensConversion conversion;
            ASSERT_TRUE(convertFromOpenCv(c, 0, 0, mode, conversion).ok());
            EXPECT_FALSE(conversion.exact);
            EXPECT_GT(conversion.residual.largest, 0.0);
            EXPECT_LE(conversion.residual.rms, conversion.residual.largest);
            // Independently, on other pixels: the map (through the plug-in's
            // inverse in Remove) against projectPoints.
            if (mode == CorrectingMode::kAdd) {
                EXPECT_LT(largestStMapError(conversion.setup, c, 29),
                          1.25 * conversion.residual.largest + 0.01);
            } else {
                const StMapSampler sampler(conversion.setup, c.width, c.height);
                double largest = 0.0;
                for (int v = 3; v < c.height; v += 53)
                    for (int u = 5; u < c.width; u += 53) {
                        const tagDPT2 s = sampler.sourceOf(u, c.height - 1 - v);
                        const cv::Point2d want = projected(c, u, v);
                        largest = std::max(largest,
                                           std::hypot(s.x - want.x, (c.height - 1 - s.y) - want.y));
                    }
                EXPECT_LT(largest, 1.25 * conversion.residual.largest + 0.01);
            }
            std::printf("fitted OpenCV lens (%s corrects): largest %.4f px, RMS %.4f px\n",
                        modeName(conversion.setup.mode), conversion.residual.largest,
                        conversion.residual.rms);
        }
    }
}

TEST(OpenCvCalibration, FileFormsNodeNamesAndBadInput) {
    const cv::Mat k = (cv::Mat_<double>(3, 3) << 1000, 0, 959.5, 0, 1000, 539.5, 0, 0, 1);
    const cv::Mat d = (cv::Mat_<double>(1, 5) << -0.1, 0.02, 0, 0, 0);
    struct Form {
        const char* suffix;
        const char *matrix, *distortion;
        bool sizeAsPair;
    };
    const Form forms[] = {{".yml", "camera_matrix", "distortion_coefficients", false},
                          {".xml", "cameraMatrix", "distCoeffs", true},
                          {".json", "camera_matrix", "dist_coeffs", false}};
    for (const Form& form : forms) {
        cv::FileStorage fs(form.suffix, cv::FileStorage::WRITE | cv::FileStorage::MEMORY);
        fs << form.matrix << k << form.distortion << d;
        if (form.sizeAsPair) {
            fs << "image_size" << cv::Size(1920, 1080);
        } else {
            fs << "image_width" << 1920 << "image_height" << 1080;
        }
        OpenCvCalibration c;
        const LensDataStatus status = parseOpenCvCalibration(fs.releaseAndGetString(), c);
        ASSERT_TRUE(status.ok()) << form.suffix << ": " << status.message;
        EXPECT_EQ(c.width, 1920);
        EXPECT_EQ(c.height, 1080);
        EXPECT_EQ(c.cx, 959.5);
        EXPECT_EQ(c.distortion.size(), 5u);
        EXPECT_EQ(c.distortion[1], 0.02);
    }

    OpenCvCalibration c;
    cv::FileStorage noDistortion(".yml", cv::FileStorage::WRITE | cv::FileStorage::MEMORY);
    noDistortion << "camera_matrix" << k << "image_width" << 1920 << "image_height" << 1080;
    LensDataStatus status = parseOpenCvCalibration(noDistortion.releaseAndGetString(), c);
    EXPECT_EQ(status.failure, LensDataFailure::kMissingField);
    EXPECT_NE(status.message.find("distortion_coefficients"), std::string::npos);

    cv::FileStorage noSize(".yml", cv::FileStorage::WRITE | cv::FileStorage::MEMORY);
    noSize << "camera_matrix" << k << "dist_coeffs" << d;
    EXPECT_EQ(parseOpenCvCalibration(noSize.releaseAndGetString(), c).failure,
              LensDataFailure::kMissingField);

    cv::FileStorage nan(".yml", cv::FileStorage::WRITE | cv::FileStorage::MEMORY);
    const cv::Mat bad =
        (cv::Mat_<double>(1, 4) << std::numeric_limits<double>::quiet_NaN(), 0, 0, 0);
    nan << "camera_matrix" << k << "dist_coeffs" << bad << "image_width" << 1920 << "image_height"
        << 1080;
    EXPECT_EQ(parseOpenCvCalibration(nan.releaseAndGetString(), c).failure,
              LensDataFailure::kBadCalibration);

    EXPECT_EQ(parseOpenCvCalibration("%YAML:1.0\ncamera_matrix: [1, 2", c).failure,
              LensDataFailure::kUnreadableFile);
    EXPECT_EQ(readOpenCvCalibration("/nonexistent/calibration.yml", c).failure,
              LensDataFailure::kUnreadableFile);

    // A frame of another shape is refused with what to do; a scaled one is fine.
    const OpenCvCalibration good = calibration(1920, 1080, 1000, 959.5, 539.5, {-0.1, 0, 0, 0});
    LensConversion conversion;
    status = convertFromOpenCv(good, 2048, 1556, CorrectingMode::kAdd, conversion);
    EXPECT_EQ(status.failure, LensDataFailure::kSizeMismatch);
    EXPECT_NE(status.message.find("1920x1080"), std::string::npos) << status.message;
    EXPECT_TRUE(convertFromOpenCv(good, 1280, 720, CorrectingMode::kAdd, conversion).ok());

    // A lens too strong for the controls' range is refused, not clamped.
    const OpenCvCalibration strong = calibration(1920, 1080, 300, 959.5, 539.5, {0.9, 0.5, 0, 0});
    EXPECT_EQ(convertFromOpenCv(strong, 0, 0, CorrectingMode::kAdd, conversion).failure,
              LensDataFailure::kNotRepresentable);
    OpenCvExport exported;
    EXPECT_EQ(convertToOpenCv(LensSetup{}, 1920, 1080, 0.0, exported).failure,
              LensDataFailure::kBadValue);
}
