// Frame processing: pass-through at the defaults, the input view, map caching
// and rebuilding, the magnify pass, the map against the model, the Add/Remove
// round trip, frame-size changes and a failed map allocation.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>

#include "StraightluxModel.h"
#include "StraightluxRig.h"
#include "zel_heap.h"

namespace {

bool same(const ImageZel& a, const ImageZel& b) {
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x)
            if (a.rows[y][x].red != b.rows[y][x].red || a.rows[y][x].alpha != b.rows[y][x].alpha)
                return false;
    return a.width == b.width && a.height == b.height;
}

ImageZel blankImage(int width, int height) {
    return ImageZel(width, height, 1.0f, nullptr, nullptr);
}

// Image allocator that refuses the next `refusals` requests.
struct RefusingAllocator {
    int refusals = 0;
    static void* allocate(void* self, size_t size) {
        auto* a = static_cast<RefusingAllocator*>(self);
        return a->refusals-- > 0 ? nullptr : std::malloc(size);
    }
    static void* resize(void*, void* block, size_t size) { return std::realloc(block, size); }
    static void release(void*, void* block) { std::free(block); }
};

}  // namespace

TEST(StraightluxFrame, PassThroughInputViewAndMapCaching) {
    StraightluxRig rig;
    ImageZel in = blankImage(5, 4), out = blankImage(5, 4);
    fillCoded(in);

    // "View: Input" copies the input and leaves the map and saved values alone.
    rig.view.Value = kViewInput - 1;
    rig.radial1.Value = 0.3f;
    rig.run(in, out);
    EXPECT_TRUE(same(out, in));
    EXPECT_EQ(rig.lens.addressMap, nullptr);
    EXPECT_EQ(rig.lens.savedWidth, -1);

    // Defaults: the inverse is the identity with no correction, and the sharp
    // cubic kernel at integer positions returns the pixel. (Through R and back,
    // column 0 or row 0 can come out as -1e-16 at some sizes and sample one
    // table step off; not at this size.)
    rig.view.Value = kViewResult - 1;
    rig.radial1.Value = 0.0f;
    out.Fill(7, 7, 7, 7);
    rig.run(in, out);
    EXPECT_TRUE(same(out, in));
    EXPECT_EQ(rig.lens.iterationTotal, 0.0);
    EXPECT_FLOAT_EQ(rig.lens.centreX, 2.5f);
    EXPECT_EQ(rig.lens.savedWidth, 5);
    EXPECT_FALSE(rig.lens.dirty);

    // Unchanged controls reuse the map: a doctored entry shows through.
    auto doctor = [&] { rig.lens.addressMap[0] = 2.0f, rig.lens.addressMap[1] = 1.0f; };
    doctor();
    rig.run(in, out);
    EXPECT_EQ(out.rows[0][0].red, in.rows[1][2].red);
    // "Sampling" alone rebuilds it, although the map does not depend on it.
    rig.sampling.Value = kSamplingCubic - 1;
    rig.run(in, out);
    EXPECT_TRUE(same(out, in));
    // So does "Magnify" alone; 1.005 lies in the dead band: no magnify pass.
    doctor();
    rig.magnify.Value = 1.005f;
    rig.run(in, out);
    EXPECT_TRUE(same(out, in));

    // A NaN never compares equal, so it counts as a change.
    rig.lens.centreX = NAN;
    rig.lens.SaveControlValues();
    EXPECT_TRUE(rig.lens.ControlsChanged());
}

TEST(StraightluxFrame, MagnifyBeyondTheDeadBandZoomsAboutTheCentre) {
    const int w = 9, h = 8;
    const float zoom = 1.02f;
    StraightluxRig rig;
    ImageZel in = blankImage(w, h), unzoomed = blankImage(w, h), out = blankImage(w, h);
    fillCoded(in);
    rig.run(in, unzoomed);
    rig.magnify.Value = zoom;
    rig.run(in, out);

    // The first pass's result resampled at ((x - w/2) / zoom + w/2, (y - h/2) / zoom + h/2).
    ImageXfmZel sampler;
    sampler.sampleMode(kSamplingSharpCubic);
    int moved = 0;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const PixelZel expected = sampler.sample(&unzoomed, (x - 0.5 * w) / zoom + 0.5 * w,
                                                     (y - 0.5 * h) / zoom + 0.5 * h);
            // One 1/512-pixel table step of the y ramp (1000 per pixel) is about 2.
            ASSERT_NEAR(out.rows[y][x].red, expected.red, 4) << x << "," << y;
            moved += out.rows[y][x].red != unzoomed.rows[y][x].red;
        }
    EXPECT_GT(moved, w * h / 2);
}

