// scene_render: draws an evaluation scene off screen with OSMesa, with
// perspective, supersampled and averaged down, and writes it as a 16-bit
// PNG; with --truth it also writes the scene's straight edges as seen
// (unoccluded stretches, image pixels, y down) as a lines file.
//   scene_render KIND WIDTH HEIGHT SEED OUT.png [--truth EDGES.json]
#include <GL/gl.h>
#include <GL/osmesa.h>
#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "Scene.h"
#include "SceneTextures.h"

namespace {
const double kDegrees = 3.14159265358979323846 / 180.0;
const double kNear = 0.1, kFar = 1000.0;

struct View {
    double m[16];  // column-major model-view
    double top = 0.0, right = 0.0;
    int width = 0, height = 0;  // the rendered (supersampled) size
};

Vec3 cross(Vec3 a, Vec3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Vec3 unit(Vec3 a) {
    const double l = std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
    return {a.x / l, a.y / l, a.z / l};
}

View makeView(const Camera& c, int width, int height) {
    View v;
    v.width = width;
    v.height = height;
    const Vec3 f = unit({std::sin(c.yaw * kDegrees) * std::cos(c.pitch * kDegrees),
                         std::sin(c.pitch * kDegrees),
                         std::cos(c.yaw * kDegrees) * std::cos(c.pitch * kDegrees)});
    Vec3 r = unit(cross(f, {0, 1, 0}));
    Vec3 u = cross(r, f);
    const double cr = std::cos(c.roll * kDegrees), sr = std::sin(c.roll * kDegrees);
    const Vec3 r2 = cr * r + sr * u, u2 = cr * u - sr * r;
    r = r2;
    u = u2;
    const double rows[3][3] = {{r.x, r.y, r.z}, {u.x, u.y, u.z}, {-f.x, -f.y, -f.z}};
    std::memset(v.m, 0, sizeof v.m);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) v.m[j * 4 + i] = rows[i][j];
        v.m[12 + i] = -(rows[i][0] * c.eye.x + rows[i][1] * c.eye.y + rows[i][2] * c.eye.z);
    }
    v.m[15] = 1.0;
    v.top = kNear * std::tan(0.5 * c.fovY * kDegrees);
    v.right = v.top * width / height;
    return v;
}

// Image position (pixel centres at integers, y down) and depth of a world point.
bool project(const View& v, Vec3 p, int outWidth, int outHeight, double& x, double& y, double& z) {
    const double cx = v.m[0] * p.x + v.m[4] * p.y + v.m[8] * p.z + v.m[12];
    const double cy = v.m[1] * p.x + v.m[5] * p.y + v.m[9] * p.z + v.m[13];
    const double cz = v.m[2] * p.x + v.m[6] * p.y + v.m[10] * p.z + v.m[14];
    if (cz > -kNear) return false;
    const double nx = kNear * cx / -cz / v.right, ny = kNear * cy / -cz / v.top;
    x = (nx + 1.0) * 0.5 * outWidth - 0.5;
    y = outHeight - (ny + 1.0) * 0.5 * outHeight - 0.5;
    z = -cz;
    return true;
}

void drawScene(const Scene& scene, const View& view) {
    glViewport(0, 0, view.width, view.height);
    glClearColor(scene.sky[0], scene.sky[1], scene.sky[2], 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_ALPHA_TEST);
    glAlphaFunc(GL_GREATER, 0.5f);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-view.right, view.right, -view.top, view.top, kNear, kFar);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(view.m);
    std::map<Texture, GLuint> textures;
    for (const Quad& q : scene.quads) {
        if (q.texture != Texture::kNone && !textures.count(q.texture)) {
            const int size = 512;
            const std::vector<uint8_t> pixels = makeTexture(q.texture, size);
            GLuint id = 0;
            glGenTextures(1, &id);
            glBindTexture(GL_TEXTURE_2D, id);
            glTexParameteri(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, GL_TRUE);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
            glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, size, size, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                         pixels.data());
            textures[q.texture] = id;
        }
        if (q.texture != Texture::kNone) {
            glEnable(GL_TEXTURE_2D);
            glBindTexture(GL_TEXTURE_2D, textures[q.texture]);
            glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
        } else {
            glDisable(GL_TEXTURE_2D);
        }
        const double t[4][2] = {{0, 0}, {q.repeat, 0}, {q.repeat, q.repeat}, {0, q.repeat}};
        glColor3f(q.colour[0], q.colour[1], q.colour[2]);
        glBegin(GL_QUADS);
        for (int i = 0; i < 4; ++i) {
            glTexCoord2d(t[i][0], t[i][1]);
            glVertex3d(q.corner[i].x, q.corner[i].y, q.corner[i].z);
        }
        glEnd();
    }
    glFinish();
}

