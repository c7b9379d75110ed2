// ResultZel: the output frame as the plug-in sees it. The host binding sets
// its image (15-bit channels, sized like the host frame at the current proxy
// factor) before ProcessFrame; the plug-in writes every pixel of it.
#pragma once

class ImageZel;

class ResultZel {
  public:
    unsigned int reserved[16] = {};
    ImageZel* image = nullptr;
};
