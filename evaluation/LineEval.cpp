// line_eval: the line detector on one picture, for the evaluation and for
// looking at what it does.
//   line_eval IMAGE [--overlay OUT.png] [--lines OUT.json] [--threads N]
// prints the lines kept and rejected and the detector's own model; the
// overlay draws kept lines green, outliers red, other rejections orange.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "ImageFiles.h"
#include "LineDetection.h"

namespace {
void plot(FilePixels& picture, double x, double y, const uint16_t colour[3]) {
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx) {
            const long px = static_cast<long>(x + 0.5) + dx, py = static_cast<long>(y + 0.5) + dy;
            if (px < 0 || py < 0 || px >= picture.width || py >= picture.height) continue;
            for (int c = 0; c < 3; ++c)
                picture.words[3 * (static_cast<size_t>(py) * picture.width + px) + c] = colour[c];
        }
}

void draw(FilePixels& picture, const Polyline& line, const uint16_t colour[3]) {
    for (size_t i = 0; i + 1 < line.size(); ++i) {
        const double length =
            std::max(1.0, std::hypot(line[i + 1].x - line[i].x, line[i + 1].y - line[i].y));
        for (double t = 0.0; t <= 1.0; t += 0.5 / length)
            plot(picture, line[i].x + t * (line[i + 1].x - line[i].x),
                 line[i].y + t * (line[i + 1].y - line[i].y), colour);
    }
}

RunStatus writeOverlay(FilePixels picture, const LineDetection& found, const std::string& path) {
    if (picture.isFloat) return RunStatus::failure(ExitCode::Usage, "overlay needs whole numbers");
    for (uint16_t& w : picture.words) w = static_cast<uint16_t>(w / 2);
    const uint16_t green[3] = {0, 65535, 0}, red[3] = {65535, 0, 0}, orange[3] = {65535, 40000, 0};
    for (const RejectedLine& line : found.rejected)
        draw(picture, line.points, line.why == LineRejection::kOutlier ? red : orange);
    for (const Polyline& line : found.lines) draw(picture, line, green);
    RgbSamples samples;
    samples.type = SampleType::Sixteen;
    samples.sixteens = picture.words;
    return writeImage(path, picture.width, picture.height, samples);
}
}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: line_eval IMAGE [--overlay OUT.png] [--lines OUT.json]\n");
        return 2;
    }
    configureImageLibrary();
    std::string overlay, linesPath;
    int threads = 1;
    for (int i = 2; i + 1 < argc; i += 2) {
        if (!std::strcmp(argv[i], "--overlay")) overlay = argv[i + 1];
        if (!std::strcmp(argv[i], "--lines")) linesPath = argv[i + 1];
        if (!std::strcmp(argv[i], "--threads")) threads = std::atoi(argv[i + 1]);
    }
    FilePixels picture;
    int depth = 0;
    RunStatus status = decodeImage(argv[1], ReadRequest(), &picture, &depth);
    LinesFound found;
    const auto start = std::chrono::steady_clock::now();
    if (status.ok()) status = detectPictureLines(picture, argv[1], &found, threads);
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const LineDetection& d = found.detection;
    size_t points = 0;
    for (const Polyline& line : d.lines) points += line.size();
    std::printf("lines %zu points %zu rejected %zu short %zu model k1 %.5f k2 %.5f seconds %.3f\n",
                d.lines.size(), points, d.rejected.size(), d.shortPieces, d.radial1, d.radial2,
                seconds);
    std::fputs(rejectionReport(d).c_str(), stdout);
    if (!overlay.empty()) {
        const RunStatus written = writeOverlay(picture, d, overlay);
        if (!written.ok()) std::fprintf(stderr, "%s\n", written.message.c_str());
    }
    if (status.ok() && !linesPath.empty()) {
        FILE* f = std::fopen(linesPath.c_str(), "w");
        if (f) {
            std::fputs(formatLinesText(found.lines).c_str(), f);
            std::fclose(f);
        }
    }
    if (!status.ok()) std::fprintf(stderr, "line_eval: %s\n", status.message.c_str());
    return status.ok() ? 0 : static_cast<int>(status.code);
}