// Unoccluded stretches of the straight edges, sampled every few pixels.
std::string truthLines(const Scene& scene, const View& view, int width, int height,
                       const std::vector<float>& depth) {
    const double factor = double(view.width) / width;
    std::string text = "{\"lines\": [";
    bool firstLine = true;
    auto visible = [&](double x, double y, double z) {
        const long sx = std::lround((x + 0.5) * factor - 0.5),
                   sy = std::lround((y + 0.5) * factor - 0.5);
        for (long dy = -2; dy <= 2; ++dy)
            for (long dx = -2; dx <= 2; ++dx) {
                const long px = sx + dx, py = sy + dy;
                if (px < 0 || py < 0 || px >= view.width || py >= view.height) continue;
                // Depth buffer rows bottom first; window depth to eye distance.
                const double d = depth[static_cast<size_t>(view.height - 1 - py) * view.width + px];
                const double ndc = 2.0 * d - 1.0;
                const double eye = 2.0 * kNear * kFar / (kFar + kNear - ndc * (kFar - kNear));
                if (eye >= z * (1.0 - 2e-3)) return true;
            }
        return false;
    };
    for (const auto& edge : scene.straightEdges) {
        std::vector<std::pair<double, double>> run;
        auto flush = [&] {
            if (run.size() >= 2 &&
                std::hypot(run.back().first - run.front().first,
                           run.back().second - run.front().second) > 0.05 * width) {
                text += firstLine ? "\n[" : ",\n[";
                firstLine = false;
                for (size_t i = 0; i < run.size(); ++i) {
                    char b[64];
                    std::snprintf(b, sizeof b, "%s[%.4f, %.4f]", i ? ", " : "", run[i].first,
                                  run[i].second);
                    text += b;
                }
                text += "]";
            }
            run.clear();
        };
        const int steps = 400;
        for (int i = 0; i <= steps; ++i) {
            const Vec3 p = edge.first + (double(i) / steps) * (edge.second - edge.first);
            double x, y, z;
            const bool in = project(view, p, width, height, x, y, z) && x >= 1 && y >= 1 &&
                            x <= width - 2 && y <= height - 2 && visible(x, y, z);
            if (in)
                run.push_back({x, y});
            else
                flush();
        }
        flush();
    }
    return text + "\n]}\n";
}
}  // namespace

int main(int argc, char** argv) {
    if (argc < 6) {
        std::fprintf(stderr,
                     "usage: scene_render KIND WIDTH HEIGHT SEED OUT.png [--truth EDGES.json]\n");
        return 2;
    }
    const std::string kind = argv[1];
    const int width = std::atoi(argv[2]), height = std::atoi(argv[3]);
    const unsigned seed = static_cast<unsigned>(std::atoi(argv[4]));
    const std::string out = argv[5];
    const std::string truth = argc >= 8 && !std::strcmp(argv[6], "--truth") ? argv[7] : "";
    Scene scene;
    if (width < 16 || height < 16 || !buildScene(kind, seed, double(width) / height, scene)) {
        std::fprintf(stderr, "scene_render: bad kind or size\n");
        return 2;
    }
    // Supersampled three times each way (twice above 2.5K, for memory).
    const int factor = std::max(1, std::min(width > 2500 ? 2 : 3, 16384 / std::max(width, height)));
    const int sw = width * factor, sh = height * factor;
    std::vector<uint8_t> buffer(static_cast<size_t>(sw) * sh * 4);
    OSMesaContext context = OSMesaCreateContextExt(OSMESA_RGBA, 24, 0, 0, nullptr);
    if (!context || !OSMesaMakeCurrent(context, buffer.data(), GL_UNSIGNED_BYTE, sw, sh)) {
        std::fprintf(stderr, "scene_render: no OSMesa context\n");
        return 4;
    }
    const View view = makeView(scene.camera, sw, sh);
    drawScene(scene, view);
    std::vector<float> depth(static_cast<size_t>(sw) * sh);
    glReadPixels(0, 0, sw, sh, GL_DEPTH_COMPONENT, GL_FLOAT, depth.data());
    const int f = sw / width;
    std::vector<uint16_t> pixels(static_cast<size_t>(width) * height * 3);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 3; ++c) {
                double sum = 0.0;
                for (int j = 0; j < f; ++j)
                    for (int i = 0; i < f; ++i)
                        sum += buffer[(static_cast<size_t>(sh - 1 - (y * f + j)) * sw + x * f + i) *
                                          4 +
                                      c];
                pixels[(static_cast<size_t>(y) * width + x) * 3 + c] =
                    static_cast<uint16_t>(std::lround(sum / (f * f) * 257.0));
            }
    if (!truth.empty()) {
        FILE* file = std::fopen(truth.c_str(), "w");
        if (file) {
            std::fputs(truthLines(scene, view, width, height, depth).c_str(), file);
            std::fclose(file);
        }
    }
    OSMesaDestroyContext(context);
    auto image = OIIO::ImageOutput::create(out);
    OIIO::ImageSpec spec(width, height, 3, OIIO::TypeDesc::UINT16);
    if (!image || !image->open(out, spec) ||
        !image->write_image(OIIO::TypeDesc::UINT16, pixels.data()) || !image->close()) {
        std::fprintf(stderr, "scene_render: cannot write %s\n", out.c_str());
        return 4;
    }
    return 0;
}
