// Image file reading and writing through OpenImageIO.
#include "ImageFiles.h"

#include <OpenImageIO/imageio.h>
#include <OutputFile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <set>
#include <vector>

#include "FileHeaders.h"
#include "FrameMemory.h"
#include "OutputFileProxy.h"
#include "OutputPaths.h"
#include "ReaderProcess.h"

namespace {
const int kEightBits = 8;

// Writers that hold only 8 bits per channel.
const std::set<std::string>& eightBitFormats() {
    static const std::set<std::string> formats = {"jpeg", "bmp", "gif", "targa", "ico", "webp"};
    return formats;
}

// Writers that hold floating samples; a result goes to them as float.
const std::set<std::string>& floatFormats() {
    static const std::set<std::string> formats = {"openexr", "hdr", "fits"};
    return formats;
}

std::string trimmedError(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
    return text;
}

// A writer's error text without the remarks that do not mean a bad file:
// OpenImageIO 2.4's TIFF writer reports a failed Exif directory for every
// TIFF it writes, although the file is whole and reads back.
std::string writerFailure(const std::string& text) {
    static const char* const kHarmless[] = {"failed TIFFWriteCustomDirectory() of the Exif data"};
    std::string kept;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        const std::string line = text.substr(start, end - start);
        bool harmless = line.empty();
        for (const char* remark : kHarmless) harmless = harmless || line == remark;
        if (!harmless) kept += (kept.empty() ? "" : "; ") + line;
        start = end + 1;
    }
    return kept;
}

std::string oiioError() {
    const std::string text = trimmedError(OIIO::geterror());
    return text.empty() ? "unknown error" : text;
}

RunStatus inputFailure(const std::string& text) {
    return RunStatus::failure(ExitCode::Input, text);
}

