// The host's console is standard output; every call flushes, so that its lines keep their
// place among output that goes to the file descriptor directly.

#include <platform/hlu/hlu.h>

#include <cstdarg>
#include <cstdio>

int hluPrintf(const char* format, ...) {
    if (!format) {
        return -1;
    }
    va_list args;
    va_start(args, format);
    const int written = std::vprintf(format, args);
    va_end(args);
    std::fflush(stdout);
    return written;
}

void hluPutsn(const char* text) {
    if (text) {
        std::fputs(text, stdout);
    }
    std::fputc('\n', stdout);
    std::fflush(stdout);
}
