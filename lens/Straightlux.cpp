#include "Straightlux.h"

#include "ImageZel.h"

// Pass-through stage: copies the input picture into the output picture.
void Straightlux::ProcessFrame() {
    if (output.image == nullptr) return;
    output.image->CopyValues(input.image, 1.0f, 1.0f, 1.0f, 1.0f);
}
