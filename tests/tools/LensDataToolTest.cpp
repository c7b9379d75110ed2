// Lens data through sparkrun: ST-maps that a compositor's warp turns into the
// plug-in's own picture, OpenCV calibrations in and out against OpenCV's
// projectPoints, and the refusals that leave no file behind.
#include <gtest/gtest.h>

#include <cmath>
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>

#include "SparkrunFixture.h"

namespace {

const int kMapWidth = 2048;  // "2K"
const int kMapHeight = 1080;

// A smooth float picture: low-frequency waves, so that interpolation errors stay small.
void writeSmooth(const std::string& file, int width, int height) {
    std::vector<float> samples;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 3; ++c)
                samples.push_back(static_cast<float>(0.5 + 0.2 * std::sin(0.11 * x + c) +
                                                     0.2 * std::cos(0.07 * y - c)));
    writePicture(file, width, height, 3, OIIO::TypeDesc::FLOAT, samples);
}

// The largest difference of two pictures of one size, over the pixels whose
// source (by the map) lies a pixel or more inside the frame: outside it the
// plug-in and a compositor's warp each have their own edge rule.
double insideDifference(const Picture& a, const Picture& b, const Picture& map) {
    double largest = 0.0;
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x) {
            const size_t pixel = static_cast<size_t>(y) * a.width + x;
            const double sx = map.samples[pixel * 3] * a.width - 0.5;
            const double sy = map.samples[pixel * 3 + 1] * a.height - 0.5;
            if (sx < 1.0 || sy < 1.0 || sx > a.width - 2.0 || sy > a.height - 2.0) continue;
            for (int c = 0; c < 3; ++c) {
                const size_t at = pixel * a.channels + c;
                largest = std::max(largest, std::fabs(double{a.samples[at]} - b.samples[at]));
            }
        }
    return largest;
}

const char kCalibration[] = R"(%YAML:1.0
---
image_width: 2048
image_height: 1080
camera_matrix: !!opencv-matrix
   rows: 3
   cols: 3
   dt: d
   data: [ 1600., 0., 1030.25, 0., 1600., 531.5, 0., 0., 1. ]
distortion_coefficients: !!opencv-matrix
   rows: 1
   cols: 5
   dt: d
   data: [ -0.21, 0.07, 0., 0., 0. ]
)";

struct Camera {
    cv::Mat matrix, distortion;
};

Camera readCamera(const std::string& file) {
    cv::FileStorage storage(file, cv::FileStorage::READ);
    Camera camera;
    storage["camera_matrix"] >> camera.matrix;
    storage["distortion_coefficients"] >> camera.distortion;
    return camera;
}

// Where OpenCV's lens puts the undistorted pixel (x, y) (rows from the top).
cv::Point2d projected(const Camera& camera, double x, double y) {
    const double fx = camera.matrix.at<double>(0, 0), fy = camera.matrix.at<double>(1, 1);
    const double cx = camera.matrix.at<double>(0, 2), cy = camera.matrix.at<double>(1, 2);
    std::vector<cv::Point3d> object = {{(x - cx) / fx, (y - cy) / fy, 1.0}};
    std::vector<cv::Point2d> image;
    cv::projectPoints(object, cv::Vec3d(0, 0, 0), cv::Vec3d(0, 0, 0), camera.matrix,
                      camera.distortion, image);
    return image[0];
}

}  // namespace

