// A Straightlux object on the test bench, bound to the plug-in's exported
// control records by the real binding, with the real host service talking to
// the simulated host. Each rig puts the records back to the control table's
// defaults first. run() is one frame as the host driver runs it: the host
// values copied into the controls, then ProcessFrame. Pictures are
// value-coded: scale * (x + 10 * y).
#pragma once

#include <SimHost.h>

#include <cstdlib>

#include "ControlBinding.h"
#include "HostServices.h"
#include "ImageXfmZel.h"
#include "ImageZel.h"
#include "SparkControlRecords.h"
#include "Straightlux.h"

struct StraightluxRig {
    StraightluxRig() {
        setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
        simhost::Host::instance().reset();
        installHostServices();
        resetFloat(radial1, kRadial1Control);
        resetFloat(radial2, kRadial2Control);
        resetFloat(xCurvature, kXCurvatureControl);
        resetFloat(yCurvature, kYCurvatureControl);
        resetFloat(centreX, kCentreXControl);
        resetFloat(centreY, kCentreYControl);
        resetFloat(squeeze, kSqueezeControl);
        resetFloat(magnify, kMagnifyControl);
        resetMenu(sampling, kSamplingControl);
        resetMenu(lineEdit, kLineEditControl);
        resetMenu(mode, kModeControl);
        resetMenu(view, kViewControl);
        bindControls(lens.info);
    }
    // The plug-in leaves its resampler to the library's lifetime; the bench frees it.
    ~StraightluxRig() { delete lens.xfm; }

    // One frame as the host driver runs it.
    void run(ImageZel& in, ImageZel& out) {
        copyHostValuesToControls(lens.info);
        lens.input.image = &in;
        lens.output.image = &out;
        lens.ProcessFrame();
    }

    static void resetFloat(SparkFloatStruct& record, const ControlDescriptor& control) {
        record.Value = control.defaultValue;
        record.Min = control.min;
        record.Max = control.max;
    }
    static void resetMenu(SparkPupStruct& record, const ControlDescriptor& control) {
        record.Value = control.defaultIndex;
        record.TitleCount = control.entryCount;
    }

    SparkFloatStruct& radial1 = SparkFloat6;
    SparkFloatStruct& radial2 = SparkFloat7;
    SparkFloatStruct& xCurvature = SparkFloat8;
    SparkFloatStruct& yCurvature = SparkFloat9;
    SparkFloatStruct& centreX = SparkFloat13;
    SparkFloatStruct& centreY = SparkFloat14;
    SparkFloatStruct& squeeze = SparkFloat16;
    SparkFloatStruct& magnify = SparkFloat18;
    SparkPupStruct& sampling = SparkPup17;
    SparkPupStruct& lineEdit = SparkPup20;
    SparkPupStruct& mode = SparkPup23;
    SparkPupStruct& view = SparkPup24;
    Straightlux lens;
};

inline void fillCoded(ImageZel& image, int scale = 100) {
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            const auto v = static_cast<unsigned short>(scale * (x + 10 * y));
            image.rows[y][x] = PixelZel{v, v, v, v};
        }
}
