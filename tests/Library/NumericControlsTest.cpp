// Float, Size, Position and Integer controls: units, cached versus curve
// reads, and greying out by collapsing the range.
#include <gtest/gtest.h>

#include <cmath>

#include "AngleControlZel.h"
#include "ControlTestRecords.h"
#include "FloatControlZel.h"
#include "IntegerControlZel.h"
#include "PositionControlZel.h"
#include "SizeControlZel.h"

using fakehost::Host;

namespace {
using Strings = std::vector<std::string>;

// A curve that tells the control number and time apart: 1000 * n + 10 * t.
float codedCurve(int, int control, float frame) { return 1000.0f * control + 10.0f * frame; }
}  // namespace

TEST(NumericControls, SizeHoldsFractionsAndDividesTheCacheAgain) {
    resetHost();
    Host::instance().curveFn = codedCurve;
    FloatRecord record = floatRecord(50.0f, 0.0f, 100.0f);
    ZelAuxFloatRange saved;
    SizeControlZel size;
    size.bind(4, record.field(), &saved);

    size.Sync();
    EXPECT_DOUBLE_EQ(size.value, 0.5);
    double out = 0.0;
    size.GetValue(-1.0, out);
    EXPECT_DOUBLE_EQ(out, 0.005);  // the field divided twice
    EXPECT_TRUE(hostCalls().empty());

    size.GetValue(2.0, out);
    EXPECT_DOUBLE_EQ(out, (4000.0 + 20.0) / 100.0);
    size.GetValue(0.0, out);  // 0.0 is a frame time, not the cache
    EXPECT_DOUBLE_EQ(out, 40.0);
    EXPECT_EQ(hostCalls(), (Strings{"sparkGetCurveValuef(1,4,2)", "sparkGetCurveValuef(1,4,0)"}));

    Host::instance().clearCalls();
    size.SetValue(7.0, 0.25);
    EXPECT_FLOAT_EQ(record.Value, 25.0f);
    EXPECT_DOUBLE_EQ(size.value, 0.25);
    EXPECT_EQ(hostCalls(), (Strings{"sparkControlUpdate(4)"}));
}

TEST(NumericControls, FloatAndIntegerReadCurvesFromTimeZeroOn) {
    resetHost();
    Host::instance().curveFn = codedCurve;
    FloatRecord fRecord = floatRecord(1.5f, -1.0f, 3.0f);
    ZelAuxFloatRange fSaved;
    FloatControlZel radial;
    radial.bind(6, fRecord.field(), &fSaved);
    EXPECT_EQ(radial.number(), 6);
    EXPECT_EQ(radial.continueToDefault, 1);
    EXPECT_EQ(radial.spareFlag, 0);

    radial.Sync();
    double out = 0.0;
    radial.GetValue(-0.5, out);
    EXPECT_DOUBLE_EQ(out, 1.5);
    radial.GetValue(0.0, out);
    EXPECT_DOUBLE_EQ(out, 6000.0);
    radial.GetValue(std::nan(""), out);  // not a number is not below zero
    EXPECT_TRUE(std::isnan(out));
    radial.SetValue(-1.0, 0.1);  // narrowed to float on the way to the host
    EXPECT_EQ(fRecord.Value, 0.1f);
    EXPECT_DOUBLE_EQ(radial.value, static_cast<double>(0.1f));

    IntRecord iRecord{};
    iRecord.Value = 9;
    ZelAuxFloatRange iSaved;
    IntegerControlZel count;
    count.bind(11, iRecord.field(), &iSaved);
    count.Sync();
    long n = 0;
    count.GetValue(-1.0, n);
    EXPECT_EQ(n, 9);
    Host::instance().curveFn = [](int, int, float) { return -2.7f; };
    count.GetValue(0.0, n);
    EXPECT_EQ(n, -2);  // truncated toward zero, not floored
    count.SetValue(0.0, -4);
    EXPECT_EQ(iRecord.Value, -4);
    EXPECT_EQ(count.value, -4);
}

TEST(NumericControls, PositionReadsBothCurvesAndWritesPercentages) {
    resetHost();
    Host::instance().curveFn = codedCurve;
    FloatRecord xRecord = floatRecord(50.0f, 0.0f, 100.0f);
    FloatRecord yRecord = floatRecord(50.0f, 0.0f, 100.0f);
    ZelAuxPositionRange saved;
    PositionControlZel centre;
    centre.bind(13, xRecord.field(), yRecord.field(), &saved);

    centre.Sync();  // leaves the cache alone
    EXPECT_DOUBLE_EQ(centre.x, 0.0);
    centre.setCached(0.25, 0.75);
    double x = 0.0, y = 0.0;
    centre.GetValue(-1.0, x, y);
    EXPECT_DOUBLE_EQ(x, 0.0025);
    EXPECT_DOUBLE_EQ(y, 0.0075);
    centre.GetValue(1.0, x, y);
    EXPECT_DOUBLE_EQ(x, 13010.0 / 100.0);
    EXPECT_DOUBLE_EQ(y, 14010.0 / 100.0);
    EXPECT_EQ(hostCalls(), (Strings{"sparkGetCurveValuef(1,13,1)", "sparkGetCurveValuef(1,14,1)"}));

    Host::instance().clearCalls();
    centre.SetValue(5.0, 0.2, 0.9);
    EXPECT_FLOAT_EQ(xRecord.Value, 20.0f);
    EXPECT_FLOAT_EQ(yRecord.Value, 90.0f);
    EXPECT_DOUBLE_EQ(centre.x, 0.25);  // the cache waits for the next frame's copy
    EXPECT_EQ(hostCalls(), (Strings{"sparkControlUpdate(13)", "sparkControlUpdate(14)"}));
}

