// OpenImageIO output stream over an exclusively created temporary file.
#include "OutputFileProxy.h"

#include <cstring>

namespace {
const size_t kGatherBytes = 1 << 20;
}

OutputFileProxy::OutputFileProxy(safeio::OutputFile& file)
    : IOProxy(file.target(), Write), file_(file) {}

OutputFileProxy::~OutputFileProxy() { flush(); }

void OutputFileProxy::close() {
    flush();
    m_mode = Closed;
}

bool OutputFileProxy::seek(int64_t offset) {
    if (offset < 0) return false;
    m_pos = offset;
    return true;
}

size_t OutputFileProxy::read(void* buffer, size_t size) {
    const size_t got = pread(buffer, size, m_pos);
    m_pos += static_cast<int64_t>(got);
    return got;
}

size_t OutputFileProxy::write(const void* buffer, size_t size) {
    const size_t put = pwrite(buffer, size, m_pos);
    m_pos += static_cast<int64_t>(put);
    return put;
}

size_t OutputFileProxy::pread(void* buffer, size_t size, int64_t offset) {
    if (offset < 0) return 0;
    std::lock_guard<std::mutex> lock(mutex_);
    flushLocked();
    return file_.readAt(buffer, size, static_cast<uint64_t>(offset));
}

size_t OutputFileProxy::pwrite(const void* buffer, size_t size, int64_t offset) {
    if (offset < 0) return 0;
    std::lock_guard<std::mutex> lock(mutex_);
    writeLocked(buffer, size, static_cast<uint64_t>(offset));
    return size;
}

size_t OutputFileProxy::size() const {
    std::lock_guard<std::mutex> lock(mutex_);
    flushLocked();
    return static_cast<size_t>(file_.size());
}

void OutputFileProxy::flush() const {
    std::lock_guard<std::mutex> lock(mutex_);
    flushLocked();
}

void OutputFileProxy::writeLocked(const void* buffer, size_t size, uint64_t offset) const {
    const bool follows = !pending_.empty() && offset == pendingStart_ + pending_.size();
    if (!follows || pending_.size() + size > kGatherBytes) flushLocked();
    if (size >= kGatherBytes) {
        file_.writeAt(buffer, size, offset);
        return;
    }
    if (pending_.empty()) pendingStart_ = offset;
    const auto* bytes = static_cast<const unsigned char*>(buffer);
    pending_.insert(pending_.end(), bytes, bytes + size);
}

void OutputFileProxy::flushLocked() const {
    if (pending_.empty()) return;
    file_.writeAt(pending_.data(), pending_.size(), pendingStart_);
    pending_.clear();
}
