// The pipelined frame loop through the real tool: its files are the plain
// loop's byte for byte, a frame that fails stops the sequence there with the
// frames before it whole, a stop leaves no temporary and no partial frame,
// every frame's kind is checked, and the progress line tells the rate.
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <random>
#include <thread>

#include "SparkrunFixture.h"

extern char** environ;

namespace {
std::vector<unsigned char> fileBytes(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(in), {});
}

void writeNoise16(const std::string& file, int width, int height, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<uint16_t> samples(static_cast<size_t>(width) * height * 3);
    for (uint16_t& sample : samples) sample = static_cast<uint16_t>(random());
    writePicture(file, width, height, 3, OIIO::TypeDesc::UINT16, samples);
}

// A 10-bit DPX, as plates come.
void writeDpx10(const std::string& file, int width, int height, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<uint16_t> samples(static_cast<size_t>(width) * height * 3);
    for (uint16_t& sample : samples) sample = static_cast<uint16_t>(random());
    auto out = OIIO::ImageOutput::create(file);
    ASSERT_TRUE(out);
    OIIO::ImageSpec spec(width, height, 3, OIIO::TypeDesc::UINT16);
    spec.attribute("oiio:BitsPerSample", 10);
    ASSERT_TRUE(out->open(file, spec));
    ASSERT_TRUE(out->write_image(OIIO::TypeDesc::UINT16, samples.data()));
    ASSERT_TRUE(out->close());
}

bool hasTemporary(const fs::path& folder) {
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().filename().string().rfind(".sparkrun-", 0) == 0) return true;
    return false;
}

size_t fileCount(const fs::path& folder) {
    size_t count = 0;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().filename().string()[0] != '.') ++count;
    return count;
}

class Pipeline : public Sparkrun {
  protected:
    // Every file of folder a is in folder b with the same bytes, and the reverse.
    void expectSameFiles(const std::string& a, const std::string& b, size_t count) const {
        EXPECT_EQ(fileCount(dir_ / a), count) << a;
        EXPECT_EQ(fileCount(dir_ / b), count) << b;
        for (const auto& entry : fs::directory_iterator(dir_ / a)) {
            const std::string name = entry.path().filename().string();
            EXPECT_EQ(fileBytes(path(a + "/" + name)), fileBytes(path(b + "/" + name)))
                << a << "/" << name;
        }
    }
};
}  // namespace

TEST_F(Pipeline, PipelinedFilesAreThePlainLoopsBytesKeysAndSetupsIncluded) {
    for (int frame = 1; frame <= 6; ++frame) {
        writeNoise16(path("in." + std::to_string(frame) + ".png"), 41, 29, frame);
        writeDpx10(path("plate." + std::to_string(frame) + ".dpx"), 41, 29, 10 + frame);
    }
    const std::string controls =
        "--set Sampling=Cubic --key Radial1@1=-0.1 --key Radial1@6=0.1 --key 'Centre X@2=40' "
        "--key 'Centre X@5=60' ";
    ASSERT_EQ(run(controls + "--save-setup " + path("keys.setup")).code, 0);
    const char* const extensions[] = {"png", "exr", "dpx", "jpg"};
    struct Case {
        const char* threads;
        const char* input;
        std::string setup;
    };
    const Case cases[] = {{"1", "in.#.png", controls},
                          {"2", "in.#.png", controls},
                          {"1", "plate.#.dpx", controls},
                          {"2", "plate.#.dpx", controls},
                          {"2", "plate.#.dpx", "--setup " + path("keys.setup") + " "}};
    for (const Case& c : cases) {
        for (const char* folder : {"plain", "piped"}) fs::create_directory(dir_ / folder);
        for (const char* extension : extensions) {
            const std::string common =
                c.setup + "--threads " + c.threads + " " + path(c.input) + " ";
            const std::string name = std::string("/f.####.") + extension;
            ToolRun result = run("--sequential " + common + path("plain" + name));
            ASSERT_EQ(result.code, 0) << result.err;
            result = run(common + path("piped" + name));
            ASSERT_EQ(result.code, 0) << result.err;
        }
        expectSameFiles("plain", "piped", 24);
        fs::remove_all(dir_ / "plain");
        fs::remove_all(dir_ / "piped");
    }
    // A still input stands for every frame, the same way in both loops.
    for (const char* folder : {"plain", "piped"}) fs::create_directory(dir_ / folder);
    ASSERT_EQ(run("--sequential --frames 1-4 " + controls + path("in.1.png") + " " +
                  path("plain/s.#.exr"))
                  .code,
              0);
    ASSERT_EQ(run("--frames 1-4 " + controls + path("in.1.png") + " " + path("piped/s.#.exr")).code,
              0);
    expectSameFiles("plain", "piped", 4);
}

TEST_F(Pipeline, AFrameThatCannotBeDecodedEndsTheSequenceThere) {
    for (int frame = 1; frame <= 10; ++frame)
        writeNoise16(path("in." + std::to_string(frame) + ".png"), 300, 200, frame);
    fs::create_directory(dir_ / "plain");
    ASSERT_EQ(run("--sequential " + path("in.#.png") + " " + path("plain/o.#.png")).code, 0);
    // Frame 5 is cut off in the middle of its pixels.
    const std::string five = path("in.5.png");
    fs::resize_file(five, fs::file_size(five) * 2 / 3);
    for (const char* loop : {"", "--sequential "}) {
        fs::remove_all(dir_ / "out");
        fs::create_directory(dir_ / "out");
        const ToolRun result =
            run(std::string(loop) + path("in.#.png") + " " + path("out/o.#.png"));
        EXPECT_EQ(result.code, 3) << loop << result.err;
        EXPECT_NE(result.err.find("in.5.png"), std::string::npos) << result.err;
        EXPECT_EQ(outputs(), (std::vector<std::string>{"o.1.png", "o.2.png", "o.3.png", "o.4.png"}))
            << loop;
        for (int frame = 1; frame <= 4; ++frame) {
            const std::string name = "o." + std::to_string(frame) + ".png";
            EXPECT_EQ(fileBytes(path("out/" + name)), fileBytes(path("plain/" + name))) << name;
        }
    }
}

