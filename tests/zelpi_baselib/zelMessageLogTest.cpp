// The runtime's message log: lines with tag, time and level, continuation
// lines, the clock wrapping past midnight, the default logger's double
// formatting, silencing and console copy, and over-long messages cut to the
// buffer.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "LogCapture.h"
#include "zelMessageLog.h"

namespace {

double g_clock = 0.0;
long g_timeOfDay = 0;
double fakeClock() { return g_clock; }
long fakeTimeOfDay() { return g_timeOfDay; }

// Eighteen blanks stand where " HH:MM:SS.ss LEVEL" would be.
const std::string kContinuation = "(ZEL LIB)" + std::string(18, ' ') + ": ";

// A private logger on a memory stream, with the time sources under the test's control.
class OwnLogger : public ::testing::Test {
  protected:
    OwnLogger() : stream_(open_memstream(&buffer_, &length_)), log_(stream_) {
        zel_set_log_time_sources(&fakeClock, &fakeTimeOfDay);
    }
    ~OwnLogger() override {
        zel_set_log_time_sources(nullptr, nullptr);
        fclose(stream_);
        free(buffer_);
    }
    std::string take() {
        fflush(stream_);
        std::string fresh(buffer_ + taken_, length_ - taken_);
        taken_ = length_;
        return fresh;
    }

