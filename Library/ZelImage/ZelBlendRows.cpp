#include "ZelBlendRows.h"

namespace {

unsigned short mix(unsigned short o, unsigned short t, float amount, float keep) {
    return static_cast<unsigned short>(static_cast<int>(o * amount + t * keep));
}

}  // namespace

void zelBlendRow(PixelZel* row, const PixelZel* other, long count, float amount, float keep) {
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) return zelBlendRowAvx2(row, other, count, amount, keep);
#endif
    zelBlendRowPlain(row, other, count, amount, keep);
}

void zelBlendRowPlain(PixelZel* row, const PixelZel* other, long count, float amount, float keep) {
    for (long x = 0; x < count; ++x) {
        row[x].red = mix(other[x].red, row[x].red, amount, keep);
        row[x].green = mix(other[x].green, row[x].green, amount, keep);
        row[x].blue = mix(other[x].blue, row[x].blue, amount, keep);
        row[x].alpha = mix(other[x].alpha, row[x].alpha, amount, keep);
    }
}
