// sparkrun under hostile conditions: a disk that fills, planted links, huge
// and damaged inputs, long names, crashing plug-ins, signals and the litter
// of dead runs. Each case is one a user or a shared folder can produce.
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/time.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <thread>

#include "SparkrunFixture.h"

extern char** environ;

namespace {
const char kTemporaryPrefix[] = ".sparkrun-";
const unsigned kFnvOffset = 2166136261u;
const unsigned kFnvPrime = 16777619u;

// Sanitizers reserve terabytes of address space: an address-space limit
// (ulimit -v) cannot be combined with them, nor can a failed allocation be
// caught under them (they report it and stop).
#if defined(__SANITIZE_ADDRESS__)
const bool kSanitized = true;
#else
const bool kSanitized = false;
#endif

void writeNoise(const std::string& file, int width, int height, unsigned seed = 1) {
    std::mt19937 random(seed);
    std::vector<unsigned char> samples(static_cast<size_t>(width) * height * 3);
    for (unsigned char& sample : samples) sample = static_cast<unsigned char>(random());
    writePicture(file, width, height, 3, OIIO::TypeDesc::UINT8, samples);
}

std::vector<unsigned char> bytesOf(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(in), {});
}

void writeBytes(const std::string& file, const std::vector<unsigned char>& bytes) {
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

// The first `keep` bytes of a file, as a cut-off copy.
void writeCutOff(const std::string& from, const std::string& to, size_t keep) {
    std::vector<unsigned char> bytes = bytesOf(from);
    bytes.resize(std::min(keep, bytes.size()));
    writeBytes(to, bytes);
}

unsigned long crc32(const unsigned char* data, size_t size) {
    unsigned long crc = 0xFFFFFFFFul;
    for (size_t i = 0; i < size; ++i) {
        crc ^= data[i];
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xEDB88320ul & (0ul - (crc & 1)));
    }
    return crc ^ 0xFFFFFFFFul;
}

void appendWord(std::vector<unsigned char>* bytes, unsigned long word) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes->push_back(static_cast<unsigned char>(word >> shift));
}

void appendChunk(std::vector<unsigned char>* png, const char* type,
                 const std::vector<unsigned char>& data) {
    appendWord(png, data.size());
    std::vector<unsigned char> body(type, type + 4);
    body.insert(body.end(), data.begin(), data.end());
    png->insert(png->end(), body.begin(), body.end());
    appendWord(png, crc32(body.data(), body.size()));
}

// A valid PNG header claiming width x height 8-bit RGB, a few bytes of
// compressed data and the end chunk: 69 bytes.
std::vector<unsigned char> lyingPng(unsigned long width, unsigned long height) {
    std::vector<unsigned char> png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    std::vector<unsigned char> header;
    appendWord(&header, width);
    appendWord(&header, height);
    header.insert(header.end(), {8, 2, 0, 0, 0});  // 8 bits, RGB, deflate, no filter, no interlace
    appendChunk(&png, "IHDR", header);
    appendChunk(&png, "IDAT",
                {0x78, 0x9C, 0x62, 0x60, 0x18, 0x05, 0xA3, 0x60, 0x14, 0x8C, 0x54, 0x00});
    appendChunk(&png, "IEND", {});
    return png;
}

std::string machineTag() {
    char name[256] = {};
    gethostname(name, sizeof name - 1);
    unsigned hash = kFnvOffset;
    for (const char* p = name; *p; ++p) {
        hash ^= static_cast<unsigned char>(*p);
        hash *= kFnvPrime;
    }
    char text[16];
    std::snprintf(text, sizeof text, "%08x", hash);
    return text;
}

// A process id that no process has: one that has just ended.
pid_t deadPid() {
    const pid_t child = fork();
    if (child == 0) _exit(0);
    waitpid(child, nullptr, 0);
    return child;
}

void setAge(const std::string& file, int secondsFromNow) {
    const time_t when = time(nullptr) + secondsFromNow;
    struct timeval times[2] = {{when, 0}, {when, 0}};
    lutimes(file.c_str(), times);
}

bool hasTemporary(const fs::path& folder) {
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().filename().string().rfind(kTemporaryPrefix, 0) == 0) return true;
    return false;
}

class Reliability : public Sparkrun {
  protected:
    ToolRun probeWith(const std::string& arguments, const std::string& shell) const {
        return run("--plugin " + kProbe + " " + arguments, shell);
    }

