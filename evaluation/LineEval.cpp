// line_eval: the evaluation's measures, and the line detector on one picture
// for looking at what it does.
//   line_eval detect IMAGE [--overlay OUT.png] [--lines OUT.json] [--threads N]
//       the lines kept and rejected and the detector's own model; the overlay
//       draws kept lines green, outliers red, other rejections orange
//   line_eval displacement W H K1 K2 K1' K2'
//       the largest displacement in pixels between two models over the
//       points within 0.7 of the half-diagonal from the centre
//   line_eval hand EDGES.json MARGIN W H K1 K2 SEED OUT.json
//       the stand-in for careful hand-drawn lines: the longest edges of the
//       undistorted picture away from the centre that look straight there
//       (within 0.5 px RMS; EDGES.json, drawn MARGIN pixels larger on every
//       side), eleven points along each, carried into the distorted frame by
//       the true model, with 0.5 px of hand noise
//   line_eval straightness EDGES.json MARGIN W H K1 K2 K1' K2'
//       the straight edges carried into the distorted frame by the true
//       model (K1, K2) and straightened by the fitted one (K1', K2'): the
//       RMS and the largest of their RMS distances from straight, pixels
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "ImageFiles.h"
#include "LineDetection.h"
#include "RadialModel.h"
#include "ZelRandom.h"
#include "ZelRandomDistributions.h"

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

