// The binding of the plug-in's controls to the host records and the value
// callbacks, on the host binding's own objects: cached values in plug-in
// units, and a disabled control that only takes the new value.
#include <SimHost.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "ControlBinding.h"
#include "ControlCallbacks.h"
#include "PluginInstance.h"
#include "SparkControlRecords.h"

namespace {

simhost::Host& host() { return simhost::Host::instance(); }

struct FloatBinding {
    SparkFloatStruct* record;
    FloatControlZel* control;
    SparkCallbackFunc callback;
};

}  // namespace

class ControlBinding : public testing::Test {
  protected:
    void SetUp() override {
        setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
        host().reset();
        BindControls();
        SparkBoolean34.Value = 0;  // no renders: DefaultCB only redraws
        info = host().makeInfo(8, 6, 24);
    }
    void TearDown() override { SparkBoolean34.Value = 1; }

    int redraws() const { return host().count("sparkViewingDraw"); }

    SparkInfoStruct info{};
};

TEST_F(ControlBinding, HostValuesReachTheControlsInPluginUnits) {
    SparkFloat6.Value = 0.25f;
    SparkFloat16.Value = 2.5f;
    SparkFloat13.Value = 25.0f;
    SparkFloat14.Value = 80.0f;
    SparkPup17.Value = 0;
    SparkPup24.Value = 1;
    CopyHostValuesToControls();
    StraightluxInfo& c = Instance.info;
    EXPECT_EQ(c.radial1.value, 0.25);
    EXPECT_EQ(c.squeeze.value, 2.5);
    EXPECT_DOUBLE_EQ(c.centre.x, 0.25);
    EXPECT_DOUBLE_EQ(c.centre.y, 0.80);
    EXPECT_EQ(c.sampling.value, 1);
    EXPECT_EQ(c.view.value, 2);
    EXPECT_EQ(c.radial1.Number(), 6);
    EXPECT_EQ(c.centre.Number(), 13);
    EXPECT_EQ(c.reset.Number(), 27);
    EXPECT_EQ(AuxZelFloat18.min, 0.2f);
    EXPECT_EQ(AuxZelPosition13.yMax, 100.0f);
    EXPECT_EQ(AuxZelList20.entryCount, 6);
}

TEST_F(ControlBinding, ValueCallbacksSyncAndRedrawOnlyWhileEnabled) {
    StraightluxInfo& c = Instance.info;
    const FloatBinding floats[] = {
        {&SparkFloat6, &c.radial1, dlcb_6},    {&SparkFloat7, &c.radial2, dlcb_7},
        {&SparkFloat8, &c.xCurvature, dlcb_8}, {&SparkFloat9, &c.yCurvature, dlcb_9},
        {&SparkFloat16, &c.squeeze, dlcb_16},  {&SparkFloat18, &c.magnify, dlcb_18}};
    for (const FloatBinding& f : floats) {
        const float min = f.record->Min;
        f.record->Value = 0.5f;
        host().clearCalls();
        EXPECT_EQ(f.callback(1, info), nullptr);
        EXPECT_EQ(f.control->value, 0.5);
        EXPECT_EQ(redraws(), 1);

        f.control->Disable(true);
        f.record->Value = 0.75f;
        host().clearCalls();
        EXPECT_EQ(f.callback(1, info), nullptr);
        EXPECT_EQ(f.control->value, 0.75);
        EXPECT_EQ(redraws(), 0);
        f.control->Disable(false);
        EXPECT_EQ(f.record->Min, min);

        f.control->continueToDefault = 0;
        host().clearCalls();
        f.callback(1, info);
        EXPECT_EQ(redraws(), 0);
        f.control->continueToDefault = 1;
        f.record->Value = 0.0f;
    }

    c.sampling.Disable(true);
    SparkPup17.Value = 1;
    host().clearCalls();
    EXPECT_EQ(dlcb_17(1, info), nullptr);
    EXPECT_EQ(c.sampling.value, 2);
    EXPECT_EQ(redraws(), 0);
    c.sampling.Disable(false);
    EXPECT_EQ(SparkPup17.TitleCount, 5);
    host().clearCalls();
    dlcb_17(1, info);
    EXPECT_EQ(redraws(), 1);
    SparkPup17.Value = kSamplingDefault;

    // A disabled button skips the plug-in's callback but still redraws.
    c.autoFind.Disable(true);
    host().clearCalls();
    dlcb_22(1, info);
    EXPECT_EQ(host().count("sparkMessage"), 0);
    EXPECT_EQ(redraws(), 1);
    c.autoFind.Disable(false);
    host().clearCalls();
    dlcb_22(1, info);
    EXPECT_TRUE(host().called("sparkMessage(Need drawn lines to auto remove.)"));
}
