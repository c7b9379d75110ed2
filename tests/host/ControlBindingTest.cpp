// The binding on the host binding's own objects: host values reach the
// controls in plug-in units, and a disabled control only takes the new value.
#include <SimHost.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "ControlBinding.h"
#include "ControlCallbacks.h"
#include "PluginInstance.h"
#include "SparkControlRecords.h"

namespace {

simhost::Host& host() { return simhost::Host::instance(); }
int redraws() { return host().count("sparkViewingDraw"); }

}  // namespace

TEST(ControlBinding, HostValuesReachTheControlsInPluginUnits) {
    host().reset();
    bindControls(Instance.info);
    SparkFloat16.Value = 2.5f;
    SparkFloat13.Value = 25.0f;
    SparkFloat14.Value = 80.0f;
    SparkPup24.Value = 1;
    copyHostValuesToControls(Instance.info);
    StraightluxInfo& c = Instance.info;
    EXPECT_EQ(c.squeeze.value, 2.5);
    EXPECT_DOUBLE_EQ(c.centre.x, 0.25);
    EXPECT_DOUBLE_EQ(c.centre.y, 0.80);
    EXPECT_EQ(c.sampling.value, 4);  // default index 3
    EXPECT_EQ(c.view.value, 2);
    EXPECT_EQ(c.reset.number(), 27);
    EXPECT_EQ(AuxZelFloat18.min, 0.2f);
    EXPECT_EQ(AuxZelPosition13.yMax, 100.0f);
    EXPECT_EQ(AuxZelList20.entryCount, 6);
    SparkPup24.Value = 0;
}

TEST(ControlBinding, ADisabledControlIsSyncedButNothingElseHappens) {
    setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
    host().reset();
    bindControls(Instance.info);
    SparkBoolean34.Value = 0;  // DefaultCB only redraws
    const SparkInfoStruct info = host().makeInfo(8, 6, 24);
    StraightluxInfo& c = Instance.info;

    c.radial1.Disable(true);
    SparkFloat6.Value = 0.75f;
    EXPECT_EQ(dlcb_6(1, info), nullptr);
    EXPECT_EQ(c.radial1.value, 0.75);
    EXPECT_EQ(redraws(), 0);
    c.radial1.Disable(false);
    EXPECT_EQ(SparkFloat6.Min, -1.0f);  // range back from AuxZelFloat6
    EXPECT_EQ(dlcb_6(1, info), nullptr);
    EXPECT_EQ(redraws(), 1);

    c.sampling.Disable(true);
    SparkPup17.Value = 1;
    dlcb_17(1, info);
    EXPECT_EQ(c.sampling.value, 2);
    EXPECT_EQ(redraws(), 1);
    c.sampling.Disable(false);
    EXPECT_EQ(SparkPup17.TitleCount, 5);

    // A disabled button skips the plug-in's callback but still redraws.
    c.autoFind.Disable(true);
    host().clearCalls();
    dlcb_22(1, info);
    EXPECT_EQ(host().count("sparkMessage"), 0);
    EXPECT_EQ(redraws(), 1);
    c.autoFind.Disable(false);
    dlcb_22(1, info);
    EXPECT_TRUE(host().called("sparkMessage(Need drawn lines to auto remove.)"));

    c.radial1.continueToDefault = 0;
    host().clearCalls();
    dlcb_6(1, info);
    EXPECT_EQ(redraws(), 0);
    c.radial1.continueToDefault = 1;
    SparkBoolean34.Value = 1;
    SparkPup17.Value = kSamplingControl.defaultIndex;
    SparkFloat6.Value = 0.0f;
}