TEST_F(Pipeline, ASigtermWithFramesInFlightLeavesNoTemporaryAndNoPartialFrame) {
    // Large float outputs take long enough to write for the stop to find frames
    // being read, processed and written at once.
    for (int frame = 1; frame <= 12; ++frame)
        writeNoise16(path("in." + std::to_string(frame) + ".png"), 1600, 1000, frame);
    fs::create_directory(dir_ / "plain");
    ASSERT_EQ(run("--sequential --plugin " + kProbe + " " + path("in.#.png") + " " +
                  path("plain/o.#.exr"))
                  .code,
              0);
    const std::string tool = kTool;
    std::vector<std::string> words = {tool,   "--quiet",        "--plugin",
                                      kProbe, path("in.#.png"), path("out/o.#.exr")};
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(&word[0]);
    argv.push_back(nullptr);
    pid_t pid = -1;
    ASSERT_EQ(posix_spawn(&pid, tool.c_str(), nullptr, nullptr, argv.data(), environ), 0);
    // Stopped once a frame is whole and the next is being written.
    bool caught = false;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(120);
    while (!caught && std::chrono::steady_clock::now() < deadline) {
        if (fileCount(dir_ / "out") >= 1 && hasTemporary(dir_ / "out")) {
            kill(pid, SIGTERM);
            caught = true;
        } else if (waitpid(pid, nullptr, WNOHANG) == pid) {
            break;
        } else {
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    }
    ASSERT_TRUE(caught) << "the run was never caught writing after a whole frame";
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 143);
    EXPECT_FALSE(hasTemporary(dir_ / "out"));
    const std::vector<std::string> kept = outputs();
    EXPECT_GE(kept.size(), 1u);
    EXPECT_LT(kept.size(), 12u);
    // The frames left are whole: the first ones, each the plain loop's bytes.
    for (size_t i = 0; i < kept.size(); ++i) {
        const std::string name = "o." + std::to_string(i + 1) + ".exr";
        EXPECT_EQ(kept[i], name);
        EXPECT_EQ(fileBytes(path("out/" + name)), fileBytes(path("plain/" + name))) << name;
    }
}

TEST_F(Pipeline, EveryFramesKindIsCheckedAndAMixedSequenceStopsAtTheFirstMisfit) {
    const std::vector<float> reals(4 * 3 * 3, 0.5f);
    const std::vector<uint16_t> words(4 * 3 * 3, 30000);
    for (int frame : {1, 2, 4})
        writePicture(path("f." + std::to_string(frame) + ".tif"), 4, 3, 3, OIIO::TypeDesc::FLOAT,
                     reals);
    writePicture(path("f.3.tif"), 4, 3, 3, OIIO::TypeDesc::UINT16, words);
    for (const char* loop : {"", "--sequential "})
        for (const char* encoding : {"--float-encoding log ", ""}) {
            fs::remove_all(dir_ / "out");
            fs::create_directory(dir_ / "out");
            const ToolRun result =
                probe(std::string(loop) + encoding + path("f.#.tif") + " " + path("out/o.#.exr"));
            EXPECT_EQ(result.code, 2) << loop << encoding << result.err;
            EXPECT_NE(result.err.find("f.3.tif"), std::string::npos) << result.err;
            EXPECT_NE(result.err.find(*encoding ? "--float-encoding log" : "whole numbers"),
                      std::string::npos)
                << result.err;
            EXPECT_EQ(outputs(), (std::vector<std::string>{"o.1.exr", "o.2.exr"}))
                << loop << encoding;
        }
    // Whole numbers first, then a float frame.
    writePicture(path("g.1.tif"), 4, 3, 3, OIIO::TypeDesc::UINT16, words);
    writePicture(path("g.2.tif"), 4, 3, 3, OIIO::TypeDesc::FLOAT, reals);
    fs::remove_all(dir_ / "out");
    fs::create_directory(dir_ / "out");
    const ToolRun result = probe(path("g.#.tif") + " " + path("out/o.#.png"));
    EXPECT_EQ(result.code, 2) << result.err;
    EXPECT_NE(result.err.find("g.2.tif holds floating-point values"), std::string::npos)
        << result.err;
    EXPECT_EQ(outputs(), (std::vector<std::string>{"o.1.png"}));
}

TEST_F(Pipeline, TheProgressLineTellsFramesPerSecondAndTheTimeLeft) {
    for (int frame = 1; frame <= 3; ++frame)
        writeFlat8(path("in." + std::to_string(frame) + ".png"), 9);
    ToolRun result = probe("--progress " + path("in.#.png") + " " + path("out/o.#.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_NE(result.err.find("3/3 frames (frame 3)"), std::string::npos) << result.err;
    EXPECT_NE(result.err.find(" fps  0:00 left"), std::string::npos) << result.err;
    // Off when asked, and by default when standard error is not a terminal.
    for (const char* option : {"--no-progress ", ""}) {
        result = probe(std::string(option) + path("in.#.png") + " " + path("out/o.#.png"));
        ASSERT_EQ(result.code, 0) << result.err;
        EXPECT_EQ(result.err.find("fps"), std::string::npos) << option << result.err;
    }
}