TEST(StraightluxFrame, AddressMapFollowsTheModel) {
    const int w = 40, h = 30;
    StraightluxRig rig;
    rig.radial1.Value = 0.1f;
    rig.radial2.Value = 0.05f;
    ImageZel in = blankImage(w, h), out = blankImage(w, h);
    fillCoded(in, 10);
    StraightluxModel reference;
    reference.width = w, reference.height = h, reference.centreX = 20, reference.centreY = 15;
    reference.radial1 = 0.1f, reference.radial2 = 0.05f;
    auto entry = [&](int i, int j) {
        return tagDPT2{rig.lens.addressMap[2 * (j * w + i)],
                       rig.lens.addressMap[2 * (j * w + i) + 1]};
    };

    // Remove: the forward model carries each entry back onto its pixel (float entries).
    rig.run(in, out);
    EXPECT_GT(rig.lens.iterationTotal, 0.0);  // the mean corrections per pixel
    for (int j = 0; j < h; ++j)
        for (int i = 0; i < w; ++i) {
            tagDPT2 back;
            reference.MapUndistortedToDistorted(entry(i, j), back);
            ASSERT_NEAR(back.x, i, 1e-4) << i << "," << j;
            ASSERT_NEAR(back.y, j, 1e-4) << i << "," << j;
        }
    // Add: each entry is the model's image of its pixel.
    rig.mode.Value = kModeAdd - 1;
    rig.run(in, out);
    for (int j = 0; j < h; ++j)
        for (int i = 0; i < w; ++i) {
            tagDPT2 forward;
            reference.MapUndistortedToDistorted(tagDPT2{double(i), double(j)}, forward);
            ASSERT_NEAR(entry(i, j).x, forward.x, 1e-4) << i << "," << j;
            ASSERT_NEAR(entry(i, j).y, forward.y, 1e-4) << i << "," << j;
        }
    // Auto Remove with k1 = k2 = -1 folds the outer frame over: where the
    // inverse fails the entry is (0, 0) and shows the top-left input pixel.
    rig.mode.Value = kModeAutoRemove - 1;
    rig.radial1.Value = rig.radial2.Value = reference.radial1 = reference.radial2 = -1.0f;
    rig.run(in, out);
    int failed = 0;
    for (int j = 0; j < h; ++j)
        for (int i = 0; i < w; ++i) {
            tagDPT2 back;
            reference.MapUndistortedToDistorted(entry(i, j), back);
            if (entry(i, j).x == 0.0 && entry(i, j).y == 0.0 && (i || j)) {
                ++failed;
                ASSERT_EQ(out.rows[j][i].red, in.rows[0][0].red);
            } else {
                ASSERT_NEAR(back.x, i, 1e-3);
            }
        }
    EXPECT_GT(failed, 0);
}

TEST(StraightluxFrame, AddThenRemoveRestoresTheInterior) {
    const int w = 96, h = 72;
    ImageZel original = blankImage(w, h), added = blankImage(w, h), restored = blankImage(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const auto v =
                static_cast<unsigned short>(16000.0 + 8000.0 * std::sin(x * 2.0 * M_PI / 48.0) *
                                                          std::cos(y * 2.0 * M_PI / 36.0));
            original.rows[y][x] = PixelZel{v, v, v, 32767};
        }
    StraightluxRig rig;
    rig.radial1.Value = 0.08f;
    rig.radial2.Value = 0.02f;
    rig.sampling.Value = kSamplingCubic - 1;
    rig.mode.Value = kModeAdd - 1;
    rig.run(original, added);
    rig.mode.Value = kModeRemove - 1;
    rig.run(added, restored);

    // Two cubic resamplings of a pattern with slopes up to about 1050 per pixel
    // (8000 * 2pi / 48) and little curvature: interpolation and the 1/512-pixel
    // kernel table (about 2 per resampling) leave errors of a few tens; 100
    // (0.3% of full scale) bounds them with room. The border is skipped: Add pulls
    // in zeros from outside there (up to (k1 + k2) * R = 6 pixels at the corners).
    const int margin = 8;
    int maxError = 0, maxShift = 0;
    for (int y = margin; y < h - margin; ++y)
        for (int x = margin; x < w - margin; ++x) {
            maxError =
                std::max(maxError, std::abs(restored.rows[y][x].red - original.rows[y][x].red));
            maxShift = std::max(maxShift, std::abs(added.rows[y][x].red - original.rows[y][x].red));
        }
    EXPECT_LT(maxError, 100);
    EXPECT_GT(maxShift, 1000);  // the distortion itself is far above the tolerance
}

