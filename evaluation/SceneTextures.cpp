// Procedural textures.
#include "SceneTextures.h"

#include <algorithm>
#include <cmath>

namespace {
uint32_t hash(int x, int y, uint32_t seed) {
    uint32_t h = static_cast<uint32_t>(x) * 374761393u + static_cast<uint32_t>(y) * 668265263u +
                 seed * 2246822519u;
    h = (h ^ (h >> 13)) * 1274126177u;
    return h ^ (h >> 16);
}

// Smooth value noise in 0..1 with period `period` cells (wraps on the texture).
double valueNoise(double x, double y, int period, uint32_t seed) {
    const int x0 = static_cast<int>(std::floor(x)), y0 = static_cast<int>(std::floor(y));
    const double fx = x - x0, fy = y - y0;
    auto v = [&](int i, int j) {
        return (hash(((i % period) + period) % period, ((j % period) + period) % period, seed) &
                0xffff) /
               65535.0;
    };
    const double sx = fx * fx * (3 - 2 * fx), sy = fy * fy * (3 - 2 * fy);
    const double top = v(x0, y0) * (1 - sx) + v(x0 + 1, y0) * sx;
    const double bottom = v(x0, y0 + 1) * (1 - sx) + v(x0 + 1, y0 + 1) * sx;
    return top * (1 - sy) + bottom * sy;
}

double fractal(double u, double v, int baseCells, int octaves, uint32_t seed) {
    double sum = 0.0, weight = 1.0, total = 0.0;
    int cells = baseCells;
    for (int o = 0; o < octaves; ++o) {
        sum += weight * valueNoise(u * cells, v * cells, cells, seed + o);
        total += weight;
        weight *= 0.55;
        cells *= 2;
    }
    return sum / total;
}
}  // namespace

std::vector<uint8_t> makeTexture(Texture kind, int size) {
    std::vector<uint8_t> rgba(static_cast<size_t>(size) * size * 4, 255);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const double u = double(x) / size, v = double(y) / size;
            double r = 1, g = 1, b = 1;
            switch (kind) {
                case Texture::kGrass: {
                    const double n = fractal(u, v, 32, 4, 11);
                    const double blades = fractal(u * 1.0, v * 0.25, 64, 3, 12);
                    const double t =
                        std::clamp(0.3 + 1.2 * (n - 0.5) + 0.9 * (blades - 0.5), 0.0, 1.0);
                    r = 0.25 + 0.35 * t;
                    g = 0.35 + 0.55 * t;
                    b = 0.15 + 0.2 * t;
                    break;
                }
                case Texture::kLeaves: {
                    const double n = fractal(u, v, 24, 4, 21);
                    const double t = n > 0.52 ? 1.0 : n > 0.45 ? 0.55 : 0.15;
                    r = 0.1 + 0.3 * t;
                    g = 0.2 + 0.6 * t;
                    b = 0.08 + 0.15 * t;
                    break;
                }
                case Texture::kPlaster: {
                    const double n = fractal(u, v, 16, 5, 31);
                    r = g = b = 0.9 + 0.2 * (n - 0.5);
                    break;
                }
                case Texture::kWood: {
                    const double n = fractal(u * 0.2, v * 4.0, 8, 4, 41);
                    r = 0.85 + 0.3 * (n - 0.5);
                    g = 0.8 + 0.3 * (n - 0.5);
                    b = 0.75 + 0.3 * (n - 0.5);
                    break;
                }
                case Texture::kBark: {
                    const double n = fractal(u * 4.0, v * 0.5, 16, 4, 51);
                    r = g = b = 0.6 + 0.8 * (n - 0.5);
                    break;
                }
                case Texture::kGravel: {
                    const double n = fractal(u, v, 64, 3, 61);
                    r = g = b = 0.85 + 0.5 * (n - 0.5);
                    break;
                }
                case Texture::kNone:
                    break;
            }
            uint8_t* p = &rgba[(static_cast<size_t>(y) * size + x) * 4];
            // Leaves are cut out where the noise is low: ragged crowns.
            if (kind == Texture::kLeaves && fractal(u, v, 24, 4, 21) < 0.42) p[3] = 0;
            p[0] = static_cast<uint8_t>(std::clamp(r, 0.0, 1.0) * 255.0 + 0.5);
            p[1] = static_cast<uint8_t>(std::clamp(g, 0.0, 1.0) * 255.0 + 0.5);
            p[2] = static_cast<uint8_t>(std::clamp(b, 0.0, 1.0) * 255.0 + 0.5);
        }
    return rgba;
}
