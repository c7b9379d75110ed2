#!/usr/bin/python3
"""Writes tests/Library/ZelFilter/FilterReferenceData.h: reference results for
the filter library's tests, computed once by independent code (OpenCV's
Python binding, numpy, colorsys, and Python versions of the published random
number generators), never at test time. Run again only to change the cases:

    /usr/bin/python3 scripts/make-filter-references.py

Needs Debian's python3-opencv and python3-numpy (the system Python).
"""
import colorsys
import math
import os
import shutil
import subprocess

import cv2
import numpy as np

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
OUT = os.path.join(ROOT, "tests", "Library", "ZelFilter", "FilterReferenceData.h")
MASK64 = (1 << 64) - 1


def smooth_test_image(width, height):
    """Shapes, a ramp and fixed pseudo-random texture, values 0..1, float32."""
    rng = np.random.default_rng(20240522)
    y, x = np.mgrid[0:height, 0:width].astype(np.float64)
    img = 0.2 + 0.3 * x / width + 0.1 * np.sin(y / 3.0)
    img += 0.4 * (((x - 12.3) ** 2 + (y - 14.6) ** 2) < 49.0)
    img -= 0.15 * ((x > 26) & (x < 35) & (y > 5) & (y < 22))
    img += 0.05 * rng.standard_normal((height, width))
    return np.clip(img, 0.0, 1.0).astype(np.float32)


def shapes_8bit(width, height):
    """A disc, a tilted square and a bar, area-sampled (8x8 per pixel), blurred, 8-bit."""
    s = 8
    ys, xs = np.mgrid[0:height * s, 0:width * s].astype(np.float64)
    xs = (xs + 0.5) / s - 0.5
    ys = (ys + 0.5) / s - 0.5
    fine = np.full(xs.shape, 40.0)
    fine[(xs - 30.3) ** 2 + (ys - 35.7) ** 2 < 20.0 ** 2] = 200.0
    u = (xs - 70.0) * math.cos(0.3) + (ys - 30.0) * math.sin(0.3)
    v = -(xs - 70.0) * math.sin(0.3) + (ys - 30.0) * math.cos(0.3)
    fine[(abs(u) < 12) & (abs(v) < 12)] = 150.0
    fine[(ys > 60) & (ys < 66) & (xs > 55) & (xs < 90)] = 230.0
    img = fine.reshape(height, s, width, s).mean(axis=(1, 3))
    img = cv2.GaussianBlur(img, (0, 0), 1.0, borderType=cv2.BORDER_REPLICATE)
    return np.clip(np.rint(img), 0, 255).astype(np.uint8)


class SplitMix64:
    def __init__(self, seed):
        self.state = seed & MASK64

    def next64(self):
        self.state = (self.state + 0x9E3779B97F4A7C15) & MASK64
        z = self.state
        z = ((z ^ (z >> 30)) * 0xBF58476D1CE4E5B9) & MASK64
        z = ((z ^ (z >> 27)) * 0x94D049BB133111EB) & MASK64
        return z ^ (z >> 31)


class Pcg32:
    def __init__(self, seed, stream):
        self.state = 0
        self.inc = ((stream << 1) | 1) & MASK64
        self.next32()
        self.state = (self.state + seed) & MASK64
        self.next32()

    def next32(self):
        old = self.state
        self.state = (old * 6364136223846793005 + self.inc) & MASK64
        xorshifted = (((old >> 18) ^ old) >> 27) & 0xFFFFFFFF
        rot = old >> 59
        return ((xorshifted >> rot) | (xorshifted << ((-rot) & 31))) & 0xFFFFFFFF

    def next64(self):
        high = self.next32()
        return (high << 32) | self.next32()


def rotl(x, k):
    return ((x << k) | (x >> (64 - k))) & MASK64


class Xoshiro256:
    def __init__(self, seed):
        mix = SplitMix64(seed)
        self.s = [mix.next64() for _ in range(4)]

    def next64(self):
        s = self.s
        result = (rotl((s[1] * 5) & MASK64, 7) * 9) & MASK64
        t = (s[1] << 17) & MASK64
        s[2] ^= s[0]
        s[3] ^= s[1]
        s[1] ^= s[2]
        s[0] ^= s[3]
        s[2] ^= t
        s[3] = rotl(s[3], 45)
        return result

    def next32(self):
        return self.next64() >> 32


def uniform_below(g, n):
    product = g.next32() * n
    low = product & 0xFFFFFFFF
    if low < n:
        threshold = (2 ** 32 - n) % n
        while low < threshold:
            product = g.next32() * n
            low = product & 0xFFFFFFFF
    return product >> 32


def uniform_double(g):
    return (g.next64() >> 11) * 2.0 ** -53


def normal(g):
    while True:
        u = 2.0 * uniform_double(g) - 1.0
        v = 2.0 * uniform_double(g) - 1.0
        s = u * u + v * v
        if 0.0 < s < 1.0:
            return u * math.sqrt(-2.0 * math.log(s) / s)


def floats(name, array):
    values = ", ".join("%.9g" % v for v in np.asarray(array, dtype=np.float32).ravel())
    return "const float %s[] = {%s};\n" % (name, values)