TEST(StraightluxFrame, SizeChangeAndFailedMapAllocation) {
    StraightluxRig rig;
    ImageZel small = blankImage(5, 4), smallOut = blankImage(5, 4), large = blankImage(7, 6),
             largeOut = blankImage(7, 6);
    fillCoded(small);
    fillCoded(large, 50);
    rig.run(small, smallOut);
    rig.run(large, largeOut);  // every entry of the larger map is filled
    EXPECT_TRUE(same(largeOut, large));
    EXPECT_EQ(rig.lens.savedHeight, 6);
    EXPECT_EQ(rig.lens.scratch->width, 7);
    EXPECT_EQ(rig.lens.scratch->height, 6);

    // Back to 5 x 4 with the map allocation refused: the output keeps what it
    // had, no message, the saved values still move on; the next frame retries.
    RefusingAllocator allocator{1};  // the map is the frame's first image allocation
    set_zel_heap_image_memory_overrides(&allocator, RefusingAllocator::allocate,
                                        RefusingAllocator::resize, RefusingAllocator::release);
    set_zel_heap_memory_enable(true);
    smallOut.Fill(7, 7, 7, 7);
    rig.run(small, smallOut);
    set_zel_heap_memory_enable(false);
    set_zel_heap_image_memory_overrides(nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(rig.lens.addressMap, nullptr);
    EXPECT_EQ(smallOut.rows[3][4].red, 7);
    EXPECT_EQ(simhost::Host::instance().count("sparkMessage"), 0);
    EXPECT_EQ(rig.lens.savedWidth, 5);
    EXPECT_EQ(rig.lens.scratch->width, 5);
    EXPECT_EQ(rig.lens.scratch->height, 4);

    rig.run(small, smallOut);
    EXPECT_NE(rig.lens.addressMap, nullptr);
    EXPECT_TRUE(same(smallOut, small));
}

// Every value that enters the comparison notices a change on its own.
TEST(StraightluxFrame, EachModelValueAloneCountsAsAChange) {
    StraightluxRig rig;
    Straightlux& lens = rig.lens;
    ImageZel in = blankImage(6, 4), out = blankImage(6, 4);
    fillCoded(in);
    rig.run(in, out);
    ASSERT_FALSE(lens.ControlsChanged());

    struct Field {
        const char* name;
        std::function<void()> change;
    };
    const Field fields[] = {
        {"centreX", [&] { lens.centreX += 0.5f; }},
        {"centreY", [&] { lens.centreY += 0.5f; }},
        {"normScale", [&] { lens.normScale = 2.0f; }},
        {"squeeze", [&] { lens.squeeze = 1.5f; }},
        {"radial1", [&] { lens.radial1 = 0.01f; }},
        {"radial2", [&] { lens.radial2 = 0.01f; }},
        {"xCurvature", [&] { lens.xCurvature = 0.01f; }},
        {"yCurvature", [&] { lens.yCurvature = 0.01f; }},
        {"sampling", [&] { lens.sampling = kSamplingLinear; }},
        {"magnify", [&] { lens.magnify = 1.5f; }},
        {"mode", [&] { lens.mode = kModeAdd; }},
        {"width", [&] { lens.width = 7; }},
        {"height", [&] { lens.height = 5; }},
        {"dirty", [&] { lens.dirty = true; }},
    };
    for (const Field& field : fields) {
        lens.SaveControlValues();
        ASSERT_FALSE(lens.ControlsChanged()) << field.name;
        field.change();
        EXPECT_TRUE(lens.ControlsChanged()) << field.name;
        // Saving takes the new value as the reference.
        lens.SaveControlValues();
        EXPECT_FALSE(lens.ControlsChanged()) << field.name;
    }
}
