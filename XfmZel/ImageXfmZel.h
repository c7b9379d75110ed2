// ImageXfmZel: the framework's affine image transformer and resampler. It
// accumulates a 2-D affine matrix from elementary steps, inverts it for
// warping, holds the reconstruction kernel of the current sampling mode and
// samples, warps and scales ImageZel pictures with it. Positions are in source
// pixels with pixel centres at integer positions; channels are 15-bit
// (0..32767); angles are in degrees. Row and column ranges of the banded
// workers are inclusive. An affine matrix is six doubles (a, b, c, d, e, f):
// x' = a*x + c*y + e, y' = b*x + d*y + f.
#pragma once

#include <cstdint>

#include "ImageZel.h"
#include "PixelZel.h"

// Sampling modes; any other value samples transparent black.
enum XfmSamplingMode : int32_t {
    XFM_MODE_NEAREST = 1,
    XFM_MODE_LINEAR = 2,
    XFM_MODE_CUBIC = 3,
    XFM_MODE_SHARP_CUBIC = 4,
    XFM_MODE_BSPLINE = 5,
    XFM_MODE_LANCZOS = 6,
};

// Sampler arithmetic.
enum XfmArithmetic : int32_t {
    XFM_ARITH_DOUBLE = 1,
    XFM_ARITH_FIXED = 2,
};

constexpr int kXfmKernelSteps = 512;                     // table entries per pixel of distance
constexpr int kXfmKernelSize = 2 * kXfmKernelSteps + 1;  // t = 0 .. 2
constexpr int kXfmFixedBits = 13;                 // fractional bits of the fixed-point kernel
constexpr int kXfmFixedOne = 1 << kXfmFixedBits;  // 8192
constexpr double kXfmShortDegToRad =
    0.017453292222222222;                 // 3.1415926 / 180, kept short on purpose
constexpr double kXfmSingularDet = 1e-6;  // below this |det| the inverse is the identity

class ImageXfmZel;

// Parameter block of the scaling workers, filled before each pass.
struct XfmScaleParams {
    int32_t outCount;  // output samples along the pass's axis
    int32_t inCount;   // input samples along that axis
    ImageZel* passSource;
    ImageZel* temporary;  // destination width x source height
    ImageZel* passDest;
    double ratio;               // (inCount - 1) / (outCount - 1)
    int32_t radius;             // kernelRadius of the mode
    const double* kernelTable;  // the double kernel, 1025 entries
};

class ImageXfmZel {
  public:
    // worker(argument, first, last) over an inclusive index range.
    typedef void (*Worker)(void* argument, int first, int last);
    // executor(context, worker, count, argument) splits 0..count-1 into bands.
    typedef void (*Executor)(void* context, Worker worker, int count, void* argument);

    ImageXfmZel();
    virtual ~ImageXfmZel();

    void reset();

    // Composition (ImageXfmZel.cpp).
    void translate(double tx, double ty);
    void rotate(double degrees);
    void scale(double sx, double sy);
    void shearx(double k);
    void sheary(double k);
    void compose();
    // how 2: matrix already maps destination to source; otherwise invert it.
    void set_transform(int how);
    void set_compose_order(int order) { composeOrder = order; }
    void set_arithmetic(int which) { arithmetic = which; }

    void set_mp_exec(void* context, Executor executor);
    void mp_exec(Worker worker, int count);

    // Kernels (XfmKernels.cpp).
    void sampleMode(int newMode);
    void make_tent_kernel();
    void make_bicubic_kernel(double a);
    void make_bspline_kernel();
    void make_lanczos2_kernel();

    // Point samplers (XfmSamplers.cpp); outside pixels count as zero.
    PixelZel sample(ImageZel* img, double x, double y);
    PixelZel nearest_sample(ImageZel* img, double x, double y);
    PixelZel bilinear_sample(ImageZel* img, double x, double y);
    PixelZel bilinear_sample_integer(ImageZel* img, double x, double y);
    PixelZel general_5_point_sample(ImageZel* img, double x, double y);
    PixelZel general_5_point_sample_integer(ImageZel* img, double x, double y);

    // Warping (XfmWarp.cpp).
    void apply(ImageZel* src, ImageZel* dst, int firstRow, int lastRow);
    void apply(ImageZel& src, ImageZel& dst, int firstRow, int lastRow);
    PixelZel sample_image(ImageZel* img, double x, double y, double rx, double ry);
    PixelZel sample_image(ImageZel& img, double x, double y, double rx, double ry);
    PixelZel sample_down(ImageZel* img, double x, double y, double rx, double ry);
    // Rows firstRow..lastRow of dst from an address map (XfmMapSample.cpp):
    // pixel (i, j) := sample(src, x, y) with (x, y) the two floats of map
    // entry j * dst width + i. Bands of rows may run at once.
    void sample_map(ImageZel* src, const float* map, ImageZel* dst, int firstRow, int lastRow);
    PixelZel triangle_sample_down(ImageZel* img, double x, double y, double rx, double ry);

    // Scaling (XfmScale.cpp): 1 on success, 0 on failure.
    int scale_image(ImageZel* src, ImageZel* dst);
    static void mp_copy_all(void* argument, int first, int last);
    static void mp_copy_horiz(void* argument, int first, int last);
    static void mp_copy_vert(void* argument, int first, int last);
    static void mp_scale_image_horiz_up(void* argument, int first, int last);
    static void mp_scale_image_horiz_down(void* argument, int first, int last);
    static void mp_scale_image_vert_up(void* argument, int first, int last);
    static void mp_scale_image_vert_down(void* argument, int first, int last);

    double step[6];
    double product[6];
    double matrix[6];
    double inverse[6];
    double inverseW;
    int32_t composeOrder;
    int32_t mode;
    double kernel[kXfmKernelSize];
    int32_t kernelFixed[kXfmKernelSize];
    int32_t kernelTaps;
    int32_t arithmetic;
    int32_t kernelRadius;
    XfmScaleParams scaling;
    void* mpContext;
    Executor mpExec;

  private:
    void set_identity();
    void store_kernel(int index, double w);
};
