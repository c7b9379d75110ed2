// OutputFileProxy: OpenImageIO's output stream over a safeio::OutputFile, so
// that a picture writer writes into the exclusively created temporary and
// every write is checked, whatever the writer itself checks.
//
// A failed write is kept in the OutputFile and the writer is told that the
// bytes went out: some writers' own error paths end the process or leave it
// in a bad state, and the file is refused at the commit anyway. Small writes
// are gathered into one buffer (picture writers often write a row, or a few
// header bytes, at a time).
#pragma once

#include <OpenImageIO/filesystem.h>
#include <OutputFile.h>

#include <mutex>
#include <vector>

class OutputFileProxy final : public OIIO::Filesystem::IOProxy {
  public:
    explicit OutputFileProxy(safeio::OutputFile& file);
    ~OutputFileProxy() override;

    const char* proxytype() const override { return "sparkrun-output"; }
    void close() override;
    bool seek(int64_t offset) override;
    size_t read(void* buffer, size_t size) override;
    size_t write(const void* buffer, size_t size) override;
    size_t pread(void* buffer, size_t size, int64_t offset) override;
    size_t pwrite(const void* buffer, size_t size, int64_t offset) override;
    size_t size() const override;
    void flush() const override;

  private:
    // Both callers hold mutex_.
    void writeLocked(const void* buffer, size_t size, uint64_t offset) const;
    void flushLocked() const;

    safeio::OutputFile& file_;
    mutable std::mutex mutex_;
    mutable std::vector<unsigned char> pending_;
    mutable uint64_t pendingStart_ = 0;
};
