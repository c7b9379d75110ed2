#include "zelConsole.h"

#include <cstdarg>
#include <cstdio>

#include "zelMessageLog.h"

Console& Console::get() {
    static Console console;
    return console;
}

void Console::echo(const char* text) {
    fprintf(stderr, "%s", text);
    fflush(stderr);
    fprintf(stdout, "%s", text);
    fflush(stdout);
}

void Console::out(const char* text) { echo(text ? text : ""); }

void Console::printf(const char* format, ...) {
    char text[kZelConsoleBytes];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    echo(text);
}

void Console::logprintf(const char* format, ...) {
    char text[kZelConsoleBytes];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    zelMessageLog& log = zel_default_logger();
    if (log.zel_have_logfile()) {
        fprintf(log.stream(), "CONSOLE LOG:%s", text);
        fflush(log.stream());
    }
    echo(text);
}
