#include <Carbon/HostProcess.h>
#include <Carbon/Processes.h>

#include <atomic>

namespace {

// The Process Manager's number for "the process that asks".
const ProcessSerialNumber current_process = {0, 2};

std::atomic<OSType> declared_signature{0};

bool is_current(const ProcessSerialNumber& psn) {
    return psn.highLongOfPSN == current_process.highLongOfPSN &&
           psn.lowLongOfPSN == current_process.lowLongOfPSN;
}

}  // namespace

void DeclareProcessSignature(OSType signature) { declared_signature = signature; }

OSErr GetCurrentProcess(ProcessSerialNumber* psn) {
    if (!psn) return paramErr;
    *psn = current_process;
    return noErr;
}

OSErr GetProcessInformation(const ProcessSerialNumber* psn, ProcessInfoRec* info) {
    if (!psn || !info) return paramErr;
    if (!is_current(*psn)) return procNotFound;
    info->processNumber = current_process;
    info->processType = 0;
    info->processSignature = declared_signature;
    return noErr;
}
