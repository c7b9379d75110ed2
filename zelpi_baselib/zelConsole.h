// Console: echoes text to standard error and then standard output (each
// flushed), and `logprintf` first copies it into the default message log's
// stream when a log file is in use. Formatted text must fit in 1036 bytes.
#pragma once

constexpr int kZelConsoleBytes = 1036;

class Console {
  public:
    static Console& get();

    void out(const char* text);
    void printf(const char* format, ...) __attribute__((format(__printf__, 2, 3)));
    void logprintf(const char* format, ...) __attribute__((format(__printf__, 2, 3)));

  private:
    Console() = default;
    void echo(const char* text);
};
