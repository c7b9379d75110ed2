// The frame driver's two pictures, kept from one frame to the next: the
// input converted from the host's buffer and the output the plug-in writes.
// A frame whose pictures have the same size as the last one's reuses them
// instead of allocating (and faulting in) two frame-sized images every frame;
// a frame of another size replaces them. The pictures belong to this holder:
// the plug-in's input and output descriptors only point at them.
#pragma once

#include <memory>

class ImageZel;

class FrameImages {
  public:
    enum Role { kInput, kOutput, kRoleCount };

    // The kept picture of a role when it is width x height pixels, else null
    // (a kept picture of another size is freed first, to make room).
    ImageZel* reusable(Role role, long width, long height);
    // The role's picture from now on (it may be the kept one); a different
    // kept picture is freed. Null keeps nothing.
    void keep(Role role, ImageZel* image);
    void releaseAll();

  private:
    std::unique_ptr<ImageZel> kept_[kRoleCount];
};

// The binding's one holder; it frees its pictures when the library is unloaded.
FrameImages& frameImages();