RunStatus outputFailure(const std::string& text) {
    return RunStatus::failure(ExitCode::Output, text);
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
void expandGrey(std::vector<T>& samples, size_t pixels) {
    samples.resize(pixels * kRgbChannels);
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

RunStatus decodeImage(const std::string& path, const ReadRequest& request, FilePixels* picture,
                      int* depth) {
    const std::string cut = headerProblem(path);
    if (!cut.empty()) return inputFailure("cannot read input " + path + ": " + cut);
    OIIO::geterror();  // nothing left over from the parent

    // The colour as stored in the file: no premultiplying by an alpha that is dropped anyway.
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    // The reader is chosen by the file's name, then opened filling the header.
    auto in = OIIO::ImageInput::create(path, false, &config);
    OIIO::ImageSpec header;
    if (in) in->threads(1);
    if (!in || !in->open(path, header, config))
        return inputFailure("cannot read input " + path + ": " +
                            (in ? in->geterror() : oiioError()));
    in->geterror();  // remarks made while opening are not about the pixels
    if (header.deep) return inputFailure("unsupported input " + path + ": deep image");
    if (header.depth > 1) return inputFailure("unsupported input " + path + ": volume image");
    if (header.nchannels < 1) return inputFailure("unsupported input " + path + ": no channels");

    const bool isFloat = header.format.is_floating_point();
    const int bits = header.get_int_attribute("oiio:BitsPerSample",
                                              static_cast<int>(header.format.size()) * kEightBits);
    const int useDepth = hostDepthFor(bits, isFloat, request.requestedDepth);
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
    shape.isFloat = isFloat;
    shape.hostDepth = useDepth;
    const uint64_t need = frameMemoryNeed(shape, request.forProcessing);
    if (request.memoryLimit && need > request.memoryLimit)
        return inputFailure("input " + path + " is " + size + ": a frame needs about " +
                            memoryText(need) + ", more than " +
                            (request.limitIsOption
                                 ? "the --max-memory limit of " + memoryText(request.memoryLimit)
                                 : "the " + memoryText(request.memoryLimit) +
                                       " of memory available (--max-memory SIZE overrides)"));

    FilePixels read;
    read.width = header.width;
    read.height = header.height;
    read.isFloat = isFloat;
    read.bitsPerSample = bits;
    read.pixelAspect = header.get_float_attribute("PixelAspectRatio", 1.0f);
    read.dateTime = header.get_string_attribute("DateTime");
    if (read.dateTime.empty()) read.dateTime = modificationTime(path);
    // Grey (with or without alpha) reads one channel; colour reads the first three.
    const int channels = header.nchannels >= kRgbChannels ? kRgbChannels : 1;
    const size_t pixels = static_cast<size_t>(header.width) * static_cast<size_t>(header.height);
    bool fine;
    if (isFloat) {
        read.reals.resize(pixels * channels);
        fine = in->read_image(0, 0, 0, channels, OIIO::TypeDesc::FLOAT, read.reals.data());
        if (fine && channels == 1) expandGrey(read.reals, pixels);
    } else {
        read.words.resize(pixels * channels);
        fine = in->read_image(0, 0, 0, channels, OIIO::TypeDesc::UINT16, read.words.data());
        if (fine && channels == 1) expandGrey(read.words, pixels);
    }
    // A decoder that met a premature end or a bad strip may still say it read
    // the picture; anything it reported means the frame is not whole.
    fine = fine && !in->has_error();
    fine = in->close() && fine && !in->has_error();
    if (!fine) {
        std::string text = trimmedError(in->geterror());
        if (text.empty()) text = oiioError();
        return inputFailure("cannot read pixels of " + path + ": " + text);
    }
    *picture = std::move(read);
    *depth = useDepth;
    return RunStatus::success();
}

void configureImageLibrary() {
    OIIO::attribute("threads", 1);
    // -1: OpenEXR runs on the calling thread, with no pool of its own.
    OIIO::attribute("exr_threads", -1);
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

RunStatus checkOutputPath(const std::string& path) {
    RunStatus status = checkOutputFolder(path);
    if (!status.ok()) return status;
    auto out = OIIO::ImageOutput::create(path);
    if (!out) return outputFailure("unsupported output format for " + path + ": " + oiioError());
    return RunStatus::success();
}

SampleType outputSampleType(const std::string& path, int hostDepth) {
    auto out = OIIO::ImageOutput::create(path);
    const std::string format = out ? out->format_name() : "";
    if (floatFormats().count(format)) return SampleType::Float;
    if (eightBitFormats().count(format) || hostDepth != kHostDepth12) return SampleType::Eight;
    return SampleType::Sixteen;
}

namespace {
// Reads a written file back whole: for writers that could not use the checked stream.
bool readsBack(const std::string& path, int width, int height, std::string* error) {
    auto in = OIIO::ImageInput::create(path);
    OIIO::ImageSpec header;
    if (!in || !in->open(path, header)) {
        *error = in ? trimmedError(in->geterror()) : oiioError();
        return false;
    }
    std::vector<float> samples(static_cast<size_t>(header.width) * header.height *
                               std::max(header.nchannels, 1));
    bool fine = header.width == width && header.height == height &&
                in->read_image(0, 0, 0, header.nchannels, OIIO::TypeDesc::FLOAT, samples.data());
    fine = fine && !in->has_error();
    fine = in->close() && fine;
    if (!fine) *error = trimmedError(in->geterror());
    if (!fine && error->empty()) *error = "the written file does not read back whole";
    return fine;
}
}  // namespace

RunStatus writeImage(const std::string& path, int width, int height, const RgbSamples& result,
                     const std::string& dateTime) {
    auto out = OIIO::ImageOutput::create(path);
    if (!out) return outputFailure("unsupported output format for " + path + ": " + oiioError());
    out->threads(1);
    OIIO::TypeDesc type = OIIO::TypeDesc::UINT8;
    if (result.type == SampleType::Sixteen) type = OIIO::TypeDesc::UINT16;
    if (result.type == SampleType::Float) type = OIIO::TypeDesc::FLOAT;
    OIIO::ImageSpec header(width, height, kRgbChannels, type);
    if (!dateTime.empty()) header.attribute("DateTime", dateTime);

    safeio::OutputFile file;
    std::string reason;
    if (!file.open(path, &reason)) return outputFailure("cannot write " + path + ": " + reason);
    bool proxied;
    bool fine;
    {
        OutputFileProxy stream(file);
        proxied = out->supports("ioproxy") && out->set_ioproxy(&stream);
        // With the stream the name only tells the writer its flavour (.j2k or .jp2,
        // ...), and some store it (DPX): the file's own name, not where it was written.
        fine = out->open(proxied ? baseOf(path) : file.temporaryPath(), header) &&
               out->write_image(type, result.data());
        fine = out->close() && fine;
        // Errors the writer noted without failing a call count too.
        reason = writerFailure(out->geterror());
        fine = fine && reason.empty();
        stream.flush();
    }
    // The disk's own answer says more than the writer's report of it.
    if (!file.failure().empty()) reason = file.failure();
    if (fine && file.failure().empty() && !proxied)
        fine = readsBack(file.temporaryPath(), width, height, &reason);
    if (!fine || !file.failure().empty()) {
        file.discard();
        return outputFailure("cannot write " + path + ": " +
                             (reason.empty() ? std::string("the writer failed") : reason));
    }
    if (!file.commit(&reason)) return outputFailure("cannot write " + path + ": " + reason);
    return RunStatus::success();
}
