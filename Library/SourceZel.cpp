#include "SourceZel.h"

#include "DLImageConversion.h"
#include "ImageZel.h"
#include "PrintError.h"
#include "ZelHost.h"

namespace {

constexpr int kCopyPixels = 1;

}  // namespace

void SourceZel::GetValue(double t, ImageZel*& image) {
    if (tempBufferCount == 0) {
        PrintError(
            "Random Frame Access requested via GetValue(), but no temp buf allocated. "
            "(DLRandom in .plugin?)\n");
        return;
    }
    const ZelHost& host = zelHost();
    const double aspect = image->pixelAspect;
    const int frameNumber = static_cast<int>(t + 0.5);
    unsigned long* buffer = tempBuffers[0].Buffer;
    if (host.getFrame != nullptr) host.getFrame(clipIndex, frameNumber, buffer);
    const ZelFrameContext& frame = host.frame;
    ImageZel* converted = nullptr;
    if (deep12) {
        converted =
            ConvertFromDLImage12(reinterpret_cast<unsigned short*>(buffer), frame.width,
                                 frame.height, aspect, frame.proxyFactor, image, kCopyPixels);
    } else {
        converted =
            ConvertFromDLImage8(reinterpret_cast<unsigned char*>(buffer), frame.width, frame.height,
                                aspect, frame.proxyFactor, image, kCopyPixels);
    }
    image = converted;
}
