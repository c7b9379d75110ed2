// 2-D and 3-D points of doubles, x then y (then z), shared by the transform,
// polyline and lens code. Units are the caller's (pixels or frame fractions).
#pragma once

struct tagDPT2 {
    double x;
    double y;
};

struct tagDPT3 {
    double x;
    double y;
    double z;
};
