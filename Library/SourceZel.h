// SourceZel: the input clip as the plug-in sees it. Per frame the host binding
// sets its image (15-bit channels), clip index and 12-bit flag; the image is
// valid only while the plug-in processes that frame. GetValue fetches another
// frame of the clip (frame numbers are the host's, times round to the nearest
// frame) and needs temporary buffers that the host hands out on request.
#pragma once

class ImageZel;

// A temporary frame buffer the host lent the plug-in: its pixel block.
struct ZelFrameBuffer {
    int reserved = 0;
    unsigned long* Buffer = nullptr;
};

class SourceZel {
  public:
    // Converts frame trunc(t + 0.5) of this clip into image, reusing it; image
    // must be a valid picture (its pixel aspect is kept). Without temporary
    // buffers the user is told and image is left as it was.
    void GetValue(double t, ImageZel*& image);

    int tempBufferCount = 0;
    ZelFrameBuffer* tempBuffers = nullptr;
    unsigned int reserved[14] = {};
    ImageZel* image = nullptr;
    int activeWord = 1;
    int clipIndex = 0;  // the host's clip number for frame fetches
    char deep12 = 0;    // 1 when the host works at 12 bits per channel
};
