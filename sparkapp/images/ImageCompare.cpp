// Comparing pictures and putting them side by side.
#include "ImageCompare.h"

#include <algorithm>
#include <cmath>

#include "HostPixels.h"
#include "ImageFiles.h"

namespace {
const int kGapPixels = 8;
const uint8_t kGapLevel = 48;
const double kMaxMarginPercent = 49.0;

// Sample i of the picture in 0..1 units.
double unitSample(const FilePixels& picture, size_t i) {
    return picture.isFloat ? picture.reals[i] : picture.words[i] / static_cast<double>(kFull16);
}

uint8_t eightSample(const FilePixels& picture, size_t i) {
    return static_cast<uint8_t>(picture.isFloat ? eightFromFloat(picture.reals[i])
                                                : eightFromSixteen(picture.words[i]));
}
}  // namespace

RunStatus meanAbsDifference(const std::string& pathA, const std::string& pathB,
                            double marginPercent, double* mean) {
    if (!(marginPercent >= 0.0 && marginPercent <= kMaxMarginPercent))
        return RunStatus::failure(ExitCode::Usage, "margin must be 0 to 49 percent");
    FilePixels a, b;
    int depth = 0;
    RunStatus status = readImage(pathA, kHostDepth8, &a, &depth);
    if (status.ok()) status = readImage(pathB, kHostDepth8, &b, &depth);
    if (!status.ok()) return status;
    if (a.width != b.width || a.height != b.height)
        return RunStatus::failure(ExitCode::Input, pathA + " and " + pathB + " differ in size");
    const int marginX = static_cast<int>(a.width * marginPercent / 100.0);
    const int marginY = static_cast<int>(a.height * marginPercent / 100.0);
    double sum = 0.0;
    size_t count = 0;
    for (int y = marginY; y < a.height - marginY; ++y) {
        for (int x = marginX; x < a.width - marginX; ++x) {
            for (int c = 0; c < kRgbChannels; ++c) {
                const size_t i = (static_cast<size_t>(y) * a.width + x) * kRgbChannels + c;
                sum += std::fabs(unitSample(a, i) - unitSample(b, i)) * kFull8;
                ++count;
            }
        }
    }
    *mean = count ? sum / count : 0.0;
    return RunStatus::success();
}

RunStatus writeSideBySide(const std::string& left, const std::string& right,
                          const std::string& output) {
    RunStatus status = checkOutputPath(output);
    if (!status.ok()) return status;
    FilePixels a, b;
    int depth = 0;
    status = readImage(left, kHostDepth8, &a, &depth);
    if (status.ok()) status = readImage(right, kHostDepth8, &b, &depth);
    if (!status.ok()) return status;
    const int width = a.width + kGapPixels + b.width;
    const int height = std::max(a.height, b.height);
    if (width > kMaxFrameSide)
        return RunStatus::failure(ExitCode::Input, "side-by-side picture would be too wide");
    RgbSamples samples;
    samples.type = SampleType::Eight;
    samples.eights.assign(static_cast<size_t>(width) * height * kRgbChannels, 0);
    for (int y = 0; y < height; ++y) {
        uint8_t* row = &samples.eights[static_cast<size_t>(y) * width * kRgbChannels];
        std::fill(row + a.width * kRgbChannels, row + (a.width + kGapPixels) * kRgbChannels,
                  kGapLevel);
        for (const FilePixels* picture : {&a, &b}) {
            if (y >= picture->height) continue;
            const int left0 = picture == &a ? 0 : a.width + kGapPixels;
            for (int i = 0; i < picture->width * kRgbChannels; ++i)
                row[left0 * kRgbChannels + i] = eightSample(
                    *picture, static_cast<size_t>(y) * picture->width * kRgbChannels + i);
        }
    }
    return writeImage(output, width, height, samples);
}
