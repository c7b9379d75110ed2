// Amplitude files loaded into channel 93: keys at the key number, the two
// messages, the quiet stop at a malformed block, and files that are neither
// small nor well formed.
#include <SimHost.h>
#include <gtest/gtest.h>
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

simhost::Host& host() { return simhost::Host::instance(); }

std::string block(int key, int frame, const char* value) {
    return "\tKey " + std::to_string(key) + "\n\t\tFrame " + std::to_string(frame) +
           "\n\t\tValue " + value + "\n\t\tEnd\n";
}

std::string header(int size) {
    return "Channel Amplitude 7:\n\tSize " + std::to_string(size) + "\n";
}

}  // namespace

class AmplitudeImport : public testing::Test {
  protected:
    void SetUp() override {
        setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
        host().reset();
        char pattern[] = "/tmp/straightlux-amplitude-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(dir); }

    // Loads a file holding text; the keys of channel 93 afterwards.
    std::map<int, float> load(const std::string& text) {
        const std::string path = dir + "/amplitude.txt";
        std::ofstream(path, std::ios::binary) << text;
        host().reset();
        std::string writable = path;
        aiff_file_CB(writable.data());
        return host().curveKeys[93];
    }
    int messages() const { return host().count("sparkMessage"); }

    std::string dir;
};

TEST_F(AmplitudeImport, KeysGoToChannel93AtTheirKeyNumbers) {
    const std::string valid =
        header(3) + block(1, 10, "0.5") + block(2, 20, "-2.25") + block(5, 50, "1000");
    EXPECT_EQ(load(valid), (std::map<int, float>{{1, 0.5f}, {2, -2.25f}, {5, 1000.0f}}));
    EXPECT_EQ(messages(), 0);
    EXPECT_EQ(host().curveKeys.count(7), 0u);
    for (const auto& call : host().callsNamed("sparkSetCurveKey")) EXPECT_EQ(call.args.at(0), "0");

    // The size bounds the blocks read; 0 reads none.
    EXPECT_EQ(load(header(2) + block(1, 1, "1") + block(2, 2, "2") + block(3, 3, "3")).size(), 2u);
    EXPECT_TRUE(load(header(0) + block(1, 1, "1")).empty());
    // A negative size reads until the file ends or a block fails to scan.
    EXPECT_EQ(load(header(-1) + block(1, 1, "1") + block(2, 2, "2") + block(3, 3, "3")).size(), 3u);
    EXPECT_EQ(load(header(-5) + block(1, 1, "1") + "\tKey x\n" + block(2, 2, "2")).size(), 1u);
    EXPECT_EQ(messages(), 0);
}

TEST_F(AmplitudeImport, ShortOrMalformedFilesStopQuietlyOrAreRefused) {
    EXPECT_EQ(load(header(3) + block(1, 10, "4") + block(2, 20, "5")),
              (std::map<int, float>{{1, 4.0f}, {2, 5.0f}}));
    EXPECT_EQ(messages(), 0);
    EXPECT_EQ(load(header(3) + block(1, 10, "4") + "\tKey 2\n\t\tFrame 20\n").size(), 1u);
    EXPECT_EQ(messages(), 0);

    for (const std::string& text :
         {std::string("Key 1\n"), std::string(""), std::string("Channel Amplitude 7:\n\tSize\n")}) {
        EXPECT_TRUE(load(text).empty());
        EXPECT_TRUE(host().called("sparkMessage(Not a valid control file)")) << text;
    }

    std::mt19937 random(12345);
    std::string bytes(1 << 16, '\0');
    for (char& b : bytes) b = static_cast<char>(random());
    bytes[0] = '\xff';
    EXPECT_TRUE(load(bytes).empty());
    EXPECT_TRUE(host().called("sparkMessage(Not a valid control file)"));
    EXPECT_EQ(load(header(-1) + block(1, 1, "1") + bytes).size(), 1u);

    host().reset();
    std::string missing = dir + "/no such file";
    aiff_file_CB(missing.data());
    aiff_file_CB(nullptr);
    aiff_file_CB(dir.data());  // a directory opens but yields no header
    std::vector<std::string> shown;
    for (const auto& call : host().callsNamed("sparkMessage")) shown.push_back(call.args.at(0));
    EXPECT_EQ(shown, (std::vector<std::string>{"Unable to open file", "Unable to open file",
                                               "Not a valid control file"}));
    EXPECT_TRUE(host().curveKeys.empty());
}

TEST_F(AmplitudeImport, LargeFilesLoadWhole) {
    std::string text = header(-1);
    for (int k = 0; k < 50000; ++k) text += block(k, k, "0.25");
    const std::map<int, float> keys = load(text);
    EXPECT_EQ(keys.size(), 50000u);
    EXPECT_EQ(keys.at(49999), 0.25f);

    // An endless number where the size should be.
    EXPECT_TRUE(load("Channel Amplitude 7:\n\tSize " + std::string(4 << 20, '9') + "\n").empty());
}

using AmplitudeButton = LoadedPlugin;

TEST_F(AmplitudeButton, OpensTheBrowserInTheWorkingDirectoryAndLoadsTheChoice) {
    const std::string path = "/tmp/straightlux-amplitude-" + std::to_string(getpid()) + ".txt";
    std::ofstream(path) << header(1) << block(12, 3, "-0.5");
    host().workingDir = "/tmp/work dir";
    host().fileBrowserChoice = path;
    EXPECT_EQ(plugin.callback("SparkPush114", 1, host().makeInfo(8, 6, 24)), nullptr);
    std::filesystem::remove(path);
    EXPECT_TRUE(host().called("sparkWorkingDir()"));
    EXPECT_TRUE(host().called("sparkFileBrowserDisplay(/tmp/work dir,)"));
    EXPECT_EQ(host().curveKeys[93], (std::map<int, float>{{12, -0.5f}}));

    host().fileBrowserChoice.clear();  // the user cancels
    host().clearCalls();
    plugin.callback("SparkPush114", 1, host().makeInfo(8, 6, 24));
    EXPECT_EQ(host().count("sparkMessage"), 0);
}
