// A Straightlux object on the test bench, bound to the plug-in's exported
// control records by the real binding, with the real host service talking to
// the simulated host. Each rig puts the lens fields' records back to the
// control table's defaults first. run() is one frame as the host driver runs
// it: the host values copied into the controls, then ProcessFrame. Pictures
// are value-coded: scale * (x + 10 * y).
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
#define STRAIGHTLUX_FLOAT(Name, N, member) resetRecord(SparkFloat##N, k##Name##Control);
#define STRAIGHTLUX_POSITION(Name, NX, NY, member)  \
    resetRecord(SparkFloat##NX, k##Name##XControl); \
    resetRecord(SparkFloat##NY, k##Name##YControl);
#define STRAIGHTLUX_MENU(Name, N, member) resetRecord(SparkPup##N, k##Name##Control);
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback)
#define STRAIGHTLUX_RECORD(Name, Kind, N, callback)
#include "StraightluxControls.def"
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

    static void resetRecord(SparkFloatStruct& record, const ControlDescriptor& control) {
        record.Value = control.defaultValue;
        record.Min = control.min;
        record.Max = control.max;
    }
    static void resetRecord(SparkPupStruct& record, const ControlDescriptor& control) {
        record.Value = control.defaultIndex;
        record.TitleCount = control.entryCount;
    }

    // The lens fields' records by their control's name (the centre's as
    // centreX and centreY).
#define STRAIGHTLUX_FLOAT(Name, N, member) SparkFloatStruct& member = SparkFloat##N;
#define STRAIGHTLUX_POSITION(Name, NX, NY, member) \
    SparkFloatStruct& member##X = SparkFloat##NX;  \
    SparkFloatStruct& member##Y = SparkFloat##NY;
#define STRAIGHTLUX_MENU(Name, N, member) SparkPupStruct& member = SparkPup##N;
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback)
#include "StraightluxControls.def"
    Straightlux lens;
};

inline void fillCoded(ImageZel& image, int scale = 100) {
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            const auto v = static_cast<unsigned short>(scale * (x + 10 * y));
            image.rows[y][x] = PixelZel{v, v, v, v};
        }
}