def integers(name, ctype, values, fmt="%d"):
    return "const %s %s[] = {%s};\n" % (ctype, name, ", ".join(fmt % v for v in values))


def main():
    w, h = 40, 30
    src = smooth_test_image(w, h)
    rep = cv2.BORDER_REPLICATE
    parts = []
    parts.append("constexpr int kWidth = %d;\nconstexpr int kHeight = %d;\n" % (w, h))
    parts.append(floats("kInput", src))
    # Exact Gaussian: our radius ceil(4 sigma), so ksize 2 radius + 1.
    for sigma, name in ((1.5, "kGauss15"), (3.2, "kGauss32")):
        k = 2 * math.ceil(4 * sigma) + 1
        parts.append(floats(name, cv2.GaussianBlur(src, (k, k), sigma, sigmaY=sigma,
                                                   borderType=rep)))
    parts.append(floats("kSobelX", cv2.Sobel(src, cv2.CV_32F, 1, 0, ksize=3, scale=1 / 8,
                                             borderType=rep)))
    parts.append(floats("kSobelY", cv2.Sobel(src, cv2.CV_32F, 0, 1, ksize=3, scale=1 / 8,
                                             borderType=rep)))
    parts.append(floats("kScharrX", cv2.Scharr(src, cv2.CV_32F, 1, 0, scale=1 / 32,
                                               borderType=rep)))
    parts.append(floats("kScharrY", cv2.Scharr(src, cv2.CV_32F, 0, 1, scale=1 / 32,
                                               borderType=rep)))
    parts.append(floats("kBox5x3", cv2.blur(src, (5, 3), borderType=rep)))
    box3 = src
    for _ in range(3):
        box3 = cv2.blur(box3, (3, 3), borderType=rep)
    parts.append(floats("kBox3x3Passes3", box3))
    blurred = cv2.GaussianBlur(src, (13, 13), 1.5, sigmaY=1.5, borderType=rep)
    parts.append(floats("kUnsharp15Amount15", src + 1.5 * (src - blurred)))

    # Canny on an 8-bit picture; ours sees it as value / 255, so its Sobel
    # magnitude is OpenCV's divided by 255 * 8.
    cw, ch = 96, 72
    shapes = shapes_8bit(cw, ch)
    low, high = 40, 100
    edges = cv2.Canny(shapes, low, high, L2gradient=True)
    parts.append("constexpr int kCannyWidth = %d;\nconstexpr int kCannyHeight = %d;\n" % (cw, ch))
    parts.append("constexpr float kCannyLow = %d.0f / (255.0f * 8.0f);\n" % low)
    parts.append("constexpr float kCannyHigh = %d.0f / (255.0f * 8.0f);\n" % high)
    parts.append(integers("kCannyInput", "unsigned char", shapes.ravel()))
    parts.append(integers("kCannyEdges", "unsigned char", (edges.ravel() > 0).astype(int)))

    colours = [(0.9, 0.2, 0.1), (0.1, 0.8, 0.3), (0.2, 0.3, 0.95), (0.5, 0.5, 0.5),
               (0.0, 0.0, 0.0), (1.0, 0.0, 1.0), (0.3, 0.7, 0.7), (0.95, 0.9, 0.1)]
    parts.append(floats("kHsvRgb", colours))
    parts.append(floats("kHsv", [colorsys.rgb_to_hsv(*c) for c in colours]))

    mix = SplitMix64(1234567)
    parts.append(integers("kSplitMix64Seed1234567", "uint64_t", [mix.next64() for _ in range(6)],
                          "0x%016xULL"))
    pcg = Pcg32(42, 54)
    parts.append(integers("kPcg32Seed42Stream54", "uint32_t", [pcg.next32() for _ in range(6)],
                          "0x%08xU"))
    xo = Xoshiro256(2024)
    parts.append(integers("kXoshiroSeed2024", "uint64_t", [xo.next64() for _ in range(6)],
                          "0x%016xULL"))
    pcg = Pcg32(7, 0xDA3E39CB94B95BDB)
    parts.append(integers("kPcg32Seed7Below1000", "uint32_t",
                          [uniform_below(pcg, 1000) for _ in range(8)]))
    xo = Xoshiro256(99)
    parts.append("const double kXoshiroSeed99Normal[] = {%s};\n" %
                 ", ".join("%.17g" % normal(xo) for _ in range(6)))

    with open(OUT, "w") as f:
        f.write("// Generated by scripts/make-filter-references.py: references computed\n"
                "// once with OpenCV, numpy, colorsys and Python versions of the published\n"
                "// generators. Do not edit; run the script again to change the cases.\n"
                "// Images are row after row; colours are (r, g, b) and (h, s, v) triples.\n"
                "#pragma once\n\n#include <cstdint>\n\nnamespace filterref {\n\n")
        for p in parts:
            f.write(p)
            f.write("\n")
        f.write("}  // namespace filterref\n")
    # The repository's format check covers headers, generated or not.
    if shutil.which("clang-format"):
        subprocess.run(["clang-format", "-i", OUT], check=True, cwd=ROOT)
    print("wrote", OUT)


if __name__ == "__main__":
    main()