    // Runs the tool in a private mount namespace on a fresh tmpfs (1 MiB,
    // or size) at disk/; what is left there is copied to kept/. False when
    // this machine cannot mount one (not root, no namespaces).
    bool runOnSmallDisk(const std::string& arguments, ToolRun* result,
                        const std::string& size = "1m") const {
        fs::remove_all(dir_ / "kept");
        fs::create_directories(dir_ / "disk");
        fs::create_directories(dir_ / "kept");
        const std::string inner = "mount -t tmpfs -o size=" + size + " tmpfs " + path("disk") +
                                  " || exit 99; " + kTool + " " + arguments + " >" +
                                  path("stdout") + " 2>" + path("stderr") + "; echo $? >" +
                                  path("code") + "; cp -a " + path("disk") + "/. " + path("kept");
        const int status = std::system(("unshare -m sh -c '" + inner + "' 2>/dev/null").c_str());
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return false;
        result->code = std::stoi(slurp(dir_ / "code"));
        result->err = slurp(dir_ / "stderr");
        return true;
    }

    std::vector<std::string> kept() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(dir_ / "kept"))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    // Starts the tool without waiting; its output goes to the usual files.
    pid_t spawnTool(const std::vector<std::string>& arguments) const {
        std::vector<std::string> words = {kTool};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> argv;
        for (std::string& word : words) argv.push_back(&word[0]);
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, path("stdout").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0644);
        posix_spawn_file_actions_addopen(&actions, 2, path("stderr").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0644);
        pid_t pid = -1;
        posix_spawn(&pid, kTool.c_str(), &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        return pid;
    }
};
}  // namespace

TEST_F(Reliability, AWriteThatRunsOutOfRoomFailsWithExitFourAndLeavesNothing) {
    writeNoise(path("noise.png"), 600, 600);
    // ulimit -f counts 1 KiB blocks: 64 KiB is less than any of these files.
    for (const char* extension : {"png", "bmp", "tga", "jpg", "tif", "dpx", "exr"}) {
        const ToolRun result =
            run(path("noise.png") + " " + path("out/r.") + extension, "ulimit -f 64");
        EXPECT_EQ(result.code, 4) << extension << "\n" << result.err;
        EXPECT_NE(result.err.find("File too large"), std::string::npos) << result.err;
        EXPECT_TRUE(outputs().empty()) << extension;
    }
    // A set-up likewise: 100 keys make it larger than 1 KiB, which still
    // leaves room for the message in the standard error file.
    std::string keys;
    for (int frame = 1; frame <= 100; ++frame)
        keys += " --key Gain@" + std::to_string(frame) + "=" + std::to_string(frame);
    const ToolRun result =
        probeWith("--save-setup " + path("out/lens.setup") + keys, "ulimit -f 1");
    EXPECT_EQ(result.code, 4) << result.err;
    EXPECT_NE(result.err.find("cannot write set-up file"), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("File too large"), std::string::npos) << result.err;
    EXPECT_TRUE(outputs().empty());
}

TEST_F(Reliability, AFullDiskFailsWithExitFourAndKeepsOnlyWholeFrames) {
    writeNoise(path("big.png"), 1000, 1000);
    ToolRun result;
    // SGI's writer works by name, not through the checked stream, and seeks
    // to the end of the file first: the writes the full disk refused would
    // have been holes that read back as black.
    for (const char* extension : {"png", "bmp", "tga", "jpg", "tif", "dpx", "exr", "sgi", "rgb"}) {
        if (!runOnSmallDisk(path("big.png") + " " + path("disk/r.") + extension, &result))
            GTEST_SKIP() << "cannot mount a small tmpfs here (needs root and mount namespaces)";
        EXPECT_EQ(result.code, 4) << extension << "\n" << result.err;
        EXPECT_NE(result.err.find("No space left on device"), std::string::npos) << result.err;
        EXPECT_TRUE(kept().empty()) << extension;
    }
    // HEIF and AVIF (by name too) compress noise well: a smaller disk. Their
    // writer writes again when destroyed after a failed close, which must
    // not leave the temporary behind.
    writeNoise(path("half.png"), 500, 500);
    for (const char* extension : {"heic", "avif"}) {
        if (run(path("half.png") + " " + path("out/r.") + extension).code != 0) continue;
        ASSERT_TRUE(
            runOnSmallDisk(path("half.png") + " " + path("disk/r.") + extension, &result, "32k"));
        EXPECT_EQ(result.code, 4) << extension << "\n" << result.err;
        EXPECT_TRUE(kept().empty()) << extension;
    }
    // A sequence: the frames that fit are whole, the one that does not is absent.
    writeNoise(path("small.png"), 300, 300);
    ASSERT_TRUE(
        runOnSmallDisk("--frames 1-8 " + path("small.png") + " " + path("disk/s.#.png"), &result));
    EXPECT_EQ(result.code, 4) << result.err;
    const std::vector<std::string> frames = kept();
    ASSERT_FALSE(frames.empty());
    ASSERT_LT(frames.size(), 8u);
    const Picture original = readPicture(path("small.png"));
    for (size_t i = 0; i < frames.size(); ++i) {
        EXPECT_EQ(frames[i], "s." + std::to_string(i + 1) + ".png");
        EXPECT_EQ(readPicture((dir_ / "kept" / frames[i]).string()).samples, original.samples)
            << frames[i];
    }
    EXPECT_NE(result.err.find("s." + std::to_string(frames.size() + 1) + ".png"), std::string::npos)
        << result.err;
}

