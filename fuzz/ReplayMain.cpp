// Replays inputs through a fuzz target's LLVMFuzzerTestOneInput, once each,
// without libFuzzer: every file named, and every file of every folder named
// (in name order). A target that finds a fault stops the process, which
// fails the test; otherwise it prints how many inputs it ran.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace fs = std::filesystem;

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize) LLVMFuzzerInitialize(&argc, &argv);
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        if (fs::is_directory(argv[i])) {
            std::vector<fs::path> found;
            for (const auto& entry : fs::directory_iterator(argv[i]))
                if (entry.is_regular_file()) found.push_back(entry.path());
            std::sort(found.begin(), found.end());
            inputs.insert(inputs.end(), found.begin(), found.end());
        } else {
            inputs.emplace_back(argv[i]);
        }
    }
    if (inputs.empty()) {
        std::fprintf(stderr, "replay: no inputs\n");
        return 1;
    }
    for (const fs::path& input : inputs) {
        std::ifstream in(input, std::ios::binary);
        if (!in) {
            std::fprintf(stderr, "replay: cannot read %s\n", input.c_str());
            return 1;
        }
        const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                         std::istreambuf_iterator<char>());
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("replayed %zu inputs\n", inputs.size());
    return 0;
}
