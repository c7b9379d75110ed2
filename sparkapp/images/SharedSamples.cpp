// Samples shared with the reader process through a memfd.
#include "SharedSamples.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

SharedSamples::~SharedSamples() {
    if (data_) munmap(data_, mapped_);
    if (fd_ >= 0) close(fd_);
}

bool SharedSamples::create(std::string* error) {
    fd_ = memfd_create("sparkrun-samples", MFD_CLOEXEC);
    if (fd_ < 0) *error = std::string("no shared memory: ") + std::strerror(errno);
    return fd_ >= 0;
}

void SharedSamples::adopt(int descriptor) { fd_ = descriptor; }

bool SharedSamples::map(size_t bytes, std::string* error) {
    if (data_) munmap(data_, mapped_);
    data_ = nullptr;
    mapped_ = 0;
    if (bytes == 0) return true;
    void* at = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd_, 0);
    if (at == MAP_FAILED) {
        *error = std::string("cannot map shared memory: ") + std::strerror(errno);
        return false;
    }
    data_ = at;
    mapped_ = bytes;
    return true;
}

bool SharedSamples::reserve(size_t bytes, std::string* error) {
    struct stat status;
    if (fstat(fd_, &status) != 0) {
        *error = std::strerror(errno);
        return false;
    }
    const size_t have = static_cast<size_t>(status.st_size);
    if (have >= bytes) return have == mapped_ || map(have, error);
    const std::string refused = std::string("no shared memory for the samples: ");
    if (ftruncate(fd_, static_cast<off_t>(bytes)) != 0) {
        *error = refused + std::strerror(errno);
        return false;
    }
    // Mapped before its pages are taken: a mapping refused (ulimit -v) takes none.
    if (!map(bytes, error)) {
        if (ftruncate(fd_, static_cast<off_t>(have)) != 0)
            *error += "; " + std::string(std::strerror(errno));
        return false;
    }
    // The pages taken now, so that no memory is a refusal here, not a SIGBUS
    // in the middle of a decode.
    const int failed = posix_fallocate(fd_, 0, static_cast<off_t>(bytes));
    if (failed != 0) {
        *error = refused + std::strerror(failed);
        map(0, error);
        if (ftruncate(fd_, static_cast<off_t>(have)) != 0)
            *error += "; " + std::string(std::strerror(errno));
        return false;
    }
    return true;
}

bool SharedSamples::follow(size_t bytes, std::string* error) {
    struct stat status;
    if (fstat(fd_, &status) != 0 || static_cast<size_t>(status.st_size) < bytes) {
        *error = "the reader's shared memory is smaller than its answer";
        return false;
    }
    const size_t size = static_cast<size_t>(status.st_size);
    return size == mapped_ || map(size, error);
}
