// The fast DPX path against OpenImageIO: every layout it accepts reads
// exactly as OpenImageIO reads it, every other layout is refused (and then
// read by OpenImageIO), and what it writes is OpenImageIO's own file, byte
// for byte, which OpenImageIO reads back exactly.
#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <OutputFile.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "DpxFastPath.h"
#include "HostPixelsRows.h"
#include "ImageFiles.h"

namespace fs = std::filesystem;

namespace {
const size_t kBitSize = 803;
const size_t kPacking = 804;
const size_t kOrientation = 768;

std::vector<uint16_t> noise(size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<uint16_t> samples(count);
    for (uint16_t& sample : samples) sample = static_cast<uint16_t>(random());
    return samples;
}

std::vector<unsigned char> bytesOf(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(in), {});
}

void writeBytes(const std::string& file, const std::vector<unsigned char>& bytes) {
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

// A DPX written by OpenImageIO from 16-bit samples.
void writeDpx(const std::string& file, int width, int height, int channels, int bits,
              const std::string& endian, const std::string& packing) {
    auto out = OIIO::ImageOutput::create(file);
    ASSERT_TRUE(out);
    const OIIO::TypeDesc type = bits == 8 ? OIIO::TypeDesc::UINT8 : OIIO::TypeDesc::UINT16;
    OIIO::ImageSpec format(width, height, channels, type);
    if (bits != 8) format.attribute("oiio:BitsPerSample", bits);
    format.attribute("oiio:Endian", endian);
    if (!packing.empty()) format.attribute("dpx:Packing", packing);
    const std::vector<uint16_t> samples = noise(static_cast<size_t>(width) * height * channels, 5);
    ASSERT_TRUE(out->open(file, format));
    ASSERT_TRUE(out->write_image(OIIO::TypeDesc::UINT16, samples.data()));
    ASSERT_TRUE(out->close());
}

std::vector<uint16_t> oiioSamples(const std::string& file) {
    auto in = OIIO::ImageInput::open(file);
    EXPECT_TRUE(in) << file;
    if (!in) return {};
    const OIIO::ImageSpec& header = in->spec();
    std::vector<uint16_t> samples(static_cast<size_t>(header.width) * header.height * 3);
    EXPECT_TRUE(in->read_image(0, 0, 0, 3, OIIO::TypeDesc::UINT16, samples.data())) << file;
    return samples;
}

std::vector<uint16_t> fastSamples(const std::string& file) {
    DpxLayout layout;
    if (!dpxFastLayout(file, &layout)) return {};
    std::vector<uint16_t> samples(static_cast<size_t>(layout.width) * layout.height * 3);
    std::string error;
    EXPECT_TRUE(readDpxFast(file, layout, samples.data(), &error)) << error;
    return samples;
}

// The samples as the tool decodes them (fast path or not).
std::vector<uint16_t> decodedSamples(const std::string& file) {
    std::vector<uint16_t> room;
    FilePixels facts;
    int depth = 0;
    const RunStatus status =
        decodeImageInto(file, ReadRequest(), &facts, &depth, [&room](size_t bytes) -> void* {
            room.resize(bytes / sizeof(uint16_t));
            return room.data();
        });
    EXPECT_TRUE(status.ok()) << status.message;
    return room;
}

// A field of a DPX header written in the file's byte order.
void patchHalf(std::vector<unsigned char>& bytes, size_t at, uint16_t value) {
    const bool big = bytes[0] == 'S';
    bytes[at] = static_cast<unsigned char>(big ? value >> 8 : value);
    bytes[at + 1] = static_cast<unsigned char>(big ? value : value >> 8);
}

class DpxFastPath : public ::testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/dpx-fast-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir_ = pattern;
    }
    void TearDown() override { fs::remove_all(dir_); }
    std::string path(const std::string& name) const { return (dir_ / name).string(); }
    fs::path dir_;
};
}  // namespace

TEST_F(DpxFastPath, EveryAcceptedLayoutReadsAsOpenImageIOReadsIt) {
    const std::pair<int, const char*> layouts[] = {
        {10, "Filled, method A"}, {10, "Filled, method B"}, {16, "Filled, method A"}};
    const std::pair<int, int> sizes[] = {{1, 1}, {37, 5}, {64, 3}, {600, 400}};
    int files = 0;
    for (const char* endian : {"little", "big"})
        for (const auto& layout : layouts)
            for (const auto& size : sizes) {
                const std::string file = path("f" + std::to_string(files++) + ".dpx");
                writeDpx(file, size.first, size.second, 3, layout.first, endian, layout.second);
                const std::vector<uint16_t> expected = oiioSamples(file);
                EXPECT_EQ(fastSamples(file), expected)
                    << file << " " << endian << " " << layout.first << " " << layout.second;
                EXPECT_EQ(decodedSamples(file), expected) << file;
                forcePlainHostRows(true);  // and without AVX2
                EXPECT_EQ(fastSamples(file), expected) << file;
                forcePlainHostRows(false);
                if (layout.first != 16) continue;
                // 16 bits with packing 0 (as many writers store it), and 12 bits
                // filled (method A: the value above 4 low bits), which
                // OpenImageIO reads but does not write: made from the 16-bit file.
                std::vector<unsigned char> bytes = bytesOf(file);
                patchHalf(bytes, kPacking, 0);
                writeBytes(path("packing0.dpx"), bytes);
                EXPECT_EQ(fastSamples(path("packing0.dpx")), expected) << endian;
                patchHalf(bytes, kPacking, 1);
                bytes[kBitSize] = 12;
                writeBytes(path("twelve.dpx"), bytes);
                const std::vector<uint16_t> twelve = oiioSamples(path("twelve.dpx"));
                EXPECT_EQ(fastSamples(path("twelve.dpx")), twelve) << endian;
                // OpenImageIO gives the stored words whole: the 16-bit file's samples.
                EXPECT_EQ(twelve, expected) << endian;
            }
}