    char* buffer_ = nullptr;
    size_t length_ = 0;
    size_t taken_ = 0;
    FILE* stream_;
    zelMessageLog log_;
};

TEST_F(OwnLogger, LinesCarryTagTimeLevelAndText) {
    g_clock = 100.0;
    g_timeOfDay = 12 * 3600 + 34 * 60 + 56;
    log_.zel_notify(3, "hello %d", 7);
    EXPECT_EQ(take(), "(ZEL LIB) 12:34:56.00 INFO : hello 7\n");

    g_clock = 100.25;
    log_.zel_notify(1, "bad\n");
    EXPECT_EQ(take(), "(ZEL LIB) 12:34:56.25 ERROR: bad\n");
    log_.zel_notify(2, "careful");
    EXPECT_EQ(take(), "(ZEL LIB) 12:34:56.25 WARN : careful\n");

    // Above the level of 3, at level 0 and TRACE: nothing.
    log_.zel_notify(4, "dropped");
    log_.zel_notify(0, "never");
    log_.zel_trace("quiet");
    EXPECT_EQ(take(), "");

    // Plain messages are continuation lines without a stamp.
    log_.zel_msg("plain %s", "text");
    EXPECT_EQ(take(), kContinuation + "plain text\n");

    log_.zel_notify_setlevel(5);
    log_.zel_notify(9, "nine");
    log_.zel_notify(4, "four");
    log_.zel_trace("traced %d", 5);
    log_.zel_notify(0, "never");
    EXPECT_EQ(take(),
              "(ZEL LIB) 12:34:56.25 TRACE: nine\n"
              "(ZEL LIB) 12:34:56.25 DEBUG: four\n"
              "(ZEL LIB) 12:34:56.25 TRACE: traced 5\n");

    EXPECT_FALSE(log_.zel_have_logfile());
    log_.zel_notify_set_facility("LENS");
    EXPECT_TRUE(log_.zel_have_logfile());
    log_.zel_notify(3, "tagged");
    EXPECT_EQ(take(), "(LENS) 12:34:56.25 INFO : tagged\n");
}

TEST_F(OwnLogger, ContinuationFollowsTheLastPrintedLevel) {
    g_clock = 5.0;
    log_.zel_msgcont("nothing printed yet");
    EXPECT_EQ(take(), "");

    log_.zel_notify(2, "warning");
    log_.zel_notify(4, "dropped debug");
    log_.zel_msgcont("continues the warning");
    take();
    log_.zel_msgcont("more %s", "detail");
    EXPECT_EQ(take(), kContinuation + "more detail\n");

    // The warning's level is no longer within the logger's level.
    log_.zel_notify_setlevel(1);
    log_.zel_msgcont("hidden");
    EXPECT_EQ(take(), "");
    log_.zel_notify_setlevel(3);
    log_.zel_msgcont("shown again");
    EXPECT_EQ(take(), kContinuation + "shown again\n");
}

TEST_F(OwnLogger, TimeWrapsPastMidnightAndResynchronises) {
    g_clock = 1000.0;
    g_timeOfDay = 86399;
    log_.zel_notify(3, "sync");
    g_clock = 1000.5;
    log_.zel_notify(3, "a");
    g_clock = 1001.5;
    log_.zel_notify(3, "b");
    EXPECT_EQ(take(),
              "(ZEL LIB) 23:59:59.00 INFO : sync\n"
              "(ZEL LIB) 23:59:59.50 INFO : a\n"
              "(ZEL LIB) 00:00:00.50 INFO : b\n");

    // Two days and a bit later, still on the extrapolated clock.
    g_clock = 1001.5 + 2 * 86400.0 + 3661.25;
    log_.zel_notify(3, "c");
    EXPECT_EQ(take(), "(ZEL LIB) 01:01:01.75 INFO : c\n");

    // A clock that went backwards forces a new reading of the time of day.
    g_clock = 10.0;
    g_timeOfDay = 7 * 3600 + 5;
    log_.zel_notify(3, "d");
    EXPECT_EQ(take(), "(ZEL LIB) 07:00:05.00 INFO : d\n");
}

TEST(DefaultLogger, FreeFunctionsFormatTwice) {
    LogCapture capture;
    // One pass would print "100%%"; the second pass turns it into "100%".
    zel_notify(3, "%s", "100%%");
    EXPECT_EQ(capture.take(), "(ZEL LIB) HH:MM:SS.ss INFO : 100%\n");
    zel_msg("%s and %d%%%%", "50%%", 20);
    EXPECT_EQ(capture.take(), kContinuation + "50% and 20%\n");

    zelMessageLog single(capture.stream());
    single.zel_notify(3, "%s", "100%%");
    EXPECT_EQ(capture.take(), "(ZEL LIB) HH:MM:SS.ss INFO : 100%%\n");
}

TEST(DefaultLogger, LevelMinusOneSilencesUntilLevelIsBack) {
    LogCapture capture;
    zel_notify_setlevel(-1);
    EXPECT_EQ(zel_notify_getlevel(), -1);
    zel_notify(1, "error");
    zel_msg("plain");
    zel_trace("trace");
    zel_msgcont("cont");
    EXPECT_EQ(capture.text(), "");

    // The stream was dropped: back at level 3 the log writes to standard error.
    zel_notify_setlevel(3);
    testing::internal::CaptureStderr();
    zel_notify(3, "back on %s", "stderr");
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(LogCapture::maskTimes(err), "(ZEL LIB) HH:MM:SS.ss INFO : back on stderr\n");
    EXPECT_EQ(capture.text(), "");
}

TEST(DefaultLogger, ConsoleEchoesAndCopiesIntoTheLogFile) {
    LogCapture capture;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Console::get().printf("n=%d\n", 5);
    Console::get().out("plain\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "n=5\nplain\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "n=5\nplain\n");

    zel_notify_set_facility("ZEL LIB");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Console::get().logprintf("x=%s\n", "y");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "x=y\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "x=y\n");
    EXPECT_EQ(capture.text(), "CONSOLE LOG:x=y\n");
}

}  // namespace

// Formatting stops at the 4096-byte buffer: an over-long text is cut, still
// ends in its newline, and nothing beyond the buffer is touched.
TEST_F(OwnLogger, OverLongMessagesAreCutToTheBuffer) {
    const std::string longText(6000, 'x');
    log_.zel_msg("%s", longText.c_str());
    EXPECT_EQ(take(), kContinuation + std::string(4094, 'x') + "\n");
    log_.zel_msg("%s", "short");
    EXPECT_EQ(take(), kContinuation + "short\n");

    LogCapture capture;
    zel_msg("%s%s", longText.c_str(), "tail");  // the free function's shared buffer too
    EXPECT_EQ(capture.take(), kContinuation + std::string(4094, 'x') + "\n");
}
