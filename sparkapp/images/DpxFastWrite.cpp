// The fast DPX writer: OpenImageIO's own header for the frame size, taken
// once, with the frame's name and date, then the samples as they are.
#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <OutputFile.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <vector>

#include "DpxFastPath.h"

namespace {
const uint32_t kMagicNative = 0x53445058;  // "SDPX" in this machine's byte order
const size_t kImageOffset = 4;
const size_t kFileSize = 16;
const size_t kNameField = 36;
const size_t kNameBytes = 100;
const size_t kDateField = 136;
const size_t kDateBytes = 24;
const size_t kBitSize = 803;
const size_t kDataOffset = 808;
const size_t kDateText = 19;  // "YYYY:MM:DD HH:MM:SS"
const size_t kDateSpace = 10;
const int kSixteen = 16;
const size_t kBlockBytes = 256 << 10;  // kernel copies from the cache below about this

// Keeps what a writer puts below `keep` bytes and forgets the rest.
class HeaderCapture final : public OIIO::Filesystem::IOProxy {
  public:
    explicit HeaderCapture(size_t keep) : IOProxy("header", Write), kept_(keep, 0) {}
    const char* proxytype() const override { return "header-capture"; }
    bool seek(int64_t offset) override {
        m_pos = offset;
        return offset >= 0;
    }
    size_t write(const void* buffer, size_t size) override {
        pwrite(buffer, size, m_pos);
        m_pos += static_cast<int64_t>(size);
        return size;
    }
    size_t pwrite(const void* buffer, size_t size, int64_t offset) override {
        const auto* bytes = static_cast<const unsigned char*>(buffer);
        for (size_t i = 0; i < size && offset + static_cast<int64_t>(i) < kept(); ++i)
            kept_[static_cast<size_t>(offset) + i] = bytes[i];
        if (offset + static_cast<int64_t>(size) > end_) end_ = offset + static_cast<int64_t>(size);
        return size;
    }
    size_t size() const override { return static_cast<size_t>(end_); }
    const std::vector<unsigned char>& bytes() const { return kept_; }

  private:
    int64_t kept() const { return static_cast<int64_t>(kept_.size()); }
    std::vector<unsigned char> kept_;
    int64_t end_ = 0;
};

uint32_t nativeWord(const std::vector<unsigned char>& bytes, size_t at) {
    uint32_t v;
    std::memcpy(&v, bytes.data() + at, sizeof v);
    return v;
}

// OpenImageIO's header for a 16-bit RGB picture of this size, with no name
// and no date; empty when it is not laid out as this writer expects.
std::vector<unsigned char> captureHeader(int width, int height) {
    auto out = OIIO::ImageOutput::create("frame.dpx");
    if (!out || !out->supports("ioproxy")) return {};
    const uint64_t data = static_cast<uint64_t>(width) * static_cast<uint64_t>(height) * 6;
    HeaderCapture capture(1 << 16);
    OIIO::ImageSpec layout(width, height, 3, OIIO::TypeDesc::UINT16);
    if (!out->set_ioproxy(&capture) || !out->open("", layout)) return {};
    // A picture of one row is enough to learn the header; the rows are zeros.
    std::vector<uint16_t> row(static_cast<size_t>(width) * 3, 0);
    for (int y = 0; y < height; ++y) out->write_scanline(y, 0, OIIO::TypeDesc::UINT16, row.data());
    if (!out->close()) return {};
    std::vector<unsigned char> header = capture.bytes();
    const uint32_t offset = nativeWord(header, kImageOffset);
    if (nativeWord(header, 0) != kMagicNative || header[kBitSize] != kSixteen ||
        nativeWord(header, kDataOffset) != offset || offset > header.size() ||
        nativeWord(header, kFileSize) != offset + data || capture.size() != offset + data)
        return {};
    header.resize(offset);
    return header;
}

// The header of the last frame size, shared by the writer threads.
std::mutex headerLock;
int headerWidth = 0;
int headerHeight = 0;
std::vector<unsigned char> headerBytes;
}  // namespace

bool writesDpx(const std::string& path) {
    auto out = OIIO::ImageOutput::create(path);
    return out && std::strcmp(out->format_name(), "dpx") == 0;
}

bool writeDpxFast(const std::string& storedName, int width, int height, const SixteenBitRows& rows,
                  const std::string& dateTime, safeio::OutputFile& file) {
    if (storedName.size() >= kNameBytes || (!dateTime.empty() && dateTime.size() != kDateText))
        return false;
    static thread_local std::vector<unsigned char> header;
    {
        std::lock_guard<std::mutex> lock(headerLock);
        if (width != headerWidth || height != headerHeight) {
            headerBytes = captureHeader(width, height);
            headerWidth = width;
            headerHeight = height;
        }
        header.assign(headerBytes.begin(), headerBytes.end());
    }
    if (header.empty()) return false;
    std::memcpy(header.data() + kNameField, storedName.data(), storedName.size());
    // The writer's own form of the date: "YYYY:MM:DD:HH:MM:SSZ".
    if (!dateTime.empty()) {
        std::string date = dateTime + "Z";
        date[kDateSpace] = ':';
        std::memcpy(header.data() + kDateField, date.data(), std::min(date.size(), kDateBytes));
    }
    file.writeAt(header.data(), header.size(), 0);
    // Blocks small enough to stay in the cache from the conversion to the write.
    const size_t rowSamples = static_cast<size_t>(width) * 3;
    const size_t rowsPerBlock = std::max<size_t>(1, kBlockBytes / (rowSamples * 2));
    static thread_local std::vector<uint16_t> block;
    block.resize(rowsPerBlock * rowSamples);
    uint64_t offset = header.size();
    for (int y = 0; y < height && file.failure().empty();) {
        const int count = static_cast<int>(std::min<size_t>(rowsPerBlock, height - y));
        for (int k = 0; k < count; ++k) rows(y + k, block.data() + k * rowSamples);
        const size_t bytes = static_cast<size_t>(count) * rowSamples * 2;
        file.writeAt(block.data(), bytes, offset);
        offset += bytes;
        y += count;
    }
    return true;
}

bool writeDpxFast(const std::string& storedName, int width, int height, const RgbSamples& samples,
                  const std::string& dateTime, safeio::OutputFile& file) {
    if (samples.type != SampleType::Sixteen) return false;
    const size_t rowSamples = static_cast<size_t>(width) * 3;
    const uint16_t* from = samples.sixteens.data();
    return writeDpxFast(
        storedName, width, height,
        [from, rowSamples](int row, uint16_t* to) {
            std::memcpy(to, from + row * rowSamples, rowSamples * sizeof(uint16_t));
        },
        dateTime, file);
}