TEST(NumericControls, DisableCollapsesRangesAndEnableRestoresThem) {
    resetHost();
    FloatRecord fRecord = floatRecord(0.7f, -1.0f, 3.0f);
    ZelAuxFloatRange fSaved;
    FloatControlZel radial;
    radial.bind(6, fRecord.field(), &fSaved);

    radial.Disable(true);
    EXPECT_EQ(fRecord.Min, 0.7f);
    EXPECT_EQ(fRecord.Max, 0.7f);
    fRecord.Value = 0.9f;
    radial.Disable(true);  // already disabled: no host call, range left alone
    EXPECT_EQ(fRecord.Min, 0.7f);
    EXPECT_EQ(hostCalls(), (Strings{"sparkControlUpdate(6)"}));
    radial.Disable(false);
    EXPECT_EQ(fRecord.Min, -1.0f);
    EXPECT_EQ(fRecord.Max, 3.0f);
    EXPECT_EQ(hostCalls().size(), 2u);

    Host::instance().clearCalls();
    FloatRecord xRecord = floatRecord(30.0f, 0.0f, 100.0f);
    FloatRecord yRecord = floatRecord(60.0f, -50.0f, 150.0f);
    ZelAuxPositionRange pSaved;
    PositionControlZel centre;
    centre.bind(13, xRecord.field(), yRecord.field(), &pSaved);
    centre.Disable(true);
    EXPECT_EQ(xRecord.Min, 30.0f);
    EXPECT_EQ(xRecord.Max, 30.0f);
    EXPECT_EQ(yRecord.Min, 60.0f);
    EXPECT_EQ(yRecord.Max, 60.0f);
    centre.Disable(false);
    EXPECT_EQ(xRecord.Min, 0.0f);
    EXPECT_EQ(xRecord.Max, 100.0f);
    EXPECT_EQ(yRecord.Min, -50.0f);
    EXPECT_EQ(yRecord.Max, 150.0f);
    EXPECT_EQ(hostCalls(), (Strings{"sparkControlUpdate(13)", "sparkControlUpdate(14)",
                                    "sparkControlUpdate(13)", "sparkControlUpdate(14)"}));

    IntRecord iRecord{};
    iRecord.Value = 4;
    iRecord.Min = 1;
    iRecord.Max = 8;
    ZelAuxFloatRange iSaved;
    IntegerControlZel count;
    count.bind(11, iRecord.field(), &iSaved);
    count.Disable(true);
    EXPECT_EQ(iRecord.Min, 4);
    EXPECT_EQ(iRecord.Max, 4);
    count.Disable(false);
    EXPECT_EQ(iRecord.Min, 1);
    EXPECT_EQ(iRecord.Max, 8);
}

TEST(NumericControls, HideTellsTheHostForEveryField) {
    resetHost();
    FloatRecord fRecord = floatRecord(0.0f, 0.0f, 1.0f);
    ZelAuxFloatRange fSaved;
    FloatControlZel radial;
    radial.bind(6, fRecord.field(), &fSaved);
    FloatRecord xRecord = fRecord, yRecord = fRecord;
    ZelAuxPositionRange pSaved;
    PositionControlZel centre;
    centre.bind(13, xRecord.field(), yRecord.field(), &pSaved);

    radial.Hide(true);
    radial.Hide(true);  // no change of state, still passed on
    centre.Hide(true);
    EXPECT_TRUE(radial.isHidden());
    EXPECT_TRUE(centre.isHidden());
    centre.Hide(false);
    EXPECT_FALSE(centre.isHidden());
    EXPECT_EQ(hostCalls(), (Strings{"sparkDisableParameter(1,6)", "sparkDisableParameter(1,6)",
                                    "sparkDisableParameter(1,13)", "sparkDisableParameter(1,14)",
                                    "sparkEnableParameter(1,13)", "sparkEnableParameter(1,14)"}));
}

// An angle is held in degrees on both sides, has no curve read of its own,
// and greys out and hides like the other one-field kinds.
TEST(NumericControls, AngleKeepsDegreesAndGreysOutByItsRange) {
    resetHost();
    FloatRecord record = floatRecord(30.0f, -180.0f, 180.0f);
    ZelAuxFloatRange saved;
    AngleControlZel angle;
    angle.bind(40, record.field(), &saved);
    EXPECT_EQ(saved.min, -180.0f);
    EXPECT_EQ(saved.max, 180.0f);
    angle.Sync();
    EXPECT_DOUBLE_EQ(angle.value, 30.0);

    angle.SetValue(5.0, 123.4);  // the time is ignored; narrowed to float
    EXPECT_EQ(record.Value, 123.4f);
    EXPECT_DOUBLE_EQ(angle.value, static_cast<double>(123.4f));

    angle.Disable(true);
    EXPECT_EQ(record.Min, 123.4f);
    EXPECT_EQ(record.Max, 123.4f);
    angle.Disable(true);  // already disabled: no call, range left alone
    angle.Disable(false);
    EXPECT_EQ(record.Min, -180.0f);
    EXPECT_EQ(record.Max, 180.0f);
    angle.Hide(true);
    EXPECT_TRUE(angle.isHidden());
    EXPECT_EQ(hostCalls(), (Strings{"sparkControlUpdate(40)", "sparkControlUpdate(40)",
                                    "sparkControlUpdate(40)", "sparkDisableParameter(1,40)"}));
}