TEST_F(Reliability, PlantedLinksAreNeverWrittenThrough) {
    const std::string victim = path("victim");
    { std::ofstream(victim) << "precious"; }
    writeFlat8(path("in.png"), 90);
    // The names the tool once used could be foreseen from its process id
    // (which exec keeps): links planted there must change nothing.
    const std::string plant = "cd " + path("out") + " && ln -s ../victim .sparkrun-$$-r.png && " +
                              "ln -s ../victim r.png.tmp$$ && ln -s ../victim lens.setup.tmp$$";
    ToolRun result = probeWith(
        "--save-setup " + path("out/lens.setup") + " " + path("in.png") + " " + path("out/r.png"),
        plant);
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(slurp(victim), "precious");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(path("out/r.png"))));
    EXPECT_EQ(readPicture(path("out/r.png")).samples[0], 90);
    EXPECT_EQ(slurp(path("out/lens.setup")).rfind("simhost set-up", 0), 0u);

    // A link at the output's own name is replaced by the file, not followed.
    fs::create_symlink("../victim", dir_ / "out" / "s.png");
    fs::create_symlink("../victim", dir_ / "out" / "s.setup");
    result = probeWith(
        "--save-setup " + path("out/s.setup") + " " + path("in.png") + " " + path("out/s.png"),
        "true");
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(slurp(victim), "precious");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(path("out/s.png"))));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(path("out/s.setup"))));
}

TEST_F(Reliability, AFrameTooLargeForTheMemoryIsRefusedBeforeDecoding) {
    // 32768 x 21845 is inside the frame limits; its frame needs tens of GiB.
    writeBytes(path("lying.png"), lyingPng(32768, 21845));
    ASSERT_EQ(bytesOf(path("lying.png")).size(), 69u);
    ToolRun result = run("--max-memory 1G " + path("lying.png") + " " + path("out/r.png"));
    EXPECT_EQ(result.code, 3) << result.err;
    EXPECT_NE(result.err.find("32768x21845"), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("GiB, more than the --max-memory limit of 1.0 GiB"),
              std::string::npos)
        << result.err;
    EXPECT_TRUE(outputs().empty());

    // A small frame passes a small limit; a limit below it is refused.
    writeFlat8(path("small.png"), 7);
    EXPECT_EQ(run("--max-memory 1M " + path("small.png") + " " + path("out/ok.png")).code, 0);
    result = run("--max-memory 100 " + path("small.png") + " " + path("out/no.png"));
    EXPECT_EQ(result.code, 3) << result.err;
    for (const char* bad : {"0", "-5", "lots", "12Q", "1e400", ""}) {
        result = run(std::string("--max-memory '") + bad + "' " + path("small.png") + " " +
                     path("out/bad.png"));
        EXPECT_EQ(result.code, 2) << bad << ": " << result.err;
    }

    if (kSanitized) return;
    // Without --max-memory the limit is what the process may take (here ulimit -v).
    result = run(path("lying.png") + " " + path("out/r.png"), "ulimit -v 4000000");
    EXPECT_EQ(result.code, 3) << result.err;
    EXPECT_NE(result.err.find("of memory available"), std::string::npos) << result.err;
    // Past the estimate, a failed allocation is a message and exit 7, in the
    // reader process (4 GiB of samples) and in the plug-in.
    result =
        run("--max-memory 1T " + path("lying.png") + " " + path("out/r.png"), "ulimit -v 3000000");
    EXPECT_EQ(result.code, 7) << result.err;
    EXPECT_NE(result.err.find("out of memory"), std::string::npos) << result.err;
    result =
        probeWith("--set 'Hog Frame=1' " + path("small.png") + " " + path("out/r.png"), "true");
    EXPECT_EQ(result.code, 7) << result.err;
    EXPECT_NE(result.err.find("out of memory"), std::string::npos) << result.err;
    // A plug-in that catches the failure itself (its entry guard) returns no
    // frame and says so: still exit 7, not a processing failure.
    result = probeWith("--set 'Guarded Hog Frame=1' " + path("small.png") + " " + path("out/r.png"),
                       "true");
    EXPECT_EQ(result.code, 7) << result.err;
    EXPECT_NE(result.err.find("out of memory in the plug-in's SparkProcess, frame 1"),
              std::string::npos)
        << result.err;
    EXPECT_EQ(outputs(), std::vector<std::string>{"ok.png"});
}

