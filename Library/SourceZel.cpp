// Kept in its own unit: it needs the host binding's buffer conversion, which
// only programs that link the host binding provide.
#include "SourceZel.h"

#include "DLImageConversion.h"
#include "ImageZel.h"
#include "PrintError.h"
#include "ZelHostGlobals.h"

namespace {

constexpr int kCopyPixels = 1;

}  // namespace

void SourceZel::GetValue(double t, ImageZel*& image) {
    if (tempBufferCount == 0) {
        PrintError("Random Frame Access requested via GetValue(), but no temp buf allocated. "
                   "(DLRandom in .plugin?)\n");
        return;
    }
    const double aspect = image->pixelAspect;
    const int frameNumber = static_cast<int>(t + 0.5);
    unsigned long* buffer = tempBuffers[0].Buffer;
    sparkGetFrame(clipIndex, frameNumber, buffer);
    if (deep12) {
        image = ConvertFromDLImage12(reinterpret_cast<unsigned short*>(buffer), DLwidth, DLheight,
                                     aspect, DLscalesr, image, kCopyPixels);
    } else {
        image = ConvertFromDLImage8(reinterpret_cast<unsigned char*>(buffer), DLwidth, DLheight,
                                    aspect, DLscalesr, image, kCopyPixels);
    }
}
