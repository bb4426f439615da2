#include "support/dv_log.h"

#include <stdarg.h>
#include <stdlib.h>

#include <string>

int32_t dvEnableDebugOutput;
FILE* dvLogFile;

namespace {

enum { LEVEL_OFF = 0, LEVEL_STANDARD_OUTPUT = 1, LEVEL_FILE = 2 };

const char log_file[] = "Library/Logs/Delvio.log";

bool sink_is_file() { return dvLogFile && dvLogFile != stdout; }

void close_file() {
    if (!sink_is_file()) return;
    fputs("Delvio: Closing log.\n", dvLogFile);
    fclose(dvLogFile);
}

void open_file() {
    const char* home = getenv("HOME");
    const std::string path = home ? std::string(home) + "/" + log_file : log_file;
    dvLogFile = home ? fopen(path.c_str(), "a") : nullptr;
    if (dvLogFile) return;
    printf("Delvio: Failed to open log file '%s'\n", path.c_str());
    dvLogFile = stdout;
    dvEnableDebugOutput = LEVEL_STANDARD_OUTPUT;
}

void update_sink() {
    switch (dvEnableDebugOutput) {
        case LEVEL_OFF:
            close_file();
            dvLogFile = nullptr;
            break;
        case LEVEL_STANDARD_OUTPUT:
            close_file();
            dvLogFile = stdout;
            break;
        case LEVEL_FILE:
            if (!sink_is_file()) open_file();
            break;
    }
}

}  // namespace

int dvdprintf(const char* format, ...) {
    update_sink();
    // An unknown level may be set before there is any sink.
    if (!dvLogFile) return 0;
    va_list arguments;
    va_start(arguments, format);
    const int written = vfprintf(dvLogFile, format, arguments);
    va_end(arguments);
    return written;
}
