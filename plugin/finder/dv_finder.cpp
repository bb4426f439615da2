#include "finder/dv_finder.h"

#include <sys/time.h>

#include <Carbon/Carbon.h>

#include "finder/dv_target.h"
#include "support/dv_log.h"

namespace {

OSType signature_of(const ProcessSerialNumber& process) {
    ProcessInfoRec info = {};
    info.processInfoLength = sizeof info;
    GetProcessInformation(&process, &info);
    return info.processSignature;
}

}  // namespace

bool dv_is_finder() {
    if (dvEnableDebugOutput) dvdprintf("Delvio: Checking if this is the Finder..\n");
    ProcessSerialNumber self = {};
    if (GetCurrentProcess(&self) != noErr) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: GetCurrentProcess failed!\n");
        return false;
    }
    const bool is_finder = signature_of(self) == dv_finder_signature;
    if (dvEnableDebugOutput) {
        dvdprintf(is_finder ? "Delvio: This is the Finder\n"
                            : "Delvio: This is NOT the Finder..\n");
    }
    return is_finder;
}

bool dv_finder_is_front() {
    if (dvEnableDebugOutput) dvdprintf("Delvio: Checking if we're in the Finder..\n");
    ProcessSerialNumber self = {}, front = {};
    if (GetCurrentProcess(&self) != noErr || GetFrontProcess(&front) != noErr) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: GetCurrentProcess failed..\n");
        return false;
    }
    Boolean same = false;
    SameProcess(&self, &front, &same);
    const bool is_front = signature_of(self) == dv_finder_signature && same;
    if (dvEnableDebugOutput) {
        dvdprintf(is_front ? "Delvio: This is the Finder\n" : "Delvio: This is NOT the Finder\n");
    }
    return is_front;
}

double dv_double_time() {
    timeval now = {};
    gettimeofday(&now, nullptr);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_usec) / 1000000;
}
