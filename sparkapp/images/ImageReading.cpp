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

// The frame of a file is its display window (the data window of formats
// without one). The data may cover more (overscan, cut away) or less (the
// rest is black); both windows are in the file's pixel coordinates.
struct FrameWindow {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

FrameWindow displayWindow(const OIIO::ImageSpec& header) {
    if (header.full_width < 1 || header.full_height < 1)
        return {header.x, header.y, header.width, header.height};
    return {header.full_x, header.full_y, header.full_width, header.full_height};
}

bool coversDataWindow(const FrameWindow& frame, const OIIO::ImageSpec& header) {
    return frame.x == header.x && frame.y == header.y && frame.width == header.width &&
           frame.height == header.height;
}

// Header checks: the frame's size against the host's limits and the
// sequence, and the memory it needs against what the request allows.
RunStatus checkFrameHeader(const std::string& path, const OIIO::ImageSpec& header,
                           const ReadRequest& request, int useDepth) {
    const FrameWindow frame = displayWindow(header);
    const std::string size = std::to_string(frame.width) + "x" + std::to_string(frame.height);
    // The data window is decoded whole before the frame is cut from it.
    if (frame.width < 1 || frame.height < 1 || frame.width > kMaxFrameSide ||
        frame.height > kMaxFrameSide || header.width < 1 || header.height < 1 ||
        header.width > kMaxFrameSide || header.height > kMaxFrameSide)
        return inputFailure(
            "input " + path + " is " + size +
            (coversDataWindow(frame, header) ? ""
                                             : " (its data " + std::to_string(header.width) + "x" +
                                                   std::to_string(header.height) + ")") +
            ": a frame must be 1 to " + std::to_string(kMaxFrameSide) + " pixels on each side");
    const size_t bytes = hostFrameBytes(frame.width, frame.height, useDepth);
    if (bytes > static_cast<size_t>(kMaxFrameBytes))
        return inputFailure("input " + path + " is " + size + ": its host frame would need " +
                            std::to_string(bytes) + " bytes, more than the host's limit of " +
                            std::to_string(kMaxFrameBytes));
    if (request.expectWidth &&
        (frame.width != request.expectWidth || frame.height != request.expectHeight))
        return inputFailure("input " + path + " is " + size + ", the sequence is " +
                            std::to_string(request.expectWidth) + "x" +
                            std::to_string(request.expectHeight));
    FrameShape shape;
    shape.width = frame.width;
    shape.height = frame.height;
    shape.fileChannels = header.nchannels;
    shape.fileSampleBytes = static_cast<int>(header.format.size());
    shape.isFloat = header.format.is_floating_point();
    shape.hostDepth = useDepth;
    uint64_t need = frameMemoryNeed(shape, request.forProcessing);
    if (!coversDataWindow(frame, header)) {
        shape.width = header.width;
        shape.height = header.height;
        need += frameMemoryNeed(shape, false);
    }
    if (request.memoryLimit && need > request.memoryLimit)
        return inputFailure("input " + path + " is " + size + ": a frame needs about " +
                            memoryText(need) + ", more than " +
                            (request.limitIsOption
                                 ? "the --max-memory limit of " + memoryText(request.memoryLimit)
                                 : "the " + memoryText(request.memoryLimit) +
                                       " of memory available (--max-memory SIZE overrides)"));
    return RunStatus::success();
}

// The frame's samples from the data window's: rows and columns outside the
// frame are left out, the frame's pixels without data are 0 (black).
template <class T>
void cutToFrame(const std::vector<T>& data, const OIIO::ImageSpec& header, const FrameWindow& frame,
                int channels, T* samples) {
    std::fill_n(samples, static_cast<size_t>(frame.width) * frame.height * channels, T(0));
    const int left = std::max(frame.x, header.x);
    const int right = std::min(frame.x + frame.width, header.x + header.width);
    for (int y = std::max(frame.y, header.y);
         left < right && y < std::min(frame.y + frame.height, header.y + header.height); ++y) {
        const size_t from =
            (static_cast<size_t>(y - header.y) * header.width + (left - header.x)) * channels;
        const size_t to =
            (static_cast<size_t>(y - frame.y) * frame.width + (left - frame.x)) * channels;
        std::copy_n(data.begin() + from, static_cast<size_t>(right - left) * channels,
                    samples + to);
    }
}

// The frame's samples in the given type into their place: the data window
// decoded there directly, or decoded aside and cut to the frame when the two
// windows differ.
template <class T>
bool readFrame(OIIO::ImageInput& in, const OIIO::ImageSpec& header, int channels,
               OIIO::TypeDesc type, T* into) {
    const FrameWindow frame = displayWindow(header);
    if (coversDataWindow(frame, header)) return in.read_image(0, 0, 0, channels, type, into);
    std::vector<T> decoded(static_cast<size_t>(header.width) * header.height * channels);
    if (!in.read_image(0, 0, 0, channels, type, decoded.data())) return false;
    cutToFrame(decoded, header, frame, channels, into);
    return true;
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
    const size_t pixels = static_cast<size_t>(read.width) * static_cast<size_t>(read.height);
    OIIO::ImageInput& in = *image.input;
    auto* reals = static_cast<float*>(into);
    auto* words = static_cast<uint16_t*>(into);
    bool fine = read.isFloat ? readFrame(in, header, channels, OIIO::TypeDesc::FLOAT, reals)
                             : readFrame(in, header, channels, OIIO::TypeDesc::UINT16, words);
    if (fine && channels == 1 && read.isFloat) expandGrey(reals, pixels);
    if (fine && channels == 1 && !read.isFloat) expandGrey(words, pixels);
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
    const FrameWindow frame = displayWindow(header);
    FilePixels read;
    read.width = frame.width;
    read.height = frame.height;
    read.origin = {frame.x, frame.y};
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

RunStatus decodeImage(const std::string& path, const ReadRequest& request, FilePixels* picture,
                      int* depth) {
    std::vector<unsigned char> samples;
    RunStatus status =
        decodeImageInto(path, request, picture, depth, [&samples](size_t bytes) -> void* {
            samples.resize(bytes);
            return samples.data();
        });
    if (!status.ok()) return status;
    const size_t count = picture->sampleCount();
    if (picture->isFloat) {
        picture->reals.resize(count);
        std::memcpy(picture->reals.data(), samples.data(), count * sizeof(float));
    } else {
        picture->words.resize(count);
        std::memcpy(picture->words.data(), samples.data(), count * sizeof(uint16_t));
    }
    return status;
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
