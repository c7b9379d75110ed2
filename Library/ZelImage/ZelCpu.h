// Which instruction set the pixel loops may use. The framework's hot loops
// come in two forms that give the same bytes: a plain one that runs on any
// x86-64 processor, and an AVX2 one compiled for that extension alone (per
// function) and chosen here at run time, so the plug-in still loads and runs
// on a processor without it. Setting the environment variable
// STRAIGHTLUX_PLAIN_CPU (to anything but "0") before the first frame keeps the
// plain forms, and tests can switch between the two to compare them.
#pragma once

// True when the AVX2 forms are to be used: the processor has AVX2 and neither
// the environment nor a test asked for the plain forms.
bool zelUseAvx2();

// Tests: true forces the plain forms, false goes back to the processor's choice.
void zelForcePlainCpu(bool plain);

// The AVX2 forms exist only where the compiler targets x86-64; each is
// compiled for AVX2 alone with ZEL_TARGET_AVX2, never the whole library.
#if defined(__x86_64__)
#define ZEL_AVX2_FORMS 1
#define ZEL_TARGET_AVX2 __attribute__((target("avx2")))
#else
#define ZEL_AVX2_FORMS 0
#endif
