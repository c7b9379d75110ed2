// Writing image files through OpenImageIO into checked, exclusively created
// temporaries, and the output formats' sample types.
#include <OpenImageIO/imageio.h>
#include <OutputFile.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <set>
#include <vector>

#include "DpxFastPath.h"
#include "ImageFiles.h"
#include "OutputFileProxy.h"
#include "OutputPaths.h"

namespace {
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

// Writers that store an image name and, given none, store whatever their
// memory held there (SGI's 80 bytes): they get the file's own name.
const std::set<std::string>& namedFormats() {
    static const std::set<std::string> formats = {"sgi"};
    return formats;
}
const size_t kMaxImageName = 79;

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

RunStatus outputFailure(const std::string& text) {
    return RunStatus::failure(ExitCode::Output, text);
}
}  // namespace

namespace {
// The writer for path's format. Writers that stamp the time of writing
// (RLA, in local time) are left out: the same frame would not give the
// same bytes twice.
RunStatus writerFor(const std::string& path, std::unique_ptr<OIIO::ImageOutput>* out) {
    *out = OIIO::ImageOutput::create(path);
    if (!*out) return outputFailure("unsupported output format for " + path + ": " + oiioError());
    const std::string format = (*out)->format_name();
    if (format == "rla")
        return outputFailure("unsupported output format for " + path + ": the " + format +
                             " writer stamps the time of writing, so the same frame would not "
                             "give the same file twice");
    return RunStatus::success();
}
}  // namespace

RunStatus checkOutputPath(const std::string& path) {
    RunStatus status = checkOutputFolder(path);
    std::unique_ptr<OIIO::ImageOutput> out;
    return status.ok() ? writerFor(path, &out) : status;
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

RunStatus encodeImage(const std::string& path, int width, int height, const RgbSamples& result,
                      const std::string& dateTime, safeio::OutputFile& file, int threads,
                      FrameOrigin origin) {
    std::unique_ptr<OIIO::ImageOutput> out;
    const RunStatus writer = writerFor(path, &out);
    if (!writer.ok()) return writer;
    // DPX stores the file's own name, not the temporary's.
    if (std::strcmp(out->format_name(), "dpx") == 0 &&
        writeDpxFast(baseOf(path), width, height, result, dateTime, file)) {
        const std::string failure = file.failure();
        if (failure.empty()) return RunStatus::success();
        file.discard();
        return outputFailure("cannot write " + path + ": " + failure);
    }
    out->threads(threads);
    OIIO::TypeDesc type = OIIO::TypeDesc::UINT8;
    if (result.type == SampleType::Sixteen) type = OIIO::TypeDesc::UINT16;
    if (result.type == SampleType::Float) type = OIIO::TypeDesc::FLOAT;
    OIIO::ImageSpec header(width, height, kRgbChannels, type);
    // The frame is the display window, and the data window too.
    header.x = header.full_x = origin.x;
    header.y = header.full_y = origin.y;
    if (!dateTime.empty()) header.attribute("DateTime", dateTime);
    if (namedFormats().count(out->format_name()))
        header.attribute("ImageDescription", baseOf(path).substr(0, kMaxImageName));

    std::string reason;
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
        // Gone before the temporary may be: some writers write again when
        // destroyed after a failed close (HEIF), which would re-create it.
        out.reset();
        stream.flush();
    }
    // A writer that wrote by name had its writes unchecked: they are made
    // again through the checked file, and the picture read back.
    if (fine && !proxied) fine = file.rewriteInPlace();
    // The disk's own answer says more than the writer's report of it.
    if (!file.failure().empty()) reason = file.failure();
    if (fine && file.failure().empty() && !proxied)
        fine = readsBack(file.temporaryPath(), width, height, &reason);
    if (!fine || !file.failure().empty()) {
        file.discard();
        return outputFailure("cannot write " + path + ": " +
                             (reason.empty() ? std::string("the writer failed") : reason));
    }
    return RunStatus::success();
}

RunStatus writeImage(const std::string& path, int width, int height, const RgbSamples& result,
                     const std::string& dateTime, FrameOrigin origin) {
    safeio::OutputFile file;
    std::string reason;
    std::unique_ptr<OIIO::ImageOutput> writer;
    const RunStatus known = writerFor(path, &writer);
    if (!known.ok()) return known;
    if (!file.open(path, &reason)) return outputFailure("cannot write " + path + ": " + reason);
    const RunStatus status = encodeImage(path, width, height, result, dateTime, file, 1, origin);
    if (!status.ok()) return status;
    if (!file.commit(&reason)) return outputFailure("cannot write " + path + ": " + reason);
    return RunStatus::success();
}
