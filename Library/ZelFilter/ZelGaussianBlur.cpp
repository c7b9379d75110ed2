#include "ZelGaussianBlur.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "ZelBand.h"
#include "ZelRecursiveGaussian.h"
#include "ZelSeparableFilter.h"
#include "ZelStripTranspose.h"
#include "ZelSymmetricKernel.h"

namespace {

// Rows filtered together along x, side by side in a transposed strip, so the
// recursion runs on whole vectors; and columns filtered together down y.
constexpr long kStripRows = 16;
constexpr long kChunkColumns = 256;

// Along x: strips of rows copied across into [x][row] order, filtered as
// lanes, copied back. A short last strip repeats its last row in the unused
// lanes (their results are dropped).
void mp_recursiveRows(const FloatImageZel& in, FloatImageZel& out,
                      const ZelRecursiveCoefficients& c, long first, long last) {
    if (first > last) return;
    const long width = in.width();
    std::vector<float> strip(static_cast<size_t>(width * kStripRows));
    std::vector<double> scratch(static_cast<size_t>(4 * kStripRows));
    const float* source[kStripRows];
    float* target[kStripRows];
    // Lanes beyond the picture's last row are written to a row of their own.
    std::vector<float> unused(static_cast<size_t>(width));
    for (long s = first; s <= last; ++s) {
        const long y0 = s * kStripRows;
        const long rows = std::min(kStripRows, in.height() - y0);
        for (long l = 0; l < kStripRows; ++l) {
            source[l] = in.row(y0 + std::min(l, rows - 1));
            target[l] = l < rows ? out.row(y0 + l) : unused.data();
        }
        zelRowsToStrip(source, kStripRows, width, strip.data());
        zelRecursiveLines(strip.data(), width, kStripRows, kStripRows, c, scratch.data());
        zelStripToRows(strip.data(), kStripRows, width, target);
    }
}

// Down y: chunks of columns filtered in place as lanes.
void mp_recursiveColumns(FloatImageZel& out, const ZelRecursiveCoefficients& c, long first,
                         long last) {
    if (first > last) return;
    std::vector<double> scratch(static_cast<size_t>(4 * kChunkColumns));
    for (long k = first; k <= last; ++k) {
        const long x0 = k * kChunkColumns;
        const long lanes = std::min(kChunkColumns, static_cast<long>(out.width()) - x0);
        zelRecursiveLines(out.data() + x0, out.height(), out.width(), lanes, c, scratch.data());
    }
}

}  // namespace

bool zelGaussianBlurExact(const FloatImageZel& in, FloatImageZel& out, float sigma, int radius) {
    if (!(sigma > 0.0f) || radius < 0) return false;
    const ZelSymmetricKernel kernel =
        zelGaussianKernel(sigma, radius > 0 ? radius : zelGaussianRadius(sigma));
    if (kernel.weights.empty()) return false;
    return zelSeparableFilter(in, out, kernel, kernel);
}

bool zelGaussianBlurRecursive(const FloatImageZel& in, FloatImageZel& out, float sigma) {
    if (!in.hasPixels() || !(sigma >= kZelRecursiveMinSigma) || !(sigma <= kZelMaxSigma))
        return false;
    if (&in != &out && !out.resize(in.width(), in.height())) return false;
    const ZelRecursiveCoefficients c = zelRecursiveGaussianCoefficients(sigma);
    // A strip reads all its rows before it writes them, so in may be out.
    const long strips = (in.height() + kStripRows - 1) / kStripRows;
    zelForEachBand(strips,
                   [&](long first, long last) { mp_recursiveRows(in, out, c, first, last); });
    const long chunks = (out.width() + kChunkColumns - 1) / kChunkColumns;
    zelForEachBand(chunks,
                   [&](long first, long last) { mp_recursiveColumns(out, c, first, last); });
    return true;
}

bool zelGaussianBlur(const FloatImageZel& in, FloatImageZel& out, float sigma) {
    if (sigma >= kZelRecursiveFromSigma) return zelGaussianBlurRecursive(in, out, sigma);
    return zelGaussianBlurExact(in, out, sigma);
}