TEST_F(Sparkrun, StMapWarpGivesThePluginsPictureInBothModes) {
    if (std::system("command -v oiiotool >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "oiiotool is not installed";
    writeSmooth(path("smooth.exr"), 96, 64);
    const std::string lens =
        "--set Sampling=Linear --set Radial1=0.12 --set Radial2=-0.02 --set XCurvature=0.2 "
        "--set Squeeze=1.3 --set 'Centre X=46' --set 'Centre Y=55' ";
    for (const char* mode : {"Remove", "Add"}) {
        SCOPED_TRACE(mode);
        const std::string setup = lens + "--set Mode=" + mode + " ";
        ASSERT_EQ(run("--quiet " + setup + path("smooth.exr") + " " + path("out/plugin.exr")).code,
                  0);
        const ToolRun map =
            run("--quiet " + setup + "--stmap " + path("out/map.exr") + " " + path("smooth.exr"));
        ASSERT_EQ(map.code, 0) << map.err;
        const std::string warp = "oiiotool " + path("smooth.exr") + " " + path("out/map.exr") +
                                 " --st_warp:filter=triangle:flip_t=1 -o " + path("out/warp.exr");
        ASSERT_EQ(std::system(warp.c_str()), 0);
        const Picture plugin = readPicture(path("out/plugin.exr"));
        const Picture warped = readPicture(path("out/warp.exr"));
        ASSERT_EQ(warped.width, plugin.width);
        // The plug-in's 12-bit frames and one bilinear warp: within a few 12-bit steps.
        EXPECT_LT(insideDifference(plugin, warped, readPicture(path("out/map.exr"))), 0.004);
    }
}

TEST_F(Sparkrun, OpenCvLensConvertsExactlyAndRoundTrips) {
    std::ofstream(path("cal.yaml")) << kCalibration;
    const ToolRun in =
        run("--quiet --from-opencv " + path("cal.yaml") + " --save-setup " + path("lens.setup"));
    ASSERT_EQ(in.code, 0) << in.err;
    EXPECT_NE(in.out.find("Mode=Add"), std::string::npos) << in.out;
    EXPECT_NE(in.out.find("exact"), std::string::npos) << in.out;

    // The converted set-up's correcting map (Mode Add) samples the plate
    // where OpenCV projects each undistorted pixel.
    ASSERT_EQ(run("--quiet --setup " + path("lens.setup") + " --stmap " + path("out/map.exr") +
                  " --size 2048x1080")
                  .code,
              0);
    const Picture map = readPicture(path("out/map.exr"));
    ASSERT_EQ(map.width, kMapWidth);
    const Camera camera = readCamera(path("cal.yaml"));
    double largest = 0.0;
    for (int row = 0; row < kMapHeight; row += 37)
        for (int x = 0; x < kMapWidth; x += 41) {
            const size_t at = (static_cast<size_t>(row) * map.width + x) * 3;
            const double sx = map.samples[at] * kMapWidth - 0.5;
            const double sy =
                kMapHeight - map.samples[at + 1] * kMapHeight - 0.5;  // t from the bottom
            const cv::Point2d want = projected(camera, x, row);
            largest = std::max(largest, std::hypot(sx - want.x, sy - want.y));
        }
    EXPECT_LT(largest, 0.01);

    // Out again with the same focal length (1600 px on 2048 of 36 mm film): the same lens.
    const ToolRun out = run("--quiet --setup " + path("lens.setup") + " --to-opencv " +
                            path("out/back.yaml") + " --focal 28.125 --size 2048x1080");
    ASSERT_EQ(out.code, 0) << out.err;
    const Camera back = readCamera(path("out/back.yaml"));
    largest = 0.0;
    for (int y = 0; y < kMapHeight; y += 53)
        for (int x = 0; x < kMapWidth; x += 61) {
            const cv::Point2d a = projected(camera, x, y), b = projected(back, x, y);
            largest = std::max(largest, std::hypot(a.x - b.x, a.y - b.y));
        }
    EXPECT_LT(largest, 0.01);
}

TEST_F(Sparkrun, LensDataRefusalsWriteNothing) {
    std::ofstream(path("cal.yaml")) << kCalibration;
    std::string noDistortion = kCalibration;
    noDistortion = noDistortion.substr(0, noDistortion.find("distortion_coefficients"));
    std::ofstream(path("bare.yaml")) << noDistortion;
    std::string notFinite = kCalibration;
    notFinite.replace(notFinite.find("1600., 0., 1030.25"), 5, ".nan");
    std::ofstream(path("nan.yaml")) << notFinite;
    const std::string save = " --save-setup " + path("out/s.setup");
    const struct {
        std::string arguments;
        int code;
        std::string says;
    } cases[] = {
        {"--from-lensfun Nobody Nothing None 50 --size 640x480" + save, 3,
         "lensfun knows no camera"},
        {"--from-opencv " + path("bare.yaml") + save, 3, "the calibration has no"},
        {"--from-opencv " + path("nan.yaml") + save, 3, ""},
        {"--from-opencv " + path("cal.yaml") + " --size 1000x1000" + save, 3, "does not fit"},
        {"--from-opencv " + path("missing.yaml") + save, 3, "No such file"},
        {"--stmap " + path("out/m.exr") + " --size 64x48 --overscan 150", 2, "0 to 100"},
        {"--stmap " + path("out/m.png") + " --size 64x48", 2, "must end in .exr"},
        {"--stmap " + path("out/m.exr") + " --size 64x48 --set Radial1=9", 2, "outside its range"},
        {"--to-opencv " + path("out/c.yaml") + " --size 64x48", 2, "--focal"},
    };
    for (const auto& c : cases) {
        const ToolRun result = run("--quiet " + c.arguments);
        EXPECT_EQ(result.code, c.code) << c.arguments << "\n" << result.err;
        EXPECT_NE(result.err.find(c.says), std::string::npos) << result.err;
        EXPECT_TRUE(outputs().empty()) << c.arguments;
    }
}
