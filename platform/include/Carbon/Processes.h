// Process Manager: who this process is, and which one the user works with. Main thread.
//
// A process serial number is {1, process id}; {0, kCurrentProcess} also names the calling process,
// as on the Mac. Take no number apart: compare with SameProcess.
#pragma once

#include <Carbon/MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ProcessSerialNumber {
    UInt32 highLongOfPSN;
    UInt32 lowLongOfPSN;
} ProcessSerialNumber;

enum { kNoProcess = 0, kCurrentProcess = 2 };

// The fields of the Mac's record that are used here. The caller sets `processInfoLength`.
typedef struct ProcessInfoRec {
    UInt32 processInfoLength;
    ProcessSerialNumber processNumber;
    UInt32 processType;
    OSType processSignature;
} ProcessInfoRec;

OSErr GetCurrentProcess(ProcessSerialNumber* psn);
// For the current process: the signature that the host has declared (host/process.h), 0 if
// none. For any other: procNotFound.
OSErr GetProcessInformation(const ProcessSerialNumber* psn, ProcessInfoRec* info);

// The process of the window that the window manager calls active; when no window manager tells, of
// the window that has the keyboard. A window names its own process; when it does not, the X server
// tells which process made it. Answers procNotFound when no window is active, when its process is
// not known here, and without a display.
OSErr GetFrontProcess(ProcessSerialNumber* psn);
OSErr SameProcess(const ProcessSerialNumber* first, const ProcessSerialNumber* second,
                  Boolean* result);

#ifdef __cplusplus
}
#endif
