// The fixture of sparkrun's end-to-end tests: a scratch folder with an out/
// folder in it, runs of the built tool with its exit code and output, and
// pictures written and read with OpenImageIO.
#pragma once

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

const std::string kTool = STRAIGHTLUX_BINARY_DIR "/sparkrun";
const std::string kProbe = SPARKRUN_PROBE;
const double kTwelveBitStep = 65535.0 / 4095.0;

struct ToolRun {
    int code = -1;   // exit code, -1 when ended by a signal
    int signal = 0;  // the signal that ended it
    std::string out;
    std::string err;
};

inline std::string slurp(const fs::path& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

class Sparkrun : public ::testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/sparkrun-test-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir_ = pattern;
        fs::create_directory(dir_ / "out");
    }
    void TearDown() override { fs::remove_all(dir_); }

    std::string path(const std::string& name) const { return (dir_ / name).string(); }

    // shell runs first in the same shell (ulimit ...; ...).
    ToolRun run(const std::string& arguments, const std::string& shell = "") const {
        const std::string command = (shell.empty() ? "" : shell + "; ") + "exec '" + kTool + "' " +
                                    arguments + " >'" + path("stdout") + "' 2>'" + path("stderr") +
                                    "'";
        ToolRun result;
        const int status = std::system(command.c_str());
        result.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        result.out = slurp(dir_ / "stdout");
        result.err = slurp(dir_ / "stderr");
        return result;
    }

    ToolRun probe(const std::string& arguments) const {
        return run("--plugin '" + kProbe + "' " + arguments);
    }

    // Names in out/, for checking that a failure left nothing behind.
    std::vector<std::string> outputs() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(dir_ / "out"))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    fs::path dir_;
};

template <class T>
void writePicture(const std::string& file, int width, int height, int channels, OIIO::TypeDesc type,
                  const std::vector<T>& samples) {
    auto out = OIIO::ImageOutput::create(file);
    ASSERT_TRUE(out) << file;
    OIIO::ImageSpec header(width, height, channels, type);
    header.attribute("oiio:UnassociatedAlpha", 1);  // store colour as given, alpha or not
    ASSERT_TRUE(out->open(file, header));
    ASSERT_TRUE(out->write_image(type, samples.data()));
    ASSERT_TRUE(out->close());
}

struct Picture {
    int width = 0, height = 0, channels = 0, bits = 0;
    std::vector<float> samples;  // in the file's own levels (0..255, 0..65535) or float
};

inline Picture readPicture(const std::string& file) {
    Picture picture;
    auto in = OIIO::ImageInput::create(file);
    OIIO::ImageSpec header;
    if (!in || !in->open(file, header)) return picture;
    picture.width = header.width;
    picture.height = header.height;
    picture.channels = header.nchannels;
    picture.bits = static_cast<int>(header.format.size()) * 8;
    picture.samples.resize(static_cast<size_t>(header.width) * header.height * header.nchannels);
    in->read_image(0, 0, 0, header.nchannels, OIIO::TypeDesc::FLOAT, picture.samples.data());
    if (!header.format.is_floating_point()) {
        const double full = std::pow(2.0, picture.bits) - 1;
        for (float& sample : picture.samples)
            sample = static_cast<float>(std::round(sample * full));
    }
    return picture;
}

// A 3x2 8-bit RGB picture whose every sample is the given value.
inline void writeFlat8(const std::string& file, unsigned char value) {
    writePicture(file, 3, 2, 3, OIIO::TypeDesc::UINT8, std::vector<unsigned char>(18, value));
}
