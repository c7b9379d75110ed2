#include "ImageZel.h"
#include "ZelBand.h"

void ImageZel::MultiProcess(void (ImageZel::*fn)(long first, long last), long count) {
    zelForEachBand(count, [this, fn](long first, long last) { (this->*fn)(first, last); });
}
