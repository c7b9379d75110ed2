// A tiny stand-in plug-in for loading tests: one float and one menu record,
// an initialise entry point that counts its calls (so a fresh load shows
// fresh statics) and a float callback that reports its arguments through
// the host. Built without SparkInitialise when SIMHOST_NO_INITIALISE is set.
#include <spark.h>

#define MODULE_EXPORT __attribute__((visibility("default")))

namespace {

// Reports arg * 1000 + frame as a control update, so a test can see both arrived.
unsigned long* floatChanged(int arg, SparkInfoStruct info) {
    sparkControlUpdate(arg * 1000 + static_cast<int>(info.FrameNo));
    return nullptr;
}

char radialTitle[] = "Radial1: %.3f";
char entryA[] = "A", entryB[] = "B", entryC[] = "C";
#ifndef SIMHOST_NO_INITIALISE
int initialiseCalls = 0;
char hello[] = "module loaded";
#endif
}  // namespace

extern "C" {

MODULE_EXPORT SparkFloatStruct SparkFloat6 = {0.5f, -1.0f,       3.0f,        0.001f,
                                              0,    radialTitle, floatChanged};
MODULE_EXPORT SparkPupStruct SparkPup17 = {1, 3, nullptr, {entryA, entryB, entryC}};

#ifndef SIMHOST_NO_INITIALISE
MODULE_EXPORT unsigned int SparkInitialise(SparkInfoStruct) {
    sparkMessage(hello);
    return static_cast<unsigned int>(++initialiseCalls);
}
#endif

}  // extern "C"
