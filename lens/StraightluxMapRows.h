// Row fillers of the address map: for rows first..last (inclusive) of a map
// `width` entries wide, each entry the input position (x, y), two floats in
// pixels, that output pixel (i, j) shows. Remove mode solves the inverse
// model per pixel (a failed solve stores (0, 0)) and returns the Newton
// corrections it made; Add mode evaluates the single-precision forward
// formula. Each filler writes only its own rows and reads only its plan, so
// bands run at once; the AVX2 forms (chosen at run time) give the same bytes
// and counts as the plain ones.
#pragma once

#include <cstdint>

#include "StraightluxModel.h"
#include "ZelCpu.h"

int64_t fillRemoveRows(const StraightluxModel::InversePlan& plan, int32_t width, float* map,
                       long first, long last);
void fillAddRows(const StraightluxModel::FloatCoefficients& c, int32_t width, float* map,
                 long first, long last);

// One Remove-mode entry, (i, j), written at `entry`; returns its corrections.
int32_t fillRemoveEntry(const StraightluxModel::InversePlan& plan, int32_t i, long j, float* entry);

// The forms behind the two fillers; plain: any processor, Avx2: only when
// zelUseAvx2() says so.
int64_t fillRemoveRowsPlain(const StraightluxModel::InversePlan& plan, int32_t width, float* map,
                            long first, long last);
void fillAddRowsPlain(const StraightluxModel::FloatCoefficients& c, int32_t width, float* map,
                      long first, long last);
#if ZEL_AVX2_FORMS
int64_t fillRemoveRowsAvx2(const StraightluxModel::InversePlan& plan, int32_t width, float* map,
                           long first, long last);
void fillAddRowsAvx2(const StraightluxModel::FloatCoefficients& c, int32_t width, float* map,
                     long first, long last);
#endif
