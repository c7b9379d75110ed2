// Composition order, the short degree factor, inversion and the executor hook.
#include <gtest/gtest.h>

#include <vector>

#include "ImageXfmZel.h"

namespace {

void expectMatrix(const double* m, double a, double b, double c, double d, double e, double f) {
    const double want[6] = {a, b, c, d, e, f};
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(m[i], want[i], 1e-12) << "entry " << i;
}

}  // namespace

TEST(XfmCompose, StepOrderAndElementarySteps) {
    ImageXfmZel xfm;
    expectMatrix(xfm.matrix, 1, 0, 0, 1, 0, 0);
    // Order 1: the step given last acts on the point first.
    xfm.scale(2, 2);
    xfm.translate(3, 4);
    expectMatrix(xfm.matrix, 2, 0, 0, 2, 6, 8);

    xfm.reset();
    xfm.set_compose_order(2);
    xfm.scale(2, 2);
    xfm.translate(3, 4);
    expectMatrix(xfm.matrix, 2, 0, 0, 2, 3, 4);

    xfm.reset();
    xfm.shearx(0.5);
    expectMatrix(xfm.matrix, 1, 0, 0.5, 1, 0, 0);
    xfm.reset();
    xfm.sheary(0.25);
    expectMatrix(xfm.matrix, 1, 0.25, 0, 1, 0, 0);

    // pi/2 - 3.1415926/2 = 2.6794896...e-8: the short factor leaves cos(90) off zero.
    xfm.reset();
    xfm.rotate(90);
    EXPECT_NEAR(xfm.step[0], 2.67948966e-8, 1e-15);
    EXPECT_NEAR(xfm.step[1], 1.0, 1e-15);
    EXPECT_NEAR(xfm.step[2], -1.0, 1e-15);
    EXPECT_NEAR(xfm.step[3], 2.67948966e-8, 1e-15);
    EXPECT_EQ(xfm.step[4], 0.0);
}

TEST(XfmCompose, SetTransformInvertsCopiesOrFallsBackToIdentity) {
    ImageXfmZel xfm;
    xfm.translate(10, -4);
    xfm.rotate(30);
    xfm.scale(2, 0.5);
    xfm.set_transform(1);
    EXPECT_NEAR(xfm.inverseW, 1.0, 1e-15);
    // inverse(matrix(p)) = p
    const double px = 3.5, py = -7.25;
    const double* m = xfm.matrix;
    const double qx = m[0] * px + m[2] * py + m[4], qy = m[1] * px + m[3] * py + m[5];
    const double* n = xfm.inverse;
    EXPECT_NEAR((n[0] * qx + n[2] * qy + n[4]) / xfm.inverseW, px, 1e-12);
    EXPECT_NEAR((n[1] * qx + n[3] * qy + n[5]) / xfm.inverseW, py, 1e-12);

    xfm.reset();
    xfm.scale(0.0, 1.0);
    xfm.set_transform(1);
    expectMatrix(xfm.inverse, 1, 0, 0, 1, 0, 0);
    EXPECT_EQ(xfm.inverseW, 1.0);

    xfm.translate(5, 6);  // still singular
    xfm.set_transform(2);
    expectMatrix(xfm.inverse, 0, 0, 0, 1, 0, 6);
    EXPECT_EQ(xfm.inverseW, 1.0);

    // reset keeps the inverse but restores the defaults.
    xfm.sampleMode(XFM_MODE_CUBIC);
    xfm.set_arithmetic(XFM_ARITH_DOUBLE);
    xfm.set_compose_order(2);
    xfm.reset();
    EXPECT_EQ(xfm.mode, XFM_MODE_NEAREST);
    EXPECT_EQ(xfm.kernelTaps, 3);
    EXPECT_EQ(xfm.kernelRadius, 1);
    EXPECT_EQ(xfm.kernelFixed[256], 4096);
    EXPECT_EQ(xfm.arithmetic, XFM_ARITH_FIXED);
    EXPECT_EQ(xfm.composeOrder, 1);
    expectMatrix(xfm.matrix, 1, 0, 0, 1, 0, 0);
    expectMatrix(xfm.inverse, 0, 0, 0, 1, 0, 6);
}

namespace {
struct Call {
    void* argument;
    int first, last;
};
std::vector<Call> calls;
void recordWorker(void* argument, int first, int last) { calls.push_back({argument, first, last}); }
int contextSeen = 0;
// Two bands: 0..count/2-1 and count/2..count-1.
void twoBandExecutor(void* context, ImageXfmZel::Worker worker, int count, void* argument) {
    contextSeen = *static_cast<int*>(context);
    worker(argument, 0, count / 2 - 1);
    worker(argument, count / 2, count - 1);
}
}  // namespace

TEST(XfmCompose, MpExecRunsInlineUnlessContextAndExecutorAreSet) {
    ImageXfmZel xfm;
    int context = 42;
    calls.clear();
    xfm.mp_exec(recordWorker, 10);
    xfm.set_mp_exec(nullptr, twoBandExecutor);
    xfm.mp_exec(recordWorker, 10);
    xfm.set_mp_exec(&context, nullptr);
    xfm.mp_exec(recordWorker, 10);
    ASSERT_EQ(calls.size(), 3u);
    for (const Call& c : calls) {
        EXPECT_EQ(c.argument, &xfm);
        EXPECT_EQ(c.first, 0);
        EXPECT_EQ(c.last, 9);
    }
    calls.clear();
    xfm.set_mp_exec(&context, twoBandExecutor);
    xfm.mp_exec(recordWorker, 10);
    EXPECT_EQ(contextSeen, 42);
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].argument, &xfm);
    EXPECT_EQ(calls[0].last, 4);
    EXPECT_EQ(calls[1].first, 5);
}