TEST_F(DpxFastPath, OtherLayoutsAreRefusedAndReadByOpenImageIO) {
    struct Case {
        const char* name;
        int channels, bits;
        const char* packing;
    };
    const Case cases[] = {{"packed10", 3, 10, "Packed"},
                          {"twelve-packed", 3, 12, ""},
                          {"eight", 3, 8, ""},
                          {"grey", 1, 16, ""},
                          {"rgba", 4, 10, "Filled, method A"}};
    for (const Case& c : cases) {
        const std::string file = path(std::string(c.name) + ".dpx");
        writeDpx(file, 37, 5, c.channels, c.bits, "big", c.packing);
        DpxLayout layout;
        EXPECT_FALSE(dpxFastLayout(file, &layout)) << c.name;
        if (c.channels == 3) {
            EXPECT_EQ(decodedSamples(file), oiioSamples(file)) << c.name;
        }
    }
    // Bottom to top, and a file cut inside its samples.
    writeDpx(path("base.dpx"), 37, 5, 3, 10, "little", "Filled, method A");
    std::vector<unsigned char> bytes = bytesOf(path("base.dpx"));
    std::vector<unsigned char> flipped = bytes;
    patchHalf(flipped, kOrientation, 2);
    writeBytes(path("flipped.dpx"), flipped);
    bytes.resize(bytes.size() - 4);
    writeBytes(path("cut.dpx"), bytes);
    DpxLayout layout;
    EXPECT_FALSE(dpxFastLayout(path("flipped.dpx"), &layout));
    EXPECT_FALSE(dpxFastLayout(path("cut.dpx"), &layout));
    EXPECT_TRUE(dpxFastLayout(path("base.dpx"), &layout));
}

TEST_F(DpxFastPath, WrittenFilesAreOpenImageIOsBytesAndReadBackExactly) {
    const std::pair<int, int> sizes[] = {{1, 1}, {37, 5}, {640, 360}};
    const char* const dates[] = {"", "2024:02:29 23:59:58"};
    for (const auto& size : sizes)
        for (const char* date : dates) {
            RgbSamples samples;
            samples.type = SampleType::Sixteen;
            samples.sixteens = noise(static_cast<size_t>(size.first) * size.second * 3, 9);
            const std::string file = path("shot.0042.dpx");
            safeio::OutputFile out;
            std::string reason;
            ASSERT_TRUE(out.open(file, &reason)) << reason;
            ASSERT_TRUE(writeDpxFast("shot.0042.dpx", size.first, size.second, samples, date, out));
            ASSERT_TRUE(out.commit(&reason)) << reason;

            // OpenImageIO's writer, told the same name and date.
            std::vector<unsigned char> theirs;
            OIIO::Filesystem::IOVecOutput stream(theirs);
            auto writer = OIIO::ImageOutput::create("shot.0042.dpx");
            ASSERT_TRUE(writer && writer->set_ioproxy(&stream));
            OIIO::ImageSpec header(size.first, size.second, 3, OIIO::TypeDesc::UINT16);
            if (*date) header.attribute("DateTime", date);
            ASSERT_TRUE(writer->open("shot.0042.dpx", header));
            ASSERT_TRUE(writer->write_image(OIIO::TypeDesc::UINT16, samples.sixteens.data()));
            ASSERT_TRUE(writer->close());
            EXPECT_EQ(bytesOf(file), theirs) << size.first << "x" << size.second << " " << date;
            EXPECT_EQ(oiioSamples(file), samples.sixteens);
        }
    // Other sample types are OpenImageIO's to write.
    RgbSamples eights;
    eights.type = SampleType::Eight;
    eights.eights.assign(9, 7);
    safeio::OutputFile out;
    std::string reason;
    ASSERT_TRUE(out.open(path("e.dpx"), &reason));
    EXPECT_FALSE(writeDpxFast("e.dpx", 3, 1, eights, "", out));
    EXPECT_EQ(out.size(), 0u);
}
