// A scene for the evaluation renderer: coloured or textured quads in world
// units (metres, y up), a pinhole camera, and the world segments known to
// be straight edges (for the stand-in for hand-drawn lines).
#pragma once

#include <string>
#include <vector>

struct Vec3 {
    double x = 0.0, y = 0.0, z = 0.0;
};

inline Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator*(double s, Vec3 a) { return {s * a.x, s * a.y, s * a.z}; }

enum class Texture { kNone, kGrass, kLeaves, kPlaster, kWood, kBark, kGravel };

struct Quad {
    Vec3 corner[4];
    float colour[3] = {1, 1, 1};
    Texture texture = Texture::kNone;
    double repeat = 1.0;  // texture repeats across the quad
};

struct Camera {
    Vec3 eye;
    double yaw = 0.0;    // degrees, turning left
    double pitch = 0.0;  // degrees, looking up
    double roll = 0.0;
    double fovY = 50.0;  // vertical field of view, degrees
};

struct Scene {
    std::vector<Quad> quads;
    std::vector<std::pair<Vec3, Vec3>> straightEdges;
    Camera camera;
    float sky[3] = {0.6f, 0.7f, 0.85f};
    bool blurredForest = false;
};

// kind: building, room, corridor, chart, nature, flat; seed varies the layout.
bool buildScene(const std::string& kind, unsigned seed, double aspect, Scene& scene);
