// Reading image files through OpenImageIO, in three steps: opening, header
// checks, decoding.
#include <OpenImageIO/imageio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <vector>

#include "DpxFastPath.h"
#include "FileHeaders.h"
#include "FrameMemory.h"
#include "ImageFiles.h"
#include "ReaderProcess.h"

namespace {
const int kEightBits = 8;

std::string trimmedError(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
    return text;
}

std::string oiioError() {
    const std::string text = trimmedError(OIIO::geterror());
    return text.empty() ? "unknown error" : text;
}

RunStatus inputFailure(const std::string& text) {
    return RunStatus::failure(ExitCode::Input, text);
}

// "YYYY:MM:DD HH:MM:SS", the file's last change in UTC; empty when unknown.
std::string modificationTime(const std::string& path) {
    struct stat status;
    struct tm parts;
    char text[32];
    if (stat(path.c_str(), &status) != 0 || !gmtime_r(&status.st_mtime, &parts) ||
        !std::strftime(text, sizeof text, "%Y:%m:%d %H:%M:%S", &parts))
        return "";
    return text;
}

// Expands 1 (grey) or 3 read channels into RGB in place.
template <class T>
void expandGrey(T* samples, size_t pixels) {
    for (size_t i = pixels; i-- > 0;) {
        const T grey = samples[i];
        for (int c = 0; c < kRgbChannels; ++c) samples[i * kRgbChannels + c] = grey;
    }
}
}  // namespace

int hostDepthFor(int fileBits, bool isFloat, int requestedDepth) {
    if (requestedDepth) return requestedDepth;
    return isFloat || fileBits > kEightBits ? kHostDepth12 : kHostDepth8;
}

namespace {
// An image file opened for reading, its header read.
struct OpenedImage {
    std::unique_ptr<OIIO::ImageInput> input;
    OIIO::ImageSpec header;
};

// Opening: the file's own header checked for a cut-off file, then the reader
// chosen by the name and the header read. The colour as stored in the file:
// no premultiplying by an alpha that is dropped anyway.
RunStatus openImage(const std::string& path, OpenedImage* image) {
    const std::string cut = headerProblem(path);
    if (!cut.empty()) return inputFailure("cannot read input " + path + ": " + cut);
    OIIO::geterror();  // nothing left over from the parent
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    image->input = OIIO::ImageInput::create(path, false, &config);
    // 0: the library's own setting (configureImageLibrary, configureReaderLibrary).
    if (image->input) image->input->threads(0);
    if (!image->input || !image->input->open(path, image->header, config))
        return inputFailure("cannot read input " + path + ": " +
                            (image->input ? image->input->geterror() : oiioError()));
    image->input->geterror();  // remarks made while opening are not about the pixels
    const OIIO::ImageSpec& header = image->header;
    if (header.deep) return inputFailure("unsupported input " + path + ": deep image");
    if (header.depth > 1) return inputFailure("unsupported input " + path + ": volume image");
    if (header.nchannels < 1) return inputFailure("unsupported input " + path + ": no channels");
    return RunStatus::success();
}

// Header checks: the frame's size against the host's limits and the
// sequence, and the memory it needs against what the request allows.
RunStatus checkFrameHeader(const std::string& path, const OIIO::ImageSpec& header,
                           const ReadRequest& request, int useDepth) {
    const std::string size = std::to_string(header.width) + "x" + std::to_string(header.height);
    if (header.width < 1 || header.height < 1 || header.width > kMaxFrameSide ||
        header.height > kMaxFrameSide)
        return inputFailure("input " + path + " is " + size + ": a frame must be 1 to " +
                            std::to_string(kMaxFrameSide) + " pixels on each side");
    const size_t bytes = hostFrameBytes(header.width, header.height, useDepth);
    if (bytes > static_cast<size_t>(kMaxFrameBytes))
        return inputFailure("input " + path + " is " + size + ": its host frame would need " +
                            std::to_string(bytes) + " bytes, more than the host's limit of " +
                            std::to_string(kMaxFrameBytes));
    if (request.expectWidth &&
        (header.width != request.expectWidth || header.height != request.expectHeight))
        return inputFailure("input " + path + " is " + size + ", the sequence is " +
                            std::to_string(request.expectWidth) + "x" +
                            std::to_string(request.expectHeight));
    FrameShape shape;
    shape.width = header.width;
    shape.height = header.height;
    shape.fileChannels = header.nchannels;
    shape.fileSampleBytes = static_cast<int>(header.format.size());
    shape.isFloat = header.format.is_floating_point();
    shape.hostDepth = useDepth;
    const uint64_t need = frameMemoryNeed(shape, request.forProcessing);
    if (request.memoryLimit && need > request.memoryLimit)
        return inputFailure("input " + path + " is " + size + ": a frame needs about " +
                            memoryText(need) + ", more than " +
                            (request.limitIsOption
                                 ? "the --max-memory limit of " + memoryText(request.memoryLimit)
                                 : "the " + memoryText(request.memoryLimit) +
                                       " of memory available (--max-memory SIZE overrides)"));
    return RunStatus::success();
}

// Decoding: grey (with or without alpha) reads one channel and becomes RGB;
// colour reads the first three, in one call for the whole picture, straight
// into the samples' place. A decoder that met a premature end or a bad strip
// may still say it read the picture; anything it reported means the frame is
// not whole.
RunStatus decodePixels(const std::string& path, OpenedImage& image, const FilePixels& read,
                       void* into) {
    const OIIO::ImageSpec& header = image.header;
    const int channels = header.nchannels >= kRgbChannels ? kRgbChannels : 1;
    const size_t pixels = static_cast<size_t>(header.width) * static_cast<size_t>(header.height);
    OIIO::ImageInput& in = *image.input;
    const OIIO::TypeDesc type = read.isFloat ? OIIO::TypeDesc::FLOAT : OIIO::TypeDesc::UINT16;
    bool fine = in.read_image(0, 0, 0, channels, type, into);
    if (fine && channels == 1 && read.isFloat) expandGrey(static_cast<float*>(into), pixels);
    if (fine && channels == 1 && !read.isFloat) expandGrey(static_cast<uint16_t*>(into), pixels);
    fine = fine && !in.has_error();
    fine = in.close() && fine && !in.has_error();
    if (fine) return RunStatus::success();
    std::string text = trimmedError(in.geterror());
    if (text.empty()) text = oiioError();
    return inputFailure("cannot read pixels of " + path + ": " + text);
}

// DPX files of the layouts plates come in skip OpenImageIO's codec
// (DpxFastPath.h); the header facts are still OpenImageIO's.
bool decodeDpxFast(const std::string& path, OpenedImage& image, const FilePixels& read, void* into,
                   RunStatus* status) {
    DpxLayout layout;
    if (read.isFloat || std::strcmp(image.input->format_name(), "dpx") != 0 ||
        !dpxFastLayout(path, &layout) || layout.width != read.width || layout.height != read.height)
        return false;
    image.input->close();
    std::string error;
    *status = readDpxFast(path, layout, static_cast<uint16_t*>(into), &error)
                  ? RunStatus::success()
                  : inputFailure("cannot read pixels of " + path + ": " + error);
    return true;
}
}  // namespace