int detectMain(int argc, char** argv) {
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

namespace {
const double kHandNoise = 0.5;       // pixels: a careful click at full size
const size_t kHandLines = 12;        // lines a careful user draws
const int kHandPoints = 11;          // points along each
const double kStraightEnough = 0.5;  // pixels RMS from straight, as drawn on
const double kInsideRadius = 0.7;    // of the half-diagonal

// The image point d whose straightened position is q (fixed point on the
// radial factor).
PlanePoint distort(const RadialFrame& f, PlanePoint q, double k1, double k2) {
    const double u = (q.x - f.centreX) / f.halfDiagonal, v = (q.y - f.centreY) / f.halfDiagonal;
    double s = 1.0;
    for (int i = 0; i < 500; ++i) {
        const double r2 = (u * u + v * v) * s * s;
        s = 1.0 / (1.0 + k1 * r2 + k2 * r2 * r2);
    }
    return {f.centreX + u * s * f.halfDiagonal, f.centreY + v * s * f.halfDiagonal};
}

bool readEdges(const char* path, LinesFile& edges) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    std::string error;
    if (!parseLinesText(text.str(), edges, error)) {
        std::fprintf(stderr, "line_eval: %s: %s\n", path, error.c_str());
        return false;
    }
    return true;
}

// Each edge (less the margin) sampled at `count` points evenly along its
// length and carried into the distorted frame; points off the frame are
// dropped. A rendered scene's edges are straight; a photograph's are where
// its own lens and the world put them, as a careful user clicking on the
// edge would follow them.
std::vector<Polyline> carried(const LinesFile& edges, double margin, int w, int h, double k1,
                              double k2, int count) {
    const RadialFrame frame = RadialFrame::of(w, h);
    std::vector<Polyline> lines;
    for (const auto& edge : edges.lines) {
        std::vector<double> along(edge.size(), 0.0);
        for (size_t i = 1; i < edge.size(); ++i)
            along[i] =
                along[i - 1] + std::hypot(edge[i].x - edge[i - 1].x, edge[i].y - edge[i - 1].y);
        Polyline line;
        size_t segment = 0;
        for (int i = 0; i < count; ++i) {
            const double target = along.back() * i / (count - 1);
            while (segment + 2 < edge.size() && along[segment + 1] < target) ++segment;
            const double span = along[segment + 1] - along[segment];
            const double t = span > 0.0 ? (target - along[segment]) / span : 0.0;
            const PlanePoint q{
                edge[segment].x + t * (edge[segment + 1].x - edge[segment].x) - margin,
                edge[segment].y + t * (edge[segment + 1].y - edge[segment].y) - margin};
            const PlanePoint d = distort(frame, q, k1, k2);
            if (d.x >= 2 && d.y >= 2 && d.x <= w - 3 && d.y <= h - 3) line.push_back(d);
        }
        if (line.size() >= 3) lines.push_back(line);
    }
    return lines;
}

double extent(const Polyline& line) {
    return std::hypot(line.back().x - line.front().x, line.back().y - line.front().y);
}

int displacementMain(char** argv) {
    const int w = std::atoi(argv[2]), h = std::atoi(argv[3]);
    const double r = 0.5 * std::hypot(double(w), double(h));
    const double dk1 = std::atof(argv[4]) - std::atof(argv[6]);
    const double dk2 = std::atof(argv[5]) - std::atof(argv[7]);
    double worst = 0.0;
    for (int i = 0; i <= 7000; ++i) {
        const double rho = kInsideRadius * i / 7000.0, rho2 = rho * rho;
        worst = std::max(worst, r * rho * std::fabs(dk1 * rho2 + dk2 * rho2 * rho2));
    }
    std::printf("%.4f\n", worst);
    return 0;
}

// RMS distance of a polyline from its best straight line, pixels.
double crookedness(const std::vector<LinePoint>& edge) {
    const RadialFrame anyFrame = RadialFrame::of(2, 2);
    StraightnessMoments m;
    for (const LinePoint& p : edge) m.add(anyFrame, {p.x, p.y});
    return std::sqrt(m.meanSquare(anyFrame, 0.0, 0.0));
}

int handMain(char** argv) {
    LinesFile edges;
    if (!readEdges(argv[2], edges)) return 3;
    // A careful user draws only what looks straight in the picture as it is.
    auto crooked = [](const std::vector<LinePoint>& edge) {
        return crookedness(edge) > kStraightEnough;
    };
    edges.lines.erase(std::remove_if(edges.lines.begin(), edges.lines.end(), crooked),
                      edges.lines.end());
    const double margin = std::atof(argv[3]);
    const int w = std::atoi(argv[4]), h = std::atoi(argv[5]);
    std::vector<Polyline> lines =
        carried(edges, margin, w, h, std::atof(argv[6]), std::atof(argv[7]), kHandPoints);
    // A careful user draws long lines away from the centre, where the lens
    // bends them (a line through the centre stays straight at any setting).
    const RadialFrame frame = RadialFrame::of(w, h);
    auto worth = [&](const Polyline& line) {
        const PlanePoint& a = line.front();
        const PlanePoint& b = line.back();
        const double away =
            std::fabs((frame.centreX - a.x) * (b.y - a.y) - (frame.centreY - a.y) * (b.x - a.x)) /
            std::max(extent(line), 1e-9);
        return extent(line) * std::min(1.0, away / (0.3 * frame.halfDiagonal));
    };
    std::stable_sort(lines.begin(), lines.end(),
                     [&](const Polyline& a, const Polyline& b) { return worth(a) > worth(b); });
    ZelPcg32 random(std::strtoull(argv[8], nullptr, 10));
    LinesFile hand;
    for (size_t i = 0; i < lines.size() && hand.lines.size() < kHandLines; ++i) {
        if (extent(lines[i]) < 0.1 * w) break;
        std::vector<LinePoint> points;
        for (const PlanePoint& p : lines[i]) {
            const double x = std::clamp(p.x + kHandNoise * zelNormal(random), 0.0, w - 1.0);
            const double y = std::clamp(p.y + kHandNoise * zelNormal(random), 0.0, h - 1.0);
            points.push_back({x, y});
        }
        hand.lines.push_back(points);
    }
    std::ofstream(argv[9]) << formatLinesText(hand);
    std::printf("%zu\n", hand.lines.size());
    return hand.lines.empty() ? 3 : 0;
}

int straightnessMain(char** argv) {
    LinesFile edges;
    if (!readEdges(argv[2], edges)) return 3;
    const double margin = std::atof(argv[3]);
    const int w = std::atoi(argv[4]), h = std::atoi(argv[5]);
    const std::vector<Polyline> lines =
        carried(edges, margin, w, h, std::atof(argv[6]), std::atof(argv[7]), 60);
    const RadialFrame frame = RadialFrame::of(w, h);
    double sum = 0.0, worst = 0.0;
    size_t counted = 0;
    for (const Polyline& line : lines) {
        if (extent(line) < 0.1 * w) continue;
        StraightnessMoments m;
        for (const PlanePoint& p : line) m.add(frame, p);
        const double rms = std::sqrt(m.meanSquare(frame, std::atof(argv[8]), std::atof(argv[9])));
        sum += rms * rms;
        worst = std::max(worst, rms);
        ++counted;
    }
    std::printf("%.4f %.4f %zu\n", counted ? std::sqrt(sum / counted) : 0.0, worst, counted);
    return 0;
}
}  // namespace

int main(int argc, char** argv) {
    const std::string what = argc > 1 ? argv[1] : "";
    if (what == "detect" && argc >= 3) return detectMain(argc - 1, argv + 1);
    if (what == "displacement" && argc == 8) return displacementMain(argv);
    if (what == "hand" && argc == 10) return handMain(argv);
    if (what == "straightness" && argc == 10) return straightnessMain(argv);
    std::fprintf(stderr, "usage: see the top of evaluation/LineEval.cpp\n");
    return 2;
}
