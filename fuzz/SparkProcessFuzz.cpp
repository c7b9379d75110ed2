// Fuzz target: one whole frame through the real plug-in, as the simulated
// host drives it, on a random small frame with random record values
// (including NaN, infinities and extreme menu indices), at either depth and
// any processor count, followed by an overlay drawing and a few pointer
// events. The plug-in must return its output buffer and never crash.
//
// Input: depth flag, width, height, processors (one byte each), then the
// raw bits of each float record (4 bytes), each menu index (4 bytes), the
// two check boxes (1 byte), pointer events (5 bytes each), then pixels.
#include <SimHost.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

simhost::Plugin* plugin = nullptr;

// The plug-in's records, kind and symbol, in the order of its control list.
struct Record {
    const char* kind;
    const char* symbol;
};
const Record kRecords[] = {
#define STRAIGHTLUX_RECORD(Name, Kind, N, callback) {#Kind, "Spark" #Kind #N},
#include "../lens/StraightluxControls.def"
};

std::vector<const char*> recordsOfKind(const char* kind) {
    std::vector<const char*> symbols;
    for (const Record& record : kRecords)
        if (std::strcmp(record.kind, kind) == 0) symbols.push_back(record.symbol);
    return symbols;
}

const std::vector<const char*> kFloats = recordsOfKind("Float");
const std::vector<const char*> kMenus = recordsOfKind("Pup");
const std::vector<const char*> kBooleans = recordsOfKind("Boolean");
constexpr int kPointerEvents = 4;

// Reads the next bytes of the input, zeros past its end.
struct Bytes {
    const uint8_t* data;
    size_t size;
    size_t at = 0;
    void take(void* out, size_t n) {
        unsigned char* o = static_cast<unsigned char*>(out);
        for (size_t i = 0; i < n; ++i) o[i] = at < size ? data[at++] : 0;
    }
    template <class T>
    T next() {
        T value;
        take(&value, sizeof value);
        return value;
    }
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
    // The plug-in's banner and notes would flood the fuzzer's output.
    if (std::freopen("/dev/null", "w", stdout) == nullptr) return 0;
    // The overlay's drawing calls are formatted as text, as a test reads them.
    simhost::Host::instance().setRecording(true);
    plugin = new simhost::Plugin;
    std::string error;
    if (!plugin->load(STRAIGHTLUX_PLUGIN, &error)) {
        std::fprintf(stderr, "spark_process fuzz: %s\n", error.c_str());
        std::abort();
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    simhost::Host& host = simhost::Host::instance();
    host.reset();
    Bytes in{data, size};
    const int depth = in.next<uint8_t>() & 1 ? 48 : 24;
    const int width = 1 + in.next<uint8_t>() % 24;
    const int height = 1 + in.next<uint8_t>() % 24;
    // Mostly one processor: every fork with more starts threads, which would
    // slow the fuzzing down tenfold; an eighth of the inputs use 2 to 7.
    const uint8_t processors = in.next<uint8_t>();
    host.processors = processors < 224 ? 1 : 2 + processors % 6;
    for (const char* name : kFloats) {
        float value;
        in.take(&value, sizeof value);
        plugin->record<SparkFloatStruct>(name)->Value = value;
    }
    for (const char* name : kMenus)
        plugin->record<SparkPupStruct>(name)->Value = in.next<int32_t>();
    for (const char* name : kBooleans)
        plugin->record<SparkBooleanStruct>(name)->Value = static_cast<char>(in.next<uint8_t>() & 1);
    struct Event {
        uint8_t x, y, pressure;
        int8_t zoom, lineEdit;
    } events[kPointerEvents];
    for (Event& e : events) in.take(&e, sizeof e);

    const SparkInfoStruct info = host.makeInfo(width, height, depth);
    plugin->initialise(info);
    simhost::FrameBuffer& input = host.setBuffer(2, width, height, depth);
    const size_t bytes = input.storage.size() * sizeof(unsigned long);
    in.take(input.storage.data(), bytes);
    simhost::FrameBuffer& output = host.setBuffer(1, width, height, depth);
    if (plugin->process(info) != output.storage.data()) std::abort();

    for (const Event& e : events) {
        plugin->record<SparkPupStruct>("SparkPup20")->Value = e.lineEdit % 7;
        plugin->callback("SparkPup20", 1, info);
        plugin->overlay(info, e.zoom);
        plugin->interact(info, 0, 0, e.pressure > 127 ? 0.0f : 1.0f, e.x % (width + 4) - 2.0f,
                         e.y % (height + 4) - 2.0f, e.zoom);
    }
    host.reset();
    return 0;
}