TEST_F(Reliability, DamagedInputsFailWithExitThreeAndAMessage) {
    writeNoise(path("noise.png"), 64, 48);
    const Picture noise = readPicture(path("noise.png"));
    std::vector<unsigned short> wide;
    for (float sample : noise.samples) wide.push_back(static_cast<unsigned short>(sample * 257));
    std::vector<float> reals;
    for (float sample : noise.samples) reals.push_back(sample / 255.0f);
    writePicture(path("whole.jpg"), 64, 48, 3, OIIO::TypeDesc::UINT8,
                 std::vector<unsigned char>(noise.samples.begin(), noise.samples.end()));
    {
        auto out = OIIO::ImageOutput::create(path("whole.dpx"));
        OIIO::ImageSpec header(64, 48, 3, OIIO::TypeDesc::UINT16);
        header.attribute("oiio:BitsPerSample", 10);
        ASSERT_TRUE(out->open(path("whole.dpx"), header));
        ASSERT_TRUE(out->write_image(OIIO::TypeDesc::UINT16, wide.data()));
        ASSERT_TRUE(out->close());
    }
    {
        auto out = OIIO::ImageOutput::create(path("whole.tif"));
        OIIO::ImageSpec header(64, 48, 3, OIIO::TypeDesc::FLOAT);
        header.attribute("compression", "zip");
        ASSERT_TRUE(out->open(path("whole.tif"), header));
        ASSERT_TRUE(out->write_image(OIIO::TypeDesc::FLOAT, reals.data()));
        ASSERT_TRUE(out->close());
    }
    const size_t jpegSize = bytesOf(path("whole.jpg")).size();
    const size_t dpxSize = bytesOf(path("whole.dpx")).size();
    const size_t tiffSize = bytesOf(path("whole.tif")).size();
    writeCutOff(path("whole.jpg"), path("cut.jpg"), jpegSize * 9 / 10);
    writeCutOff(path("whole.dpx"), path("cut.dpx"), dpxSize * 9 / 10);
    writeCutOff(path("noise.png"), path("cut.png"), bytesOf(path("noise.png")).size() / 2);
    // A float TIFF with its compressed strips overwritten.
    std::vector<unsigned char> tiff = bytesOf(path("whole.tif"));
    for (size_t i = 16; i < tiffSize * 3 / 4; ++i) tiff[i] = static_cast<unsigned char>(i * 7);
    writeBytes(path("corrupt.tif"), tiff);
    // A DPX header of 0x80 bytes with a true file size: the image library
    // itself aborts on it.
    std::vector<unsigned char> garbage = {'S', 'D', 'P', 'X'};
    garbage.resize(2052, 0x80);
    garbage[16] = 0;
    garbage[17] = 0;
    garbage[18] = 0x08;
    garbage[19] = 0x04;
    writeBytes(path("garbage.dpx"), garbage);

    // The whole files read: no check refuses a good file.
    for (const char* whole : {"whole.jpg", "whole.dpx", "whole.tif"}) {
        const ToolRun result = run(path(whole) + " " + path(std::string("out/") + whole));
        EXPECT_EQ(result.code, 0) << whole << "\n" << result.err;
    }
    fs::remove_all(dir_ / "out");
    fs::create_directory(dir_ / "out");
    struct Case {
        const char* file;
        const char* mention;
    } cases[] = {
        {"cut.jpg", "Premature end"},
        {"cut.dpx", "cut off"},
        {"cut.png", "cut.png"},
        {"corrupt.tif", "corrupt.tif"},
        {"garbage.dpx", "the image library aborted"},
    };
    for (const Case& c : cases) {
        const ToolRun result = run(path(c.file) + " " + path("out/r.png"));
        EXPECT_EQ(result.code, 3) << c.file << "\n" << result.err;
        EXPECT_NE(result.err.find(c.mention), std::string::npos) << c.file << ": " << result.err;
        EXPECT_TRUE(outputs().empty()) << c.file;
    }
}

TEST_F(Reliability, NamesThatCannotBeWrittenFailBeforeTheFirstFrame) {
    writeFlat8(path("in.png"), 40);
    // 240 characters: legal, and no longer too long once a temporary is added.
    const std::string longName = std::string(236, 'n') + ".png";
    ToolRun result = probeWith(path("in.png") + " " + path("out/" + longName), "true");
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(outputs(), std::vector<std::string>{longName});
    fs::remove(dir_ / "out" / longName);

    // A frame field whose width overflows an int is refused, not padded by
    // a negative width (found by fuzzing: it printed gigabytes of blanks).
    result = probeWith(path("in.png") + " " + path("out/%0000000020000947557d.png"), "true");
    EXPECT_EQ(result.code, 2) << result.err;
    EXPECT_NE(result.err.find("frame padding above 10"), std::string::npos) << result.err;

    // The plug-in is never started, so no frame is made.
    const std::string tooLong = std::string(252, 'n') + ".png";
    const std::string name255 = std::string(249, 'n') + ".#.png";  // frame 9 fits, 10 does not
    const std::string longSetup = std::string(260, 's') + ".setup";
    const std::string cases[] = {
        path("in.png") + " " + path("out/" + tooLong),
        "--frames 9-10 " + path("in.png") + " " + path("out/" + name255),
        "--save-setup " + path("out/" + longSetup) + " " + path("in.png") + " " + path("out/r.png"),
    };
    for (const std::string& arguments : cases) {
        result = probeWith(arguments, "true");
        EXPECT_EQ(result.code, 4) << arguments << "\n" << result.err;
        EXPECT_NE(result.err.find("longer than its folder allows"), std::string::npos)
            << result.err;
        EXPECT_EQ(result.err.find("probe plug-in started"), std::string::npos) << result.err;
        EXPECT_TRUE(outputs().empty()) << arguments;
    }
}

