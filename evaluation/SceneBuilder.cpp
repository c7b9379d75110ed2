// The evaluation scenes: buildings, rooms, corridors, charts, nature.
#include <cmath>
#include <cstdint>

#include "Scene.h"

namespace {
struct Random {
    uint64_t state;
    double next() {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return double(state >> 11) * 0x1p-53;
    }
    double between(double a, double b) { return a + (b - a) * next(); }
};

void colour(Quad& q, float r, float g, float b) {
    q.colour[0] = r;
    q.colour[1] = g;
    q.colour[2] = b;
}

// A quad from an origin and two edge vectors.
Quad quad(Vec3 o, Vec3 u, Vec3 v, float r, float g, float b, Texture t = Texture::kNone,
          double repeat = 1.0) {
    Quad q;
    q.corner[0] = o;
    q.corner[1] = o + u;
    q.corner[2] = o + u + v;
    q.corner[3] = o + v;
    colour(q, r, g, b);
    q.texture = t;
    q.repeat = repeat;
    return q;
}

void edgesOf(Scene& s, const Quad& q) {
    for (int i = 0; i < 4; ++i) s.straightEdges.push_back({q.corner[i], q.corner[(i + 1) % 4]});
}

// A box building standing on the ground at x0..x1, z0..z1, with windows on
// the faces towards -z and +x.
void building(Scene& s, Random& rnd, double x0, double x1, double z0, double z1, double h) {
    const float base = static_cast<float>(rnd.between(0.45, 0.8));
    const float tint = static_cast<float>(rnd.between(-0.08, 0.08));
    Quad front = quad({x0, 0, z0}, {x1 - x0, 0, 0}, {0, h, 0}, base + tint, base, base - tint,
                      Texture::kPlaster, 3.0);
    Quad side = quad({x1, 0, z0}, {0, 0, z1 - z0}, {0, h, 0}, 0.75f * (base + tint), 0.75f * base,
                     0.75f * (base - tint), Texture::kPlaster, 3.0);
    Quad left = quad({x0, 0, z1}, {0, 0, z0 - z1}, {0, h, 0}, 0.6f * base, 0.6f * base, 0.6f * base,
                     Texture::kPlaster, 3.0);
    Quad roof = quad({x0, h, z0}, {x1 - x0, 0, 0}, {0, 0, z1 - z0}, 0.3f, 0.28f, 0.27f);
    s.quads.insert(s.quads.end(), {front, side, left, roof});
    edgesOf(s, front);
    edgesOf(s, side);
    const double floorHeight = rnd.between(2.8, 3.6), spacing = rnd.between(2.0, 3.2);
    const float glass = static_cast<float>(rnd.between(0.1, 0.3));
    for (double y = 1.0; y + 1.6 < h; y += floorHeight) {
        for (double x = x0 + 0.8; x + 1.4 < x1; x += spacing) {
            const Quad w = quad({x, y, z0 - 0.02}, {1.3, 0, 0}, {0, 1.6, 0}, glass, glass + 0.05f,
                                glass + 0.1f);
            s.quads.push_back(w);
            edgesOf(s, w);
        }
        for (double z = z0 + 0.8; z + 1.4 < z1; z += spacing) {
            const Quad w = quad({x1 + 0.02, y, z}, {0, 0, 1.3}, {0, 1.6, 0}, glass, glass + 0.05f,
                                glass + 0.1f);
            s.quads.push_back(w);
            edgesOf(s, w);
        }
    }
}

// A tree: a trunk and a crown of leaf-textured quads facing several ways.
void tree(Scene& s, Random& rnd, double x, double z, double size) {
    s.quads.push_back(quad({x - 0.15 * size, 0, z}, {0.3 * size, 0, 0}, {0, 2.0 * size, 0}, 0.35f,
                           0.25f, 0.15f, Texture::kBark, 1.0));
    for (int i = 0; i < 4; ++i) {
        const double a = i * 0.785 + rnd.between(0.0, 0.3);
        const Vec3 u{std::cos(a) * 3.0 * size, 0, std::sin(a) * 3.0 * size};
        s.quads.push_back(quad(Vec3{x, 1.5 * size, z} - 0.5 * u, u, {0, 3.0 * size, 0}, 0.9f, 1.0f,
                               0.9f, Texture::kLeaves, 1.5));
    }
}

void street(Scene& s, Random& rnd) {
    s.quads.push_back(quad({-200, 0, -200}, {400, 0, 0}, {0, 0, 400}, 0.45f, 0.45f, 0.43f,
                           Texture::kGravel, 150.0));
    double x = -30.0;
    while (x < 30.0) {
        const double width = rnd.between(8.0, 16.0), depth = rnd.between(8.0, 14.0);
        const double z = rnd.between(18.0, 30.0), h = rnd.between(7.0, 30.0);
        building(s, rnd, x, x + width, z, z + depth, h);
        x += width + rnd.between(1.0, 6.0);
    }
    for (int i = 0; i < 4; ++i) tree(s, rnd, rnd.between(-12, 12), rnd.between(8, 15), 1.2);
    s.camera.eye = {rnd.between(-3, 3), 1.7, 0};
    s.camera.yaw = rnd.between(-20, 20);
    s.camera.pitch = rnd.between(4, 12);
    s.camera.fovY = rnd.between(45, 65);
}

// A room w x 3 x length with tiled floor, a door, a window, pictures and a table.
void room(Scene& s, Random& rnd, double length, double w) {
    const double h = 3.0;
    const float wall = static_cast<float>(rnd.between(0.7, 0.9));
    s.quads.push_back(quad({0, 0, 0}, {0, 0, length}, {0, h, 0}, wall, wall, 0.95f * wall,
                           Texture::kPlaster, 4.0));
    s.quads.push_back(quad({w, 0, length}, {0, 0, -length}, {0, h, 0}, 0.85f * wall, 0.85f * wall,
                           0.8f * wall, Texture::kPlaster, 4.0));
    s.quads.push_back(quad({0, 0, length}, {w, 0, 0}, {0, h, 0}, 0.92f * wall, 0.9f * wall,
                           0.88f * wall, Texture::kPlaster, 4.0));
    s.quads.push_back(quad({0, h, 0}, {w, 0, 0}, {0, 0, length}, 0.95f, 0.95f, 0.95f));
    const double tile = rnd.between(0.4, 0.8);
    for (double x = 0; x < w - 1e-9; x += tile)
        for (double z = 0; z < length - 1e-9; z += tile) {
            const bool dark = (int(std::lround(x / tile)) + int(std::lround(z / tile))) % 2;
            const float v = dark ? 0.35f : 0.6f;
            s.quads.push_back(quad({x, 0, z}, {std::min(tile, w - x), 0, 0},
                                   {0, 0, std::min(tile, length - z)}, v, 0.95f * v, 0.9f * v,
                                   Texture::kWood, 1.0));
        }
    s.straightEdges.push_back({{0, 0, 0}, {0, 0, length}});
    s.straightEdges.push_back({{w, 0, 0}, {w, 0, length}});
    s.straightEdges.push_back({{0, h, 0}, {0, h, length}});
    s.straightEdges.push_back({{w, h, 0}, {w, h, length}});
    s.straightEdges.push_back({{0, 0, length}, {w, 0, length}});
    s.straightEdges.push_back({{0, h, length}, {w, h, length}});
    // Doors and pictures along both walls.
    for (double z = 1.5; z + 1.2 < length; z += rnd.between(3.0, 5.0)) {
        const Quad door =
            quad({0.02, 0, z}, {0, 0, 1.0}, {0, 2.1, 0}, 0.45f, 0.3f, 0.2f, Texture::kWood, 1.0);
        const Quad frame =
            quad({w - 0.02, 1.0, z + 1.0}, {0, 0, -1.1}, {0, 0.8, 0}, 0.15f, 0.2f, 0.35f);
        s.quads.push_back(door);
        s.quads.push_back(frame);
        edgesOf(s, door);
        edgesOf(s, frame);
    }
    const Quad window =
        quad({2.0, 0.9, length - 0.02}, {3.0, 0, 0}, {0, 1.6, 0}, 0.85f, 0.9f, 1.0f);
    s.quads.push_back(window);
    edgesOf(s, window);
    s.camera.eye = {rnd.between(0.35, 0.65) * w, 1.6, 0.3};
    s.camera.yaw = rnd.between(-15, 15);
    s.camera.pitch = rnd.between(-8, 5);
    s.camera.fovY = rnd.between(50, 70);
}

void chart(Scene& s, Random& rnd) {
    const int columns = 16, rows = 9;
    const double cell = 0.5;
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < columns; ++c) {
            const float v = (r + c) % 2 ? 0.08f : 0.92f;
            s.quads.push_back(quad({(c - columns / 2.0) * cell, (r - rows / 2.0) * cell, 0},
                                   {cell, 0, 0}, {0, cell, 0}, v, v, v));
        }
    s.quads.push_back(quad({-6, -4, 0.01}, {12, 0, 0}, {0, 8, 0}, 0.5f, 0.5f, 0.5f));
    // The rows and columns of the board.
    const double left = -columns / 2.0 * cell, bottom = -rows / 2.0 * cell;
    for (int r = 0; r <= rows; ++r)
        s.straightEdges.push_back(
            {{left, bottom + r * cell, 0}, {left + columns * cell, bottom + r * cell, 0}});
    for (int c = 0; c <= columns; ++c)
        s.straightEdges.push_back(
            {{left + c * cell, bottom, 0}, {left + c * cell, bottom + rows * cell, 0}});
    s.camera.eye = {rnd.between(-0.3, 0.3), rnd.between(-0.2, 0.2), -5.0};
    s.camera.yaw = rnd.between(-8, 8);
    s.camera.pitch = rnd.between(-6, 6);
    s.camera.roll = rnd.between(-3, 3);
    s.camera.fovY = 2.0 * std::atan(2.4 / 5.0) * 57.29577951308232;
}

