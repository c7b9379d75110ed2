// Amplitude files loaded into channel 93: keys at their key numbers, the two
// messages, the quiet stop at a malformed block, and files that are neither
// small nor well formed.
#include <SimHost.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "AmplitudeImport.h"
#include "host/LoadedPlugin.h"

namespace {

using Keys = std::map<int, float>;

simhost::Host& host() { return simhost::Host::instance(); }

std::string block(int key, int frame, const char* value) {
    return "\tKey " + std::to_string(key) + "\n\t\tFrame " + std::to_string(frame) +
           "\n\t\tValue " + value + "\n\t\tEnd\n";
}

std::string header(int size) {
    return "Channel Amplitude 7:\n\tSize " + std::to_string(size) + "\n";
}

const std::string kPath = "/tmp/straightlux-amplitude-" + std::to_string(getpid());

// Loads a file holding text; the keys of channel 93 afterwards.
Keys load(const std::string& text) {
    std::ofstream(kPath, std::ios::binary) << text;
    host().reset();
    std::string path = kPath;
    aiff_file_CB(path.data());
    std::filesystem::remove(kPath);
    return host().curveKeys[93];
}

std::vector<std::string> messages() {
    std::vector<std::string> shown;
    for (const auto& call : host().callsNamed("sparkMessage")) shown.push_back(call.args.at(0));
    return shown;
}

}  // namespace

TEST(AmplitudeImport, KeysGoToChannel93AtTheirKeyNumbersUpToTheSize) {
    setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
    EXPECT_EQ(load(header(3) + block(1, 10, "0.5") + block(2, 20, "-2.25") + block(5, 50, "1000")),
              (Keys{{1, 0.5f}, {2, -2.25f}, {5, 1000.0f}}));
    EXPECT_EQ(host().curveKeys.size(), 1u);
    EXPECT_TRUE(host().called("sparkSetCurveKey(0,93,5,1000)"));
    EXPECT_EQ(load(header(2) + block(1, 1, "1") + block(2, 2, "2") + block(3, 3, "3")).size(), 2u);
    EXPECT_TRUE(load(header(0) + block(1, 1, "1")).empty());
    // Short files stop quietly with the keys read so far.
    EXPECT_EQ(load(header(3) + block(1, 10, "4") + block(2, 20, "5")),
              (Keys{{1, 4.0f}, {2, 5.0f}}));
    EXPECT_EQ(load(header(3) + block(1, 10, "4") + "\tKey 2\n\t\tFrame 20\n").size(), 1u);
    // A negative size reads until the file ends or a block fails to scan.
    EXPECT_EQ(load(header(-1) + block(1, 1, "1") + block(2, 2, "2") + block(3, 3, "3")).size(), 3u);
    EXPECT_EQ(load(header(-5) + block(1, 1, "1") + "\tKey x\n" + block(2, 2, "2")).size(), 1u);
    EXPECT_TRUE(messages().empty());
}

TEST(AmplitudeImport, UnreadableMalformedAndLargeFilesNeverGoWrong) {
    setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
    for (const std::string text : {"Key 1\n", "", "Channel Amplitude 7:\n\tSize\n"}) {
        EXPECT_TRUE(load(text).empty());
        EXPECT_EQ(messages(), std::vector<std::string>{"Not a valid control file"}) << text;
    }
    std::mt19937 random(12345);
    std::string bytes(1 << 16, '\0');
    for (char& b : bytes) b = static_cast<char>(random());
    bytes[0] = '\xff';
    EXPECT_TRUE(load(bytes).empty());
    EXPECT_EQ(load(header(-1) + block(1, 1, "1") + bytes).size(), 1u);

    host().reset();
    std::string missing = "/tmp/straightlux no such file";
    std::string directory = "/tmp";
    aiff_file_CB(missing.data());
    aiff_file_CB(nullptr);
    aiff_file_CB(directory.data());  // opens, but yields no header
    EXPECT_EQ(messages(), (std::vector<std::string>{"Unable to open file", "Unable to open file",
                                                    "Not a valid control file"}));

    std::string many = header(-1);
    for (int k = 0; k < 50000; ++k) many += block(k, k, "0.25");
    const Keys keys = load(many);
    EXPECT_EQ(keys.size(), 50000u);
    EXPECT_EQ(keys.at(49999), 0.25f);
    EXPECT_TRUE(load("Channel Amplitude 7:\n\tSize " + std::string(4 << 20, '9') + "\n").empty());
}

using AmplitudeButton = LoadedPlugin;

TEST_F(AmplitudeButton, BrowsesTheWorkingDirectoryAndLoadsTheChoice) {
    std::ofstream(kPath) << header(1) << block(12, 3, "-0.5");
    host().workingDir = "/tmp/work dir";
    host().fileBrowserChoice = kPath;
    EXPECT_EQ(plugin.callback("SparkPush114", 1, host().makeInfo(8, 6, 24)), nullptr);
    std::filesystem::remove(kPath);
    EXPECT_TRUE(host().called("sparkFileBrowserDisplay(/tmp/work dir,)"));
    EXPECT_EQ(host().curveKeys[93], (Keys{{12, -0.5f}}));
}

// Files that would hang the host or poison the channel are refused on the
// host's error line, and no key of them is set.
TEST(AmplitudeImport, FifosNonFiniteValuesAndWideKeysAreRefused) {
    setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
    const std::string fifo = kPath + ".fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    host().reset();
    std::string path = fifo;
    aiff_file_CB(path.data());  // returns at once instead of waiting for a writer
    std::filesystem::remove(fifo);
    EXPECT_TRUE(
        host().called("sparkError(Amplitude import refused: " + fifo + " is not a regular file)"));
    EXPECT_TRUE(host().curveKeys[93].empty());

    for (const char* bad : {"nan", "inf"}) {
        EXPECT_TRUE(load(header(2) + block(1, 1, "0.5") + block(2, 2, bad)).empty()) << bad;
        EXPECT_TRUE(host().called("sparkError(Amplitude import refused: " + kPath +
                                  " key 2 has a value that is not a finite number)"));
    }
    EXPECT_TRUE(load(header(1) + "\tKey 4294967297\n\t\tFrame 1\n\t\tValue 1\n\t\tEnd\n").empty());
    EXPECT_TRUE(host().called("sparkError(Amplitude import refused: " + kPath +
                              " key 1 has a key number beyond 32 bits)"));
    EXPECT_TRUE(messages().empty());
}
