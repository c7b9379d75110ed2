// Image file reading and writing through OpenImageIO.
#include "ImageFiles.h"

#include <OpenImageIO/imageio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>

namespace {
const int kEightBits = 8;
const char kTempPrefix[] = ".sparkrun-";

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

std::string folderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    if (slash == 0) return "/";
    return path.substr(0, slash);
}

std::string baseOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string oiioError() {
    std::string text = OIIO::geterror();
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
    return text.empty() ? "unknown error" : text;
}

RunStatus inputFailure(const std::string& text) {
    return RunStatus::failure(ExitCode::Input, text);
}

RunStatus outputFailure(const std::string& text) {
    return RunStatus::failure(ExitCode::Output, text);
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

RunStatus readImage(const std::string& path, int requestedDepth, FilePixels* picture, int* depth) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return inputFailure("input file not found: " + path);
    if (!S_ISREG(status.st_mode)) return inputFailure("input is not a file: " + path);
    if (access(path.c_str(), R_OK) != 0)
        return inputFailure("cannot read input " + path + ": " + std::strerror(errno));

    // The colour as stored in the file: no premultiplying by an alpha that is dropped anyway.
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    // The reader is chosen by the file's name, then opened filling the header.
    auto in = OIIO::ImageInput::create(path, false, &config);
    OIIO::ImageSpec header;
    if (!in || !in->open(path, header, config))
        return inputFailure("cannot read input " + path + ": " +
                            (in ? in->geterror() : oiioError()));
    if (header.deep) return inputFailure("unsupported input " + path + ": deep image");
    if (header.depth > 1) return inputFailure("unsupported input " + path + ": volume image");
    if (header.nchannels < 1) return inputFailure("unsupported input " + path + ": no channels");

    const bool isFloat = header.format.is_floating_point();
    const int bits = header.get_int_attribute("oiio:BitsPerSample",
                                              static_cast<int>(header.format.size()) * kEightBits);
    const int useDepth = hostDepthFor(bits, isFloat, requestedDepth);
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

    FilePixels read;
    read.width = header.width;
    read.height = header.height;
    read.isFloat = isFloat;
    read.bitsPerSample = bits;
    read.pixelAspect = header.get_float_attribute("PixelAspectRatio", 1.0f);
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
    if (!fine) {
        std::string text = in->geterror();
        if (text.empty()) text = oiioError();
        return inputFailure("cannot read pixels of " + path + ": " + text);
    }
    in->close();
    *picture = std::move(read);
    *depth = useDepth;
    return RunStatus::success();
}

RunStatus checkOutputFolder(const std::string& path) {
    if (path.empty() || path.back() == '/')
        return outputFailure("output is not a file name: " + path);
    const std::string folder = folderOf(path);
    struct stat status;
    if (stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode))
        return outputFailure("output folder does not exist: " + folder);
    if (access(folder.c_str(), W_OK | X_OK) != 0)
        return outputFailure("output folder is not writable: " + folder);
    if (stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
        return outputFailure("output is a folder: " + path);
    return RunStatus::success();
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

RunStatus writeImage(const std::string& path, int width, int height, const RgbSamples& result) {
    auto out = OIIO::ImageOutput::create(path);
    if (!out) return outputFailure("unsupported output format for " + path + ": " + oiioError());
    OIIO::TypeDesc type = OIIO::TypeDesc::UINT8;
    if (result.type == SampleType::Sixteen) type = OIIO::TypeDesc::UINT16;
    if (result.type == SampleType::Float) type = OIIO::TypeDesc::FLOAT;
    OIIO::ImageSpec header(width, height, kRgbChannels, type);

    // Same folder, so the rename is atomic; same extension, for writers that look at it.
    const std::string temporary =
        folderOf(path) + "/" + kTempPrefix + std::to_string(getpid()) + "-" + baseOf(path);
    bool fine = out->open(temporary, header) && out->write_image(type, result.data());
    fine = out->close() && fine;
    if (!fine) {
        std::string text = out->geterror();
        if (text.empty()) text = std::strerror(errno);
        std::remove(temporary.c_str());
        return outputFailure("cannot write " + path + ": " + text);
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        const std::string text = std::strerror(errno);
        std::remove(temporary.c_str());
        return outputFailure("cannot write " + path + ": " + text);
    }
    return RunStatus::success();
}
