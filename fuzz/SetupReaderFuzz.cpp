// Fuzz target: the simulated host's set-up reader (sparkLoadSetup) fed any
// bytes as a set-up file, with the real plug-in's control records loaded.
//
// Beyond not crashing, a set-up that loads must leave every float record
// finite and inside its range, every menu index among its entries, every
// check box 0 or 1 and every key finite and at a frame from 0; saved and
// loaded again it must give the same values bit for bit. A broken rule
// stops the run (abort), which libFuzzer and the replay report.
//
// A save asks the loader for every possible record name (thousands of
// look-ups), so while fuzzing only the loaded inputs whose hash is a
// multiple of kRoundTripEvery make the round trip; the replay makes it for
// every input.
#include <OutputFile.h>
#include <SimHost.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {
#ifdef STRAIGHTLUX_FUZZ_REPLAY
const unsigned kRoundTripEvery = 1;
#else
const unsigned kRoundTripEvery = 32;
#endif

simhost::Plugin* plugin = nullptr;
// Found once: finding them asks the loader for every possible record name.
std::vector<simhost::Plugin::RecordRef> records;
int memoryFile = -1;
std::string scratchFolder;
// Each record's bytes as the plug-in defined them, put back before every input.
std::vector<std::vector<unsigned char>> pristine;

size_t recordBytes(const std::string& kind) {
    if (kind == "Float") return sizeof(SparkFloatStruct);
    if (kind == "UserFloat") return sizeof(SparkUserFloatStruct);
    if (kind == "Int") return sizeof(SparkIntStruct);
    if (kind == "Pup") return sizeof(SparkPupStruct);
    if (kind == "Boolean") return sizeof(SparkBooleanStruct);
    if (kind == "String") return sizeof(SparkStringStruct);
    if (kind == "Color") return sizeof(SparkColorStruct);
    return 0;  // push buttons hold nothing
}

void fail(const char* rule, const std::string& record) {
    std::fprintf(stderr, "set-up reader broke a rule: %s (%s)\n", rule, record.c_str());
    std::abort();
}

void checkRecords() {
    for (const simhost::Plugin::RecordRef& ref : records) {
        if (ref.kind == "Float" || ref.kind == "UserFloat") {
            const auto* record = static_cast<SparkFloatStruct*>(ref.address);
            if (!std::isfinite(record->Value)) fail("a float is not finite", ref.symbol);
            if (record->Min < record->Max &&
                (record->Value < record->Min || record->Value > record->Max))
                fail("a float is outside its range", ref.symbol);
        } else if (ref.kind == "Pup") {
            const auto* record = static_cast<SparkPupStruct*>(ref.address);
            if (record->Value < 0 || record->Value >= record->TitleCount)
                fail("a menu index is not an entry", ref.symbol);
        } else if (ref.kind == "Boolean") {
            const auto* record = static_cast<SparkBooleanStruct*>(ref.address);
            if (record->Value != 0 && record->Value != 1)
                fail("a check box is not 0 or 1", ref.symbol);
        }
    }
    for (const auto& control : simhost::Host::instance().curveKeys)
        for (const auto& key : control.second)
            if (key.first < 0 || !std::isfinite(key.second))
                fail("a key is before frame 0 or not finite", std::to_string(control.first));
}

std::vector<std::vector<unsigned char>> recordValues() {
    std::vector<std::vector<unsigned char>> values;
    for (const simhost::Plugin::RecordRef& ref : records) {
        const auto* bytes = static_cast<const unsigned char*>(ref.address);
        values.emplace_back(bytes, bytes + recordBytes(ref.kind));
    }
    return values;
}

unsigned hashOf(const uint8_t* data, size_t size) {
    unsigned hash = 2166136261u;
    for (size_t i = 0; i < size; ++i) hash = (hash ^ data[i]) * 16777619u;
    return hash;
}

void restoreRecords() {
    const std::vector<simhost::Plugin::RecordRef>& refs = records;
    for (size_t i = 0; i < refs.size(); ++i)
        if (!pristine[i].empty())
            std::memcpy(refs[i].address, pristine[i].data(), pristine[i].size());
}
}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    plugin = new simhost::Plugin;
    std::string error;
    if (!plugin->load(STRAIGHTLUX_PLUGIN, &error)) {
        std::fprintf(stderr, "cannot load %s: %s\n", STRAIGHTLUX_PLUGIN, error.c_str());
        std::exit(1);
    }
    records = plugin->records();
    pristine = recordValues();
    memoryFile = memfd_create("setup", MFD_CLOEXEC);
    // Saving syncs to the disk: memory-backed /dev/shm keeps that cheap.
    const char* tmp = std::getenv("TMPDIR");
    std::string folder = tmp && *tmp ? tmp : "/tmp";
    if (access("/dev/shm", W_OK) == 0) folder = "/dev/shm";
    std::string pattern = folder + "/setup-fuzz-XXXXXX";
    if (memoryFile < 0 || !mkdtemp(&pattern[0])) {
        std::perror("setup fuzz");
        std::exit(1);
    }
    scratchFolder = pattern;
    std::atexit([] {
        std::remove((scratchFolder + "/again.setup").c_str());
        rmdir(scratchFolder.c_str());
    });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    simhost::Host& host = simhost::Host::instance();
    host.setupFiles = true;
    host.curveKeys.clear();
    host.setupError.clear();
    restoreRecords();
    if (ftruncate(memoryFile, 0) != 0 ||
        pwrite(memoryFile, data, size, 0) != static_cast<ssize_t>(size))
        return 0;
    std::string name = "/proc/self/fd/" + std::to_string(memoryFile);
    sparkLoadSetup(&name[0]);
    if (!host.setupError.empty()) return 0;
    checkRecords();
    if (hashOf(data, size) % kRoundTripEvery != 0) return 0;

    // What loaded saves and loads back unchanged.
    const std::vector<std::vector<unsigned char>> loaded = recordValues();
    const auto keys = host.curveKeys;
    std::string again = scratchFolder + "/again.setup";
    sparkSaveSetup(&again[0]);
    if (!host.setupError.empty()) fail("a loaded set-up cannot be saved", host.setupError);
    restoreRecords();
    host.curveKeys.clear();
    sparkLoadSetup(&again[0]);
    if (!host.setupError.empty()) fail("a saved set-up does not load", host.setupError);
    if (recordValues() != loaded) fail("values changed in a save and load", again);
    if (host.curveKeys != keys) fail("keys changed in a save and load", again);
    return 0;
}
