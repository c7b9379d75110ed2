// The recursive Gaussian (Young and van Vliet's third-order filter): per line
// a causal pass w[n] = B x[n] + a1 w[n-1] + a2 w[n-2] + a3 w[n-3] and an
// anti-causal pass y[n] = B w[n] + a1 y[n+1] + a2 y[n+2] + a3 y[n+3], the same
// work per pixel at any sigma. The three poles are van Vliet, Young and
// Verbeek's for sigma 2, raised to the power 1/q with q chosen so that the
// filter's variance is exactly sigma^2 (solved in double precision, not the
// usual fitted formula). B = 1 - a1 - a2 - a3, so a constant passes unchanged.
//
// The feedback runs in double precision (the values kept between passes are
// floats): in single precision the rounding of a wide filter's feedback
// grows to the order of 1e-5 of the signal.
//
// Both ends repeat the edge pixel: the causal pass starts from the first
// value's steady state and the anti-causal pass from Triggs and Sdika's
// conditions (the 3x3 matrix m), which give exactly what an endless run of
// the edge value would have given.
#pragma once

struct ZelRecursiveCoefficients {
    double b = 1.0;
    double a1 = 0.0;
    double a2 = 0.0;
    double a3 = 0.0;
    // y[N + k] - u = sum over j of m[k][j] (w[N - 1 - j] - u), u the last input value.
    double m[3][3] = {};
};

// The smallest sigma the recursive form is made for; below it the filter's
// shape departs from the Gaussian (zelGaussianBlur then uses the exact form).
constexpr float kZelRecursiveMinSigma = 0.5f;

// Coefficients for sigma (pixels); sigma is not checked here.
ZelRecursiveCoefficients zelRecursiveGaussianCoefficients(float sigma);

// Both passes down `count` samples of `lanes` independent lines stored side
// by side: sample n of lane l at data[n * stride + l]. `scratch` holds 4 * lanes doubles.
void zelRecursiveLines(float* data, long count, long stride, long lanes,
                       const ZelRecursiveCoefficients& c, double* scratch);