TEST_F(Reliability, QuietDropsThePluginsChatterButNotACrash) {
    writeFlat8(path("in.png"), 10);
    ToolRun result = probe(path("in.png") + " " + path("out/a.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    for (const char* chatter : {"probe plug-in started", "probe chatter on the error stream",
                                "probe chatter through std::cerr"})
        EXPECT_NE(result.err.find(chatter), std::string::npos) << chatter;

    result = probe("--quiet " + path("in.png") + " " + path("out/b.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "");

    result = probe("--quiet --set 'Crash Frame=1' " + path("in.png") + " " + path("out/c.png"));
    EXPECT_NE(result.code, 0);
    EXPECT_EQ(result.err.find("probe chatter"), std::string::npos) << result.err;
    if (kSanitized) {
        // The sanitizers catch the null store first and report it.
        EXPECT_TRUE(result.err.find("runtime error") != std::string::npos ||
                    result.err.find("AddressSanitizer") != std::string::npos)
            << result.err;
    } else {
        // A line says where, then the default handler ends the process by the signal.
        EXPECT_NE(result.err.find("sparkrun: crashed with a segmentation fault in the plug-in's "
                                  "SparkProcess, frame 1"),
                  std::string::npos)
            << result.err;
        EXPECT_EQ(result.signal, SIGSEGV);
    }
    EXPECT_EQ(outputs(), (std::vector<std::string>{"a.png", "b.png"}));
}

TEST_F(Reliability, SignalsRemoveTheTemporaryAndExitWithTheirCodes) {
    // A large float output takes long enough to write to be caught at it.
    writePicture(path("big.png"), 3000, 2000, 3, OIIO::TypeDesc::UINT8,
                 std::vector<unsigned char>(3000 * 2000 * 3, 77));
    for (int signal : {SIGTERM, SIGINT}) {
        const pid_t tool =
            spawnTool({"--plugin", kProbe, "--quiet", path("big.png"), path("out/big.exr")});
        ASSERT_GT(tool, 0);
        bool caught = false;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(120);
        while (!caught && std::chrono::steady_clock::now() < deadline) {
            if (hasTemporary(dir_ / "out")) {
                kill(tool, signal);
                caught = true;
            } else if (waitpid(tool, nullptr, WNOHANG) == tool) {
                break;
            } else {
                std::this_thread::sleep_for(std::chrono::microseconds(200));
            }
        }
        ASSERT_TRUE(caught) << "the tool never had a temporary file open";
        int status = 0;
        ASSERT_EQ(waitpid(tool, &status, 0), tool);
        ASSERT_TRUE(WIFEXITED(status)) << slurp(dir_ / "stderr");
        EXPECT_EQ(WEXITSTATUS(status), 128 + signal);
        EXPECT_TRUE(outputs().empty()) << signal;
    }
}

TEST_F(Reliability, AStaleTemporaryOfADeadRunIsRemovedAndNothingElse) {
    const std::string tag = machineTag();
    const std::string dead = std::to_string(deadPid());
    const std::string alive = std::to_string(getpid());
    const std::string stale = kTemporaryPrefix + tag + "-" + dead + "-abcd1234.png";
    const std::string running = kTemporaryPrefix + tag + "-" + alive + "-abcd1234.png";
    const std::string fresh = kTemporaryPrefix + tag + "-" + dead + "-wxyz9876.png";
    const std::string otherMachine =
        kTemporaryPrefix + std::string("0badf00d-") + dead + "-abcd1234.png";
    const std::string notOurs = kTemporaryPrefix + std::string("notes.txt");
    const std::string link = kTemporaryPrefix + tag + "-" + dead + "-link0000.png";
    for (const std::string& name : {stale, running, fresh, otherMachine, notOurs}) {
        std::ofstream(path("out/" + name)) << "left behind";
        setAge(path("out/" + name), name == fresh ? 3600 : -3600);
    }
    fs::create_symlink("../victim", dir_ / "out" / link);
    setAge(path("out/" + link), -3600);
    writeFlat8(path("in.0001.png"), 5);
    writeFlat8(path("in.0002.png"), 6);
    // Temporaries in the input's folder are not frames either.
    std::ofstream(path(kTemporaryPrefix + tag + "-" + alive + "-abcd1234.0003.png")) << "x";

    const ToolRun result = probe("--verbose " + path("in.####.png") + " " + path("out/r.####.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_NE(result.out.find("2 frame(s)"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("removed 1 temporary file"), std::string::npos) << result.out;
    std::vector<std::string> expected = {running, fresh,        otherMachine, notOurs,
                                         link,    "r.0001.png", "r.0002.png"};
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(outputs(), expected);
}

TEST_F(Reliability, SetupValuesAreCheckedExactlyAsTheCommandLineChecksThem) {
    writeFlat8(path("in.png"), 60);
    const std::string files = " " + path("in.png") + " " + path("out/r.png");
    auto setupWith = [&](const std::string& line) {
        std::ofstream(path("s.setup")) << "simhost set-up 1\n" << line << "\n";
        return run("--setup " + path("s.setup") + files);
    };
    // Radial1 is SparkFloat6, -1 .. 3: each value is taken by both or refused by both.
    for (const char* value : {"3", "3.0000001", "3.0000002", "-1", "-1.0000001", "0.1", "1e-45",
                              "0x1p1", "nan", "-inf", "1e39", "1e-400", "0.5x", ""}) {
        const ToolRun bySet = run(std::string("--set 'Radial1=") + value + "'" + files);
        const ToolRun bySetup = setupWith(std::string("Float 6 ") + value);
        EXPECT_EQ(bySet.code == 0, bySetup.code == 0)
            << value << "\n--set: " << bySet.err << "set-up: " << bySetup.err;
        if (bySetup.code != 0) {
            EXPECT_EQ(bySetup.code, 3) << value;
            EXPECT_NE(bySetup.err.find("s.setup, line 2: SparkFloat6 (Radial1)"), std::string::npos)
                << bySetup.err;
        }
        fs::remove(dir_ / "out" / "r.png");
    }
    struct Case {
        const char* line;
        const char* mention;
    } cases[] = {
        {"Float 6 7", "is outside its range -1 .. 3"},
        {"Float 16 0", "SparkFloat16 (Squeeze) = 0 is outside its range 0.5 .. 5"},
        {"Pup 17 2147483647",
         "SparkPup17 (Sampling) = 2147483647 is not one of its entries (0 .. 4)"},
        {"Pup 23 -1", "is not one of its entries (0 .. 2)"},
        {"Pup 33 9", "is not one of its entries (0 .. 8)"},
        {"Boolean 34 2", "a check box holds 0 or 1"},
        {"Key 6 -1 0.5", "key of SparkFloat6 (Radial1) at frame -1"},
        {"Key 6 3 nan", "is not a finite number"},
        {"Key 6 3 9", "is outside its range -1 .. 3"},
        {"Float 6", "SparkFloat6 (Radial1) =  is not a number"},
        {"Gadget 6 1", "line 2: not"},
    };
    for (const Case& c : cases) {
        const ToolRun result = setupWith(c.line);
        EXPECT_EQ(result.code, 3) << c.line << "\n" << result.err;
        EXPECT_NE(result.err.find(c.mention), std::string::npos) << c.line << ": " << result.err;
        EXPECT_NE(result.err.find("s.setup, line 2"), std::string::npos) << result.err;
        EXPECT_TRUE(outputs().empty()) << c.line;
    }
    // A pipe given as the set-up is refused at once instead of hanging the run.
    ASSERT_EQ(mkfifo(path("pipe.setup").c_str(), 0600), 0);
    const ToolRun result = run("--setup " + path("pipe.setup") + files);
    EXPECT_EQ(result.code, 3) << result.err;
    EXPECT_NE(result.err.find("not a regular file"), std::string::npos) << result.err;
}

TEST_F(Reliability, SceneLinearValuesAreReportedWhenClippedAndCarriedThroughByTheLogCurve) {
    // A half-float file; three of six pixels leave 0 .. 1: (4, .5, .5), (-.5, 0, 0), (2, 0, 0).
    const std::vector<float> bright = {4.0f, 0.5f, 0.5f, -0.5f, 0.0f, 0.0f, 0.5f,  0.5f,  0.5f,
                                       1.0f, 1.0f, 1.0f, 2.0f,  0.0f, 0.0f, 0.25f, 0.25f, 0.25f};
    {
        auto out = OIIO::ImageOutput::create(path("bright.exr"));
        ASSERT_TRUE(out &&
                    out->open(path("bright.exr"), OIIO::ImageSpec(3, 2, 3, OIIO::TypeDesc::HALF)));
        ASSERT_TRUE(out->write_image(OIIO::TypeDesc::FLOAT, bright.data()));
        ASSERT_TRUE(out->close());
    }
    ToolRun result = probe(path("bright.exr") + " " + path("out/linear.exr"));
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_NE(result.err.find("3 pixel(s) had values outside 0 .. 1 and were clipped (largest 4, "
                              "smallest -0.5)"),
              std::string::npos)
        << result.err;
    const Picture clipped = readPicture(path("out/linear.exr"));
    EXPECT_EQ(*std::max_element(clipped.samples.begin(), clipped.samples.end()), 1.0f);

    // The log curve carries 0 .. 64 through and back, within half a step:
    // (f + 1/64) * (2^(log2(4097) / 8190) - 1).
    const std::vector<float> values = {0.0f,  1e-4f, 0.001f, 0.01f, 0.18f,  0.5f,
                                       1.0f,  1.5f,  2.0f,   4.0f,  7.5f,   16.0f,
                                       33.0f, 40.0f, 63.0f,  64.0f, 100.0f, -0.5f};
    writePicture(path("wide.exr"), 3, 2, 3, OIIO::TypeDesc::FLOAT, values);
    result = probe("--float-encoding log " + path("wide.exr") + " " + path("out/log.exr"));
    ASSERT_EQ(result.code, 0) << result.err;
    // The last pixel holds both 100 and -0.5.
    EXPECT_NE(result.err.find("1 pixel(s) had values outside 0 .. 64"), std::string::npos)
        << result.err;
    const Picture back = readPicture(path("out/log.exr"));
    ASSERT_EQ(back.samples.size(), values.size());
    const double halfStep = std::exp2(std::log2(4097.0) / 8190.0) - 1.0;
    for (size_t i = 0; i < values.size(); ++i) {
        const double expected = std::clamp(static_cast<double>(values[i]), 0.0, 64.0);
        EXPECT_NEAR(back.samples[i], expected, (expected + 1.0 / 64) * halfStep + 1e-7)
            << values[i];
    }

    // The curve needs a float input, a float output and the 12-bit host.
    writeFlat8(path("eight.png"), 3);
    const std::string cases[] = {
        "--float-encoding log " + path("eight.png") + " " + path("out/a.exr"),
        "--float-encoding log " + path("wide.exr") + " " + path("out/a.png"),
        "--float-encoding log --depth 8 " + path("wide.exr") + " " + path("out/a.exr"),
        "--float-encoding cubic " + path("wide.exr") + " " + path("out/a.exr"),
    };
    for (const std::string& arguments : cases) {
        result = probe(arguments);
        EXPECT_EQ(result.code, 2) << arguments << "\n" << result.err;
        EXPECT_NE(result.err.find("--float-encoding"), std::string::npos) << result.err;
    }
    EXPECT_EQ(outputs(), (std::vector<std::string>{"linear.exr", "log.exr"}));
}

TEST_F(Reliability, ChunksOfASequenceGiveTheSameBytesAsOneRun) {
    for (int frame = 1; frame <= 6; ++frame)
        writeNoise(path("in." + std::to_string(frame) + ".png"), 40, 30, frame);
    const std::string controls =
        "--set Sampling=Cubic --key Radial1@1=-0.1 --key Radial1@6=0.1 --key 'Centre X@2=40' "
        "--key 'Centre X@5=60' ";
    const char* const extensions[] = {"png", "exr", "dpx", "tif"};
    const std::pair<const char*, const char*> chunks[] = {{"1", "2"}, {"3", "5"}, {"6", "6"}};
    for (const char* folder : {"whole", "chunks", "whole-setup", "chunks-setup"})
        fs::create_directory(dir_ / folder);
    auto render = [&](const std::string& folder, const std::string& frames,
                      const std::string& setup) {
        for (const char* extension : extensions) {
            const ToolRun result = run(setup + " --frames " + frames + " " + path("in.#.png") +
                                       " " + path(folder + "/f.####." + extension));
            ASSERT_EQ(result.code, 0) << result.err;
        }
    };
    auto sameFiles = [&](const std::string& a, const std::string& b) {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(dir_ / a))
            names.push_back(entry.path().filename().string());
        EXPECT_EQ(names.size(), 24u);  // six frames in four formats
        for (const std::string& name : names)
            EXPECT_EQ(bytesOf(path(a + "/" + name)), bytesOf(path(b + "/" + name))) << name;
    };

    // Keys given on each command line; each run also saves its set-up.
    render("whole", "1-6", controls + "--save-setup " + path("whole.setup"));
    for (const auto& chunk : chunks) {
        const std::string frames = std::string(chunk.first) + "-" + chunk.second;
        render("chunks", frames, controls + "--save-setup " + path("chunk" + frames + ".setup"));
        EXPECT_EQ(bytesOf(path("chunk" + frames + ".setup")), bytesOf(path("whole.setup")));
    }
    sameFiles("whole", "chunks");

    // The saved set-up, keys included, spread over chunks the same way.
    render("whole-setup", "1-6", "--setup " + path("whole.setup"));
    for (const auto& chunk : chunks)
        render("chunks-setup", std::string(chunk.first) + "-" + chunk.second,
               "--setup " + path("whole.setup"));
    sameFiles("whole-setup", "chunks-setup");
    sameFiles("whole", "whole-setup");
}

TEST_F(Reliability, OutputsThatAreNotFilesAreRefusedBeforeTheFirstFrame) {
    writeFlat8(path("in.png"), 30);
    ASSERT_EQ(run("--make-chart " + path("chart.png") + " --size 320x180").code, 0);
    const std::string special = path("out/special.png");
    const std::string cases[] = {
        // An image, the overlay, a set-up, a traced lines file, a chart, and
        // (last) the middle frame of a sequence.
        path("in.png") + " " + special,
        "--overlay " + special + " " + path("in.png") + " " + path("out/r.png"),
        "--save-setup " + special + " " + path("in.png") + " " + path("out/r.png"),
        "--trace-chart " + path("chart.png") + " " + special,
        "--make-chart " + special,
        "--frames 1-3 " + path("in.png") + " " + path("out/frame.####.png"),
    };
    // A pipe, and (as root) a device node like /dev/null, made here.
    for (const bool device : {false, true}) {
        for (const std::string& arguments : cases) {
            SCOPED_TRACE(arguments);
            const std::string name = &arguments == &cases[5] ? path("out/frame.0002.png") : special;
            const bool made = device ? mknod(name.c_str(), S_IFCHR | 0600, makedev(1, 3)) == 0
                                     : mkfifo(name.c_str(), 0600) == 0;
            if (!made && device) break;  // not root: no device node
            ASSERT_TRUE(made);
            const ToolRun result = run(arguments);
            EXPECT_EQ(result.code, 4) << result.err;
            EXPECT_NE(result.err.find("not a regular file"), std::string::npos) << result.err;
            EXPECT_EQ(outputs(), std::vector<std::string>{fs::path(name).filename().string()});
            const fs::file_status kept = fs::symlink_status(name);
            EXPECT_TRUE(device ? fs::is_character_file(kept) : fs::is_fifo(kept));
            fs::remove(name);
        }
    }
}

TEST_F(Reliability, TheSameFrameGivesTheSameBytesInEveryFormat) {
    writeNoise(path("in.png"), 64, 48);  // JPEG 2000 needs 64 x 32 or more
    fs::create_directory(dir_ / "again");
    // Another day and another time zone: nothing of the run may show in the file.
    for (const char* extension : {"png", "bmp", "tga", "jpg", "tif", "dpx", "exr", "sgi", "hdr",
                                  "ppm", "webp", "jp2", "ico", "fits", "heic", "avif", "gif"}) {
        SCOPED_TRACE(extension);
        const std::string name = std::string("r.") + extension;
        const ToolRun first = run(path("in.png") + " " + path("out/" + name), "TZ=UTC");
        if (first.code == 4 && first.err.find("unsupported output format") != std::string::npos)
            continue;  // not written on this machine
        ASSERT_EQ(first.code, 0) << first.err;
        const ToolRun second =
            run(path("in.png") + " " + path("again/" + name), "export TZ=Pacific/Kiritimati");
        ASSERT_EQ(second.code, 0) << second.err;
        EXPECT_EQ(bytesOf(path("out/" + name)), bytesOf(path("again/" + name)));
    }
    // RLA's writer stamps the time of writing, in local time: not written.
    const ToolRun result = run(path("in.png") + " " + path("out/r.rla"));
    EXPECT_EQ(result.code, 4) << result.err;
    EXPECT_NE(result.err.find("stamps the time of writing"), std::string::npos) << result.err;
}

TEST_F(Reliability, ALinesFileThatIsNotAFileIsRefusedAtOnce) {
    writeFlat8(path("in.png"), 30);
    ASSERT_EQ(mkfifo(path("lines.json").c_str(), 0600), 0);
    const pid_t tool =
        spawnTool({"--lines", path("lines.json"), path("in.png"), path("out/r.png")});
    ASSERT_GT(tool, 0);
    int status = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (waitpid(tool, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            kill(tool, SIGKILL);
            waitpid(tool, &status, 0);
            FAIL() << "the tool waited on the pipe";
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 3);
    const std::string err = slurp(dir_ / "stderr");
    EXPECT_NE(err.find("cannot read the lines file " + path("lines.json") + ": not a regular file"),
              std::string::npos)
        << err;
    EXPECT_TRUE(outputs().empty());
}
