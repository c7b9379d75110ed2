// degrade_image: what a camera adds after the lens: blur (Gaussian sigma in
// pixels), noise (sigma in fractions of full at mid grey, growing with the
// signal as shot noise does, seeded), and JPEG compression when OUT ends in
// .jpg (quality --jpeg, default 90).
//   degrade_image IN OUT [--crop M] [--blur S] [--noise N] [--jpeg Q] [--seed K]
// --crop M first cuts M pixels off every side (the frame drawn with a
// margin, so that a lens with barrel distortion finds picture there).
#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "FloatImageZel.h"
#include "ZelGaussianBlur.h"
#include "ZelRandom.h"
#include "ZelRandomDistributions.h"

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr,
                     "usage: degrade_image IN OUT [--crop M] [--blur S] [--noise N] [--jpeg Q] "
                     "[--seed K]\n");
        return 2;
    }
    double blur = 0.0, noise = 0.0;
    int quality = 90, crop = 0;
    unsigned long seed = 1;
    for (int i = 3; i + 1 < argc; i += 2) {
        if (!std::strcmp(argv[i], "--blur")) blur = std::atof(argv[i + 1]);
        if (!std::strcmp(argv[i], "--noise")) noise = std::atof(argv[i + 1]);
        if (!std::strcmp(argv[i], "--jpeg")) quality = std::atoi(argv[i + 1]);
        if (!std::strcmp(argv[i], "--seed")) seed = std::strtoul(argv[i + 1], nullptr, 10);
        if (!std::strcmp(argv[i], "--crop")) crop = std::atoi(argv[i + 1]);
    }
    auto in = OIIO::ImageInput::open(argv[1]);
    if (!in) {
        std::fprintf(stderr, "degrade_image: cannot read %s\n", argv[1]);
        return 3;
    }
    const OIIO::ImageSpec spec = in->spec();
    const int fullWidth = spec.width, channels = spec.nchannels;
    const int w = spec.width - 2 * crop, h = spec.height - 2 * crop;
    if (w < 1 || h < 1) {
        std::fprintf(stderr, "degrade_image: --crop %d leaves nothing\n", crop);
        return 2;
    }
    std::vector<float> whole(static_cast<size_t>(spec.width) * spec.height * channels);
    in->read_image(0, 0, 0, channels, OIIO::TypeDesc::FLOAT, whole.data());
    in->close();
    std::vector<float> pixels(static_cast<size_t>(w) * h * channels);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w * channels; ++x)
            pixels[static_cast<size_t>(y) * w * channels + x] =
                whole[(static_cast<size_t>(y + crop) * fullWidth + crop) * channels + x];
    const int colours = std::min(channels, 3);
    ZelPcg32 random(seed);
    std::vector<float> out(static_cast<size_t>(w) * h * 3);
    for (int c = 0; c < 3; ++c) {
        FloatImageZel plane(w, h), blurred;
        for (long i = 0; i < plane.count(); ++i)
            plane.data()[i] = pixels[i * channels + std::min(c, colours - 1)];
        if (blur > 0.0)
            zelGaussianBlurExact(plane, blurred, static_cast<float>(blur));
        else
            plane.copyTo(blurred);
        for (long i = 0; i < blurred.count(); ++i) {
            const double v = blurred.data()[i];
            const double sigma = noise * std::sqrt(0.3 + 1.4 * std::max(0.0, v));
            out[i * 3 + c] =
                static_cast<float>(std::clamp(v + sigma * zelNormal(random), 0.0, 1.0));
        }
    }
    const std::string name = argv[2];
    const bool jpeg = name.size() > 4 && name.substr(name.size() - 4) == ".jpg";
    OIIO::ImageSpec outSpec(w, h, 3, jpeg ? OIIO::TypeDesc::UINT8 : OIIO::TypeDesc::UINT16);
    if (jpeg) outSpec.attribute("Compression", "jpeg:" + std::to_string(quality));
    auto file = OIIO::ImageOutput::create(name);
    if (!file || !file->open(name, outSpec) ||
        !file->write_image(OIIO::TypeDesc::FLOAT, out.data()) || !file->close()) {
        std::fprintf(stderr, "degrade_image: cannot write %s\n", name.c_str());
        return 4;
    }
    return 0;
}
