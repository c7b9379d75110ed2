// The wall at the plug-in's entry points, through the built plug-in: a frame
// whose pictures cannot get their memory is refused and the host's buffer is
// left as given; whatever is thrown inside an entry point (by the host's own
// functions or by the C++ library running out of memory) stops there, the
// entry point returns what the host expects from a failed call, and the user
// is told why on the host's error line and on the console.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "GlForward.h"
#include "LoadedPlugin.h"

#if defined(__SANITIZE_ADDRESS__)
// A picture too large for the address space must come back as a null
// allocation, as it does from the C library, not as a sanitizer report. (The
// sanitizer finds this hook only when it is visible outside the program.)
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
#endif

namespace {

constexpr int kWidth = 8;
constexpr int kHeight = 6;
constexpr int kDepth = 24;
constexpr int kEndOfChange = 1;

// The console line that goes with every message on the host's error line.
std::string consoleLine(const std::string& message) { return "SPARK_MESSAGE::\t" + message + "\n"; }

class EntryGuard : public LoadedPlugin {
  protected:
    void SetUp() override {
        LoadedPlugin::SetUp();
        info = host().makeInfo(kWidth, kHeight, kDepth);
        initialise(info);
        ASSERT_NO_FATAL_FAILURE(showInputView());
        input = &host().setBuffer(2, kWidth, kHeight, kDepth);
        for (int i = 0; i < kWidth * kHeight * 3; ++i)
            input->bytes()[i] = static_cast<unsigned char>(i * 5 + 1);
        output = &host().setBuffer(1, kWidth, kHeight, kDepth);
    }
    void TearDown() override { simhost::setGlForward(nullptr); }

    std::vector<unsigned char> outputBytes() const {
        return std::vector<unsigned char>(output->bytes(), output->bytes() + output->byteCount());
    }
    std::vector<unsigned char> inputBytes() const {
        return std::vector<unsigned char>(input->bytes(), input->bytes() + input->byteCount());
    }

    SparkInfoStruct info{};
    simhost::FrameBuffer* input = nullptr;
    simhost::FrameBuffer* output = nullptr;
};

}  // namespace

// The host announces a frame of 2^30 x 2^17 pixels: its two pictures would
// need a pebibyte each, more than any process can address, so they cannot be
// had. The plug-in gives up before it reads or writes a pixel (the buffers
// here are small stand-ins), returns no frame and says why; the next frame
// that fits renders as usual.
TEST_F(EntryGuard, AFrameWithoutMemoryForItsPicturesIsRefusedAndLeftAsGiven) {
    for (int i = 0; i < kWidth * kHeight * 3; ++i)
        output->bytes()[i] = static_cast<unsigned char>(250 - i);
    const std::vector<unsigned char> given = outputBytes();
    SparkInfoStruct huge = info;
    huge.FrameWidth = 1 << 30;
    huge.FrameHeight = 1 << 17;

    const std::string message = "Zel-Straightlux stopped: not enough memory for the frame.";
    host().clearCalls();
    testing::internal::CaptureStderr();
    EXPECT_EQ(plugin.process(huge), nullptr);
    const std::string console = testing::internal::GetCapturedStderr();
    EXPECT_EQ(outputBytes(), given);
    EXPECT_TRUE(host().called("sparkError(" + message + ")"));
    EXPECT_NE(console.find(consoleLine(message)), std::string::npos) << console;

    EXPECT_EQ(plugin.process(info), output->storage.data());
    EXPECT_EQ(outputBytes(), inputBytes());
}

// The host's drawing calls are the overlay's only way out; whatever one of
// them throws stops at SparkOverlay, which returns as after a drawing, and
// the next overlay draws again.
TEST_F(EntryGuard, WhateverTheHostThrowsStopsAtTheOverlayEntryWithItsReason) {
    struct Case {
        void (*loadIdentity)();
        const char* message;
    };
    const Case cases[] = {
        {[] { throw std::runtime_error("the viewer's context is gone"); },
         "Zel-Straightlux stopped: the viewer's context is gone."},
        {[] { throw std::bad_alloc(); }, "Zel-Straightlux stopped: not enough memory."},
        {[] { throw 42; }, "Zel-Straightlux stopped: unexpected failure."},
    };
    for (const Case& c : cases) {
        simhost::GlForward table;
        table.loadIdentity = c.loadIdentity;
        simhost::setGlForward(&table);
        host().clearCalls();
        testing::internal::CaptureStderr();
        plugin.overlay(info, 1.0f);
        const std::string console = testing::internal::GetCapturedStderr();
        simhost::setGlForward(nullptr);
        EXPECT_TRUE(host().called(std::string("sparkError(") + c.message + ")")) << c.message;
        EXPECT_NE(console.find(consoleLine(c.message)), std::string::npos) << console;
        EXPECT_EQ(host().count("glFlush"), 0) << c.message;
    }

    host().clearCalls();
    plugin.overlay(info, 1.0f);
    EXPECT_EQ(host().count("sparkError"), 0);
    EXPECT_EQ(host().count("glFlush"), 1);
}

namespace {

// Virtual memory of this process in bytes, from /proc/self/statm.
long long virtualBytes() {
    std::FILE* statm = std::fopen("/proc/self/statm", "r");
    if (statm == nullptr) return -1;
    long long pages = -1;
    if (std::fscanf(statm, "%lld", &pages) != 1) pages = -1;
    std::fclose(statm);
    return pages < 0 ? -1 : pages * sysconf(_SC_PAGESIZE);
}

// What the child below reports through its exit status.
enum HelpOutcome { kRefused = 0, kNoLimit, kReturnedAFrame, kNotTold };

}  // namespace

// A real std::bad_alloc inside a callback: the help page's address is built
// from DIR_ZEL, here 64 MiB long, in a child process whose address space
// leaves no room for a copy of it. The callback returns no frame and the
// user is told. The browser named cannot start, so a child whose limit
// failed to bite opens no window either.
TEST_F(EntryGuard, HelpRunningOutOfMemoryReturnsNoFrameAndSaysSo) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer's operator new reports running out of memory instead of "
                    "throwing, and its shadow memory does not fit an address-space limit";
#endif
    constexpr size_t kLongPath = size_t{64} << 20;
    constexpr long long kRoom = 16LL << 20;
    const std::string message = "Zel-Straightlux stopped: not enough memory.";
    std::fflush(nullptr);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        setenv("DIR_ZEL", std::string(kLongPath, 'd').c_str(), 1);
        setenv("ZEL_HELP_BROWSER", "/nonexistent/browser", 1);
        host().clearCalls();
        const long long used = virtualBytes();
        const rlimit limit{static_cast<rlim_t>(used + kRoom), static_cast<rlim_t>(used + kRoom)};
        if (used < 0 || setrlimit(RLIMIT_AS, &limit) != 0) _exit(kNoLimit);
        unsigned long* frame = plugin.callback("SparkPush31", kEndOfChange, info);
        if (frame != nullptr) _exit(kReturnedAFrame);
        _exit(host().called("sparkError(" + message + ")") ? kRefused : kNotTold);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << "the child ended by signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), kRefused)
        << "1: no address-space limit, 2: a frame came back, 3: the user was not told";
}
