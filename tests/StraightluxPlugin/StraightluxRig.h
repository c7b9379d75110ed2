// A Straightlux object on the test bench: its controls bound to local host
// records holding the control table's defaults, and the frame driver's copy of
// the host values into the controls (percent to fractions, 0-based menu index
// to 1-based entry). Pictures are value-coded: scale * (x + 10 * y).
#pragma once

#include <SimHost.h>

#include <cstdlib>

#include "ImageXfmZel.h"
#include "ImageZel.h"
#include "Straightlux.h"

struct StraightluxRig {
    StraightluxRig() {
        setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
        simhost::Host::instance().reset();
        StraightluxInfo& c = lens.info;
        c.radial1.Bind(6, &radial1, &ranges[0]);
        c.radial2.Bind(7, &radial2, &ranges[1]);
        c.xCurvature.Bind(8, &xCurvature, &ranges[2]);
        c.yCurvature.Bind(9, &yCurvature, &ranges[3]);
        c.centre.Bind(13, &centreX, &centreY, &centreRange);
        c.squeeze.Bind(16, &squeeze, &ranges[4]);
        c.sampling.Bind(17, &sampling, &menus[0]);
        c.magnify.Bind(18, &magnify, &ranges[5]);
        c.lineEdit.Bind(20, &lineEdit, &menus[1]);
        c.killLines.Bind(21, &button);
        c.autoFind.Bind(22, &button);
        c.mode.Bind(23, &mode, &menus[2]);
        c.view.Bind(24, &view, &menus[3]);
        c.reset.Bind(27, &button);
    }
    // The plug-in leaves its resampler to the library's lifetime; the bench frees it.
    ~StraightluxRig() { delete lens.xfm; }

    // One frame as the host driver runs it.
    void run(ImageZel& in, ImageZel& out) {
        StraightluxInfo& c = lens.info;
        c.radial1.SetCached(radial1.Value);
        c.radial2.SetCached(radial2.Value);
        c.xCurvature.SetCached(xCurvature.Value);
        c.yCurvature.SetCached(yCurvature.Value);
        c.centre.SetCached(centreX.Value / 100.0, centreY.Value / 100.0);
        c.squeeze.SetCached(squeeze.Value);
        c.sampling.SetCached(sampling.Value + 1);
        c.magnify.SetCached(magnify.Value);
        c.lineEdit.SetCached(lineEdit.Value + 1);
        c.mode.SetCached(mode.Value + 1);
        c.view.SetCached(view.Value + 1);
        lens.input.image = &in;
        lens.output.image = &out;
        lens.ProcessFrame();
    }

    static SparkFloatStruct Float(float value, float min, float max) {
        return SparkFloatStruct{value, min, max, 0.001f, 0, nullptr, nullptr};
    }
    static SparkPupStruct Menu(int index, int entries) {
        return SparkPupStruct{index, entries, nullptr, {}};
    }

    SparkFloatStruct radial1 = Float(0, -1, 3), radial2 = Float(0, -1, 3);
    SparkFloatStruct xCurvature = Float(0, -1, 1), yCurvature = Float(0, -1, 1);
    SparkFloatStruct centreX = Float(50, 0, 100), centreY = Float(50, 0, 100);
    SparkFloatStruct squeeze = Float(1, 0.5f, 5), magnify = Float(1, 0.2f, 5);
    SparkPupStruct sampling = Menu(kSamplingSharpCubic - 1, 5), lineEdit = Menu(0, 6);
    SparkPupStruct mode = Menu(0, 3), view = Menu(0, 2);
    SparkPushStruct button{};
    ZelAuxFloatRange ranges[6];
    ZelAuxPositionRange centreRange;
    ZelAuxList menus[4];
    Straightlux lens;
};

inline void FillCoded(ImageZel& image, int scale = 100) {
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            const auto v = static_cast<unsigned short>(scale * (x + 10 * y));
            image.rows[y][x] = PixelZel{v, v, v, v};
        }
}