void nature(Scene& s, Random& rnd) {
    s.quads.push_back(
        quad({-200, 0, -200}, {400, 0, 0}, {0, 0, 400}, 0.5f, 0.7f, 0.4f, Texture::kGrass, 120.0));
    for (int i = 0; i < 60; ++i)
        tree(s, rnd, rnd.between(-25, 25), rnd.between(4, 40), rnd.between(0.8, 2.0));
    s.camera.eye = {0, 1.7, 0};
    s.camera.pitch = rnd.between(0, 8);
    s.camera.fovY = 55;
}
}  // namespace

bool buildScene(const std::string& kind, unsigned seed, double aspect, Scene& scene) {
    (void)aspect;
    Random rnd{0x9E3779B97F4A7C15ULL * (seed + 1)};
    for (int i = 0; i < 4; ++i) rnd.next();
    if (kind == "building") {
        street(scene, rnd);
    } else if (kind == "room") {
        room(scene, rnd, 8.0, 7.0);
    } else if (kind == "corridor") {
        room(scene, rnd, 40.0, 2.6);
        scene.camera.eye.x = 1.3;
        scene.camera.yaw = rnd.between(-5, 5);
    } else if (kind == "chart") {
        chart(scene, rnd);
    } else if (kind == "nature" || kind == "foliage") {
        nature(scene, rnd);
        if (kind == "foliage") {
            // A hedge filling the view: two layers of leaves.
            for (int layer = 0; layer < 2; ++layer)
                scene.quads.push_back(quad({-8.0 - layer, -4, 3.0 + 0.7 * layer}, {16, 0, 0},
                                           {0, 12, 0}, 0.9f - 0.3f * layer, 1.0f - 0.3f * layer,
                                           0.9f - 0.3f * layer, Texture::kLeaves, 3.0 + layer));
            scene.camera.pitch = 0.0;
        }
    } else if (kind == "flat") {
        scene.quads.push_back(quad({-100, -100, 10}, {200, 0, 0}, {0, 200, 0}, 0.5f, 0.5f, 0.5f));
    } else {
        return false;
    }
    return true;
}
