// A small Spark plug-in whose output shows its control values, so that the
// tool's control handling can be checked end to end without the lens core.
// Each channel v (0..255 or 0..4095) becomes min(full, v * Gain / 100),
// truncated; "Channels: Red Only" zeroes green and blue; "Invert" turns v into
// full - v. At the frame named by "Fail Frame" (0: never) it returns null; at
// "Crash Frame" it writes through a null pointer; at "Hog Frame" it asks for
// far more memory than any machine has (the allocation throws); at "Guarded
// Hog Frame" it does the same inside a guard, as a plug-in's entry points
// do: the failure becomes a message and no frame. It talks on
// its console: standard output, the C standard error stream and std::cerr.
// For the row order: "Report Brightest" prints where the input's brightest
// red sample sits in the host buffer ("probe: brightest at column X, host
// row J", row 0 being the buffer's first), and "Mark Row 0" paints the
// output's host row 0 white.
#include <spark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <new>

extern "C" {
__attribute__((visibility("default"))) SparkFloatStruct SparkFloat6 = {
    100.0f, 0.0f, 200.0f, 0.1f, 0, const_cast<char*>("Gain: %.1f"), nullptr};
__attribute__((visibility("default"))) SparkFloatStruct SparkFloat9 = {
    0.0f, 0.0f, 100000.0f, 1.0f, 0, const_cast<char*>("Fail Frame: %.0f"), nullptr};
__attribute__((visibility("default"))) SparkFloatStruct SparkFloat10 = {
    0.0f, 0.0f, 100000.0f, 1.0f, 0, const_cast<char*>("Crash Frame: %.0f"), nullptr};
__attribute__((visibility("default"))) SparkFloatStruct SparkFloat11 = {
    0.0f, 0.0f, 100000.0f, 1.0f, 0, const_cast<char*>("Hog Frame: %.0f"), nullptr};
__attribute__((visibility("default"))) SparkFloatStruct SparkFloat12 = {
    0.0f, 0.0f, 100000.0f, 1.0f, 0, const_cast<char*>("Guarded Hog Frame: %.0f"), nullptr};
__attribute__((visibility("default"))) SparkPupStruct SparkPup17 = {
    0,
    2,
    nullptr,
    {const_cast<char*>("Channels: All  "), const_cast<char*>("Channels: Red Only  ")}};
__attribute__((visibility("default")))
SparkBooleanStruct SparkBoolean28 = {0, const_cast<char*>("Invert"), nullptr};
__attribute__((visibility("default")))
SparkBooleanStruct SparkBoolean29 = {0, const_cast<char*>("Report Brightest"), nullptr};
__attribute__((visibility("default")))
SparkBooleanStruct SparkBoolean30 = {0, const_cast<char*>("Mark Row 0"), nullptr};
__attribute__((visibility("default")))
SparkPupStruct SparkPup33 = {0, 2, nullptr, {const_cast<char*>("FULL"), const_cast<char*>("1/2")}};
__attribute__((visibility("default")))
SparkPushStruct SparkPush21 = {const_cast<char*>("Clear   "), nullptr};

static int deep = 0;
static int* volatile nowhere = nullptr;
static const size_t kNoMachineHasThis = size_t{1} << 46;  // 64 TiB

static bool atFrame(const SparkFloatStruct& record, unsigned frame) {
    return record.Value > 0.0f && frame == static_cast<unsigned>(record.Value);
}

__attribute__((visibility("default"))) unsigned int SparkInitialise(SparkInfoStruct info) {
    deep = info.FrameDepth == 48;
    std::puts("probe plug-in started");
    std::fprintf(stderr, "probe chatter on the error stream\n");
    std::cerr << "probe chatter through std::cerr" << std::endl;
    sparkLoadSetup(info.Name);
    return SPARK_MODULE;
}

__attribute__((visibility("default"))) void SparkUnInitialise(SparkInfoStruct info) {
    sparkSaveSetup(info.Name);
}

__attribute__((visibility("default"))) int SparkClips(void) { return 1; }

__attribute__((visibility("default"))) int SparkProcessStart(SparkInfoStruct) { return 1; }

__attribute__((visibility("default"))) unsigned long* SparkProcess(SparkInfoStruct info) {
    SparkMemBufStruct input, output;
    if (!sparkMemGetBuffer(2, &input) || !sparkMemGetBuffer(1, &output)) return nullptr;
    if (atFrame(SparkFloat9, info.FrameNo)) {
        sparkError(const_cast<char*>("probe: failing as asked"));
        return nullptr;
    }
    if (atFrame(SparkFloat10, info.FrameNo)) *nowhere = 1;
    if (atFrame(SparkFloat11, info.FrameNo)) {
        std::unique_ptr<char[]> hog(new char[kNoMachineHasThis]);
        hog[0] = 1;
    }
    if (atFrame(SparkFloat12, info.FrameNo)) {
        try {
            std::unique_ptr<char[]> hog(new char[kNoMachineHasThis]);
            hog[0] = 1;
        } catch (const std::bad_alloc&) {
            sparkError(const_cast<char*>("probe stopped: not enough memory."));
            return nullptr;
        }
    }
    const int full = deep ? 4095 : 255;
    const long samples = static_cast<long>(info.FrameWidth) * info.FrameHeight * 3;
    const auto* inBytes = reinterpret_cast<const unsigned char*>(input.Buffer);
    auto* outBytes = reinterpret_cast<unsigned char*>(output.Buffer);
    auto sample = [&](long i) {
        unsigned short word = 0;
        if (deep) std::memcpy(&word, inBytes + 2 * i, 2);
        return deep ? word >> 4 : static_cast<int>(inBytes[i]);
    };
    if (SparkBoolean29.Value) {
        long brightest = 0;
        for (long i = 0; i < samples; i += 3)
            if (sample(i) > sample(brightest)) brightest = i;
        const long pixel = brightest / 3;
        std::printf("probe: brightest at column %ld, host row %ld\n", pixel % info.FrameWidth,
                    pixel / info.FrameWidth);
        std::fflush(stdout);
    }
    for (long i = 0; i < samples; ++i) {
        int v = sample(i);
        v = std::min(full, static_cast<int>(v * static_cast<double>(SparkFloat6.Value) / 100.0));
        if (SparkPup17.Value == 1 && i % 3 != 0) v = 0;
        if (SparkBoolean28.Value) v = full - v;
        if (SparkBoolean30.Value && i < info.FrameWidth * 3L) v = full;
        if (deep) {
            const auto word = static_cast<unsigned short>(v << 4);
            std::memcpy(outBytes + 2 * i, &word, 2);
        } else {
            outBytes[i] = static_cast<unsigned char>(v);
        }
    }
    return output.Buffer;
}
}  // extern "C"
