// The radial model and the straightness moments.
#include "RadialModel.h"

#include <cmath>

RadialFrame RadialFrame::of(int width, int height) {
    RadialFrame frame;
    frame.centreX = 0.5 * width;
    frame.centreY = (height - 1) - 0.5 * height;
    frame.halfDiagonal = std::sqrt(0.25 * width * width + 0.25 * height * height);
    return frame;
}

PlanePoint RadialFrame::straighten(const PlanePoint& p, double k1, double k2) const {
    const double u = (p.x - centreX) / halfDiagonal, v = (p.y - centreY) / halfDiagonal;
    const double r2 = u * u + v * v;
    const double f = 1.0 + k1 * r2 + k2 * r2 * r2;
    return {centreX + u * f * halfDiagonal, centreY + v * f * halfDiagonal};
}

void StraightnessMoments::add(const RadialFrame& frame, const PlanePoint& p) {
    const double u = (p.x - frame.centreX) / frame.halfDiagonal;
    const double v = (p.y - frame.centreY) / frame.halfDiagonal;
    const double r2 = u * u + v * v;
    const double scale[3] = {1.0, r2, r2 * r2};
    double vec[3][2];
    for (int j = 0; j < 3; ++j) {
        vec[j][0] = u * scale[j];
        vec[j][1] = v * scale[j];
    }
    count += 1.0;
    for (int j = 0; j < 3; ++j) {
        sum[j][0] += vec[j][0];
        sum[j][1] += vec[j][1];
        for (int k = 0; k < 3; ++k)
            for (int a = 0; a < 2; ++a)
                for (int b = 0; b < 2; ++b) product[j][k][a][b] += vec[j][a] * vec[k][b];
    }
}

void StraightnessMoments::add(const StraightnessMoments& other) {
    count += other.count;
    for (int j = 0; j < 3; ++j)
        for (int a = 0; a < 2; ++a) {
            sum[j][a] += other.sum[j][a];
            for (int k = 0; k < 3; ++k)
                for (int b = 0; b < 2; ++b) product[j][k][a][b] += other.product[j][k][a][b];
        }
}

double StraightnessMoments::meanSquare(const RadialFrame& frame, double k1, double k2) const {
    if (count < 2.0) return 0.0;
    const double w[3] = {1.0, k1, k2};
    double mean[2] = {0.0, 0.0}, second[2][2] = {};
    for (int j = 0; j < 3; ++j) {
        mean[0] += w[j] * sum[j][0];
        mean[1] += w[j] * sum[j][1];
        for (int k = 0; k < 3; ++k)
            for (int a = 0; a < 2; ++a)
                for (int b = 0; b < 2; ++b) second[a][b] += w[j] * w[k] * product[j][k][a][b];
    }
    mean[0] /= count;
    mean[1] /= count;
    const double cxx = second[0][0] / count - mean[0] * mean[0];
    const double cxy = second[0][1] / count - mean[0] * mean[1];
    const double cyy = second[1][1] / count - mean[1] * mean[1];
    const double half = 0.5 * (cxx - cyy);
    const double smaller = 0.5 * (cxx + cyy) - std::sqrt(half * half + cxy * cxy);
    const double r = frame.halfDiagonal;
    return smaller > 0.0 ? smaller * r * r : 0.0;
}