RunStatus decodeImageInto(const std::string& path, const ReadRequest& request, FilePixels* picture,
                          int* depth, const SamplePlace& place) {
    OpenedImage image;
    RunStatus status = openImage(path, &image);
    if (!status.ok()) return status;
    const OIIO::ImageSpec& header = image.header;
    const bool isFloat = header.format.is_floating_point();
    const int bits = header.get_int_attribute("oiio:BitsPerSample",
                                              static_cast<int>(header.format.size()) * kEightBits);
    const int useDepth = hostDepthFor(bits, isFloat, request.requestedDepth);
    status = checkFrameHeader(path, header, request, useDepth);
    if (!status.ok()) return status;
    FilePixels read;
    read.width = header.width;
    read.height = header.height;
    read.isFloat = isFloat;
    read.bitsPerSample = bits;
    read.pixelAspect = header.get_float_attribute("PixelAspectRatio", 1.0f);
    read.dateTime = header.get_string_attribute("DateTime");
    if (read.dateTime.empty()) read.dateTime = modificationTime(path);
    void* into = place(read.sampleCount() * (isFloat ? sizeof(float) : sizeof(uint16_t)));
    if (!into) return RunStatus::failure(ExitCode::Memory, "out of memory while decoding " + path);
    if (!decodeDpxFast(path, image, read, into, &status))
        status = decodePixels(path, image, read, into);
    if (!status.ok()) return status;
    *picture = std::move(read);
    *depth = useDepth;
    return RunStatus::success();
}

void configureImageLibrary() {
    OIIO::attribute("threads", 1);
    // -1: OpenEXR runs on the calling thread, with no pool of its own.
    OIIO::attribute("exr_threads", -1);
}

void configureReaderLibrary() {
    // 0: as many threads as processors.
    OIIO::attribute("threads", 0);
    OIIO::attribute("exr_threads", 0);
    // The library's catalogue of formats is made now, while the tool is
    // still starting, rather than at the first read.
    OIIO::ImageInput::create("catalogue.dpx");
}

RunStatus readImage(const std::string& path, const ReadRequest& request, FilePixels* picture,
                    int* depth) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return inputFailure("input file not found: " + path);
    if (!S_ISREG(status.st_mode)) return inputFailure("input is not a file: " + path);
    if (access(path.c_str(), R_OK) != 0)
        return inputFailure("cannot read input " + path + ": " + std::strerror(errno));
    return readInReaderProcess(path, request, picture, depth);
}

RunStatus readImage(const std::string& path, int requestedDepth, FilePixels* picture, int* depth) {
    ReadRequest request;
    request.requestedDepth = requestedDepth;
    request.memoryLimit = memoryAvailable();
    return readImage(path, request, picture, depth);
}
