// SharedSamples: a picture's decoded samples in memory that the tool and its
// reader process share (an anonymous memfd mapped by both), so that a frame
// crosses from one to the other without being copied through a pipe.
//
// One side makes the memory and hands its descriptor to the other. Either
// side may grow it (never shrink it) to the bytes a picture needs; the other
// side maps it again at its new size. Once a sequence's size is known the
// memory stays the same from frame to frame: nothing is allocated per frame.
#pragma once

#include <cstddef>
#include <string>

class SharedSamples {
  public:
    SharedSamples() = default;
    ~SharedSamples();
    SharedSamples(const SharedSamples&) = delete;
    SharedSamples& operator=(const SharedSamples&) = delete;

    // A new empty memory; false with the reason.
    bool create(std::string* error);
    // Takes over a descriptor made by the other side.
    void adopt(int descriptor);

    // At least bytes long and mapped here; false with the reason (no memory).
    bool reserve(size_t bytes, std::string* error);
    // Maps the memory as long as the other side made it, at least bytes.
    bool follow(size_t bytes, std::string* error);

    void* data() const { return data_; }
    size_t size() const { return mapped_; }
    int descriptor() const { return fd_; }

  private:
    bool map(size_t bytes, std::string* error);

    int fd_ = -1;
    void* data_ = nullptr;
    size_t mapped_ = 0;
};
