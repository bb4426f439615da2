#include "finder/dv_finder.h"

#include <sys/time.h>

#include <Carbon/Carbon.h>

#include "support/dv_log.h"

namespace {

const OSType finder_signature = 0x4D414353;  // 'MACS'

}  // namespace

bool dv_is_finder() {
    if (dvEnableDebugOutput) dvdprintf("Delvio: Checking if this is the Finder..\n");
    ProcessSerialNumber self = {};
    if (GetCurrentProcess(&self) != noErr) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: GetCurrentProcess failed!\n");
        return false;
    }
    ProcessInfoRec info = {};
    info.processInfoLength = sizeof info;
    GetProcessInformation(&self, &info);
    const bool is_finder = info.processSignature == finder_signature;
    if (dvEnableDebugOutput) {
        dvdprintf(is_finder ? "Delvio: This is the Finder\n"
                            : "Delvio: This is NOT the Finder..\n");
    }
    return is_finder;
}

double dv_double_time() {
    timeval now = {};
    gettimeofday(&now, nullptr);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_usec) / 1000000;
}
