#include <host/process.h>
#include <Carbon/Processes.h>

#include <unistd.h>

#include <atomic>

#include "carbon/process_signature.h"
#include "x11/window_process.h"

namespace {

// Marks a number as holding a process id. The numbers with a meaning of their own have 0 here.
const UInt32 process_id_follows = 1;

std::atomic<OSType> own_signature{0};

ProcessSerialNumber number_of(pid_t id) { return {process_id_follows, static_cast<UInt32>(id)}; }

bool are_equal(const ProcessSerialNumber& first, const ProcessSerialNumber& second) {
    return first.highLongOfPSN == second.highLongOfPSN && first.lowLongOfPSN == second.lowLongOfPSN;
}

// The current process has two numbers; this returns one of them for both.
ProcessSerialNumber plain(const ProcessSerialNumber& psn) {
    return are_equal(psn, {0, kCurrentProcess}) ? number_of(getpid()) : psn;
}

}  // namespace

void declare_process_signature(OSType signature) { own_signature = signature; }

OSType declared_signature() { return own_signature; }

OSErr GetCurrentProcess(ProcessSerialNumber* psn) {
    if (!psn) return paramErr;
    *psn = number_of(getpid());
    return noErr;
}

OSErr GetFrontProcess(ProcessSerialNumber* psn) {
    if (!psn) return paramErr;
    const pid_t id = active_process();
    if (id <= 0) return procNotFound;
    *psn = number_of(id);
    return noErr;
}

OSErr SameProcess(const ProcessSerialNumber* first, const ProcessSerialNumber* second,
                  Boolean* result) {
    if (!first || !second || !result) return paramErr;
    *result = are_equal(plain(*first), plain(*second));
    return noErr;
}

OSErr GetProcessInformation(const ProcessSerialNumber* psn, ProcessInfoRec* info) {
    if (!psn || !info) return paramErr;
    const ProcessSerialNumber current = number_of(getpid());
    if (!are_equal(plain(*psn), current)) return procNotFound;
    info->processNumber = current;
    info->processType = 0;
    info->processSignature = own_signature;
    return noErr;
}
