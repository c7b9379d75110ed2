// Points the default message log at an in-memory stream for one test and
// restores standard error afterwards. Time stamps can be masked so that lines
// compare byte for byte.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <regex>
#include <string>

#include "zelMessageLog.h"

class LogCapture {
  public:
    LogCapture() : stream_(open_memstream(&buffer_, &length_)) { setFile(stream_); }
    ~LogCapture() {
        setFile(nullptr);
        fclose(stream_);
        free(buffer_);
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    FILE* stream() { return stream_; }

    std::string text() {
        fflush(stream_);
        return std::string(buffer_, length_);
    }

    // The text since the last call, with every "HH:MM:SS.ss" stamp after the tag masked.
    std::string take() {
        std::string all = text();
        std::string fresh = all.substr(taken_);
        taken_ = all.size();
        return maskTimes(fresh);
    }

    static std::string maskTimes(const std::string& text) {
        static const std::regex stamp(R"(\) \d\d:\d\d:\d\d\.\d\d )");
        return std::regex_replace(text, stamp, ") HH:MM:SS.ss ");
    }

  private:
    char* buffer_ = nullptr;
    size_t length_ = 0;
    size_t taken_ = 0;
    FILE* stream_;
};

inline std::string pointerText(const void* p) {
    char text[32];
    snprintf(text, sizeof text, "%p", p);
    return text;
}
